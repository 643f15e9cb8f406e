#include "commands/HRCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

class HRCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override { makeController(controller_type::hrconf4, 1, 3); }
};

TEST_F(HRCommandsTest, LevelsGiveTheirLine) {
    struct Row {
        std::int32_t level;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid0,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH MAX 0 0 0 0 1 NOPROMPT "},
        {raid_level::raid1,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 1 0 0 0 1 NOPROMPT "},
        {raid_level::raid1E,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 1E 0 0 0 1 NOPROMPT "},
        {raid_level::raid5,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 5 0 0 0 1 NOPROMPT "},
        {raid_level::raid5E,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 5E 0 0 0 1 NOPROMPT "},
        {raid_level::raid5EE,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 5EE 0 0 0 1 NOPROMPT "},
        {raid_level::raid6,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 6 0 0 0 1 NOPROMPT "},
        {raid_level::raid10,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 10 0 0 0 1 NOPROMPT "},
        {raid_level::raid50,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 50 0 0 0 1 NOPROMPT "},
        {raid_level::raid60,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 60 0 0 0 1 NOPROMPT "},
        {raid_level::volume,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH MAX VOLUME 0 0 0 1 NOPROMPT "},
        {raid_level::simpleVolume,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH MAX SIMPLE VOLUME 0 0 0 1 NOPROMPT "},
        {raid_level::none,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX ERROR 0 0 0 1 NOPROMPT "},
    };
    // clang-format on
    for (const std::int32_t type : {controller_type::hrconf3, controller_type::hrconf4,
                                    controller_type::hrconf8, controller_type::hrconf9}) {
        for (const Row& row : rows) {
            makeController(type, 1, 3);
            addArrayOf(2);
            addLogicalDrive(0, row.level, 4000, write_cache::on);
            plan().readAhead = read_ahead::off;
            EXPECT_TRUE(generate());
            ASSERT_GT(lines().size(), 0U);
            EXPECT_EQ(lines()[0], row.line);
            EXPECT_EQ(lines().size(), 1U);
        }
    }
}

TEST_F(HRCommandsTest, RebuildRateAndStripeSizeAreWritten) {
    struct Row {
        std::int32_t rebuildRate;
        std::int32_t stripeSize;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {rebuild_rate::high, stripe::kb8,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 8  Name ARRAY0_LOGICAL0 "
         "Init_Priority HIGH Init_Method QUICK MAX 10 0 0 0 1 0 2 0 3 NOPROMPT "},
        {rebuild_rate::medium, stripe::kb16,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 16  Name ARRAY0_LOGICAL0 "
         "Init_Priority MED Init_Method QUICK MAX 10 0 0 0 1 0 2 0 3 NOPROMPT "},
        {rebuild_rate::low, stripe::kb4096,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 4096  Name ARRAY0_LOGICAL0 "
         "Init_Priority LOW Init_Method QUICK MAX 10 0 0 0 1 0 2 0 3 NOPROMPT "},
        {3, 11,
         "UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize ERROR  Name ARRAY0_LOGICAL0 "
         "Init_Priority ERROR Init_Method QUICK MAX 10 0 0 0 1 0 2 0 3 NOPROMPT "},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::hrconf4, 1, 3);
        addArrayOf(4);
        addLogicalDrive(0, raid_level::raid10);
        plan().rebuildRate = row.rebuildRate;
        plan().stripeSize = row.stripeSize;
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
    }
}

TEST_F(HRCommandsTest, BuildInitialisationLeavesTheMethodOut) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    plan().init = init_choice::build;
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
                              "Init_Priority HIGH MAX 1 0 0 0 1 NOPROMPT "}));
}

TEST_F(HRCommandsTest, ArraysAndHotsparesFollowEachOther) {
    style.pathPrefix = "C:\\";
    addArray({{1, 0}, {2, 3}});
    addArray({{2, 4}, {4, 35}});
    addLogicalDrive(1, raid_level::raid1);
    addLogicalDrive(0, raid_level::raid0);
    addHotspare(1, 8);
    addHotspare(2, 9);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"C:\\UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE Stripesize 64  Name "
                              "ARRAY0_LOGICAL1 Init_Priority HIGH MAX 0 0 0 1 3 NOPROMPT ",
                              "C:\\UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY1_LOGICAL0 "
                              "Init_Priority HIGH Init_Method QUICK MAX 1 1 4 3 35 NOPROMPT ",
                              "C:\\UTIL.BAT HRCONF SETSTATE 3 DEVICE 0 8 HSP noprompt",
                              "C:\\UTIL.BAT HRCONF SETSTATE 3 DEVICE 1 9 HSP noprompt"}));
}

TEST_F(HRCommandsTest, StripeSizeNoneIsReplacedForTheLinesAndStaysInThePlan) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::kb64);
}

TEST_F(HRCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 2);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering HRCommands::doArraysAndLogicalDrives\n"
                        "Exiting HRCommands::doArraysAndLogicalDrives, returning true\n"
                        "Entering HRCommands::doHotspareDrives\n"
                        "Exiting HRCommands::doHotspareDrives, returning true\n");
}

TEST_F(HRCommandsTest, NoArrayFails) {
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering HRCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach controller must have at least one array.\n"
                        "Could not configure Kestrix-A10, controller 4.\n\n"
                        "Exiting HRCommands::doArraysAndLogicalDrives, returning false(1)\n");
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(HRCommandsTest, ArrayWithoutLogicalDriveFailsAndKeepsEarlierLines) {
    showTraces();
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 5);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering HRCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-A10, controller 4.\n\n"
                        "Exiting HRCommands::doArraysAndLogicalDrives, returning false(2)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
                              "Init_Priority HIGH Init_Method QUICK MAX 1 0 0 0 1 NOPROMPT "}));
}

TEST_F(HRCommandsTest, SecondLogicalDriveOfAnArrayFailsAfterTheLine) {
    showTraces();
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addLogicalDrive(1, raid_level::raid1);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering HRCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tError in Policy.1:  Only one logical drive may be created "
                        "per array on Kestrix-A10 controllers.\n\n"
                        "Exiting HRCommands::doArraysAndLogicalDrives, returning false(3)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT HRCONF CREATE 3 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
                              "Init_Priority HIGH Init_Method QUICK MAX 1 0 0 0 1 NOPROMPT "}));
}

} // namespace
} // namespace zolex::test
