#include "policies/GeneratorTestSupport.h"
#include "support/DriveSizes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace zolex {
namespace {

using namespace test;

/// A random controller whose configuration a policy can express.
class RandomController {
  public:
    explicit RandomController(std::mt19937& random) : random_(random) {}

    void fill(RAIDController& controller) {
        std::vector<DrivePosition> drives = addDrives(controller);
        RAIDConfiguration& configuration = *controller.captured();
        configuration.stripeSize = between(stripe::kb16, stripe::none);
        configuration.readAhead = between(0, 2);
        configuration.rebuildRate = between(0, 2);
        const int arrays = between(1, std::min<int>(8, static_cast<int>(drives.size())));
        for (int i = 0; i < arrays; ++i) {
            const int spare = static_cast<int>(drives.size()) - (arrays - i);
            RaidArray array;
            for (int n = 1 + between(0, std::min(spare, 31)); n > 0; --n) {
                array.addDrive(drives.back());
                drives.pop_back();
            }
            configuration.addArray(std::move(array));
        }
        for (int n = between(0, std::min<int>(8, static_cast<int>(drives.size()))); n > 0; --n) {
            const DrivePosition& drive = drives[static_cast<std::size_t>(n - 1)];
            const bool byEnclosure = controller.type() == controller_type::megaRaid;
            configuration.addHotspare(makeHotspare(
                byEnclosure ? controller.targetId(drive.channel, drive.id) : drive.channel,
                drive.id));
            expectedHotspares.insert(expectedHotspares.begin(), drive);
        }
        std::reverse(expectedHotspares.begin(), expectedHotspares.end());
        addLogicalDrives(configuration, arrays);
    }

    std::vector<DrivePosition> expectedHotspares;

  private:
    int between(int low, int high) {
        return low + static_cast<int>(random_() % static_cast<unsigned>(high - low + 1));
    }

    /// All drives in a random order.
    std::vector<DrivePosition> addDrives(RAIDController& controller) {
        std::vector<DrivePosition> drives;
        for (int n = between(1, 60); n > 0; --n) {
            const DrivePosition drive = {between(1, 4), between(0, 35)};
            if (controller.size(drive.channel, drive.id) == RAIDController::noDrive) {
                controller.setSizeAndTarget(drive.channel, drive.id, between(1, 4000000),
                                            20 - drive.channel);
                drives.push_back(drive);
            }
        }
        std::shuffle(drives.begin(), drives.end(), random_);
        return drives;
    }

    void addLogicalDrives(RAIDConfiguration& configuration, int arrays) {
        const std::int32_t levels[] = {0, 1, 2, 3, 6, 7, 8, 9, 10, 13};
        for (int n = between(1, 8); n > 0; --n) {
            const std::int32_t size = between(0, 1) == 0 ? sizeFill : between(1, 2000000000);
            configuration.addLogicalDrive(makeLogicalDrive(between(0, arrays - 1), size,
                                                           levels[between(0, 9)], between(0, 2)));
        }
    }

