#include "policies/Policy.h"
#include "properties/Forecast.h"
#include "properties/Generators.h"
#include "properties/Intention.h"
#include "properties/Origin.h"
#include "properties/Property.h"
#include "properties/VirtualMachine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::properties {
namespace {

constexpr unsigned planFailed = 5;

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
                // As large as an array of one to three drives.
                for (int drives = 1; drives <= 3; ++drives) {
                    context.nearMb.push_back(controller.size(channel, id) * drives);
                }
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
        context.repeats = families().at(virtualServer.controllers[i].family).utility ==
                          std::string_view("MEGACLI");
        text += *policyTexts(context);
    }
    return text;
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
            if (machine_.controllers.controller(i)->captured() != nullptr) {
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
        const VirtualController& virtualController = virtualServer_.controllers[i];
        const Family& family = families().at(virtualController.family);
        const Forecast forecast(planned, family, virtualController);
        const Origin origin(policies_.at(i), planned, forecast);
        RC_ASSERT(origin.repeatsOnlyWhatIsListed());
        RC_ASSERT(origin.takesOnlyWhatIsFreeOrListed());
        if (const Cause cause = forecast.generatorCause(); cause != Cause::none) {
            checkComplaint(forecast, origin);
            byGenerator_ = true;
            return false;
        }
        Intention intention(planned, family.utility, expected_.controllers[i],
                            runCommands - steps_);
        intention.carryOut();
        steps_ += intention.steps();
        if (intention.refused()) {
            checkRefusal(forecast, intention, origin);
            return false;
        }
        countConfigured(family, forecast);
        if (steps_ == runCommands) {
            // Perhaps more would have followed.
            tally_.count("as many commands as are run");
            RC_ASSERT(intention.creations() <= forecast.steps().size());
            RC_ASSERT(!forecast.refused() || intention.creations() < forecast.steps().size());
            return true;
        }
        RC_ASSERT(!forecast.refused());
        RC_ASSERT(intention.creations() == forecast.steps().size());
        RC_ASSERT(layoutText(machine_.server.controllers[i]) == forecast.layout());
        return true;
    }

    /// The generator says why it makes no command lines, and the policy is the reason.
    void checkComplaint(const Forecast& forecast, const Origin& origin) {
        const std::string name(nameOf(forecast.generatorCause()));
        const std::string complaint(forecast.complaint());
        tally_.count("refused by the generator");
        tally_.count("generator: " + name);
        RC_ASSERT(machine_.platform.consoleFake.output.find(complaint) != std::string::npos);
        if (!origin.explains(forecast.generatorCause())) {
            RC_FAIL("No command lines, which no policy asked for: " + name);
        }
    }

    /// The machine refuses the very command that was to be refused, for such a cause, and the
    /// policy is the reason.
    void checkRefusal(const Forecast& forecast, const Intention& intention, const Origin& origin) {
        const std::string reason =
            intention.wordless() ? "no word for the level" : intention.refusal()->reason;
        const auto kind = intention.wordless() ? zolex_sim::RefusalKind::levelUnsupported
                                               : intention.refusal()->kind;
        if (!forecast.refused() || intention.creations() != forecast.steps().size()) {
            RC_FAIL("Refused, which no limit asks for: " + reason);
        }
        tally_.count("refused by the machine");
        const Forecast::Step& step = forecast.steps().back();
        bool told = false;
        for (const Cause cause : step.causes) {
            const std::string name(nameOf(cause));
            if (!origin.explains(cause, step)) {
                RC_FAIL("Refused, which no policy asked for: " + name + ". " + reason);
            }
            if (isKind(cause, kind)) {
                told = true;
                tally_.count("machine: " + name);
                if (cause == Cause::taken && step.drive == nullptr &&
                    origin.hasAutomaticHotspares()) {
                    tally_.count("machine: an automatic hot spare that an array lists");
                }
            }
        }
        if (!told) {
            RC_FAIL("Refused for another cause than the limit: " + reason);
        }
    }

    void countConfigured(const Family& family, const Forecast& forecast) {
        tally_.count("controllers configured");
        tally_.count(std::string("configured ") + family.utility);
        if (std::any_of(forecast.steps().begin(), forecast.steps().end(),
                        [](const Forecast::Step& step) { return step.shared; })) {
            tally_.count("configured with logical drives that share an array");
        }
        for (const std::string& deviation : forecast.deviations()) {
            tally_.count("configured, but " + deviation);
        }
        if (forecast.deviations().empty()) {
            tally_.count("configured just as planned");
        }
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
                   {"controllers configured", 33},
                   {"configured just as planned", 30},
                   {"refused by the machine", 3},
                   {"refused by the generator", 1},
                   {"configured MEGACLI", 10},
                   {"configured with logical drives that share an array", 0.5},
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

/// Deploys policies on a machine that is like this server. Ones that cannot be planned, or that no
/// command comes of, show nothing: then others are tried on another such machine.
std::unique_ptr<VirtualMachine> deployed(const VirtualServer& virtualServer, Tally& tally) {
    constexpr int tries = 6;
    std::unique_ptr<VirtualMachine> machine;
    for (int i = 0; i < tries; ++i) {
        machine = std::make_unique<VirtualMachine>(virtualServer);
        const unsigned result = machine->deploy(policiesFor(virtualServer, false));
        tally.count(result == success      ? "deployed"
                    : result == planFailed ? "not planned"
                                           : "refused");
        const auto& made = machine->server.controllers;
        if (std::any_of(made.begin(), made.end(), [](const zolex_sim::Controller& controller) {
                return !controller.logicalDrives.empty();
            })) {
            break;
        }
    }
    return machine;
}

TEST(DeployProperties, WhatIsDeployedAndCapturedIsDeployedTheSameAgain) {
    checkProperty(
        {{"compared", 80}, {"several controllers", 30}, {"several on an array of MEGACLI", 0.3}},
        [](Tally& tally) {
            const VirtualServer virtualServer = *virtualServers();
            const auto machine = deployed(virtualServer, tally);
            // By default the policy of one controller holds for the next of its model, too.
            machine->application.settings.captureParameters = "t,c";
            const std::string captured = machine->capturePolicies();
            if (captured.empty()) {
                tally.count("nothing configured");
                for (const zolex_sim::Controller& controller : machine->server.controllers) {
                    RC_ASSERT(controller.logicalDrives.empty());
                }
                return;
            }
            VirtualMachine another(virtualServer);
            const unsigned result = another.deploy(captured);
            RC_LOG() << captured << another.platform.consoleFake.output;
            RC_ASSERT(result == success);
            if (configuring(another).size() == runCommands) {
                tally.count("as many commands as are run"); // perhaps more would have followed
                return;
            }
            tally.count("compared");
            for (const zolex_sim::Controller& controller : machine->server.controllers) {
                if (controller.logicalDrives.size() > controller.arrays.size() &&
                    controller.identity.utility == "MEGACLI") {
                    tally.count("several on an array of MEGACLI");
                }
            }
            if (virtualServer.controllers.size() > 1) {
                tally.count("several controllers");
            }
            for (std::size_t i = 0; i < machine->server.controllers.size(); ++i) {
                const zolex_sim::Controller& first = machine->server.controllers[i];
                const zolex_sim::Controller& second = another.server.controllers[i];
                RC_ASSERT(layoutOf(second) == layoutOf(first));
                compareSizes(first, second);
            }
        });
}

} // namespace
} // namespace zolex::properties
