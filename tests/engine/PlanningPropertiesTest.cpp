#include "engine/PlanningFixture.h"

#include "show/Dumps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

namespace zolex::test {
namespace {

using Random = std::mt19937;

std::int32_t pick(Random& random, std::int32_t least, std::int32_t most) {
    return std::uniform_int_distribution<std::int32_t>(least, most)(random);
}

std::int32_t pickOf(Random& random, const std::vector<std::int32_t>& values) {
    return values.at(
        static_cast<std::size_t>(pick(random, 0, static_cast<std::int32_t>(values.size()) - 1)));
}

std::unique_ptr<RAIDController> randomController(Random& random) {
    auto controller =
        makeController(pick(random, 1, 12), pickOf(random, {-1, 1, 2, 3, 7, 8, 9, 11}));
    const std::vector<std::int32_t> sizes{0, 36000, 36000, 73000, 73000, 74000, 140000};
    const std::int32_t drives = pick(random, 0, 3) == 0 ? pick(random, 0, 60) : pick(random, 0, 12);
    for (std::int32_t i = 0; i < drives; ++i) {
        const std::int32_t channel = pick(random, 0, 4);
        const std::int32_t id = pick(random, 0, 35);
        controller->addDrive(channel, id, pickOf(random, sizes), "SAS");
        if (pick(random, 0, 9) == 0) {
            controller->setUsed(channel, id);
        }
    }
    return controller;
}

/// A policy without custom lists. Sizes are percentages or FILL.
Policy randomAutomaticPolicy(Random& random) {
    Policy policy = makePolicy();
    policy.arrayDefaults.variancePercent = pickOf(random, {0, 5, 10, 100});
    policy.arrayDefaults.hotspareCount = pickOf(random, {-25, -25, -25, 0, 1, 2, 9});
    if (pick(random, 0, 1) == 1) {
        LogicalSpecification defaults;
        defaults.size = driveSize(pick(random, -101, -1));
        defaults.raidLevel = pickOf(random, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12, 12, 12, 13});
        defaults.writeCache = pick(random, 0, 2);
        policy.logicalDefaults = defaults;
    }
    if (pick(random, 0, 3) == 0) {
        policy.stripeSize = stripe::kb256;
    }
    return policy;
}

void addCustomLists(Random& random, Policy& policy) {
    policy.customArrays = pick(random, 0, 2) != 0;
    for (std::int32_t i = pick(random, 1, 8); i > 0; --i) {
        RaidArray array;
        for (std::int32_t n = pick(random, 1, 6); n > 0; --n) {
            array.addDriveNumber(pick(random, 1, 8));
        }
        policy.arrays.push_back(array);
    }
    if (pick(random, 0, 2) == 0) {
        policy.arrays.push_back(arrayOfAll());
    }
    if (pick(random, 0, 2) == 0) {
        policy.hotspares = arrayOfPositions({{pick(random, 0, 4), pick(random, 0, 35)}});
    }
    policy.customLogicalDrives = pick(random, 0, 1) != 0;
    for (std::int32_t i = pick(random, 0, 9); i > 0; --i) {
        const std::int32_t size =
            pick(random, 0, 1) == 0 ? pick(random, -101, -1) : pick(random, 1, 40000);
        policy.logicalDrives.push_back({pick(random, 0, 7), driveSize(size),
                                        pickOf(random, {0, 0, 1, 3, 7, 12}), pick(random, 0, 2)});
    }
}

/// Everything that a run shows and leaves behind.
std::string runOnce(Bench& bench, RAIDController& controller, const Policy& policy) {
    bench.application.printer().setVerbosity(level::traces);
    const bool done = plan(bench, controller, policy);
    std::string text = (done ? "done " : "failed ") + std::to_string(bench.application.returnCode) +
                       "\n" + describe(controller) + "\n" + describeUsed(controller) + "\n" +
                       bench.takeOutput();
    if (controller.captured() != nullptr) {
        bench.application.printer().printAlways(show::dumpText(*controller.captured()));
        text += bench.takeOutput();
    }
    return text;
}

using Positions = std::set<std::pair<std::int32_t, std::int32_t>>;

/// The drives of the plan; a failure when one stands twice.
Positions plannedDrives(const RAIDConfiguration& plan) {
    Positions seen;
    for (const Hotspare& hotspare : plan.hotspares()) {
        EXPECT_TRUE(seen.insert({hotspare.channelNumber, hotspare.id}).second)
            << "hot spare twice at " << hotspare.channelNumber << ':' << hotspare.id;
    }
    for (const RaidArray& array : plan.arrays()) {
        for (const DrivePosition& drive : array.drives()) {
            EXPECT_TRUE(seen.insert({drive.channel, drive.id}).second)
                << "drive twice at " << drive.channel << ':' << drive.id;
        }
    }
    return seen;
}

void checkDrives(const RAIDController& before, const RAIDController& after) {
    const Positions planned = plannedDrives(*after.captured());
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            const bool taken = planned.count({channel, id}) != 0;
            EXPECT_EQ(after.isUsed(channel, id), taken || before.isUsed(channel, id));
            if (taken) {
                EXPECT_FALSE(before.isUsed(channel, id)) << "taken though used";
                EXPECT_GT(after.size(channel, id), 0);
                EXPECT_NE(channel, 0);
            }
        }
    }
}

