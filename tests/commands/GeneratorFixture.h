#pragma once

#include "commands/CommandGenerator.h"
#include "controllers/Application.h"
#include "model/RAIDController.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex::test {

/// One controller with a plan, and the generator of its type. Tests fill the plan and compare the
/// command list and the whole of what was printed.
class GeneratorFixture : public ::testing::Test {
  protected:
    /// Gives the controller an identity and an empty plan of policy "Policy.1".
    void makeController(std::int32_t type, std::int32_t subtype, std::int32_t scanOrder) {
        controller.setType(type);
        controller.setSubtype(subtype);
        controller.setScanOrder(scanOrder);
        auto empty = std::make_unique<RAIDConfiguration>();
        empty->policyName = "Policy.1";
        controller.setConfiguration(std::move(empty));
    }

    RAIDConfiguration& plan() { return *controller.configuration(); }

    void addArray(const std::vector<DrivePosition>& drives, std::int64_t capacityMb = -1) {
        RaidArray array;
        for (const DrivePosition drive : drives) {
            ASSERT_TRUE(array.addDrive(drive));
        }
        array.capacityMb = capacityMb;
        ASSERT_TRUE(plan().addArray(std::move(array)));
    }

    /// An array of the drives first, first + 1, ... of one channel.
    void addArrayOf(std::size_t drives, std::int32_t channel = 1, std::int32_t first = 0,
                    std::int64_t capacityMb = -1) {
        std::vector<DrivePosition> positions;
        for (std::size_t i = 0; i < drives; ++i) {
            positions.push_back({channel, first + static_cast<std::int32_t>(i)});
        }
        addArray(positions, capacityMb);
    }

    void addLogicalDrive(std::int32_t arrayIndex, std::int32_t raidLevel,
                         std::int32_t sizeMb = sizeFill,
                         std::int32_t writeCache = write_cache::notGiven) {
        LogicalDrive drive;
        drive.arrayIndex = arrayIndex;
        drive.raidLevel = raidLevel;
        drive.sizeMb = sizeMb;
        drive.writeCache = writeCache;
        ASSERT_TRUE(plan().addLogicalDrive(drive));
    }

    void addHotspare(std::int32_t channel, std::int32_t id) {
        Hotspare hotspare;
        hotspare.channelNumber = channel;
        hotspare.id = id;
        ASSERT_TRUE(plan().addHotspare(hotspare));
    }

    /// Runs the generator of the controller's type for list position 4.
    bool generate() {
        const GeneratorEntry* entry = findGenerator(controller.type());
        if (entry == nullptr) {
            ADD_FAILURE() << "no generator for type " << controller.type();
            return false;
        }
        const std::unique_ptr<CommandGenerator> generator = entry->create(application);
        generator->start(controller, 4,
                         application.settings.commandPathPrefix +
                             application.catalogue().getUtilityCommand(controller.type()));
        return generator->generate();
    }

    /// The command list, as far as it can be fetched.
    std::vector<std::string> lines() {
        std::vector<std::string> all;
        for (std::size_t i = 0; application.commands().get(i) != nullptr; ++i) {
            all.emplace_back(application.commands().get(i)->view());
        }
        return all;
    }

    void showTraces() { application.printer().setVerbosity(level::traces); }
    std::string output() { return platform.consoleFake.takeOutput(); }

    FakePlatform platform;
    Application application{platform};
    RAIDController controller;
};

using Lines = std::vector<std::string>;

} // namespace zolex::test
