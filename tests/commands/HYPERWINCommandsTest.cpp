#include "commands/HYPERWINCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

class HYPERWINCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override { makeController(controller_type::lsiIde, 1, 1); }

    /// Generates with all traces and expects a failure without a line.
    void expectFailure(const std::string& error, int exit) {
        showTraces();
        EXPECT_FALSE(generate());
        EXPECT_EQ(output(), "Entering HYPERWINCommands::doArraysAndLogicalDrives\n"
                            "\n#### ERROR\n\t" +
                                error +
                                "\nExiting HYPERWINCommands::doArraysAndLogicalDrives, returning "
                                "false(" +
                                std::to_string(exit) + ")\n");
        EXPECT_EQ(lines(), Lines{});
    }
};

TEST_F(HYPERWINCommandsTest, LevelsGiveTheirLine) {
    struct Row {
        std::int32_t level;
        std::int32_t stripeSize;
        bool hotspare;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid1,  stripe::kb64,   false, "UTIL.BAT HYPERWIN /AM  /S "},
        {raid_level::raid0,  stripe::kb32,   false, "UTIL.BAT HYPERWIN /AS32  /S "},
        {raid_level::raid0,  stripe::kb4096, false, "UTIL.BAT HYPERWIN /AS4096  /S "},
        {raid_level::raid0,  stripe::none,   false, "UTIL.BAT HYPERWIN /AS64  /S "},
        {raid_level::raid0,  stripe::kb128,  true,  "UTIL.BAT HYPERWIN /AS128 /!  /S "},
        {raid_level::raid5,  stripe::kb64,   false, "UTIL.BAT HYPERWIN /A /S "},
        {raid_level::volume, stripe::kb64,   true,  "UTIL.BAT HYPERWIN /A /S "},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::lsiIde, 1, 1);
        addArrayOf(2);
        addLogicalDrive(0, row.level);
        plan().stripeSize = row.stripeSize;
        if (row.hotspare) {
            addHotspare(1, 2);
        }
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
        EXPECT_EQ(lines().size(), 1U);
    }
}

TEST_F(HYPERWINCommandsTest, WriteCacheGivesASecondLine) {
    struct Row {
        std::int32_t writeCache;
        const char* line;
    };
    const Row rows[] = {
        {write_cache::off, "UTIL.BAT HYPERWIN /OWR"},
        {write_cache::on, "UTIL.BAT HYPERWIN /OW"},
        {3, "UTIL.BAT HYPERWIN /OW"},
    };
    for (const Row& row : rows) {
        makeController(controller_type::lsiIde, 1, 1);
        addArrayOf(2);
        addLogicalDrive(0, raid_level::raid1, sizeFill, row.writeCache);
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 1U);
        EXPECT_EQ(lines()[0], "UTIL.BAT HYPERWIN /AM  /S ");
        EXPECT_EQ(lines()[1], row.line);
        EXPECT_EQ(lines().size(), 2U);
    }
}

TEST_F(HYPERWINCommandsTest, PathPrefixStandsBeforeTheUtilityCommand) {
    style.pathPrefix = "C:\\R\\";
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::off);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"C:\\R\\UTIL.BAT HYPERWIN /AM  /S ", "C:\\R\\UTIL.BAT HYPERWIN /OWR"}));
}

TEST_F(HYPERWINCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering HYPERWINCommands::doArraysAndLogicalDrives\n"
                        "Exiting HYPERWINCommands::doArraysAndLogicalDrives, returning true\n");
}

TEST_F(HYPERWINCommandsTest, StripeSizeNoneIsReplacedForTheLinesAndStaysInThePlan) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::kb64);
}

TEST_F(HYPERWINCommandsTest, NoArrayFails) {
    addLogicalDrive(0, raid_level::raid1);
    expectFailure("Each controller must have at least one array.\n"
                  "Could not configure LSI-IDEal-RAID, controller 4.\n",
                  1);
    EXPECT_EQ(plan().stripeSize, stripe::none);
}

TEST_F(HYPERWINCommandsTest, NoLogicalDriveFails) {
    addArrayOf(2);
    expectFailure("Each array must have at least one logical drive.\n"
                  "Could not configure LSI-IDEal-RAID, controller 4.\n",
                  2);
}

TEST_F(HYPERWINCommandsTest, SecondLogicalDriveFails) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addLogicalDrive(0, raid_level::raid1);
    expectFailure("Error in Policy.1:  Only one logical drive may be created per array on "
                  "LSI-IDEal-RAID controllers.\n",
                  3);
}

TEST_F(HYPERWINCommandsTest, LogicalDriveOfAnotherArrayFails) {
    addArrayOf(1);
    addArrayOf(1, 1, 1);
    addLogicalDrive(1, raid_level::raid0);
    expectFailure("Error in Policy.1:  Only one logical drive may be created per array on "
                  "LSI-IDEal-RAID controllers.\n",
                  3);
}

TEST_F(HYPERWINCommandsTest, SecondArrayWithoutLogicalDriveIsNotLookedAt) {
    addArrayOf(2);
    addArrayOf(1, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT HYPERWIN /AM  /S "}));
    EXPECT_EQ(output(), "");
}

TEST_F(HYPERWINCommandsTest, SizeOtherThanFillFails) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1, 1000);
    expectFailure("Error in Policy.1:  You may only specify FILL or 100% for 'size' on "
                  "LSI-IDEal-RAID controllers.\n",
                  4);
    EXPECT_EQ(plan().stripeSize, stripe::none);
}

TEST_F(HYPERWINCommandsTest, HotspareBesideAMirrorFails) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 2);
    expectFailure("Error in Policy.1:  Hot-spare drives are not supported with mirroring on "
                  "LSI-IDEal-RAID controllers.\n",
                  5);
}

TEST_F(HYPERWINCommandsTest, SecondHotspareFails) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid0);
    addHotspare(1, 2);
    addHotspare(1, 3);
    expectFailure("Error in Policy.1:  You may only create one hot-spare drive on "
                  "LSI-IDEal-RAID controllers.\n",
                  6);
}

} // namespace
} // namespace zolex::test
