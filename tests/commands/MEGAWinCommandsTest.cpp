#include "commands/MEGAWinCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

constexpr std::int32_t enclosure = 252;

class MEGAWinCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override {
        makeController(controller_type::megaRaid, 1, 1);
        addDrives(1, enclosure);
    }

    void addDrives(std::int32_t channel, std::int32_t targetId) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            ASSERT_TRUE(controller.addDrive(channel, id, 1000, "SAS", targetId));
        }
    }
};

TEST_F(MEGAWinCommandsTest, LevelsGiveTheirCommandAndDriveList) {
    struct Row {
        std::int32_t level;
        std::size_t drives;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid0, 1,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   ADRA   -strpsz 64  -a0"},
        {raid_level::raid1, 2,
         "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 252:0,252:1 ]   WB   ADRA   -strpsz 64  -a0"},
        {raid_level::raid5, 3,
         "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 252:0,252:1,252:2 ]   WB   ADRA   -strpsz 64  -a0"},
        {raid_level::raid6, 4,
         "UTIL.BAT MEGACLI  -CfgLdAdd R6   [ 252:0,252:1,252:2,252:3 ]   WB   ADRA   "
         "-strpsz 64  -a0"},
        {raid_level::raid10, 6,
         "UTIL.BAT MEGACLI  -CfgSpanAdd R10    -Array0[ 252:0,252:1 ]  -Array1[ 252:2,252:3 ]  "
         "-Array2[ 252:4,252:5 ]   WB   ADRA   -strpsz 64 -a0"},
        {raid_level::raid50, 6,
         "UTIL.BAT MEGACLI  -CfgSpanAdd R50    -Array0[ 252:0,252:1,252:2 ]  "
         "-Array1[ 252:3,252:4,252:5 ]   WB   ADRA   -strpsz 64 -a0"},
        {raid_level::raid60, 8,
         "UTIL.BAT MEGACLI  -CfgSpanAdd R60    -Array0[ 252:0,252:1,252:2,252:3 ]  "
         "-Array1[ 252:4,252:5,252:6,252:7 ]   WB   ADRA   -strpsz 64 -a0"},
        // An odd drive is left out of the spans.
        {raid_level::raid10, 5,
         "UTIL.BAT MEGACLI  -CfgSpanAdd R10    -Array0[ 252:0,252:1 ]  -Array1[ 252:2,252:3 ]   "
         "WB   ADRA   -strpsz 64 -a0"},
        {raid_level::raid50, 7,
         "UTIL.BAT MEGACLI  -CfgSpanAdd R50    -Array0[ 252:0,252:1,252:2 ]  "
         "-Array1[ 252:3,252:4,252:5 ]   WB   ADRA   -strpsz 64 -a0"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::megaRaid, 1, 1);
        addArrayOf(row.drives);
        addLogicalDrive(0, row.level, sizeFill, write_cache::on);
        plan().stripeSize = stripe::kb64;
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
        EXPECT_EQ(lines().size(), 1U);
    }
}

TEST_F(MEGAWinCommandsTest, LevelsWithoutCommandGiveErrorWithoutDrivesAndStripe) {
    for (const std::int32_t level :
         {raid_level::raid1E, raid_level::raid5E, raid_level::raid5EE, raid_level::volume,
          raid_level::simpleVolume, raid_level::none, raid_level::notGiven}) {
        makeController(controller_type::megaRaid, 1, 1);
        addArrayOf(4);
        addLogicalDrive(0, level, 500, write_cache::on);
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], "UTIL.BAT MEGACLI ERROR    WB   ADRA   { -sz500 }  -a0") << level;
    }
}