    std::mt19937& random_;
};

/// The positions of a policy's drive numbers.
std::vector<DrivePosition> positionsOf(const RAIDController& controller, const RaidArray& list) {
    std::vector<DrivePosition> all;
    for (std::int32_t channel = 1; channel <= 4; ++channel) {
        for (std::int32_t id = 0; id <= 35; ++id) {
            if (controller.size(channel, id) > 0) {
                all.push_back({channel, id});
            }
        }
    }
    std::vector<DrivePosition> result;
    for (const std::int32_t number : list.driveNumbers()) {
        result.push_back(all.at(static_cast<std::size_t>(number - 1)));
    }
    return result;
}

bool holdsType(std::initializer_list<std::int32_t> types, std::int32_t type) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

void expectLogicalDrives(const RAIDController& controller, const Policy& policy) {
    const auto& captured = controller.captured()->logicalDrives();
    const std::int32_t type = controller.type();
    const bool withSize = holdsType({1, 2, 7, 10, 11, 12}, type);
    const bool withCache = !holdsType({3, 4, 5, 9, 10}, type);
    ASSERT_EQ(policy.logicalDrives.size(), captured.size());
    for (std::size_t i = 0; i < captured.size(); ++i) {
        const LogicalSpecification& drive = policy.logicalDrives[i];
        EXPECT_EQ(drive.arrayIndex, captured[i].arrayIndex);
        EXPECT_EQ(drive.raidLevel, captured[i].raidLevel);
        EXPECT_EQ(drive.size, driveSize(withSize ? captured[i].sizeMb : sizeFill));
        EXPECT_EQ(drive.writeCache, withCache ? captured[i].writeCache : write_cache::notGiven);
    }
}

std::optional<std::int32_t> codeIf(bool written, std::int32_t code) {
    return written ? std::optional(code) : std::nullopt;
}

void expectSettings(const RAIDController& controller, const Policy& policy) {
    const RAIDConfiguration& configuration = *controller.captured();
    const std::int32_t type = controller.type();
    const bool stripe = !holdsType({5, 10}, type) && configuration.stripeSize != stripe::none;
    EXPECT_EQ(policy.stripeSize, codeIf(stripe, configuration.stripeSize));
    EXPECT_EQ(policy.rebuildRate, codeIf(holdsType({1, 7, 11}, type), configuration.rebuildRate));
    EXPECT_EQ(policy.readAhead,
              codeIf(holdsType({1, 2, 7, 11, 12}, type), configuration.readAhead));
    EXPECT_TRUE(policy.customArrays);
    EXPECT_TRUE(policy.customLogicalDrives);
}

TEST(PolicyRoundTripTest, WhatIsGeneratedReadsBackAsWhatWasCaptured) {
    std::mt19937 random(1701);
    for (int round = 0; round < 200; ++round) {
        Generation run;
        std::vector<std::vector<DrivePosition>> hotspares;
        const std::size_t controllers = 1 + random() % 4;
        for (std::size_t i = 0; i < controllers; ++i) {
            const auto type = static_cast<std::int32_t>(1 + random() % 12);
            RandomController maker(random);
            maker.fill(run.add(type, static_cast<std::int32_t>(random() % 16)));
            hotspares.push_back(maker.expectedHotspares);
        }
        ASSERT_TRUE(run.run());
        PolicyReading reading;
        ASSERT_TRUE(reading.read(run.file())) << reading.output() << run.file();
        ASSERT_EQ(reading.reader.policies()->count(), controllers);
        for (std::size_t i = 0; i < controllers; ++i) {
            const RAIDController& controller = *run.controllers.controller(i);
            const Policy& policy = reading.policy(i);
            const auto& arrays = controller.captured()->arrays();
            ASSERT_EQ(policy.arrays.size(), arrays.size());
            for (std::size_t a = 0; a < arrays.size(); ++a) {
                EXPECT_EQ(positionsOf(controller, policy.arrays[a]), arrays[a].drives());
            }
            EXPECT_EQ(policy.hotspares.has_value(), !hotspares[i].empty());
            if (policy.hotspares) {
                EXPECT_EQ(positionsOf(controller, *policy.hotspares), hotspares[i]);
            }
            expectLogicalDrives(controller, policy);
            expectSettings(controller, policy);

            MatchValues values;
            values.controllerType =
                run.application.controllerName(controller.type(), controller.subtype());
            values.numberOfDrives = controller.numberOfDrives();
            const Policy* found = reading.reader.policies()->find(values);
            ASSERT_NE(found, nullptr);
            EXPECT_EQ(found->appliesTo[0].controllerType, values.controllerType);
        }
    }
}

TEST(PolicyRoundTripTest, ASecondCaptureAddsToTheFirst) {
    std::mt19937 random(7);
    Generation run;
    RandomController(random).fill(run.add(12, 3));
    for (int capture = 1; capture <= 20; ++capture) {
        const std::string before = run.file();
        ASSERT_TRUE(run.run());
        ASSERT_EQ(run.file().rfind(before, 0), 0U);
        PolicyReading reading;
        ASSERT_TRUE(reading.read(run.file())) << reading.output();
        ASSERT_EQ(reading.reader.policies()->count(), static_cast<std::size_t>(capture));
        EXPECT_EQ(reading.policy(static_cast<std::size_t>(capture - 1)).name,
                  ("Policy.AUTO-Kestrix-C2-" + std::to_string(capture)).c_str());
    }
}

TEST(PolicyRoundTripTest, AValueWithoutAWordIsRefusedInDeploy) {
    Generation run;
    RAIDController& controller = run.add(12, 2);
    controller.setSizeAndTarget(1, 0, 1000, 8);
    controller.captured()->addArray(makeArray({{1, 0}}));
    controller.captured()->stripeSize = 42;
    ASSERT_TRUE(run.run());
    PolicyReading reading;
    EXPECT_FALSE(reading.read(run.file()));
    EXPECT_EQ(reading.output(),
              errorBlock("Policy.AUTO-Kestrix-C1-1, StripeSize -- Invalid specifier:  ERROR\n"
                         "\tValid values are:  16 32 64 128 256 512 1024 2048 4096\n"));
}

TEST(PolicyRoundTripTest, TheSmallestStripeSizeIsWrittenButRefusedInDeploy) {
    Generation run;
    RAIDController& controller = run.add(12, 2);
    controller.setSizeAndTarget(1, 0, 1000, 8);
    controller.captured()->addArray(makeArray({{1, 0}}));
    controller.captured()->stripeSize = stripe::kb8;
    ASSERT_TRUE(run.run());
    PolicyReading reading;
    EXPECT_FALSE(reading.read(run.file()));
    EXPECT_EQ(reading.output(),
              errorBlock("Policy.AUTO-Kestrix-C1-1, StripeSize -- Invalid specifier:  8\n"
                         "\tValid values are:  16 32 64 128 256 512 1024 2048 4096\n"));
}

} // namespace
} // namespace zolex
