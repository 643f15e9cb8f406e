#include "commands/QTCSENDCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

class QTCSENDCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override { makeController(controller_type::family, 1, 2); }
};

TEST_F(QTCSENDCommandsTest, FirstLogicalDriveOfAnArrayListsTheDrives) {
    struct Row {
        std::int32_t level;
        std::int32_t sizeMb;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid0, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 0 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid1, 500,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 500 1 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid1E, 500,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 500 1E 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid5, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 5 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid5E, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 5E 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid5EE, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 5EE 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid6, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 6 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid10, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 10 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid50, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 50 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::raid60, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 60 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::volume, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX VOLUME 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::simpleVolume, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX SIMPLE VOLUME 1 0 1 1 1 2 NOPROMPT"},
        {raid_level::none, sizeFill,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX ERROR 1 0 1 1 1 2 NOPROMPT"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::family, 1, 2);
        addArrayOf(3);
        addLogicalDrive(0, row.level, row.sizeMb);
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 0U);
        EXPECT_EQ(lines()[0], row.line);
        EXPECT_EQ(lines().size(), 1U);
    }
}

TEST_F(QTCSENDCommandsTest, LaterLogicalDrivesNameTheArrayByItsLetter) {
    addArray({{1, 0}, {2, 0}});
    addArray({{1, 1}, {2, 1}, {3, 1}});
    addLogicalDrive(0, raid_level::raid1, 100);
    addLogicalDrive(1, raid_level::raid5, 200);
    addLogicalDrive(1, raid_level::raid0, 300);
    addLogicalDrive(0, raid_level::raid0, 400);
    addLogicalDrive(1, raid_level::raid1E, 500);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 100 1 1 0 2 0 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 400 0 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 200 5 1 1 2 1 3 1 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE B 300 0 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE B 500 1E NOPROMPT"}));
}

TEST_F(QTCSENDCommandsTest, FillAfterOthersTakesWhatTheyLeave) {
    // Three drives of 1000 MB. RAID 5 uses 2/3 of them: 300 MB take 450 MB of raw space.
    addArrayOf(3, 1, 0, 3000);
    addLogicalDrive(0, raid_level::raid5, 300);
    addLogicalDrive(0, raid_level::raid5, sizeFill);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 300 5 1 0 1 1 1 2 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 1700 5 NOPROMPT"}));
}