TEST_F(MEGAWinCommandsTest, CacheAndReadAheadOptionsKeepTheirBlankWhenEmpty) {
    struct Row {
        std::int32_t writeCache;
        std::int32_t readAhead;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {write_cache::off,      read_ahead::adaptive,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WT   ADRA   -strpsz 64  -a0"},
        {write_cache::on,       read_ahead::on,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   RA   -strpsz 64  -a0"},
        {write_cache::on,       read_ahead::off,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   NORA   -strpsz 64  -a0"},
        {write_cache::notGiven, read_ahead::off,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]    NORA   -strpsz 64  -a0"},
        {write_cache::off,      3,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WT    -strpsz 64  -a0"},
        {write_cache::notGiven, -1,
         "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]     -strpsz 64  -a0"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::megaRaid, 1, 1);
        addArrayOf(1);
        addLogicalDrive(0, raid_level::raid0, sizeFill, row.writeCache);
        plan().readAhead = row.readAhead;
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
    }
}

TEST_F(MEGAWinCommandsTest, StripeSizesAreWrittenUpTo128) {
    struct Row {
        std::int32_t code;
        const char* plainEnd;
        const char* spanEnd;
    };
    // clang-format off
    const Row rows[] = {
        {stripe::kb8,    "  -strpsz 8  -a0",   "  -strpsz 8 -a0"},
        {stripe::kb16,   "  -strpsz 16  -a0",  "  -strpsz 16 -a0"},
        {stripe::kb32,   "  -strpsz 32  -a0",  "  -strpsz 32 -a0"},
        {stripe::kb64,   "  -strpsz 64  -a0",  "  -strpsz 64 -a0"},
        {stripe::kb128,  "  -strpsz 128  -a0", "  -strpsz 128 -a0"},
        {stripe::kb256,  "  -a0",              "  -a0"},
        {stripe::kb512,  "  -a0",              "  -a0"},
        {stripe::kb4096, "  -a0",              "  -a0"},
        {11,             "  -a0",              "  -a0"},
        {-1,             "  -a0",              "  -a0"},
        // None: the utility's default.
        {stripe::none,   "  -strpsz 64  -a0",  "  -strpsz 64 -a0"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::megaRaid, 1, 1);
        addArrayOf(2);
        addArrayOf(2, 1, 2);
        addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
        addLogicalDrive(1, raid_level::raid10, sizeFill, write_cache::on);
        plan().stripeSize = row.code;
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 1U);
        EXPECT_EQ(lines()[0],
                  std::string("UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 252:0,252:1 ]   WB   ADRA ") +
                      row.plainEnd);
        EXPECT_EQ(lines()[1],
                  std::string(
                      "UTIL.BAT MEGACLI  -CfgSpanAdd R10    -Array0[ 252:2,252:3 ]   WB   ADRA ") +
                      row.spanEnd);
    }
}

TEST_F(MEGAWinCommandsTest, StripeSizeNoneIsReplacedForTheLinesAndStaysInThePlan) {
    addArrayOf(1);
    addLogicalDrive(0, raid_level::raid0);
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::kb64);
}

TEST_F(MEGAWinCommandsTest, SizeIsWrittenUnlessFill) {
    addArrayOf(3);
    addArrayOf(4, 1, 3);
    addLogicalDrive(0, raid_level::raid5, 12345, write_cache::on);
    addLogicalDrive(1, raid_level::raid10, 2147483647, write_cache::off);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 252:0,252:1,252:2 ]   WB   ADRA   "
                     "{ -sz12345 }  -strpsz 64  -a0",
                     "UTIL.BAT MEGACLI  -CfgSpanAdd R10    -Array0[ 252:3,252:4 ]  "
                     "-Array1[ 252:5,252:6 ]   WT   ADRA   { -sz2147483647 }  -strpsz 64 -a0"}));
}

TEST_F(MEGAWinCommandsTest, DrivesAreNamedByTheTargetIdOfTheirPosition) {
    addDrives(2, 8);
    addArray({{2, 5}, {1, 35}});
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
    addHotspare(2, 7);
    addHotspare(1, 3);
    controller.setScanOrder(3);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 8:5,252:35 ]   WB   ADRA   "
                              "-strpsz 64  -a2",
                              "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 8:7,252:3 ] -a2"}));
}

TEST_F(MEGAWinCommandsTest, NothingStandsBeforeTheColonWithoutAValidTargetIdTable) {
    controller.clearChannelReassignment();
    addArrayOf(2);
    addArrayOf(4, 1, 2);
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
    addLogicalDrive(1, raid_level::raid10, sizeFill, write_cache::on);
    addHotspare(1, 9);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R1   [ :0,:1 ]   WB   ADRA   -strpsz 64  -a0",
                     "UTIL.BAT MEGACLI  -CfgSpanAdd R10    -Array0[ :2,:3 ]  -Array1[ :4,:5 ]   "
                     "WB   ADRA   -strpsz 64 -a0",
                     "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 252:9 ] -a0"}));
}

TEST_F(MEGAWinCommandsTest, DrivesWithoutOwnTargetIdHaveMinusOne) {
    controller.addDrive(3, 0, 1000, "SAS");
    addArray({{3, 0}, {3, 1}});
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
    addHotspare(3, 2);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R1   [ -1:0,-1:1 ]   WB   ADRA   "
                              "-strpsz 64  -a0",
                              "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ -1:2 ] -a0"}));
}

TEST_F(MEGAWinCommandsTest, TheFirstLogicalDriveOfAnArrayIsWritten) {
    addArrayOf(1);
    addArrayOf(1, 1, 1);
    addLogicalDrive(1, raid_level::raid0, 100, write_cache::on);
    addLogicalDrive(0, raid_level::raid0, 200, write_cache::off);
    addLogicalDrive(0, raid_level::raid0, 300, write_cache::on);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WT   ADRA   "
                              "{ -sz200 }  -strpsz 64  -a0",
                              "UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:1 ]   WB   ADRA   "
                              "{ -sz100 }  -strpsz 64  -a0"}));
}

TEST_F(MEGAWinCommandsTest, PathPrefixStandsBeforeTheUtilityCommand) {
    style.pathPrefix = "C:\\RAID\\";
    addArrayOf(1);
    addLogicalDrive(0, raid_level::raid0, sizeFill, write_cache::on);
    addHotspare(1, 1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"C:\\RAID\\UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   ADRA   "
                              "-strpsz 64  -a0",
                              "C:\\RAID\\UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 252:1 ] -a0"}));
}

