#include "model/RAIDController.h"

#include "driver/Printer.h"
#include "show/Dumps.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zolex {
namespace {

constexpr std::int32_t lowestValue = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highestValue = std::numeric_limits<std::int32_t>::max();

std::string dumpOf(const RAIDController& controller, bool withConfiguration) {
    test::FakeConsole console;
    Printer printer(console);
    printer.printAlways(show::dumpText(controller, withConfiguration));
    EXPECT_EQ(console.error, "");
    return console.output;
}

TEST(RAIDController, AFreshControllerHoldsItsInitialValues) {
    const RAIDController controller;
    EXPECT_EQ(controller.captured(), nullptr);
    EXPECT_EQ(controller.type(), -1);
    EXPECT_EQ(controller.subtype(), -1);
    EXPECT_EQ(controller.scanOrder(), 0);
    EXPECT_EQ(controller.slotNumber(), -1);
    EXPECT_EQ(controller.busNumber(), -1);
    EXPECT_EQ(controller.pciFunction(), 0);
    EXPECT_TRUE(controller.pciLocation().isEmpty());
    EXPECT_FALSE(controller.biosVersion().has_value());
    EXPECT_FALSE(controller.firmwareVersion().has_value());
    EXPECT_FALSE(controller.driverVersion().has_value());
    EXPECT_TRUE(controller.channelReassignment());
    EXPECT_EQ(controller.numberOfDrives(), 0);
    for (std::int32_t channel = 0; channel < 5; ++channel) {
        for (std::int32_t id = 0; id < 36; ++id) {
            EXPECT_EQ(controller.size(channel, id), -1);
            EXPECT_EQ(controller.targetId(channel, id), -1);
            EXPECT_FALSE(controller.isUsed(channel, id));
            EXPECT_FALSE(controller.driveType(channel, id).has_value());
            const RaidDisk& disk = controller.driveRecord(channel, id);
            EXPECT_EQ(disk.channelNumber, -1);
            EXPECT_EQ(disk.id, -1);
            EXPECT_EQ(disk.diskNumber, -1);
            EXPECT_EQ(disk.sizeMb, -1);
            EXPECT_TRUE(disk.serialNumber.isEmpty());
            EXPECT_TRUE(disk.reportedLocation.isEmpty());
            EXPECT_TRUE(disk.state.isEmpty());
            EXPECT_TRUE(disk.derivedState.isEmpty());
        }
    }
}

TEST(RAIDController, KeepsWhatIsSet) {
    RAIDController controller;
    EXPECT_TRUE(controller.setType(12));
    EXPECT_TRUE(controller.setSubtype(3));
    EXPECT_TRUE(controller.setPciFunction(1));
    EXPECT_TRUE(controller.setSlotNumber(4));
    EXPECT_TRUE(controller.setBusNumber(129));
    EXPECT_TRUE(controller.setPciLocation("2:0:0:1000:0411:1000:1001"));
    EXPECT_TRUE(controller.setBiosVersion("b"));
    EXPECT_TRUE(controller.setFirmwareVersion(""));
    EXPECT_TRUE(controller.setDriverVersion("d"));
    EXPECT_TRUE(controller.clearChannelReassignment());
    EXPECT_EQ(controller.type(), 12);
    EXPECT_EQ(controller.subtype(), 3);
    EXPECT_EQ(controller.pciFunction(), 1);
    EXPECT_EQ(controller.slotNumber(), 4);
    EXPECT_EQ(controller.busNumber(), 129);
    EXPECT_TRUE(controller.pciLocation() == "2:0:0:1000:0411:1000:1001");
    EXPECT_TRUE(*controller.biosVersion() == "b");
    EXPECT_TRUE(controller.firmwareVersion()->isEmpty());
    EXPECT_TRUE(*controller.driverVersion() == "d");
    EXPECT_FALSE(controller.channelReassignment());
}

TEST(RAIDController, RefusesScanOrdersOutsideOneToFifteen) {
    RAIDController controller;
    EXPECT_FALSE(controller.setScanOrder(0));
    EXPECT_EQ(controller.scanOrder(), 0);
    for (std::int32_t order = 1; order <= 15; ++order) {
        EXPECT_TRUE(controller.setScanOrder(order));
        EXPECT_EQ(controller.scanOrder(), order);
    }
    for (const std::int32_t order : {lowestValue, -1, 0, 16, highestValue}) {
        EXPECT_FALSE(controller.setScanOrder(order)) << order;
        EXPECT_EQ(controller.scanOrder(), 15) << order;
    }
}

TEST(RAIDController, CountsTheDrivesOfChannelsOneToFour) {
    RAIDController controller;
    EXPECT_TRUE(controller.addDrive(0, 0, 70000, "SAS"));
    EXPECT_EQ(controller.size(0, 0), 70000);
    EXPECT_EQ(controller.numberOfDrives(), 0);
    EXPECT_TRUE(controller.addDrive(1, 0, 70000, "SAS"));
    EXPECT_TRUE(controller.addDrive(4, 35, 0, "SAS"));
    EXPECT_TRUE(controller.addDrive(2, 5, highestValue, "SAS"));
    EXPECT_EQ(controller.numberOfDrives(), 3);
    EXPECT_TRUE(controller.addDrive(1, 0, 80000, "SAS"));
    EXPECT_EQ(controller.numberOfDrives(), 3);
    EXPECT_EQ(controller.size(1, 0), 80000);
    EXPECT_TRUE(controller.setSize(1, 0, -1));
    EXPECT_EQ(controller.numberOfDrives(), 2);
    // Any size but -1 is one.
    EXPECT_TRUE(controller.setSize(1, 0, -2));
    EXPECT_EQ(controller.numberOfDrives(), 3);
}

TEST(RAIDController, HoldsADriveAtEveryPosition) {
    RAIDController controller;
    for (std::int32_t channel = 0; channel < 5; ++channel) {
        for (std::int32_t id = 0; id < 36; ++id) {
            EXPECT_TRUE(
                controller.addDrive(channel, id, channel * 100 + id, "SAS", id * 5 + channel));
        }
    }
    EXPECT_EQ(controller.numberOfDrives(), 144);
    for (std::int32_t channel = 0; channel < 5; ++channel) {
        for (std::int32_t id = 0; id < 36; ++id) {
            EXPECT_EQ(controller.size(channel, id), channel * 100 + id);
            EXPECT_EQ(controller.targetId(channel, id), id * 5 + channel);
        }
    }
}

TEST(RAIDController, RefusesPositionsOutOfRange) {
    constexpr std::pair<std::int32_t, std::int32_t> positions[] = {{-1, 0},
                                                                   {5, 0},
                                                                   {1, -1},
                                                                   {1, 36},
                                                                   {-1, -1},
                                                                   {5, 36},
                                                                   {highestValue, highestValue},
                                                                   {lowestValue, lowestValue}};
    for (const auto& [channel, id] : positions) {
        RAIDController controller;
        EXPECT_FALSE(RAIDController::isPosition(channel, id));
        EXPECT_FALSE(controller.setSize(channel, id, 1));
        EXPECT_FALSE(controller.setSizeAndTarget(channel, id, 1, 2));
        EXPECT_FALSE(controller.addDrive(channel, id, 1, "SAS"));
        EXPECT_FALSE(controller.addDrive(channel, id, 1, "SAS", 2));
        EXPECT_FALSE(controller.setDriveRecord(channel, id, {}));
        EXPECT_FALSE(controller.setUsed(channel, id));
        EXPECT_EQ(controller.size(channel, id), -1);
        EXPECT_EQ(controller.targetId(channel, id), -1);
        EXPECT_FALSE(controller.isUsed(channel, id));
        EXPECT_FALSE(controller.driveType(channel, id).has_value());
        EXPECT_EQ(controller.driveRecord(channel, id).channelNumber, -1);
        EXPECT_EQ(controller.numberOfDrives(), 0);
    }
}

TEST(RAIDController, KeepsADriveTypeOnlyWhenItIsNotEmpty) {
    RAIDController controller;
    controller.addDrive(1, 0, 1000, "");
    EXPECT_FALSE(controller.driveType(1, 0).has_value());
    controller.addDrive(1, 1, 1000, "SATA", 7);
    EXPECT_TRUE(*controller.driveType(1, 1) == "SATA");
    EXPECT_EQ(controller.targetId(1, 1), 7);
    controller.addDrive(1, 1, 2000, "");
    EXPECT_TRUE(*controller.driveType(1, 1) == "SATA");
    EXPECT_EQ(controller.size(1, 1), 2000);
    EXPECT_EQ(controller.targetId(1, 1), 7);
}

TEST(RAIDController, SetsSizesTargetsAndUsedFlags) {
    RAIDController controller;
    EXPECT_TRUE(controller.setSize(2, 3, 500));
    EXPECT_EQ(controller.targetId(2, 3), -1);
    EXPECT_TRUE(controller.setSizeAndTarget(2, 3, 600, 40));
    EXPECT_EQ(controller.size(2, 3), 600);
    EXPECT_EQ(controller.targetId(2, 3), 40);
    EXPECT_TRUE(controller.setUsed(2, 3));
    EXPECT_TRUE(controller.isUsed(2, 3));
    EXPECT_FALSE(controller.isUsed(2, 4));
    EXPECT_TRUE(controller.setUsed(2, 3, false));
    EXPECT_FALSE(controller.isUsed(2, 3));
}

TEST(RAIDController, VisitsItsDrivesInAscendingOrder) {
    RAIDController controller;
    controller.addDrive(3, 0, 1, "");
    controller.addDrive(1, 35, 1, "");
    controller.addDrive(0, 1, 1, "");
    controller.addDrive(1, 2, 1, "");
    controller.addDrive(4, 7, 1, "");
    std::vector<std::pair<std::int32_t, std::int32_t>> visited;
    controller.forEachDrive(
        [&](std::int32_t channel, std::int32_t id) { visited.emplace_back(channel, id); });
    EXPECT_EQ(visited, (std::vector<std::pair<std::int32_t, std::int32_t>>{
                           {1, 2}, {1, 35}, {3, 0}, {4, 7}}));
}

TEST(RAIDController, AMemberOfTheLayoutIsUsedAndCanBeTaken) {
    RAIDController controller;
    EXPECT_TRUE(controller.setMember(1, 2));
    EXPECT_FALSE(controller.setMember(5, 0));
    EXPECT_TRUE(controller.isUsed(1, 2));
    EXPECT_TRUE(controller.usable({1, 2}));
    EXPECT_TRUE(controller.setUsed(1, 2));
    EXPECT_FALSE(controller.usable({1, 2}));
    EXPECT_TRUE(controller.setUsed(1, 2, false));
    EXPECT_FALSE(controller.isUsed(1, 2));
    EXPECT_TRUE(controller.usable({1, 3}));
    EXPECT_FALSE(controller.usable({1, 36}));
}

TEST(RAIDController, KeepsTheCapturedLayout) {
    RAIDController controller;
    RAIDConfiguration configuration;
    configuration.policyName = "Policy.kept";
    EXPECT_TRUE(controller.setCaptured(std::move(configuration)));
    ASSERT_NE(controller.captured(), nullptr);
    EXPECT_EQ(controller.captured()->policyName, "Policy.kept");
    EXPECT_TRUE(controller.setCaptured(std::nullopt));
    EXPECT_EQ(controller.captured(), nullptr);
}

TEST(RAIDController, ForgetsWhatACaptureHasRead) {
    RAIDController controller;
    controller.setType(12);
    controller.setBusNumber(3);
    controller.setScanOrder(2);
    controller.addDrive(1, 0, 1000, "SAS", 8);
    controller.setUsed(1, 0);
    RaidDisk disk;
    disk.id = 0;
    controller.setDriveRecord(1, 0, disk);
    controller.setCaptured(RAIDConfiguration());
    controller.clearChannelReassignment();
    controller.forgetReadings();
    EXPECT_EQ(controller.numberOfDrives(), 0);
    EXPECT_EQ(controller.targetId(1, 0), -1);
    EXPECT_FALSE(controller.isUsed(1, 0));
    EXPECT_FALSE(controller.driveType(1, 0).has_value());
    EXPECT_EQ(controller.driveRecord(1, 0).id, -1);
    EXPECT_EQ(controller.captured(), nullptr);
    EXPECT_TRUE(controller.channelReassignment());
    EXPECT_EQ(controller.type(), 12);
    EXPECT_EQ(controller.busNumber(), 3);
    EXPECT_EQ(controller.scanOrder(), 2);
}

TEST(RaidDisk, Dumps) {
    test::FakeConsole console;
    Printer printer(console);
    RaidDisk disk;
    printer.printAlways(show::dumpText(disk));
    EXPECT_EQ(console.takeOutput(), "Contents of RaidDisk:\n"
                                    "  Channel Number:    -1\n"
                                    "  ID:                -1\n"
                                    "  Disk Number:       -1\n"
                                    "  Size:              -1\n"
                                    "  Serial Number:     \n"
                                    "  Reported Location: \n"
                                    "  State:             \n"
                                    "  Derived State:     \n\n");
    disk.channelNumber = 2;
    disk.id = 14;
    disk.diskNumber = 3;
    disk.sizeMb = highestValue;
    disk.serialNumber = "3KR 1%s";
    disk.reportedLocation = "Enclosure 1, Slot 14";
    disk.state = "Online, Spun Up";
    disk.derivedState = "GOOD";
    printer.printAlways(show::dumpText(disk));
    EXPECT_EQ(console.output, "Contents of RaidDisk:\n"
                              "  Channel Number:    2\n"
                              "  ID:                14\n"
                              "  Disk Number:       3\n"
                              "  Size:              2147483647\n"
                              "  Serial Number:     3KR 1%s\n"
                              "  Reported Location: Enclosure 1, Slot 14\n"
                              "  State:             Online, Spun Up\n"
                              "  Derived State:     GOOD\n\n");
}

TEST(RAIDController, DumpsAFreshRecord) {
    const std::string expected = "***** DUMPING RAID CONTROLLER INFO *********\n"
                                 "Type:       -1\n"
                                 "BIOSVersion = \n"
                                 "FirmwareVersion = \n"
                                 "Scan order: 0\n"
                                 "Number of Drives=0\n"
                                 "Drives:\n"
                                 "nth=(chan,sid,tid,type) size\n"
                                 "\n"
                                 "\n";
    EXPECT_EQ(dumpOf(RAIDController(), false), expected);
    EXPECT_EQ(dumpOf(RAIDController(), true), expected);
}

TEST(RAIDController, DumpsDrivesConfigurationAndRecords) {
    RAIDController controller;
    controller.setType(12);
    controller.setSubtype(2);
    controller.setBiosVersion("MT25");
    controller.setFirmwareVersion("1.11.52-0349");
    controller.setScanOrder(15);
    controller.addDrive(0, 9, 1, "SAS", 1);
    controller.addDrive(1, 0, 69618, "SAS", 8);
    controller.addDrive(1, 10, 139236, "");
    controller.addDrive(4, 35, 1907200, "SATA-II", 100);
    RaidDisk hidden;
    hidden.state = "channel 0";
    controller.setDriveRecord(0, 9, hidden);
    RaidDisk sizeless;
    sizeless.state = "no size";
    controller.setDriveRecord(2, 2, sizeless);
    RaidDisk disk;
    disk.channelNumber = 1;
    disk.id = 0;
    disk.diskNumber = 1;
    disk.sizeMb = 69618;
    disk.serialNumber = "S1";
    disk.reportedLocation = "L1";
    disk.state = "Online";
    disk.derivedState = "GOOD";
    controller.setDriveRecord(1, 0, disk);
    const std::string head = "***** DUMPING RAID CONTROLLER INFO *********\n"
                             "Type:       12\n"
                             "BIOSVersion =MT25 \n"
                             "FirmwareVersion =1.11.52-0349 \n"
                             "Scan order: 15\n"
                             "Number of Drives=3\n"
                             "Drives:\n"
                             "nth=(chan,sid,tid,type) size\n"
                             " 1( 1, 0, 8, SAS) 69618MB\n"
                             " 2( 1,10,-1,    ) 139236MB\n"
                             " 3( 4,35,100,SATA-II) 1907200MB\n"
                             "\n";
    const std::string emptyRecord = "Contents of RaidDisk:\n"
                                    "  Channel Number:    -1\n"
                                    "  ID:                -1\n"
                                    "  Disk Number:       -1\n"
                                    "  Size:              -1\n"
                                    "  Serial Number:     \n"
                                    "  Reported Location: \n"
                                    "  State:             \n"
                                    "  Derived State:     \n\n";
    const std::string records = "\n"
                                "Contents of RaidDisk:\n"
                                "  Channel Number:    1\n"
                                "  ID:                0\n"
                                "  Disk Number:       1\n"
                                "  Size:              69618\n"
                                "  Serial Number:     S1\n"
                                "  Reported Location: L1\n"
                                "  State:             Online\n"
                                "  Derived State:     GOOD\n\n" +
                                emptyRecord + emptyRecord;
    EXPECT_EQ(dumpOf(controller, true), head + records);
    controller.setCaptured(RAIDConfiguration());
    const std::string configuration = "#### START Configuration dump ####\n"
                                      "RebuildRate   = 0\n"
                                      "StripeSize    = 10\n"
                                      "ReadAhed      = 0\n"
                                      "Init          = 0\n"
                                      "Policy used   = \n"
                                      "\n#### END Configuration dump ####\n";
    EXPECT_EQ(dumpOf(controller, true), head + configuration + records);
    EXPECT_EQ(dumpOf(controller, false), head + records);
}

TEST(RAIDController, NumbersTheDrivesOfItsDumpToAHundredAndMore) {
    RAIDController controller;
    for (std::int32_t channel = 1; channel < 5; ++channel) {
        for (std::int32_t id = 0; id < 36; ++id) {
            controller.addDrive(channel, id, 1, "");
        }
    }
    const std::string dump = dumpOf(controller, false);
    EXPECT_NE(dump.find("\n 9( 1, 8,-1,    ) 1MB\n10( 1, 9,-1,    ) 1MB\n"), std::string::npos);
    EXPECT_NE(dump.find("\n99( 3,26,-1,    ) 1MB\n100( 3,27,-1,    ) 1MB\n"), std::string::npos);
    EXPECT_NE(dump.find("\n144( 4,35,-1,    ) 1MB\n\n\nContents"), std::string::npos);
}

} // namespace
} // namespace zolex