void checkArray(const RAIDController& controller, const RaidArray& array,
                std::int32_t variancePercent) {
    ASSERT_FALSE(array.drives().empty());
    EXPECT_LE(array.drives().size(), 32U);
    const DrivePosition first = array.drives().front();
    const std::int64_t size = controller.size(first.channel, first.id);
    std::int64_t smallest = size;
    for (const DrivePosition& drive : array.drives()) {
        const std::int64_t other = controller.size(drive.channel, drive.id);
        EXPECT_LE(std::abs(other - size) * 100, size * variancePercent);
        smallest = std::min(smallest, other);
        if (controller.type() == controller_type::hrconf4) {
            EXPECT_EQ(drive.channel, first.channel);
        }
    }
    EXPECT_EQ(array.capacityMb, smallest * static_cast<std::int64_t>(array.drives().size()));
}

void checkLogicalDrive(const RAIDConfiguration& plan, std::size_t index) {
    const LogicalDrive& drive = plan.logicalDrives().at(index);
    ASSERT_EQ(drive.arrayIndex, static_cast<std::int32_t>(index));
    const RaidArray& array = plan.arrays().at(index);
    const double usable = static_cast<double>(array.capacityMb) *
                          static_cast<double>(usableFraction(drive.raidLevel, array.driveCount()));
    EXPECT_GT(usable, 0.0);
    if (drive.sizeMb != sizeFill) {
        EXPECT_GT(drive.sizeMb, 0);
        EXPECT_LE(drive.sizeMb, usable - 139.0) << "closer to the rest it is FILL";
    }
}

TEST(PlanningProperties, AutomaticPlansAreSound) {
    std::int32_t planned = 0;
    std::int32_t skipped = 0;
    std::int32_t failed = 0;
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Random again(seed);
        const auto controller = randomController(random);
        const auto before = randomController(again);
        const Policy policy = randomAutomaticPolicy(random);
        Bench bench;
        const bool done = plan(bench, *controller, policy);
        const std::string output = bench.takeOutput();
        if (!done) {
            ++failed;
            EXPECT_EQ(controller->captured(), nullptr);
            EXPECT_TRUE(output.starts_with("\n#### ERROR\n\t")) << output;
            continue;
        }
        EXPECT_EQ(output, "");
        EXPECT_EQ(bench.application.returnCode, 0);
        if (controller->captured() == nullptr) {
            ++skipped;
            EXPECT_LE(controller->numberOfDrives(), 1);
            EXPECT_EQ(describeUsed(*controller), describeUsed(*before));
            continue;
        }
        ++planned;
        const RAIDConfiguration& made = *controller->captured();
        EXPECT_LE(made.arrays().size(), 16U);
        EXPECT_LE(made.hotspares().size(), 8U);
        EXPECT_LE(made.logicalDrives().size(), 8U);
        const std::set<std::int32_t> several{1, 2, 7, 11, 12};
        if (several.count(controller->type()) == 0) {
            EXPECT_LE(made.arrays().size(), 1U);
        } else {
            // Every drive that can be used is in the plan.
            for (std::int32_t channel = 1; channel < RAIDController::channels; ++channel) {
                for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
                    EXPECT_TRUE(controller->isUsed(channel, id) ||
                                controller->size(channel, id) <= 0);
                }
            }
        }
        checkDrives(*before, *controller);
        for (const RaidArray& array : made.arrays()) {
            checkArray(*controller, array, policy.arrayDefaults.variancePercent);
        }
        ASSERT_EQ(made.logicalDrives().size(), made.arrays().size());
        for (std::size_t i = 0; i < made.logicalDrives().size(); ++i) {
            checkLogicalDrive(made, i);
        }
    }
    // The random cases reach every kind of end.
    EXPECT_GT(planned, 500);
    EXPECT_GT(skipped, 50);
    EXPECT_GT(failed, 500);
}

TEST(PlanningProperties, PlanningTwiceGivesTheSamePlan) {
    std::int32_t planned = 0;
    for (std::uint32_t seed = 1; seed <= 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::string runs[2];
        for (std::string& run : runs) {
            Random random(seed);
            const auto controller = randomController(random);
            Policy policy = randomAutomaticPolicy(random);
            if (seed % 2 == 0) {
                addCustomLists(random, policy);
            }
            Bench bench;
            run = runOnce(bench, *controller, policy);
            planned += controller->captured() != nullptr ? 1 : 0;
        }
        ASSERT_EQ(runs[0], runs[1]);
    }
    EXPECT_GT(planned, 500);
}

TEST(PlanningProperties, CustomPlansKeepToTheRecord) {
    std::int32_t planned = 0;
    for (std::uint32_t seed = 1; seed <= 3000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        const auto controller = randomController(random);
        Policy policy = randomAutomaticPolicy(random);
        addCustomLists(random, policy);
        Bench bench;
        const bool done = plan(bench, *controller, policy);
        const RAIDConfiguration* made = controller->captured();
        EXPECT_TRUE(done || made == nullptr);
        EXPECT_EQ(done, bench.takeOutput().empty());
        if (made == nullptr) {
            continue;
        }
        ++planned;
        EXPECT_LE(made->arrays().size(), 16U);
        EXPECT_LE(made->hotspares().size(), 8U);
        EXPECT_LE(made->logicalDrives().size(), 8U);
        for (const LogicalDrive& drive : made->logicalDrives()) {
            ASSERT_LT(static_cast<std::size_t>(drive.arrayIndex), made->arrays().size());
            EXPECT_TRUE(drive.sizeMb == sizeFill || drive.sizeMb > 0) << drive.sizeMb;
        }
        for (const RaidArray& array : made->arrays()) {
            EXPECT_LE(array.drives().size(), 32U);
            EXPECT_GT(array.capacityMb, 0);
        }
    }
    EXPECT_GT(planned, 200);
}

} // namespace
} // namespace zolex::test
