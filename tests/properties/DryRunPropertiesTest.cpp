// A plan is a promise: what it lists is run and taken, and what stands then is what was wanted.
// Else it was refused beforehand, with a reason.

#include "companion/machine/Capture.h"
#include "companion/planning/Diff.h"
#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/Rehearse.h"
#include "properties/Generators.h"
#include "properties/Property.h"
#include "properties/SecondDriveAlone.h"
#include "properties/VirtualMachine.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {
namespace {

using companion::ControllerDiff;
using companion::ControllerPlanning;
using companion::Disposition;
using companion::Finding;
using companion::MachineDiff;
using companion::MachinePlan;
using companion::Snapshot;
using companion::test::PlannedServer;

/// Servers whose listings tell the truth. All utilities but MEGACLI call a drive free that carries
/// a layout of another controller, and no plan can know of it.
VirtualServer toldServer() {
    VirtualServer server = withoutSecondDriveAlone(*virtualServers());
    for (VirtualController& controller : server.controllers) {
        const bool isTold = families().at(controller.family).utility == std::string_view("MEGACLI");
        for (VirtualDrive& drive : controller.drives) {
            drive.status = !isTold && drive.status == "foreign" ? "good" : drive.status;
        }
    }
    return server;
}

/// One policy for each controller. Some ask for what cannot be.
std::string policiesFor(const VirtualServer& virtualServer, const Snapshot& snapshot, bool wild) {
    std::string text;
    for (const companion::ControllerSnapshot& details : snapshot.details) {
        PolicyContext context;
        for (const companion::MachineDrive& drive : details.drives) {
            if (drive.policyPosition) {
                context.positions.push_back(std::to_string(drive.policyPosition->channel) + ":" +
                                            std::to_string(drive.policyPosition->id));
            }
        }
        const Family& family = families().at(virtualServer.controllers[details.index].family);
        const std::string number = std::to_string(details.number);
        context.name = "Policy." + number;
        context.appliesTo = "c:" + number;
        context.drives = static_cast<int>(context.positions.size());
        context.levels = family.levels;
        context.stripes = {"64", "32"};
        context.mostArrays = 3;
        context.wild = wild;
        context.several = wild || family.utility == std::string_view("QTCSEND");
        context.repeats = family.utility == std::string_view("MEGACLI");
        text += *policyTexts(context);
    }
    return text;
}

/// A spare takes the place of a member of its kind, which becomes the spare. True when there are
/// such drives.
bool stepIn(zolex_sim::Controller& controller) {
    using zolex_sim::DriveStatus;
    for (zolex_sim::Drive& spare : controller.drives) {
        for (zolex_sim::Drive& member : controller.drives) {
            if (spare.status != DriveStatus::hotspare || member.status != DriveStatus::online ||
                member.sizeMb != spare.sizeMb || member.interface != spare.interface ||
                member.location.enclosure != spare.location.enclosure) {
                continue;
            }
            for (zolex_sim::Array& array : controller.arrays) {
                for (std::vector<zolex_sim::DriveLocation>& span : array.spans) {
                    std::replace(span.begin(), span.end(), member.location, spare.location);
                }
            }
            std::swap(spare.status, member.status);
            return true;
        }
    }
    return false;
}

/// What may befall a server that has a layout.
void spoil(zolex_sim::Server& server, Tally& tally) {
    using zolex_sim::DriveStatus;
    for (zolex_sim::Controller& controller : server.controllers) {
        for (zolex_sim::Drive& drive : controller.drives) {
            if (drive.status == DriveStatus::online && oneIn(12)) {
                drive.status = oneIn(2) ? DriveStatus::failed : DriveStatus::rebuild;
                tally.count("a member that failed or is rebuilt");
            }
        }
        if (oneIn(2) && stepIn(controller)) {
            tally.count("a spare that stepped in");
        }
        for (zolex_sim::LogicalDrive& drive : controller.logicalDrives) {
            if (oneIn(8)) {
                drive.writePolicy = drive.writePolicy == zolex_sim::WritePolicy::writeBack
                                        ? zolex_sim::WritePolicy::writeThrough
                                        : zolex_sim::WritePolicy::writeBack;
                tally.count("a write cache that somebody changed");
            }
        }
    }
}

std::string diffText(const MachineDiff& diff) {
    std::string text;
    for (const ControllerDiff& controller : diff.controllers) {
        text += "controller " + std::to_string(controller.number) + ": " +
                std::string(companion::diffResultWord(controller.result)) + " " +
                controller.because + "\n";
        for (const companion::Difference& each : controller.comparison.differences) {
            text += "  " + each.attribute + " " + each.location + " " + each.logicalDrive + ": " +
                    each.wanted + " | " + each.found + "\n";
        }
    }
    return text;
}

bool isAsWanted(const MachineDiff& diff) {
    return std::all_of(diff.controllers.begin(), diff.controllers.end(),
                       [](const ControllerDiff& controller) {
                           return controller.result == ControllerDiff::Result::same ||
                                  controller.result == ControllerDiff::Result::equivalent ||
                                  controller.result == ControllerDiff::Result::skipped;
                       });
}

/// A plan that is refused says why, in a code that can be explained, and runs nothing.
void checkRefusal(const MachinePlan& plan, Tally& tally) {
    RC_ASSERT(plan.steps().empty());
    RC_ASSERT(plan.losses().empty());
    std::vector<const Finding*> errors;
    const auto add = [&](const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            if (finding.severity == companion::Severity::error) {
                errors.push_back(&finding);
            }
        }
    };
    add(plan.policiesFindings);
    add(plan.diagnostics);
    for (const ControllerPlanning& controller : plan.controllers) {
        add(controller.diagnostics);
    }
    RC_ASSERT(!errors.empty());
    for (const Finding* const error : errors) {
        RC_ASSERT(!error->summary.empty());
        RC_ASSERT(!error->help.empty());
        tally.count("refused: " + error->code);
    }
}

