#include "companion/rewriting/CapturedPolicies.h"
#include "properties/Generators.h"
#include "properties/Intention.h"
#include "properties/Property.h"
#include "properties/VirtualMachine.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {
namespace {

/// What a capture of the machine gives, without a second reading of the listings.
companion::Snapshot snapshotOf(VirtualMachine& machine) {
    RC_ASSERT(machine.capture(true) == success);
    companion::Snapshot snapshot;
    snapshot.machine.machineType = "8837";
    snapshot.machine.serialNumber = "KQ12345";
    snapshot.controllers = machine.controllers;
    for (std::size_t i = 0; i < machine.controllers.count(); ++i) {
        const RAIDController& controller = *machine.controllers.controller(i);
        companion::ControllerSnapshot details;
        details.number = static_cast<std::int32_t>(i + 1);
        details.index = i;
        details.model =
            ControllerCatalogue::getControllerName(controller.type(), controller.subtype()).c_str();
        snapshot.details.push_back(std::move(details));
    }
    return snapshot;
}

/// Policies for all controllers that leave much to the defaults, but each controller its own.
std::string anyPolicies(const VirtualServer& virtualServer, VirtualMachine& look) {
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
        context.stripes = large ? std::vector<std::string>{"64", "512", "1024"}
                                : std::vector<std::string>{"64", "32"};
        context.mostArrays = 3;
        context.repeats = family.utility == std::string_view("MEGACLI");
        text += *policyTexts(context);
    }
    return text;
}

/// The first of some machines with a layout, on which every command was taken and none left out;
/// null when there is none.
std::unique_ptr<VirtualMachine> configured(const VirtualServer& virtualServer) {
    constexpr int tries = 6;
    for (int i = 0; i < tries; ++i) {
        VirtualMachine look(virtualServer);
        auto machine = std::make_unique<VirtualMachine>(virtualServer);
        machine->deploy(anyPolicies(virtualServer, look));
        const auto& made = machine->server.controllers;
        if (std::any_of(made.begin(), made.end(), [](const zolex_sim::Controller& controller) {
                return !controller.logicalDrives.empty();
            })) {
            return machine;
        }
    }
    return nullptr;
}

bool saysSize(std::string_view utility) {
    return utility != "HRCONF" && utility != "CFGGEN1.02.02" && utility != "HYPERWIN";
}

void compare(const zolex_sim::Controller& first, const zolex_sim::Controller& second) {
    RC_ASSERT(layoutOf(second) == layoutOf(first));
    RC_ASSERT(second.logicalDrives.size() == first.logicalDrives.size());
    for (std::size_t i = 0; i < first.logicalDrives.size(); ++i) {
        if (saysSize(first.identity.utility)) {
            // A listing rounds to a thousandth of a TB, and 139 MB are not worth a size.
            const std::int64_t size = first.logicalDrives[i].sizeMb;
            RC_ASSERT(std::abs(size - second.logicalDrives[i].sizeMb) <= 140 + size / 1000);
        }
    }
}

std::size_t configuringCommands(const VirtualMachine& machine) {
    return static_cast<std::size_t>(std::count_if(
        machine.commands.begin(), machine.commands.end(), [](const VirtualMachine::Command& each) {
            constexpr std::string_view reads[] = {"GETCONFIG",   " DISPLAY",  "-pdList",
                                                  "-adpallinfo", "-LdPdInfo", " /L "};
            return std::none_of(std::begin(reads), std::end(reads), [&](std::string_view text) {
                return each.line.find(text) != std::string::npos;
            });
        }));
}

/// Every controller that has nothing to be told comes back from the policies written for it.
TEST(RewritingProperties, WhatIsWrittenAsPoliciesComesBack) {
    checkProperty(
        {{"all of it comes back", 55}, {"without hot spares", 40}, {"exact", 20}, {"FILL", 20}},
        [](Tally& tally) {
            const VirtualServer virtualServer = *virtualServers();
            const auto machine = configured(virtualServer);
            if (!machine) {
                tally.count("nothing configured");
                return;
            }
            companion::CapturedPoliciesOptions options;
            options.exact = oneIn(3);
            const companion::CapturedPolicies captured =
                companion::capturedPolicies(snapshotOf(*machine), options);
            RC_LOG() << captured.text;
            RC_ASSERT(captured.text.find("AUTO-") == std::string::npos);
            for (const companion::Finding& finding : captured.findings) {
                tally.count("told " + finding.code);
            }
            if (!captured.comesBack) {
                tally.count("something would not come back");
                return;
            }
            VirtualMachine another(virtualServer);
            const unsigned result = another.deploy(captured.text);
            RC_LOG() << another.platform.consoleFake.output;
            RC_ASSERT(result == success);
            if (configuringCommands(another) == runCommands) {
                tally.count("as many commands as are run"); // perhaps more would have followed
                return;
            }
            tally.count("all of it comes back");
            tally.count(options.exact ? "exact" : "not exact");
            const auto tallyWord = [&](const char* word, const char* name) {
                if (captured.text.find(word) != std::string::npos) {
                    tally.count(name);
                }
            };
            tallyWord("Array_Defaults = 0%:0", "without hot spares");
            tallyWord("Hotspares = ", "with hot spares");
            tallyWord(":FILL:", "FILL");
            for (std::size_t i = 0; i < machine->server.controllers.size(); ++i) {
                compare(machine->server.controllers[i], another.server.controllers[i]);
                if (!machine->server.controllers[i].logicalDrives.empty()) {
                    tally.count("compared " + machine->server.controllers[i].identity.utility);
                }
            }
        });
}

} // namespace
} // namespace zolex::properties
