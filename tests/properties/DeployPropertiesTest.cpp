#include "policies/Policy.h"
#include "properties/Generators.h"
#include "properties/Intention.h"
#include "properties/Property.h"
#include "properties/VirtualMachine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zolex::properties {
namespace {

constexpr std::size_t runCommands = 16; ///< of one deploy run
constexpr unsigned success = 0;
constexpr unsigned planFailed = 5;
constexpr unsigned commandFailed = 11;

/// One policy for each controller, for the drives that a capture finds on it.
std::string policiesFor(const VirtualServer& virtualServer, bool wild) {
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
        const std::string number = std::to_string(i + 1);
        context.name = (oneIn(8) ? "Policy.AUTO-" : "Policy.") + number;
        context.appliesTo = oneOf<std::string>(
            {"c:" + number, "m:8837,c:" + number,
             "s:kq12345,c:" + number + ",o:" + std::to_string(controller.scanOrder()),
             "c:" + number + ",d:" + std::to_string(controller.numberOfDrives())});
        if (controller.numberOfDrives() == 0) {
            context.appliesTo = "c:" + number;
        }
        context.drives = static_cast<int>(context.positions.size());
        context.levels = families().at(virtualServer.controllers[i].family).levels;
        if (!wild) {
            const bool large = controller.type() == controller_type::arcconf7 ||
                               controller.type() == controller_type::arcconf11;
            context.stripes = large ? std::vector<std::string>{"64", "512", "1024"}
                                    : std::vector<std::string>{"64", "32"};
        }
        context.mostArrays = 3;
        context.wild = wild;
        context.several = wild;
        text += *policyTexts(context);
    }
    return text;
}

/// The times that the plan names each drive; for custom lists it can be more than once.
bool namesADriveTwice(const RAIDConfiguration& plan) {
    std::set<std::pair<int, int>> named;
    bool twice = false;
    for (const Hotspare& hotspare : plan.hotspares()) {
        twice = !named.insert({hotspare.channelNumber, hotspare.id}).second || twice;
    }
    for (const RaidArray& array : plan.arrays()) {
        for (const DrivePosition& drive : array.drives()) {
            twice = !named.insert({drive.channel, drive.id}).second || twice;
        }
    }
    return twice;
}

/// What is known of a plan that the machine refuses.
struct Refused {
    const Policy& policy;
    const RAIDConfiguration& plan;
    const Family& family;
    const zolex_sim::Controller& before;
    const Intention& intention;
    bool customDrives; ///< logical drives that the policy lists

    [[nodiscard]] std::size_t members() const {
        const LogicalDrive* drive = intention.refusedDrive();
        return drive == nullptr
                   ? 0
                   : plan.arrays().at(static_cast<std::size_t>(drive->arrayIndex)).drives().size();
    }
};

// A level that `Logical_Defaults` names is planned whether or not the class has it; a listed
// logical drive is not. It is refused by the utility that has no word for it or the machine that
// cannot.
bool isLevelOfDefaults(const Refused& refused) {
    return !refused.customDrives && refused.policy.logicalDefaults &&
           refused.intention.refusedDrive() != nullptr &&
           refused.policy.logicalDefaults->raidLevel == refused.intention.refusedDrive()->raidLevel;
}

// Lists are planned as they are written: a drive can be named twice, or be a hot spare already. And
// a drive that the listing shows need not be free.
bool isDriveThatIsNotFree(const Refused& refused) {
    const bool listed = refused.policy.customArrays || refused.policy.hotspares;
    const bool allGood = std::all_of(
        refused.before.drives.begin(), refused.before.drives.end(),
        [](const zolex_sim::Drive& drive) { return drive.status == zolex_sim::DriveStatus::good; });
    return (listed && namesADriveTwice(refused.plan)) || !allGood;
}

// RAID 10 takes its drives in pairs, which no rule of planning asks for.
bool isOdd10(const Refused& refused) {
    const LogicalDrive* drive = refused.intention.refusedDrive();
    return drive != nullptr && drive->raidLevel == raid_level::raid10 && refused.members() % 2 != 0;
}

// The machine takes a number of spans and of drives in a span. HYPERWIN takes the free drives, not
// the plan's.
bool isNumberOfDrives(const Refused& refused) {
    const std::size_t members = refused.members();
    const LogicalDrive* drive = refused.intention.refusedDrive();
    const zolex_sim::ControllerIdentity& machine = refused.before.identity;
    return isOdd10(refused) ||
           (drive != nullptr && drive->raidLevel == raid_level::raid10 &&
            members / 2 > static_cast<std::size_t>(machine.maxSpans)) ||
           members > static_cast<std::size_t>(machine.maxDrivesPerSpan) ||
           machine.utility == "HYPERWIN";
}

