#include "commands/ARCCommands.h"

#include "commands/GeneratorFixture.h"

namespace zolex::test {
namespace {

class ARCCommandsTest : public GeneratorFixture {
  protected:
    void SetUp() override { makeController(controller_type::arcconf7, 7, 2); }

    /// The lines of the plan at hand.
    Lines generateFresh() {
        EXPECT_TRUE(generate());
        return lines();
    }
};

TEST_F(ARCCommandsTest, LevelsGiveTheirLine) {
    struct Row {
        std::int32_t level;
        std::int32_t sizeMb;
        const char* line;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid0, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "MAX 0 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid1, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 1 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid1E, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 1E 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid5, 5000,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK 5000 5 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid5E, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 5E 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid5EE, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 5EE 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid6, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 6 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid10, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 10 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid50, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 50 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::raid60, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX 60 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::volume, 700,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
         "700 VOLUME 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::simpleVolume, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "MAX SIMPLE VOLUME 0 0 0 1 0 2 NOPROMPT "},
        {raid_level::none, sizeFill,
         "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
         "Method QUICK MAX ERROR 0 0 0 1 0 2 NOPROMPT "},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::arcconf7, 7, 2);
        addArrayOf(3);
        addLogicalDrive(0, row.level, row.sizeMb);
        EXPECT_EQ(generateFresh(), (Lines{row.line}));
    }
}

TEST_F(ARCCommandsTest, BuildInitialisationLeavesTheMethodOut) {
    addArrayOf(3);
    addLogicalDrive(0, raid_level::raid5);
    plan().init = init_choice::build;
    plan().stripeSize = stripe::kb16;
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 16  Name ARRAY0_LOGICAL0 "
                     "MAX 5 0 0 0 1 0 2 NOPROMPT "}));
}

TEST_F(ARCCommandsTest, StripeSizeIsCappedByLevelAndDrives) {
    struct Row {
        std::int32_t level;
        std::size_t drives;
        std::int32_t code;
        const char* text;
    };
    // clang-format off
    const Row rows[] = {
        {raid_level::raid6,   4, stripe::kb1024, "1024"},
        {raid_level::raid6,   5, stripe::kb1024, "512"},
        {raid_level::raid6,   5, stripe::kb512,  "512"},
        {raid_level::raid6,   5, stripe::kb256,  "256"},
        {raid_level::raid6,   6, stripe::kb512,  "256"},
        {raid_level::raid6,   8, stripe::kb4096, "256"},
        {raid_level::raid6,   8, stripe::kb128,  "128"},
        {raid_level::raid6,   9, stripe::kb256,  "128"},
        {raid_level::raid6,  11, stripe::kb1024, "128"},
        {raid_level::raid6,  11, stripe::kb64,   "64"},
        {raid_level::raid6,  12, stripe::kb128,  "64"},
        {raid_level::raid6,  16, stripe::kb1024, "64"},
        {raid_level::raid6,  12, stripe::kb8,    "8"},
        {raid_level::raid6,  12, stripe::none,   "64"},
        {raid_level::raid6,  12, 11,             "ERROR"},
        {raid_level::raid6,  12, -1,             "ERROR"},
        {raid_level::raid60,  8, stripe::kb1024, "1024"},
        {raid_level::raid60, 10, stripe::kb1024, "512"},
        {raid_level::raid60, 10, stripe::kb256,  "256"},
        {raid_level::raid60, 11, stripe::kb1024, "1024"},
        {raid_level::raid60, 12, stripe::kb512,  "256"},
        {raid_level::raid60, 16, stripe::kb1024, "256"},
        {raid_level::raid60, 16, stripe::kb128,  "128"},
        {raid_level::raid5,  12, stripe::kb1024, "1024"},
        {raid_level::raid50, 12, stripe::kb1024, "1024"},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(controller_type::arcconf7, 7, 2);
        addArrayOf(row.drives);
        addLogicalDrive(0, row.level);
        plan().stripeSize = row.code;
        const Lines made = generateFresh();
        ASSERT_EQ(made.size(), 1U);
        const std::string start =
            std::string("UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize ") + row.text +
            "  Name ARRAY0_LOGICAL0 Method QUICK MAX ";
        EXPECT_EQ(made.front().substr(0, start.size()), start)
            << row.level << " " << row.drives << " " << row.code;
    }
}

TEST_F(ARCCommandsTest, CappedStripeSizeHoldsForItsArrayOnly) {
    addArrayOf(6);
    addArrayOf(3, 2);
    addLogicalDrive(0, raid_level::raid6);
    addLogicalDrive(1, raid_level::raid5);
    plan().stripeSize = stripe::kb1024;
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name ARRAY0_LOGICAL0 "
                     "Method QUICK MAX 6 0 0 0 1 0 2 0 3 0 4 0 5 NOPROMPT ",
                     "UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 1024  Name ARRAY1_LOGICAL1 "
                     "Method QUICK MAX 5 1 0 1 1 1 2 NOPROMPT "}));
    EXPECT_EQ(plan().stripeSize, stripe::kb1024);
}

