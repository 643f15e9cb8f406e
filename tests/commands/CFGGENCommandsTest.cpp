#include "commands/CFGGENCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

class CFGGENCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override { makeController(controller_type::lsiSas, 2, 2); }
};

TEST_F(CFGGENCommandsTest, LevelsGiveTheirWord) {
    struct Row {
        std::int32_t level;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid0,        "UTIL.BAT CFGGEN 1 CREATE IS MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid1,        "UTIL.BAT CFGGEN 1 CREATE IM MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid1E,       "UTIL.BAT CFGGEN 1 CREATE IME MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid5,        "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid5E,       "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid5EE,      "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid6,        "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid10,       "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid50,       "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::raid60,       "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::volume,       "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::simpleVolume, "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
        {raid_level::none,         "UTIL.BAT CFGGEN 1 CREATE ERROR MAX 1:0 1:1 1:2 qsync NOPROMPT"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::lsiSas, 2, 2);
        addArrayOf(3);
        addLogicalDrive(0, row.level);
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
        EXPECT_EQ(lines().size(), 1U);
    }
}

TEST_F(CFGGENCommandsTest, SizeAndInitialisationAreWritten) {
    addArray({{2, 4}, {1, 9}});
    addLogicalDrive(0, raid_level::raid1, 70000);
    plan().init = init_choice::build;
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT CFGGEN 1 CREATE IM 70000 2:4 1:9 NOPROMPT"}));
}

TEST_F(CFGGENCommandsTest, HotsparesGetALineEachAfterTheArrays) {
    addArrayOf(2);
    addArrayOf(2, 2, 4);
    addLogicalDrive(0, raid_level::raid1);
    addLogicalDrive(1, raid_level::raid0, 10);
    addHotspare(2, 7);
    addHotspare(1, 6);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT CFGGEN 1 CREATE IM MAX 1:0 1:1 qsync NOPROMPT",
                     "UTIL.BAT CFGGEN 1 CREATE IS 10 2:4 2:5 qsync NOPROMPT",
                     "UTIL.BAT CFGGEN 1 HOTSPARE 2:7 ", "UTIL.BAT CFGGEN 1 HOTSPARE 1:6 "}));
}

TEST_F(CFGGENCommandsTest, Type5NamesDrivesByTargetId) {
    makeController(controller_type::lsiScsi, 1, 1);
    controller.addDrive(1, 0, 1000, "SCSI", 11);
    controller.addDrive(1, 1, 1000, "SCSI", 12);
    controller.addDrive(1, 2, 1000, "SCSI", 13);
    controller.addDrive(1, 3, 1000, "SCSI");
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 2);
    addHotspare(1, 3);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT CFGGEN1.02.02 0 CREATE IM MAX 11 12 qsync NOPROMPT",
                              "UTIL.BAT CFGGEN1.02.02 0 HOTSPARE 13 ",
                              "UTIL.BAT CFGGEN1.02.02 0 HOTSPARE -1 "}));
}

TEST_F(CFGGENCommandsTest, StripeSizeNoneStays) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::none);
}

TEST_F(CFGGENCommandsTest, PathPrefixStandsBeforeTheUtilityCommand) {
    style.pathPrefix = "D:\\";
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 2);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"D:\\UTIL.BAT CFGGEN 1 CREATE IM MAX 1:0 1:1 qsync NOPROMPT",
                              "D:\\UTIL.BAT CFGGEN 1 HOTSPARE 1:2 "}));
}

TEST_F(CFGGENCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(3);
    addLogicalDrive(0, raid_level::raid1E);
    addHotspare(1, 3);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering CFGGENCommands::doArraysAndLogicalDrives\n"
                        "Processing controller type: 10\n"
                        "Entering CFGGENCommands::translateRAIDLevelLSI, level=2\n"
                        "Exiting CFGGENCommands::translateRAIDLevelLSI, returnValue=IME\n"
                        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning true\n"
                        "Entering CFGGENCommands::doHotspareDrives\n"
                        "Processing controller type: 10\n"
                        "Exiting CFGGENCommands::doHotspareDrives, returning true\n");
}

TEST_F(CFGGENCommandsTest, HotspareTracesStandAlsoWithoutHotspares) {
    makeController(controller_type::lsiScsi, 1, 1);
    showTraces();
    addArrayOf(2);
    addLogicalDrive(0, 99);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering CFGGENCommands::doArraysAndLogicalDrives\n"
                        "Processing controller type: 5\n"
                        "Entering CFGGENCommands::translateRAIDLevelLSI, level=99\n"
                        "Exiting CFGGENCommands::translateRAIDLevelLSI, returnValue=ERROR\n"
                        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning true\n"
                        "Entering CFGGENCommands::doHotspareDrives\n"
                        "Processing controller type: 5\n"
                        "Exiting CFGGENCommands::doHotspareDrives, returning true\n");
}

TEST_F(CFGGENCommandsTest, NoArrayFails) {
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering CFGGENCommands::doArraysAndLogicalDrives\n"
                        "Processing controller type: 10\n"
                        "\n#### ERROR\n\tEach controller must have at least one array.\n"
                        "Could not configure Kestrix-B6, controller 4.\n\n"
                        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning false(1)\n");
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(CFGGENCommandsTest, ArrayWithoutLogicalDriveFails) {
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 4);
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering CFGGENCommands::doArraysAndLogicalDrives\n"
                        "Processing controller type: 10\n"
                        "Entering CFGGENCommands::translateRAIDLevelLSI, level=1\n"
                        "Exiting CFGGENCommands::translateRAIDLevelLSI, returnValue=IM\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-B6, controller 4.\n\n"
                        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning false(2)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT CFGGEN 1 CREATE IM MAX 1:0 1:1 qsync NOPROMPT"}));
}

TEST_F(CFGGENCommandsTest, SecondLogicalDriveOfAnArrayFailsAfterTheLine) {
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addLogicalDrive(1, raid_level::raid1);
    addLogicalDrive(0, raid_level::raid0);
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering CFGGENCommands::doArraysAndLogicalDrives\n"
                        "Processing controller type: 10\n"
                        "Entering CFGGENCommands::translateRAIDLevelLSI, level=1\n"
                        "Exiting CFGGENCommands::translateRAIDLevelLSI, returnValue=IM\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-B6, controller 4.\n\n"
                        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning false(3)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT CFGGEN 1 CREATE IM MAX 1:0 1:1 qsync NOPROMPT"}));
}

} // namespace
} // namespace zolex::test