// A number of MB is planned as it is written, and so are percentages that come to more than 100. An
// odd drive that MEGACLI leaves out of RAID 10 counts in a percentage all the same.
bool isSizeOfThePolicy(const Refused& refused) {
    const Policy& policy = refused.policy;
    if (isOdd10(refused) && refused.before.identity.utility == "MEGACLI") {
        return true;
    }
    if (!refused.customDrives) {
        return policy.logicalDefaults && policy.logicalDefaults->sizeMb > 0;
    }
    const std::int32_t array = refused.intention.refusedDrive()->arrayIndex;
    int onArray = 0;
    bool numbers = false;
    for (const LogicalSpecification& drive : policy.logicalDrives) {
        if (drive.arrayIndex == array) {
            ++onArray;
            numbers = numbers || drive.sizeMb > 0;
        }
    }
    return numbers || onArray > 1;
}

// The machine takes fewer logical drives or hot spares than the record.
bool isNumberOfTheMachine(const Refused& refused) {
    const zolex_sim::ControllerIdentity& machine = refused.before.identity;
    return refused.plan.logicalDrives().size() >
               static_cast<std::size_t>(machine.maxLogicalDrives) ||
           refused.plan.hotspares().size() > static_cast<std::size_t>(machine.maxHotSpares) ||
           // 5E and 5EE take an array to themselves.
           refused.plan.logicalDrives().size() > refused.plan.arrays().size();
}

/// Whether the documents name the case. Everything else must be accepted.
bool isDocumented(const Refused& refused) {
    if (refused.intention.wordless()) {
        return isLevelOfDefaults(refused);
    }
    switch (refused.intention.refusal()->kind) {
    case zolex_sim::RefusalKind::levelUnsupported:
        return isLevelOfDefaults(refused);
    case zolex_sim::RefusalKind::driveNamedTwice:
    case zolex_sim::RefusalKind::driveNotFree:
        return isDriveThatIsNotFree(refused);
    case zolex_sim::RefusalKind::wrongDriveCount:
        return isNumberOfDrives(refused);
    case zolex_sim::RefusalKind::badSize:
        return isSizeOfThePolicy(refused);
    case zolex_sim::RefusalKind::tooMany:
        return isNumberOfTheMachine(refused);
    case zolex_sim::RefusalKind::driveNotFound:
    case zolex_sim::RefusalKind::badStripe:
        break;
    }
    return false;
}

/// Number of the commands of a deploy run that are no captures.
std::vector<VirtualMachine::Command> configuring(const VirtualMachine& machine) {
    std::vector<VirtualMachine::Command> commands;
    for (const VirtualMachine::Command& command : machine.commands) {
        const auto holds = [&command](const char* text) {
            return command.line.find(text) != std::string::npos;
        };
        if (!holds("GETCONFIG") && !holds(" DISPLAY") && !holds("-pdList") &&
            !holds("-adpallinfo") && !holds("-LdPdInfo") && !holds(" /L ")) {
            commands.push_back(command);
        }
    }
    return commands;
}

/// Holds what a deploy run did to the machine against what the plans mean.
class Comparison {
  public:
    Comparison(const VirtualServer& virtualServer, VirtualMachine& machine,
               zolex_sim::Server before, const std::vector<Policy>& policies, Tally& tally)
        : virtualServer_(virtualServer), machine_(machine), expected_(std::move(before)),
          policies_(policies), tally_(tally) {}

    void check(unsigned result) {
        bool stopped = false;
        for (std::size_t i = 0; i < machine_.controllers.count() && !stopped; ++i) {
            if (machine_.controllers.controller(i)->configuration() != nullptr) {
                stopped = !carryOut(i);
            }
        }
        RC_ASSERT(result == (stopped ? commandFailed : success));
        const std::vector<VirtualMachine::Command> commands = configuring(machine_);
        RC_ASSERT(commands.size() == steps_);
        for (std::size_t i = 0; i < commands.size(); ++i) {
            const bool last = i + 1 == commands.size();
            RC_ASSERT((commands[i].exitCode == 0) == !(last && stopped && !byGenerator_));
        }
        for (std::size_t i = 0; i < expected_.controllers.size(); ++i) {
            RC_ASSERT(describe(machine_.server.controllers[i]) ==
                      describe(expected_.controllers[i]));
        }
    }

  private:
    /// False when the run ends with this controller.
    bool carryOut(std::size_t i) {
        const RAIDController& planned = *machine_.controllers.controller(i);
        const Family& family = families().at(virtualServer_.controllers[i].family);
        const zolex_sim::Controller before = expected_.controllers[i];
        Intention intention(planned, family.utility, expected_.controllers[i],
                            runCommands - steps_);
        if (!intention.generatorRefusal().empty()) {
            tally_.count("refused by the generator");
            byGenerator_ = true;
            return false;
        }
        intention.carryOut();
        steps_ += intention.steps();
        if (intention.leftOutMember()) {
            tally_.count("a member of RAID 10 left out");
        }
        if (steps_ == runCommands) {
            tally_.count("as many commands as are run");
        }
        if (!intention.refused()) {
            tally_.count("controllers configured");
            tally_.count(std::string("configured ") + family.utility);
            return true;
        }
        tally_.count("refused by the machine");
        const Policy& policy = policies_.at(i);
        const Refused refused{policy,    *planned.configuration(),  family, before,
                              intention, policy.customLogicalDrives};
        if (!isDocumented(refused)) {
            RC_FAIL("A refusal that no document names: " +
                    (intention.wordless() ? std::string("no word for the level")
                                          : intention.refusal()->reason));
        }
        return false;
    }