TEST_F(MEGAWinCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(1);
    addLogicalDrive(0, raid_level::raid0, sizeFill, write_cache::on);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering MEGAWinCommands::doArraysAndLogicalDrives\n"
                        "Entering MEGAWinCommands::determineCommand, raidLevel=0\n"
                        "Command buffer=UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   ADRA   "
                        "-strpsz 64  -a0, length=72\n"
                        "Entering MEGAWinCommands::doHotspareDrives\n"
                        "Exiting MEGAWinCommands::doHotspareDrives, returning true\n"
                        "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning true\n");
}

TEST_F(MEGAWinCommandsTest, TheLevelIsLoggedAsItsCode) {
    showTraces();
    addArrayOf(6);
    addLogicalDrive(0, raid_level::raid50);
    EXPECT_TRUE(generate());
    EXPECT_NE(output().find("Entering MEGAWinCommands::determineCommand, raidLevel=8\n"),
              std::string::npos);
}

TEST_F(MEGAWinCommandsTest, NothingIsPrintedBelowTheTraceLevel) {
    printer.setVerbosity(level::detail);
    addArrayOf(1);
    addLogicalDrive(0, raid_level::raid0);
    addHotspare(1, 1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "");
}

TEST_F(MEGAWinCommandsTest, NoArrayFails) {
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering MEGAWinCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach controller must have at least one array.\n"
                        "Could not configure LSI-MegaRAID-8480, controller 4.\n\n"
                        "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning false(1)\n");
    EXPECT_EQ(lines(), Lines{});
    EXPECT_EQ(plan().stripeSize, stripe::none);
}

TEST_F(MEGAWinCommandsTest, ArrayWithoutLogicalDriveFailsAndKeepsEarlierLines) {
    addArrayOf(1);
    addArrayOf(1, 1, 1);
    addLogicalDrive(0, raid_level::raid0, sizeFill, write_cache::on);
    addHotspare(1, 5);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure LSI-MegaRAID-8480, controller 4.\n\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   ADRA   "
                              "-strpsz 64  -a0"}));
}

TEST_F(MEGAWinCommandsTest, ArrayWithoutLogicalDriveLogsItsExit) {
    showTraces();
    addArrayOf(1);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering MEGAWinCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure LSI-MegaRAID-8480, controller 4.\n\n"
                        "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning false(2)\n");
}

TEST_F(MEGAWinCommandsTest, HotspareOutsideTheDrivePositionsFailsWithoutALine) {
    for (const DrivePosition position : {DrivePosition{5, 0}, DrivePosition{1, 36}}) {
        showTraces();
        makeController(controller_type::megaRaid, 1, 1);
        addArrayOf(1);
        addLogicalDrive(0, raid_level::raid0, sizeFill, write_cache::on);
        addHotspare(1, 1);
        addHotspare(position.channel, position.id);
        EXPECT_FALSE(generate());
        EXPECT_EQ(output(),
                  "Entering MEGAWinCommands::doArraysAndLogicalDrives\n"
                  "Entering MEGAWinCommands::determineCommand, raidLevel=0\n"
                  "Command buffer=UTIL.BAT MEGACLI  -CfgLdAdd R0   [ 252:0 ]   WB   ADRA   "
                  "-strpsz 64  -a0, length=72\n"
                  "Entering MEGAWinCommands::doHotspareDrives\n"
                  "Exiting MEGAWinCommands::doHotspareDrives, returning false(1)\n"
                  "\n#### ERROR\n\tAn internal error has occurred.\n"
                  "Controller=LSI-MegaRAID-8480\n\n"
                  "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning false(4)\n");
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines().size(), 1U);
    }
}

TEST_F(MEGAWinCommandsTest, HotsparesKeepTheirTargetIdWithoutAValidTargetIdTable) {
    addDrives(2, 0);
    controller.clearChannelReassignment();
    addArray({{2, 0}, {2, 1}});
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
    addHotspare(2, 3);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R1   [ :0,:1 ]   WB   ADRA   -strpsz 64  -a0",
                     "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 0:3 ] -a0"}));
}

TEST_F(MEGAWinCommandsTest, SpansOfAnotherLevelAreRefused) {
    addArrayOf(4);
    MEGAWinCommands generator({controller, 4, plan(), style, report});
    CString list;
    EXPECT_FALSE(generator.appendSpans(raid_level::raid5, plan().arrays().front(), list));
    EXPECT_EQ(list, "");
    EXPECT_EQ(output(), "Invalid RAID level specified=3\n");
    EXPECT_TRUE(generator.appendSpans(raid_level::raid10, plan().arrays().front(), list));
    EXPECT_EQ(list, " -Array0[ 252:0,252:1 ]  -Array1[ 252:2,252:3 ] ");
    EXPECT_EQ(output(), "");
}

} // namespace
} // namespace zolex::test