TEST_F(QTCSENDCommandsTest, FillCountsEveryDriveOfTheArrayWithItsOwnLevel) {
    // 6000 MB raw: RAID 5 over four drives takes 900 / 0.75, RAID 1E 501 / 0.5, RAID 0 10; half of
    // the 3788 MB that are left.
    addArrayOf(4, 1, 0, 6000);
    addArrayOf(2, 2, 0, 500);
    addLogicalDrive(0, raid_level::raid5, 900);
    addLogicalDrive(1, raid_level::raid1, 50);
    addLogicalDrive(0, raid_level::raid1E, sizeFill);
    addLogicalDrive(0, raid_level::raid1E, 501);
    addLogicalDrive(0, raid_level::raid0, 10);
    EXPECT_TRUE(generate());
    EXPECT_EQ(
        lines(),
        (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 900 5 1 0 1 1 1 2 1 3 NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 1894 1E NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 501 1E NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 10 0 NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 50 1 2 0 2 1 NOPROMPT"}));
}

TEST_F(QTCSENDCommandsTest, FillIsRoundedToTheNearestMegabyte) {
    struct Row {
        std::int64_t capacityMb;
        std::int32_t level;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        // 901 x 0.5 = 450.5
        {1001, raid_level::raid1E, "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 451 1E NOPROMPT"},
        {1000, raid_level::raid1E, "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 450 1E NOPROMPT"},
        // 901 x 2/3 = 600.67, 902 x 2/3 = 601.33
        {1001, raid_level::raid5,  "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 601 5 NOPROMPT"},
        {1002, raid_level::raid5,  "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 601 5 NOPROMPT"},
        {1003, raid_level::raid5,  "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 602 5 NOPROMPT"},
        // Beyond 32 bits.
        {6000000100, raid_level::raid0,
         "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 6000000000 0 NOPROMPT"},
        // The others take more than there is: rounded like every other.
        {50,   raid_level::raid0,  "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A -49 0 NOPROMPT"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::family, 1, 2);
        addArrayOf(3, 1, 0, row.capacityMb);
        addLogicalDrive(0, raid_level::raid0, 100);
        addLogicalDrive(0, row.level, sizeFill);
        EXPECT_TRUE(generate());
        ASSERT_GT(lines().size(), 1U);
        EXPECT_EQ(lines()[1], row.line);
    }
}

TEST_F(QTCSENDCommandsTest, FillBesideFillLeavesNothing) {
    addArrayOf(2, 1, 0, 2000);
    addLogicalDrive(0, raid_level::raid0, sizeFill);
    addLogicalDrive(0, raid_level::raid0, sizeFill);
    addLogicalDrive(0, raid_level::raid1, 30);
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 0 1 0 1 1 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 0 0 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 30 1 NOPROMPT"}));
}

TEST_F(QTCSENDCommandsTest, LevelWithoutUsableSpaceLeavesNothing) {
    // RAID 60 over four drives and RAID 5E over one have no room for data.
    addArrayOf(4, 1, 0, 4000);
    addArrayOf(1, 2, 0, 1000);
    addLogicalDrive(0, raid_level::raid60, 10);
    addLogicalDrive(0, raid_level::raid0, sizeFill);
    addLogicalDrive(1, raid_level::raid5E, 10);
    addLogicalDrive(1, raid_level::raid0, sizeFill);
    EXPECT_TRUE(generate());
    EXPECT_EQ(
        lines(),
        (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 10 60 1 0 1 1 1 2 1 3 NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE A 0 0 NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY 10 5E 2 0 NOPROMPT",
               "UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE B 0 0 NOPROMPT"}));
}

TEST_F(QTCSENDCommandsTest, HotsparesGetALineEach) {
    style.pathPrefix = "C:\\T\\";
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 3);
    addHotspare(4, 15);
    EXPECT_TRUE(generate());
    EXPECT_EQ(
        lines(),
        (Lines{"C:\\T\\UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 1 1 0 1 1 NOPROMPT",
               "C:\\T\\UTIL.BAT QTCSEND SETSTATE 2 1 3 HSP",
               "C:\\T\\UTIL.BAT QTCSEND SETSTATE 2 4 15 HSP"}));
}

TEST_F(QTCSENDCommandsTest, StripeSizeNoneIsReplacedForTheLinesAndStaysInThePlan) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::kb8);
}

TEST_F(QTCSENDCommandsTest, GivenStripeSizeStays) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    plan().stripeSize = stripe::kb32;
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::kb32);
}

TEST_F(QTCSENDCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering QTCSENDCommands::doArraysAndLogicalDrives\n"
                        "Exiting QTCSENDCommands::doArraysAndLogicalDrives, returning true\n"
                        "Entering QTCSENDCommands::doHotspareDrives\n"
                        "Exiting QTCSENDCommands::doHotspareDrives, returning true\n");
}

TEST_F(QTCSENDCommandsTest, NoArrayFails) {
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering QTCSENDCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach controller must have at least one array.\n"
                        "Could not configure Kestrix-A1, controller 4.\n\n"
                        "Exiting QTCSENDCommands::doArraysAndLogicalDrives, returning false(1)\n");
    EXPECT_EQ(lines(), Lines{});
    EXPECT_EQ(plan().stripeSize, stripe::none);
}

TEST_F(QTCSENDCommandsTest, ArrayWithoutLogicalDriveFailsAndKeepsEarlierLines) {
    showTraces();
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 4);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering QTCSENDCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-A1, controller 4.\n\n"
                        "Exiting QTCSENDCommands::doArraysAndLogicalDrives, returning false(2)\n");
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT QTCSEND CREATE 2 LOGICALDRIVE NEWARRAY MAX 1 1 0 1 1 NOPROMPT"}));
}

} // namespace
} // namespace zolex::test