    const VirtualServer& virtualServer_;
    VirtualMachine& machine_;
    zolex_sim::Server expected_;
    const std::vector<Policy>& policies_;
    Tally& tally_;
    std::size_t steps_ = 0;
    bool byGenerator_ = false;
};

TEST(DeployProperties, TheVirtualServerTakesEveryCommandOfAPlanAndBecomesThePlan) {
    checkProperty({{"deployed", 40},
                   {"controllers configured", 40},
                   {"refused by the machine", 3},
                   {"configured MEGACLI", 10},
                   {"configured ARCCONF", 8},
                   {"configured HRCONF", 6},
                   {"configured QTCSEND", 2.5},
                   {"configured CFGGEN", 2},
                   {"configured CFGGEN1.02.02", 1},
                   {"configured HYPERWIN", 1}},
                  [](Tally& tally) {
                      const VirtualServer virtualServer = *virtualServers();
                      const bool wild = oneIn(3);
                      tally.count(wild ? "wild policies" : "orderly policies");
                      const std::string text = policiesFor(virtualServer, wild);
                      VirtualMachine machine(virtualServer);
                      const zolex_sim::Server before = machine.server;
                      const unsigned result = machine.deploy(text);
                      RC_LOG() << machine.platform.consoleFake.output;
                      if (result == planFailed) {
                          tally.count("not planned");
                          RC_ASSERT(configuring(machine).empty());
                          return;
                      }
                      tally.count("deployed");
                      const std::vector<Policy> policies = parsePolicies(text);
                      Comparison(virtualServer, machine, before, policies, tally).check(result);
                  });
}

/// What a capture and the deployment of its policies keep with every utility: arrays with their
/// members, RAID levels, and the status of each drive.
std::string layoutOf(const zolex_sim::Controller& controller) {
    zolex_sim::Controller layout = controller;
    for (zolex_sim::LogicalDrive& drive : layout.logicalDrives) {
        zolex_sim::LogicalDrive kept;
        kept.array = drive.array;
        kept.level = drive.level;
        drive = kept;
    }
    return describe(layout);
}

/// Sizes come back with these utilities; with the others the logical drive gets its whole array.
/// Listings round to a thousandth of a TB, and what is within 139 MB of the rest takes the rest.
void compareSizes(const zolex_sim::Controller& first, const zolex_sim::Controller& second) {
    const std::string& utility = first.identity.utility;
    if (utility == "HRCONF" || utility == "CFGGEN1.02.02" || utility == "HYPERWIN") {
        return;
    }
    for (std::size_t i = 0; i < first.logicalDrives.size(); ++i) {
        const std::int64_t size = first.logicalDrives[i].sizeMb;
        RC_ASSERT(std::abs(size - second.logicalDrives.at(i).sizeMb) <= 140 + size / 1000);
    }
}

TEST(DeployProperties, WhatIsDeployedAndCapturedIsDeployedTheSameAgain) {
    checkProperty({{"captured", 20}, {"several controllers", 5}}, [](Tally& tally) {
        const VirtualServer virtualServer = *virtualServers();
        VirtualMachine machine(virtualServer);
        if (machine.deploy(policiesFor(virtualServer, false)) != success ||
            configuring(machine).size() == runCommands) {
            tally.count("not deployed");
            return;
        }
        // By default the policy of one controller holds for the next of its model, too.
        machine.application.settings.captureParameters = "t,c";
        const std::string captured = machine.capturePolicies();
        if (captured.empty()) {
            tally.count("nothing configured");
            return;
        }
        VirtualMachine another(virtualServer);
        const unsigned result = another.deploy(captured);
        RC_LOG() << captured << another.platform.consoleFake.output;
        RC_ASSERT(result == success);
        tally.count("captured");
        if (virtualServer.controllers.size() > 1) {
            tally.count("several controllers");
        }
        for (std::size_t i = 0; i < machine.server.controllers.size(); ++i) {
            const zolex_sim::Controller& first = machine.server.controllers[i];
            const zolex_sim::Controller& second = another.server.controllers[i];
            RC_ASSERT(layoutOf(second) == layoutOf(first));
            compareSizes(first, second);
        }
    });
}

} // namespace
} // namespace zolex::properties
