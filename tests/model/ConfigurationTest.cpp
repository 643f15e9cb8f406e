#include "model/Configuration.h"

#include "driver/Printer.h"
#include "show/Dumps.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>

namespace zolex {
namespace {

std::string dumpOf(const RAIDConfiguration& configuration) {
    test::FakeConsole console;
    Printer printer(console);
    printer.printAlways(show::dumpText(configuration));
    EXPECT_EQ(console.error, "");
    return console.output;
}

RaidArray arrayOf(std::int32_t drives) {
    RaidArray array;
    for (std::int32_t id = 0; id < drives; ++id) {
        EXPECT_TRUE(array.addDrive({1, id}));
    }
    return array;
}

TEST(RaidArray, AFreshArrayIsEmpty) {
    const RaidArray array;
    EXPECT_TRUE(array.drives().empty());
    EXPECT_TRUE(array.driveNumbers().empty());
    EXPECT_EQ(array.driveCount(), 0U);
    EXPECT_EQ(array.capacityMb, -1);
    EXPECT_FALSE(array.allRemaining);
    EXPECT_FALSE(array.tooManyDrives);
    EXPECT_TRUE(array.text.isEmpty());
}

TEST(RaidArray, TheThirtyThirdDriveIsRefused) {
    RaidArray array;
    for (std::int32_t i = 0; i < 32; ++i) {
        EXPECT_TRUE(array.addDrive({1 + i / 16, i % 16})) << i;
    }
    EXPECT_FALSE(array.addDrive({4, 35}));
    ASSERT_EQ(array.drives().size(), 32U);
    EXPECT_EQ(array.drives()[0], (DrivePosition{1, 0}));
    EXPECT_EQ(array.drives()[31], (DrivePosition{2, 15}));
}

TEST(RaidArray, TheThirtyThirdDriveNumberIsRefused) {
    RaidArray array;
    for (std::int32_t i = 1; i <= 32; ++i) {
        EXPECT_TRUE(array.addDriveNumber(i)) << i;
    }
    EXPECT_FALSE(array.addDriveNumber(33));
    ASSERT_EQ(array.driveNumbers().size(), 32U);
    EXPECT_EQ(array.driveNumbers()[0], 1);
    EXPECT_EQ(array.driveNumbers()[31], 32);
}

TEST(RaidArray, DrivesCountAsPositionsOrElseAsNumbers) {
    RaidArray array;
    array.addDriveNumber(5);
    array.addDriveNumber(6);
    EXPECT_EQ(array.driveCount(), 2U);
    array.addDrive({1, 0});
    EXPECT_EQ(array.driveCount(), 1U);
    array.addDrive({1, 1});
    array.addDrive({1, 2});
    EXPECT_EQ(array.driveCount(), 3U);
    array.setDrive(1, {2, 9});
    EXPECT_EQ(array.drives()[1], (DrivePosition{2, 9}));
}

TEST(LogicalDrive, AFreshOneFillsAnArrayThatIsNotChosen) {
    const LogicalDrive drive;
    EXPECT_EQ(drive.raidLevel, -1);
    EXPECT_EQ(drive.sizeMb, -101);
    EXPECT_EQ(drive.arrayIndex, -1);
    EXPECT_EQ(drive.writeCache, 2);
    EXPECT_TRUE(drive.state.isEmpty());
    EXPECT_TRUE(drive.derivedState.isEmpty());
}

TEST(RAIDConfiguration, AFreshRecordHoldsItsInitialValues) {
    const RAIDConfiguration configuration;
    EXPECT_EQ(configuration.rebuildRate, 0);
    EXPECT_EQ(configuration.readAhead, 0);
    EXPECT_EQ(configuration.stripeSize, 10);
    EXPECT_EQ(configuration.init, 0);
    EXPECT_TRUE(configuration.policyName.isEmpty());
    EXPECT_TRUE(configuration.arrays().empty());
    EXPECT_TRUE(configuration.logicalDrives().empty());
    EXPECT_TRUE(configuration.hotspares().empty());
}

TEST(RAIDConfiguration, HoldsSixteenArraysEightLogicalDrivesAndEightHotspares) {
    RAIDConfiguration configuration;
    for (std::int32_t i = 0; i < 16; ++i) {
        EXPECT_TRUE(configuration.addArray(arrayOf(i + 1))) << i;
    }
    EXPECT_FALSE(configuration.addArray(arrayOf(20)));
    for (std::int32_t i = 0; i < 8; ++i) {
        LogicalDrive drive;
        drive.arrayIndex = i;
        EXPECT_TRUE(configuration.addLogicalDrive(drive)) << i;
        EXPECT_TRUE(configuration.addHotspare({1, i, -1, i})) << i;
    }
    EXPECT_FALSE(configuration.addLogicalDrive({}));
    EXPECT_FALSE(configuration.addHotspare({}));
    ASSERT_EQ(configuration.arrays().size(), 16U);
    EXPECT_EQ(configuration.arrays()[15].driveCount(), 16U);
    ASSERT_EQ(configuration.logicalDrives().size(), 8U);
    EXPECT_EQ(configuration.logicalDrives()[7].arrayIndex, 7);
    ASSERT_EQ(configuration.hotspares().size(), 8U);
    EXPECT_EQ(configuration.hotspares()[7].id, 7);
}

TEST(RAIDConfiguration, DumpsAnEmptyRecord) {
    EXPECT_EQ(dumpOf(RAIDConfiguration()), "#### START Configuration dump ####\n"
                                           "RebuildRate   = 0\n"
                                           "StripeSize    = 10\n"
                                           "ReadAhed      = 0\n"
                                           "Init          = 0\n"
                                           "Policy used   = \n"
                                           "\n#### END Configuration dump ####\n");
}

TEST(RAIDConfiguration, DumpsArraysLogicalDrivesAndHotspares) {
    RAIDConfiguration configuration;
    configuration.rebuildRate = 2;
    configuration.stripeSize = 3;
    configuration.readAhead = 1;
    configuration.init = -25;
    configuration.policyName = "Policy 100%s";
    configuration.addArray(arrayOf(3));
    RaidArray second;
    second.addDrive({2, 35});
    configuration.addArray(second);
    LogicalDrive fill;
    fill.raidLevel = 3;
    fill.arrayIndex = 0;
    fill.writeCache = 1;
    configuration.addLogicalDrive(fill);
    LogicalDrive sized;
    sized.raidLevel = 12;
    sized.sizeMb = 17000;
    sized.arrayIndex = 1;
    sized.writeCache = 0;
    configuration.addLogicalDrive(sized);
    configuration.addLogicalDrive({});
    configuration.addHotspare({3, 4, 5, 6});
    configuration.addHotspare({});
    EXPECT_EQ(dumpOf(configuration), "#### START Configuration dump ####\n"
                                     "RebuildRate   = 2\n"
                                     "StripeSize    = 3\n"
                                     "ReadAhed      = 1\n"
                                     "Init          = -25\n"
                                     "Policy used   = Policy 100%s\n"
                                     "Array A.  Drives in array (chan,sid):\n"
                                     "\t(1,0)\t(1,1)\t(1,2)\n"
                                     "Array B.  Drives in array (chan,sid):\n"
                                     "\t(2,35)\n"
                                     "Logical drive 1.  Logical drive info:\n"
                                     "\tsize=FILL\n"
                                     "\tarray = A\n"
                                     "\traidlevel = 5\n"
                                     "\twritecache = ON\n"
                                     "Logical drive 2.  Logical drive info:\n"
                                     "\tsize=17000\n"
                                     "\tarray = B\n"
                                     "\traidlevel = ERROR\n"
                                     "\twritecache = OFF\n"
                                     "Logical drive 3.  Logical drive info:\n"
                                     "\tsize=FILL\n"
                                     "\tarray = @\n"
                                     "\traidlevel = ERROR\n"
                                     "\twritecache = AUTO\n"
                                     "Hot-spare drive 1.  Contents of Hotspare:\n"
                                     "  Channel Number:    3\n"
                                     "  ID:                4\n"
                                     "  Disk Number:       6\n"
                                     "Hot-spare drive 2.  Contents of Hotspare:\n"
                                     "  Channel Number:    -1\n"
                                     "  ID:                -1\n"
                                     "  Disk Number:       -1\n"
                                     "\n#### END Configuration dump ####\n");
}

/// The dump between the settings and the end.
std::string recordsIn(const RAIDConfiguration& configuration) {
    const std::string dump = dumpOf(configuration);
    const std::string head = "Policy used   = \n";
    const std::string tail = "\n#### END Configuration dump ####\n";
    const std::size_t start = dump.find(head) + head.size();
    EXPECT_TRUE(dump.ends_with(tail));
    return dump.substr(start, dump.size() - tail.size() - start);
}

TEST(RAIDConfiguration, DumpsFourDrivesALine) {
    struct Row {
        std::int32_t drives;
        const char* lines;
    };
    constexpr Row rows[] = {
        {0, "\n"},
        {1, "\t(1,0)\n"},
        {3, "\t(1,0)\t(1,1)\t(1,2)\n"},
        {4, "\t(1,0)\t(1,1)\t(1,2)\t(1,3)\n\n"},
        {5, "\t(1,0)\t(1,1)\t(1,2)\t(1,3)\n\t(1,4)\n"},
        {8, "\t(1,0)\t(1,1)\t(1,2)\t(1,3)\n\t(1,4)\t(1,5)\t(1,6)\t(1,7)\n\n"},
    };
    for (const Row& row : rows) {
        RAIDConfiguration configuration;
        configuration.addArray(arrayOf(row.drives));
        EXPECT_EQ(recordsIn(configuration),
                  "Array A.  Drives in array (chan,sid):\n" + std::string(row.lines))
            << row.drives;
    }
}

TEST(RAIDConfiguration, LettersItsArraysToP) {
    RAIDConfiguration configuration;
    std::string expected;
    for (char letter = 'A'; letter <= 'P'; ++letter) {
        configuration.addArray(arrayOf(1));
        expected += std::string("Array ") + letter + ".  Drives in array (chan,sid):\n\t(1,0)\n";
    }
    configuration.addArray(arrayOf(2));
    EXPECT_EQ(recordsIn(configuration), expected);
}

TEST(RAIDConfiguration, DumpsNoMoreThanEightLogicalDrivesAndHotspares) {
    RAIDConfiguration configuration;
    for (int i = 0; i < 10; ++i) {
        configuration.addLogicalDrive({});
        configuration.addHotspare({});
    }
    const std::string records = recordsIn(configuration);
    EXPECT_NE(records.find("Logical drive 8.  "), std::string::npos);
    EXPECT_EQ(records.find("Logical drive 9.  "), std::string::npos);
    EXPECT_NE(records.find("Hot-spare drive 8.  "), std::string::npos);
    EXPECT_EQ(records.find("Hot-spare drive 9.  "), std::string::npos);
}

TEST(RAIDConfiguration, DumpsLevelsSizesAndWriteCachesAsWords) {
    struct Row {
        std::int32_t level;
        const char* levelWord;
        std::int32_t size;
        const char* sizeWord;
        std::int32_t cache;
        const char* cacheWord;
    };
    constexpr Row rows[] = {
        {0, "0", -101, "FILL", 0, "OFF"},
        {1, "1", -100, "-100", 1, "ON"},
        {2, "1E", -1, "-1", 2, "AUTO"},
        {3, "5", 0, "0", 3, "AUTO"},
        {4, "5E", 1, "1", -1, "AUTO"},
        {5, "5EE", 139, "139", -25, "AUTO"},
        {6, "6", -102, "-102", 0, "OFF"},
        {7, "10", 2147483647, "2147483647", 0, "OFF"},
        {8, "50", std::numeric_limits<std::int32_t>::min(), "-2147483648", 0, "OFF"},
        {9, "60", 17000, "17000", 0, "OFF"},
        {10, "VOLUME", 17000, "17000", 0, "OFF"},
        {11, "ERROR", 17000, "17000", 0, "OFF"},
        {12, "ERROR", 17000, "17000", 0, "OFF"},
        {13, "SIMPLE VOLUME", 17000, "17000", 0, "OFF"},
        {14, "ERROR", 17000, "17000", 0, "OFF"},
        {-1, "ERROR", 17000, "17000", 0, "OFF"},
    };
    for (const Row& row : rows) {
        LogicalDrive drive;
        drive.raidLevel = row.level;
        drive.sizeMb = row.size;
        drive.writeCache = row.cache;
        drive.arrayIndex = 15;
        RAIDConfiguration configuration;
        configuration.addLogicalDrive(drive);
        EXPECT_EQ(recordsIn(configuration), std::string("Logical drive 1.  Logical drive info:\n") +
                                                "\tsize=" + row.sizeWord + "\n\tarray = P\n" +
                                                "\traidlevel = " + row.levelWord +
                                                "\n\twritecache = " + row.cacheWord + "\n")
            << row.level;
    }
}

TEST(RAIDConfiguration, DumpsAtEveryVerbosity) {
    const RAIDConfiguration configuration;
    for (const std::int32_t verbosity : {-1, 0, 3, 5, 9}) {
        test::FakeConsole console;
        Printer printer(console);
        printer.setVerbosity(verbosity);
        printer.printAlways(show::dumpText(configuration));
        EXPECT_EQ(console.output, dumpOf(configuration)) << verbosity;
    }
}

TEST(Hotspare, Dumps) {
    test::FakeConsole console;
    Printer printer(console);
    printer.printAlways(show::dumpText(Hotspare{2, 11, 7, 14}));
    EXPECT_EQ(console.output, "Contents of Hotspare:\n"
                              "  Channel Number:    2\n"
                              "  ID:                11\n"
                              "  Disk Number:       14\n");
}

TEST(UsableFraction, DependsOnTheLevelAndTheNumberOfDrives) {
    struct Row {
        std::int32_t level;
        std::size_t drives;
        float fraction;
    };
    constexpr Row rows[] = {
        {0, 4, 1.0F},        {1, 2, 0.5F},        {2, 3, 0.5F},           {7, 4, 0.5F},
        {3, 4, 0.75F},       {3, 3, 2.0F / 3.0F}, {3, 32, 31.0F / 32.0F}, {4, 4, 0.5F},
        {4, 5, 3.0F / 5.0F}, {5, 6, 4.0F / 6.0F}, {6, 4, 0.5F},           {6, 7, 5.0F / 7.0F},
        {8, 6, 4.0F / 6.0F}, {9, 4, 0.0F},        {9, 8, 0.5F},           {9, 9, 5.0F / 9.0F},
        {10, 4, 1.0F},       {11, 4, 1.0F},       {12, 4, 1.0F},          {13, 4, 1.0F},
        {-1, 4, 1.0F},       {-25, 4, 1.0F},      {100, 4, 1.0F},
    };
    for (const Row& row : rows) {
        // Single precision: the same number, not one close to it.
        EXPECT_EQ(usableFraction(row.level, row.drives), row.fraction)
            << row.level << ", " << row.drives;
    }
}

TEST(RoundedMb, IsTheNearestAndOneMoreBelowZero) {
    // Columns: MB, rounded.
    constexpr std::pair<double, std::int64_t> rows[] = {
        {0, 0},
        {0.4999, 0},
        {0.5, 1},
        {1.4999, 1},
        {1.5, 2},
        {139.5, 140},
        {68719476735.5, 68719476736},
        {-0.25, 0},
        {-0.5, 0},
        {-0.75, 0},
        {-1.25, 0},
        {-1.5, 0},
        {-1.75, -1},
        {-2.5, -1},
        {-3, -2},
        {-3.25, -2},
        {-3.5, -2},
        {-3.75, -3},
    };
    for (const auto& [mb, rounded] : rows) {
        EXPECT_EQ(roundedMb(mb), rounded) << mb;
        EXPECT_EQ(roundedMb(mb), static_cast<std::int64_t>(std::floor(mb + 0.5) + 0.0001)) << mb;
    }
}

} // namespace
} // namespace zolex
