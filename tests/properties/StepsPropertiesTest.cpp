// Plans of zolexctl over random servers and policies, held against what zolex runs for the same
// policies: the lines are its own or told to be others, the utilities take them, and afterwards
// nothing is left to be done.

#include "companion/machine/Capture.h"
#include "companion/planning/Plan.h"
#include "model/Operations.h"
#include "properties/Generators.h"
#include "properties/Property.h"
#include "properties/SecondDriveAlone.h"
#include "properties/VirtualMachine.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {
namespace {

using Lines = std::vector<std::string>;

/// Policies for all controllers, each its own.
std::string anyPolicies(const VirtualServer& virtualServer) {
    VirtualMachine look(virtualServer);
    RC_ASSERT(look.capture(false) == success);
    std::string text;
    for (std::size_t i = 0; i < look.controllers.count(); ++i) {
        const RAIDController& controller = *look.controllers.controller(i);
        PolicyContext context;
        controller.forEachDrive([&](std::int32_t channel, std::int32_t id) {
            if (controller.size(channel, id) > 0) {
                context.positions.push_back(std::to_string(channel) + ":" + std::to_string(id));
            }
        });
        const Family& family = families().at(virtualServer.controllers[i].family);
        context.name = "Policy." + std::to_string(i + 1);
        context.appliesTo = "c:" + std::to_string(i + 1);
        context.drives = static_cast<int>(context.positions.size());
        context.levels = family.levels;
        const bool large = controller.type() == controller_type::arcconf7 ||
                           controller.type() == controller_type::arcconf11;
        context.stripes = large ? Lines{"64", "512", "1024"} : Lines{"64", "32"};
        context.mostArrays = 3;
        context.several = oneIn(4);
        context.repeats = family.utility == std::string_view("MEGACLI");
        text += *policyTexts(context);
    }
    return text;
}

companion::MachinePlan planOf(VirtualMachine& machine, const std::string& policies) {
    companion::CaptureRequest capture;
    capture.machineType = "8837";
    capture.serialNumber = "KQ12345";
    companion::PlanRequest request;
    request.policiesFile = "p.ini";
    request.policiesText = policies;
    return companion::planMachine(companion::captureMachine(machine.platform, capture), request);
}

bool isReading(const std::string& line) {
    constexpr std::string_view reads[] = {"GETCONFIG",   " DISPLAY",  "-pdList",
                                          "-adpallinfo", "-LdPdInfo", " /L "};
    return std::any_of(std::begin(reads), std::end(reads),
                       [&](std::string_view text) { return line.find(text) != std::string::npos; });
}

Lines changesOf(const VirtualMachine& machine) {
    Lines lines;
    for (const VirtualMachine::Command& command : machine.commands) {
        if (!isReading(command.line)) {
            lines.push_back(command.line);
        }
    }
    return lines;
}

/// Each line that only one of the two runs is among the named differences.
void expectNamed(const companion::MachinePlan& plan, const Lines& mine, const Lines& theirs) {
    const auto isNamed = [&](const std::string& line) {
        const Lines& differences = plan.oldCommand.differences;
        return std::any_of(differences.begin(), differences.end(), [&](const std::string& text) {
            return text.find(line) != std::string::npos;
        });
    };
    for (const std::string& text : plan.oldCommand.differences) {
        RC_LOG() << text << "\n";
    }
    for (const companion::ControllerPlanning& controller : plan.controllers) {
        RC_LOG() << "controller " << controller.controller.number << ": "
                 << companion::dispositionWord(controller.disposition) << " "
                 << companion::strategyWord(controller.strategy) << "\n";
    }
    for (const std::string& line : mine) {
        if (std::find(theirs.begin(), theirs.end(), line) == theirs.end() && !isNamed(line)) {
            RC_LOG() << "only in the plan, and not said: " << line;
            RC_FAIL("a difference that is not named");
        }
    }
    for (const std::string& line : theirs) {
        if (std::find(mine.begin(), mine.end(), line) == mine.end() && !isNamed(line)) {
            RC_LOG() << "only run by zolex, and not said: " << line;
            RC_FAIL("a difference that is not named");
        }
    }
}

/// Runs the steps up to the first that is not accepted; empty, or that one with its answer.
std::string carryOut(VirtualMachine& machine, const companion::MachinePlan& plan) {
    for (const companion::PlanStep& step : plan.steps()) {
        std::string line;
        for (const std::string& word : step.argv) {
            line += (line.empty() ? "" : " ") + word;
        }
        const ChildResult result = machine.platform.respond(line);
        const auto& accepted = step.acceptedExitCodes;
        if (std::find(accepted.begin(), accepted.end(),
                      static_cast<std::int32_t>(result.exitCode)) == accepted.end()) {
            return step.command + "\n" + result.output;
        }
    }
    return {};
}

/// Nothing is left to be done on any controller.
void expectNothingLeft(VirtualMachine& machine, const std::string& policies) {
    const companion::MachinePlan again = planOf(machine, policies);
    for (const companion::ControllerPlanning& controller : again.controllers) {
        for (const companion::Finding& finding : controller.diagnostics) {
            RC_LOG() << finding.code << " " << finding.summary << "\n";
        }
        for (const companion::Difference& difference : controller.comparison.differences) {
            RC_LOG() << difference.attribute << " " << difference.location << " "
                     << difference.logicalDrive << ": wanted " << difference.wanted << ", found "
                     << difference.found << "\n";
        }
        RC_ASSERT(controller.strategy == companion::Strategy::none);
        RC_ASSERT(controller.disposition == companion::Disposition::already ||
                  controller.disposition == companion::Disposition::skipped);
    }
}

void countRefusals(Tally& tally, const companion::MachinePlan& plan) {
    const auto count = [&](const std::vector<companion::Finding>& findings) {
        for (const companion::Finding& finding : findings) {
            if (finding.severity == companion::Severity::error) {
                tally.count("refused: " + finding.code);
            }
        }
    };
    count(plan.policiesFindings);
    count(plan.diagnostics);
    for (const companion::ControllerPlanning& controller : plan.controllers) {
        count(controller.diagnostics);
    }
}

/// One plan for a server as it stands, held against zolex on another one that is alike.
void holdAgainstZolex(Tally& tally, VirtualMachine& machine, VirtualMachine& other,
                      const std::string& policies) {
    const companion::MachinePlan plan = planOf(machine, policies);
    if (!plan.isApplicable()) {
        tally.count("refused");
        countRefusals(tally, plan);
        return;
    }
    Lines theirs;
    const Lines& wouldRun = plan.oldCommand.wouldRun;
    const bool restores =
        std::any_of(wouldRun.begin(), wouldRun.end(),
                    [](const std::string& line) { return line.find(" /r ") != std::string::npos; });
    if (restores) {
        tally.count("zolex restores");
        other.commands.clear();
        other.application.settings.noPrompt = true;
        RC_ASSERT(other.application.restoreDefaults(other.controllers, -1).code ==
                  ExitCode::success);
        theirs = changesOf(other);
    }
    const unsigned code = other.deploy(policies);
    const Lines deployed = changesOf(other);
    theirs.insert(theirs.end(), deployed.begin(), deployed.end());
    Lines mine;
    for (const companion::PlanStep& step : plan.steps()) {
        mine.push_back(step.command);
        tally.count("step: " + step.action);
    }
    for (const companion::ControllerPlanning& controller : plan.controllers) {
        tally.count("strategy " + std::string(companion::strategyWord(controller.strategy)));
    }
    const std::string refused = carryOut(machine, plan);
    RC_LOG() << refused;
    if (!refused.empty()) {
        // A rehearsal would have told it. zolex met the same, or has no line for it.
        const Lines& differences = plan.oldCommand.differences;
        RC_ASSERT(code == commandFailed ||
                  std::any_of(differences.begin(), differences.end(), [](const std::string& text) {
                      return text.find("zolex makes the first logical drive of array") !=
                                 std::string::npos ||
                             text.find("zolex leaves out command") != std::string::npos;
                  }));
        tally.count("refused by the utility");
        return;
    }
    if (code == success && !wouldRun.empty()) {
        // Lines of zolex come array by array for all controllers, as those of the plan.
        tally.count(mine == theirs ? "the lines of zolex" : "other lines");
        const bool allPlanned =
            std::all_of(plan.controllers.begin(), plan.controllers.end(), [](const auto& each) {
                return each.disposition == companion::Disposition::planned;
            });
        if (mine != theirs && (!restores || allPlanned)) {
            tally.count("differences named");
            expectNamed(plan, mine, theirs);
        }
    }
    expectNothingLeft(machine, policies);
    tally.count("done");
}

TEST(StepsProperties, OnABlankServerPlansAreWhatZolexRuns) {
    checkProperty(
        {{"the lines of zolex", 30}, {"done", 40}, {"other lines", 0.2}}, [](Tally& tally) {
            const VirtualServer virtualServer = withoutSecondDriveAlone(*virtualServers());
            const std::string policies = anyPolicies(virtualServer);
            RC_LOG() << policies;
            VirtualMachine machine(virtualServer);
            VirtualMachine other(virtualServer);
            holdAgainstZolex(tally, machine, other, policies);
        });
}

TEST(StepsProperties, BehindZolexNothingIsLeftToBeDone) {
    checkProperty({{"nothing left", 30}}, [](Tally& tally) {
        const VirtualServer virtualServer = withoutSecondDriveAlone(*virtualServers());
        const std::string policies = anyPolicies(virtualServer);
        RC_LOG() << policies;
        VirtualMachine machine(virtualServer);
        const companion::MachinePlan before = planOf(machine, policies);
        if (machine.deploy(policies) != success) {
            tally.count("refused by zolex or the utility");
            return;
        }
        if (!before.isApplicable()) {
            tally.count("refused by the plan");
            countRefusals(tally, before);
            return;
        }
        const Lines& differences = before.oldCommand.differences;
        if (std::any_of(differences.begin(), differences.end(), [](const std::string& text) {
                return text.find("zolex does not run") != std::string::npos ||
                       text.find("zolex leaves out") != std::string::npos ||
                       text.find("instead of") != std::string::npos;
            })) {
            tally.count("zolex does something else");
            return;
        }
        expectNothingLeft(machine, policies);
        tally.count("nothing left");
    });
}

TEST(StepsProperties, OnAConfiguredServerWhatMatchesStaysAndTheEndIsTheSame) {
    checkProperty(
        {{"done", 15}, {"step: delete-logical-drive", 1}, {"step: clear", 5}}, [](Tally& tally) {
            const VirtualServer virtualServer = withoutSecondDriveAlone(*virtualServers());
            const std::string first = anyPolicies(virtualServer);
            const std::string policies = oneIn(3) ? first : anyPolicies(virtualServer);
            RC_LOG() << first << "\n" << policies;
            VirtualMachine machine(virtualServer);
            VirtualMachine other(virtualServer);
            machine.deploy(first);
            other.deploy(first);
            if (oneIn(2)) { // one thing less
                for (zolex_sim::Controller& controller : machine.server.controllers) {
                    if (controller.logicalDrives.size() > 1) {
                        static_cast<void>(
                            zolex_sim::removeLogicalDrives(controller, {controller.numberOf(0)}));
                    }
                }
                other.server = machine.server;
            }
            holdAgainstZolex(tally, machine, other, policies);
        });
}

} // namespace
} // namespace zolex::properties
