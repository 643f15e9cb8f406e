#include "driver/PolicyArguments.h"
#include "inventory/ControllerList.h"
#include "properties/Generators.h"
#include "properties/Limits.h"
#include "properties/Property.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zolex::properties {
namespace {

bool isOneOf(std::initializer_list<std::int32_t> types, std::int32_t type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

/// The file that a capture of this controller writes.
std::string generate(std::unique_ptr<RAIDController> controller) {
    test::FakePlatform platform;
    Application application{platform};
    application.printer().setVerbosity(level::always);
    application.settings.policiesFile = "p.ini";
    application.settings.capture = true;
    ControllerList list;
    list.add(std::move(*controller));
    PolicyGenerator generator(platform, application.catalogue(), appending(application.settings),
                              captureOptions(application), application.report());
    if (!generator.generatePolicies(list) || !generator.wrotePolicies()) {
        RC_FAIL("No policy was generated: " + platform.consoleFake.output);
    }
    return platform.fileFake.files["p.ini"];
}

std::ptrdiff_t drivesOn(const RAIDConfiguration& plan, std::int32_t array) {
    return std::count_if(plan.logicalDrives().begin(), plan.logicalDrives().end(),
                         [array](const LogicalDrive& drive) { return drive.arrayIndex == array; });
}

/// Whether nothing is planned on an array after a drive that takes all of it.
bool hasRoom(const RAIDConfiguration& plan) {
    std::set<std::int32_t> full;
    for (const LogicalDrive& drive : plan.logicalDrives()) {
        if (full.count(drive.arrayIndex) > 0 ||
            (drive.sizeMb == sizeFill && !full.insert(drive.arrayIndex).second)) {
            return false;
        }
    }
    return true;
}

/// The plan as its family's listing would give it back after a deployment: hot spares of type 12
/// bear their enclosure's id for a channel, and a FILL logical drive alone on its array has its
/// size in MB.
RAIDConfiguration asCaptured(const RAIDController& controller, const RAIDConfiguration& plan,
                             bool withSizes) {
    RAIDConfiguration captured;
    captured.rebuildRate = plan.rebuildRate;
    captured.readAhead = plan.readAhead;
    captured.stripeSize = plan.stripeSize;
    for (const RaidArray& array : plan.arrays()) {
        captured.addArray(array);
    }
    for (LogicalDrive drive : plan.logicalDrives()) {
        const RaidArray& array = plan.arrays().at(static_cast<std::size_t>(drive.arrayIndex));
        if (withSizes && drive.sizeMb == sizeFill && drivesOn(plan, drive.arrayIndex) == 1) {
            const double mb = static_cast<double>(array.capacityMb) *
                              static_cast<double>(partOf(drive.raidLevel, array.driveCount()));
            drive.sizeMb = mb >= 1 && mb < 2e9 ? static_cast<std::int32_t>(mb) : sizeFill;
        }
        captured.addLogicalDrive(drive);
    }
    for (Hotspare hotspare : plan.hotspares()) {
        if (controller.type() == controller_type::megaRaid) {
            hotspare.channelNumber = controller.targetId(hotspare.channelNumber, hotspare.id);
        }
        captured.addHotspare(hotspare);
    }
    return captured;
}

/// The read-ahead mode that the class gives when a policy names none.
std::int32_t usualReadAhead(const ControllerSpec& spec) {
    return spec.type == controller_type::hrconf4 ? read_ahead::on : read_ahead::adaptive;
}

/// What is left of a plan when its controller was captured and the policy deployed: what the
/// generated policy does not say is that of the class again.
RAIDConfiguration afterLosses(const ControllerSpec& spec, const RAIDConfiguration& plan) {
    RAIDConfiguration left;
    // How it was initialised is told by no listing.
    const bool namesRebuildRate = isOneOf({1, 7, 11}, spec.type);
    const bool namesReadAhead = isOneOf({1, 2, 7, 11, 12}, spec.type);
    const bool namesStripeSize = !isOneOf({5, 10}, spec.type);
    const bool namesWriteCache = !isOneOf({3, 4, 5, 9, 10}, spec.type);
    const bool namesSize = isOneOf({1, 2, 7, 10, 11, 12}, spec.type);
    left.rebuildRate = namesRebuildRate ? plan.rebuildRate : rebuild_rate::high;
    left.readAhead = namesReadAhead ? plan.readAhead : usualReadAhead(spec);
    left.stripeSize = namesStripeSize ? plan.stripeSize : stripe::none;
    for (const RaidArray& array : plan.arrays()) {
        left.addArray(array);
    }
    for (LogicalDrive drive : plan.logicalDrives()) {
        drive.writeCache = namesWriteCache ? drive.writeCache : write_cache::notGiven;
        drive.sizeMb = namesSize ? drive.sizeMb : sizeFill;
        left.addLogicalDrive(drive);
    }
    for (const Hotspare& hotspare : plan.hotspares()) {
        left.addHotspare(hotspare);
    }
    return left;
}

/// A controller and a plan for it that its utility could have built.
struct Configured {
    ControllerSpec spec;
    std::unique_ptr<RAIDController> controller;
};

const std::vector<std::string>& levelsOf(std::int32_t type) {
    static const std::vector<std::string> every = {"0", "1", "1E", "5", "6", "10", "50", "60"};
    static const std::vector<std::string> family = {"0", "1", "1E", "5", "5E", "5EE"};
    static const std::vector<std::string> mega = {"0", "1", "5", "10", "50", "6", "60"};
    static const std::vector<std::string> plain = {"0", "1", "10"};
    static const std::vector<std::string> small = {"0", "1"};
    return type == 1                         ? family
           : type == 12                      ? mega
           : type == 7                       ? every
           : isOneOf({2, 4, 8, 9, 11}, type) ? plain
                                             : small;
}

Configured configureAny() {
    Configured configured;
    configured.spec = *controllers();
    for (DriveSpec& drive : configured.spec.drives) {
        drive.used = false;
    }
    PolicyContext context;
    context.drives = configured.spec.numberedDrives();
    context.several = isOneOf({1}, configured.spec.type);
    context.levels = levelsOf(configured.spec.type);
    // A stripe size of 8 KB, which the class of type 1 takes for its own, is no word of a policy.
    context.stripes = {"64", "32"};
    const Policy policy = parsePolicies(*policyTexts(context)).front();
    configured.controller = configured.spec.make();
    Planner planner;
    planner.plan(*configured.controller, policy);
    return configured;
}

TEST(PolicyProperties, AGeneratedPolicyGivesTheSameConfigurationAgain) {
    checkProperty({{"configured", 20}, {"hot spares", 4}, {"several arrays", 3}}, [](Tally& tally) {
        Configured configured = configureAny();
        const RAIDConfiguration* made = configured.controller->captured();
        if (made == nullptr) {
            tally.count("not planned");
            return;
        }
        // A policies file has letters for eight arrays and no word for a stripe size of 8 KB, and
        // an array without logical drive is none of a controller's. A level of `Logical_Defaults`
        // that the class does not have, or a drive after one that fills its array, was planned, but
        // refused and never captured.
        Planner planner;
        if (made->arrays().size() > 8 || made->stripeSize == stripe::kb8 ||
            made->arrays().empty() || made->logicalDrives().empty() ||
            !planner.hasLevels(*configured.controller, *made) || !hasRoom(*made)) {
            tally.count("no policy can say it");
            return;
        }
        const bool withSizes = oneIn(2);
        const RAIDConfiguration plan = *made;
        auto captured = configured.spec.make();
        captured->setCaptured(asCaptured(*captured, plan, withSizes));
        const std::string text = generate(std::move(captured));
        const std::vector<Policy> policies = parsePolicies(text);
        RC_ASSERT(policies.size() == 1U);
        const auto again = configured.spec.make();
        RC_LOG() << text << describe(&plan);
        RC_ASSERT(planner.plan(*again, policies.front()));
        tally.count("configured");
        if (!plan.hotspares().empty()) {
            tally.count("hot spares");
        }
        if (plan.arrays().size() > 1) {
            tally.count("several arrays");
        }
        const RAIDConfiguration left = afterLosses(configured.spec, plan);
        RC_ASSERT(describe(again->captured()) == describe(&left));
    });
}

} // namespace
} // namespace zolex::properties
