#pragma once

#include "companion/families/Family.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Utilities.h"
#include "companion/planning/Plan.h"
#include "companion/support/SimulatedPlatform.h"

#include <string>
#include <string_view>

namespace zolex::companion::test {

/// A virtual server whose controllers of today are asked, too.
class StorcliServer {
  public:
    /// Of a sample, or of a definition (a text that begins with "{").
    explicit StorcliServer(std::string_view sample) : platform(sample) {
        utilities_.programs["STORCLI"] = "/opt/storcli64";
    }

    /// One controller, from further fields of it and a list of its drives.
    static std::string definition(const std::string& fields, const std::string& drives) {
        return R"({"machineType": "7X06", "serialNumber": "KQ1", "controllers": [{
            "utility": "STORCLI", "pci": {"bus": 193})" +
               fields + R"(, "drives": [)" + drives + "]}]}";
    }

    [[nodiscard]] CaptureRequest request() const {
        CaptureRequest request;
        request.machineType = "7X06";
        request.serialNumber = "KQ1";
        request.asksFamilies = true;
        request.utilities = &utilities_;
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

    /// What a step came to, as its family judges it; empty: done.
    std::string run(const std::string& line) {
        const ChildResult result = platform.play(line);
        const Family* const family = findFamily(line);
        const FamilyVerdict verdict = family == nullptr
                                          ? FamilyVerdict{false, "no family", {}, {}}
                                          : family->judge(line, result.exitCode, result.output);
        if (!verdict.isDone && !verdict.instead.empty()) {
            return run(verdict.instead);
        }
        return verdict.isDone ? "" : line + ": " + verdict.why;
    }

    SimulatedPlatform platform;

  private:
    Utilities utilities_;
};

} // namespace zolex::companion::test