TEST_F(ARCCommandsTest, ReadCacheLineIsWrittenForOtherModesThanAdaptiveAndOn) {
    struct Row {
        std::int32_t readAhead;
        Lines cacheLines;
    };
    const Row rows[] = {
        {read_ahead::adaptive, {}},
        {read_ahead::on, {}},
        {read_ahead::off, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 roff NOPROMPT "}},
        {3, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 ron NOPROMPT "}},
        {-1, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 ron NOPROMPT "}},
    };
    for (const Row& row : rows) {
        makeController(controller_type::arcconf7, 7, 2);
        addArrayOf(2);
        addLogicalDrive(0, raid_level::raid1);
        plan().readAhead = row.readAhead;
        Lines expected{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method QUICK "
                       "MAX 1 0 0 0 1 NOPROMPT "};
        expected.insert(expected.end(), row.cacheLines.begin(), row.cacheLines.end());
        EXPECT_EQ(generateFresh(), expected) << row.readAhead;
    }
}

TEST_F(ARCCommandsTest, WriteCacheWordDependsOnTheModel) {
    struct Row {
        std::int32_t type;
        std::int32_t subtype;
        std::int32_t writeCache;
        Lines cacheLines;
    };
    // clang-format off
    const Row rows[] = {
        {2,  -1, write_cache::off, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wt NOPROMPT "}},
        {2,  -1, write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wb NOPROMPT "}},
        {2,  7,  write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wb NOPROMPT "}},
        {2,  -1, write_cache::notGiven, {}},
        {7,  1,  write_cache::off, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wt NOPROMPT "}},
        {7,  1,  write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wb NOPROMPT "}},
        {7,  7,  write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wbb NOPROMPT "}},
        {7,  -1, write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wbb NOPROMPT "}},
        {11, 1,  write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wb NOPROMPT "}},
        {11, 2,  write_cache::on,  {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wbb NOPROMPT "}},
        {11, 2,  write_cache::off, {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wt NOPROMPT "}},
        {11, 2,  write_cache::notGiven, {}},
        {11, 2,  3,                {"UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wb NOPROMPT "}},
    };
    // clang-format on
    for (const Row& row : rows) {
        makeController(row.type, row.subtype, 2);
        addArrayOf(2);
        addLogicalDrive(0, raid_level::raid1, sizeFill, row.writeCache);
        Lines expected{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method QUICK "
                       "MAX 1 0 0 0 1 NOPROMPT "};
        expected.insert(expected.end(), row.cacheLines.begin(), row.cacheLines.end());
        EXPECT_EQ(generateFresh(), expected)
            << row.type << " " << row.subtype << " " << row.writeCache;
    }
}

TEST_F(ARCCommandsTest, CacheLinesFollowTheirArrayAndCountFromOne) {
    style.pathPrefix = "C:\\U\\";
    addArray({{1, 0}, {2, 3}});
    addArray({{4, 35}});
    addLogicalDrive(1, raid_level::raid0, sizeFill, write_cache::off);
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::on);
    addHotspare(1, 8);
    addHotspare(3, 9);
    plan().readAhead = read_ahead::off;
    EXPECT_TRUE(generate());
    EXPECT_EQ(lines(),
              (Lines{"C:\\U\\UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL1 Method "
                     "QUICK MAX 1 0 0 1 3 NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 roff NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wbb NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE Stripesize 256  Name "
                     "ARRAY1_LOGICAL0 MAX 0 3 35 NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 2 roff NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 2 wt NOPROMPT ",
                     "C:\\U\\UTIL.BAT ARCCONF SETSTATE 2 DEVICE 0 8 HSP",
                     "C:\\U\\UTIL.BAT ARCCONF SETSTATE 2 DEVICE 2 9 HSP"}));
}

TEST_F(ARCCommandsTest, StripeSizeNoneIsReplacedForTheLinesAndStaysInThePlan) {
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    EXPECT_TRUE(generate());
    EXPECT_EQ(plan().stripeSize, stripe::none);
    EXPECT_EQ(finalStripeSize(controller.type(), plan().stripeSize), stripe::kb256);
}

TEST_F(ARCCommandsTest, TracesStandAtTheirPlaces) {
    showTraces();
    addArrayOf(2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 2);
    EXPECT_TRUE(generate());
    EXPECT_EQ(output(), "Entering ARCCommands::doArraysAndLogicalDrives\n"
                        "Exiting ARCCommands::doArraysAndLogicalDrives, returning true\n"
                        "Entering ARCCommands::doHotspareDrives\n"
                        "Exiting ARCCommands::doHotspareDrives, returning true\n");
}

TEST_F(ARCCommandsTest, NoArrayFails) {
    showTraces();
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering ARCCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach controller must have at least one array.\n"
                        "Could not configure Kestrix-B1, controller 4.\n\n"
                        "Exiting ARCCommands::doArraysAndLogicalDrives, returning false(1)\n");
    EXPECT_EQ(lines(), Lines{});
}

TEST_F(ARCCommandsTest, ArrayWithoutLogicalDriveFailsAndKeepsEarlierLines) {
    showTraces();
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1);
    addHotspare(1, 5);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering ARCCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-B1, controller 4.\n\n"
                        "Exiting ARCCommands::doArraysAndLogicalDrives, returning false(2)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method "
                              "QUICK MAX 1 0 0 0 1 NOPROMPT "}));
}

TEST_F(ARCCommandsTest, SecondLogicalDriveOfAnArrayFailsAfterTheCacheLines) {
    showTraces();
    addArrayOf(2);
    addArrayOf(2, 1, 2);
    addLogicalDrive(0, raid_level::raid1, sizeFill, write_cache::off);
    addLogicalDrive(0, raid_level::raid1);
    addLogicalDrive(1, raid_level::raid1);
    EXPECT_FALSE(generate());
    EXPECT_EQ(output(), "Entering ARCCommands::doArraysAndLogicalDrives\n"
                        "\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                        "Could not configure Kestrix-B1, controller 4.\n\n"
                        "Exiting ARCCommands::doArraysAndLogicalDrives, returning false(3)\n");
    EXPECT_EQ(lines(), (Lines{"UTIL.BAT ARCCONF CREATE 2 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method "
                              "QUICK MAX 1 0 0 0 1 NOPROMPT ",
                              "UTIL.BAT ARCCONF SETCACHE 2 LOGICALDRIVE 1 wt NOPROMPT "}));
}

} // namespace
} // namespace zolex::test
