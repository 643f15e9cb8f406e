#pragma once

#include "commands/CommandGenerator.h"
#include "driver/CommandList.h"
#include "driver/PrinterReport.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolex::test {

/// One controller with a plan. Tests fill the plan, generate, and compare the lines and the whole
/// of what was printed.
class GeneratorFixture : public ::testing::Test {
  protected:
    /// Gives the controller an identity and an empty plan of policy "Policy.1".
    void makeController(std::int32_t type, std::int32_t subtype, std::int32_t scanOrder) {
        controller.setType(type);
        controller.setSubtype(subtype);
        controller.setScanOrder(scanOrder);
        plan_ = RAIDConfiguration();
        plan_.policyName = "Policy.1";
    }

    RAIDConfiguration& plan() { return plan_; }

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

    /// Makes the lines of the controller at list position 4; false after a fault.
    bool generate() {
        generated = commandLines(controller, 4, plan(), style, report);
        return !generated.fault;
    }
    [[nodiscard]] FaultKind faultKind() const {
        return generated.fault ? generated.fault->kind : FaultKind::none;
    }

    /// The lines that were made last.
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> all;
        for (const CString& line : generated.lines) {
            all.emplace_back(line.view());
        }
        return all;
    }

    /// Puts the lines into a list as far as they find room.
    void keep(CommandList& list) const {
        for (const CString& line : generated.lines) {
            static_cast<void>(list.add(line));
        }
    }

    void showTraces() { printer.setVerbosity(level::traces); }
    std::string output() { return platform.consoleFake.takeOutput(); }

    FakePlatform platform;
    Printer printer{platform.console()};
    PrinterReport report{printer};
    CommandStyle style;
    RAIDController controller;
    CommandLines generated;

  private:
    RAIDConfiguration plan_;
};

using Lines = std::vector<std::string>;

} // namespace zolex::test