void countPlan(const MachinePlan& plan, Tally& tally) {
    for (const ControllerPlanning& controller : plan.controllers) {
        const std::string utility = controller.controller.utility;
        tally.count("controller: " + std::string(dispositionWord(controller.disposition)));
        if (controller.disposition == Disposition::already) {
            tally.count("already: " + std::string(samenessWord(controller.comparison.result)));
        }
        if (controller.disposition == Disposition::planned) {
            tally.count("strategy: " + std::string(strategyWord(controller.strategy)));
            tally.count("planned: " + utility);
            const bool staysInPart = controller.strategy == companion::Strategy::rebuild &&
                                     std::any_of(controller.steps.begin(), controller.steps.end(),
                                                 [](const companion::PlanStep& step) {
                                                     return step.action == "delete-logical-drive" ||
                                                            step.action == "remove-spare";
                                                 });
            if (staysInPart) {
                tally.count("removes no more than it must");
            }
        }
    }
}

/// Plans, rehearses, runs and looks again. True when the plan was carried out.
bool checkPlan(PlannedServer& server, const std::string& policies, Tally& tally) {
    RC_LOG() << policies;
    MachinePlan plan = server.plan(policies);
    if (!plan.isApplicable()) {
        tally.count("refused beforehand");
        checkRefusal(plan, tally);
        return false;
    }
    companion::rehearse(server.snapshot(), plan);
    if (!plan.isApplicable()) {
        tally.count("refused by the rehearsal");
        checkRefusal(plan, tally);
        return false;
    }
    countPlan(plan, tally);
    const bool isRehearsed = plan.rehearsal.done && plan.rehearsal.notDoneBecause.empty();
    tally.count(isRehearsed ? "rehearsed" : "not rehearsed");
    for (const std::string& line : plan.rehearsal.notDoneBecause) {
        RC_LOG() << line;
    }
    const std::vector<std::string> refused = server.carryOut(plan);
    for (const std::string& line : refused) {
        RC_LOG() << line;
    }
    RC_ASSERT(refused.empty());
    const MachineDiff byPlan = diffOf(server.snapshot(), plan);
    RC_LOG() << "by the plan:\n" << diffText(byPlan);
    RC_ASSERT(isAsWanted(byPlan));
    const MachinePlan again = server.plan(policies);
    const MachineDiff diff = diffOf(again);
    RC_LOG() << "by the policies:\n" << diffText(diff);
    RC_ASSERT(isAsWanted(diff));
    RC_ASSERT(again.isApplicable());
    RC_ASSERT(again.steps().empty());
    tally.count("carried out");
    return true;
}

TEST(DryRunProperties, WhatIsPlannedIsTakenAndStandsThen) {
    const Shares shares = {{"carried out", 30},
                           {"a second plan carried out", 20},
                           {"refused beforehand", 30},
                           {"strategy: rebuild", 5},
                           {"removes no more than it must", 1},
                           {"already: equivalent", 0.5}};
    checkProperty(shares, [](Tally& tally) {
        const VirtualServer virtualServer = toldServer();
        PlannedServer server(virtualServer.definition());
        const bool wild = oneIn(4);
        const std::string first = policiesFor(virtualServer, server.snapshot(), wild);
        if (!checkPlan(server, first, tally)) {
            return;
        }
        // The layout that stands now is in the way of the next, or a part of it.
        if (oneIn(3)) {
            spoil(server.platform.server, tally);
        }
        const std::string second =
            oneIn(2) ? first : policiesFor(virtualServer, server.snapshot(), wild);
        tally.count("a second plan");
        if (checkPlan(server, second, tally)) {
            tally.count("a second plan carried out");
        }
    });
}

/// What zolex has made stands as the same policies want it, whatever the server.
TEST(DryRunProperties, WhatZolexMadeIsAsPlanned) {
    checkProperty({{"made by zolex", 20}}, [=](Tally& tally) {
        const VirtualServer virtualServer = toldServer();
        PlannedServer server(virtualServer.definition());
        const std::string policies = policiesFor(virtualServer, server.snapshot(), false);
        RC_LOG() << policies;
        const MachinePlan before = server.plan(policies);
        if (!before.isApplicable()) {
            tally.count("refused beforehand");
            return;
        }
        if (server.runZolex(policies, {}) != 0 || server.changes().size() >= runCommands) {
            tally.count("not made by zolex");
            return;
        }
        const MachineDiff diff = diffOf(server.plan(policies));
        RC_LOG() << diffText(diff);
        RC_ASSERT(isAsWanted(diff));
        tally.count("made by zolex");
        for (const ControllerPlanning& controller : before.controllers) {
            tally.count("by " + controller.controller.utility);
        }
    });
}

} // namespace
} // namespace zolex::properties
