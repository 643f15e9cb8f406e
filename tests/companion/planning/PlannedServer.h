#pragma once

#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "companion/support/SimulatedPlatform.h"
#include "driver/ZOLEX.h"
#include "setup/ServerFiles.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// A virtual server for which plans are made, and on which they and zolex are run.
class PlannedServer {
  public:
    explicit PlannedServer(std::string_view sample) : platform(sample) {}

    /// Policies for this server as it comes.
    [[nodiscard]] std::string samplePolicies() const {
        return zolex_sim::samplePolicies(platform.server).content;
    }

    /// What a capture of it asks for: its families too, where it has some.
    [[nodiscard]] CaptureRequest request() const {
        CaptureRequest request;
        request.asksFamilies = !platform.server.storcliControllers.empty();
        return request;
    }
    Snapshot snapshot() { return captureMachine(platform, request()); }

    MachinePlan plan(const std::string& policies, StrategyWish wish = StrategyWish::automatic) {
        PlanRequest request;
        request.policiesFile = "site.ini";
        request.policiesText = policies;
        request.strategy = wish;
        return planMachine(snapshot(), request);
    }

    /// Runs the steps of the plan; of each that is not accepted the line and what was printed.
    std::vector<std::string> carryOut(const MachinePlan& plan) {
        std::vector<std::string> refused;
        for (const PlanStep& step : plan.steps()) {
            std::string line;
            for (const std::string& word : step.argv) {
                line += (line.empty() ? "" : " ") + word;
            }
            const ChildResult result = platform.play(line);
            const auto code = static_cast<std::int32_t>(result.exitCode);
            if (std::find(step.acceptedExitCodes.begin(), step.acceptedExitCodes.end(), code) ==
                step.acceptedExitCodes.end()) {
                refused.push_back(step.command + "\n" + result.output);
            }
        }
        return refused;
    }

    /// The exit code of zolex with this policies file.
    int runZolex(const std::string& policies, std::vector<const char*> switches) {
        platform.fileFake.files["site.ini"] = policies;
        platform.children.clear();
        switches.insert(switches.begin(), "zolex");
        switches.push_back("/f:site.ini");
        return ZOLEX::run(static_cast<int>(switches.size()), switches.data(), platform);
    }

    /// The changing command lines that were started since.
    [[nodiscard]] std::vector<std::string> changes() const {
        constexpr std::array<std::string_view, 7> reading = {
            "GETCONFIG", " DISPLAY", "-pdList", "-adpallinfo", "-LdPdInfo", " /L ", "hwdetect"};
        std::vector<std::string> lines;
        std::copy_if(platform.children.begin(), platform.children.end(), std::back_inserter(lines),
                     [&](const std::string& line) {
                         return std::none_of(reading.begin(), reading.end(),
                                             [&](std::string_view text) {
                                                 return line.find(text) != std::string::npos;
                                             });
                     });
        return lines;
    }

    SimulatedPlatform platform;
};

inline std::vector<std::string> commandsOf(const MachinePlan& plan) {
    std::vector<std::string> lines;
    for (const PlanStep& step : plan.steps()) {
        lines.push_back(step.command);
    }
    return lines;
}

/// Every diagnostic that keeps the plan from being carried out.
inline std::vector<std::string> faultsOf(const MachinePlan& plan) {
    std::vector<std::string> faults;
    const auto add = [&](const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            if (finding.severity == Severity::error) {
                faults.push_back(finding.code + " " + finding.summary);
            }
        }
    };
    add(plan.policiesFindings);
    add(plan.diagnostics);
    for (const ControllerPlanning& controller : plan.controllers) {
        add(controller.diagnostics);
    }
    return faults;
}

} // namespace zolex::companion::test
