#include "policies/PolicyText.h"

#include "policies/GeneratorTestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using namespace test;

/// The settings lines of a policy of `type`: what stands between AppliesTo and Array_Mode.
std::string settingsOf(std::int32_t type, std::int32_t stripeSize, std::int32_t rebuildRate = 1,
                       std::int32_t readAhead = 2) {
    Generation run;
    run.application.settings.captureParameters = "ALL";
    RAIDConfiguration& configuration = *run.add(type, -1).captured();
    configuration.stripeSize = stripeSize;
    configuration.rebuildRate = rebuildRate;
    configuration.readAhead = readAhead;
    EXPECT_TRUE(run.run());
    const std::string text = run.file();
    const std::string start = "AppliesTo.1 = ALL\n\n";
    const std::size_t from = text.find(start) + start.size();
    return text.substr(from, text.find("Array_Mode") - from);
}

TEST(PolicyTextTest, EveryTypeHasItsSettings) {
    const std::string stripe = "StripeSize = 64\n";
    const std::string rebuild = "RebuildRate = MED\n";
    const std::string ahead = "ReadAhead = OFF\n";
    const std::string settings[] = {
        stripe + rebuild + ahead + "\n", // 1
        stripe + ahead + "\n",           // 2
        stripe + "\n",                   // 3
        stripe + "\n",                   // 4
        "",                              // 5
        stripe + "\n",                   // 6
        stripe + rebuild + ahead + "\n", // 7
        stripe + "\n",                   // 8
        stripe + "\n",                   // 9
        "",                              // 10
        stripe + rebuild + ahead + "\n", // 11
        stripe + ahead + "\n",           // 12
    };
    for (std::int32_t type = 1; type <= 12; ++type) {
        EXPECT_EQ(settingsOf(type, stripe::kb64), settings[type - 1]) << type;
    }
    for (const std::int32_t type : {-1, 0, 13}) {
        EXPECT_EQ(settingsOf(type, stripe::kb64), stripe + rebuild + ahead + "\n") << type;
    }
}

TEST(PolicyTextTest, WithoutAStripeSizeItsLineIsLeftOut) {
    EXPECT_EQ(settingsOf(12, stripe::none), "ReadAhead = OFF\n\n");
    EXPECT_EQ(settingsOf(3, stripe::none), "");
    EXPECT_EQ(settingsOf(1, stripe::none), "RebuildRate = MED\nReadAhead = OFF\n\n");
}

TEST(PolicyTextTest, CapturedCodesAreWrittenAsWords) {
    const char* stripes[] = {"8", "16", "32", "64", "128", "256", "512", "1024", "2048", "4096"};
    for (std::int32_t code = 0; code < 10; ++code) {
        EXPECT_EQ(settingsOf(3, code), "StripeSize = " + std::string(stripes[code]) + "\n\n");
    }
    EXPECT_EQ(settingsOf(3, 11), "StripeSize = ERROR\n\n");
    EXPECT_EQ(settingsOf(3, -1), "StripeSize = ERROR\n\n");
    EXPECT_EQ(settingsOf(1, 10, 0, 0), "RebuildRate = HIGH\nReadAhead = ADAPTIVE\n\n");
    EXPECT_EQ(settingsOf(1, 10, 2, 1), "RebuildRate = LOW\nReadAhead = ON\n\n");
    EXPECT_EQ(settingsOf(1, 10, 3, 3), "RebuildRate = ERROR\nReadAhead = ERROR\n\n");
}

/// The text from "Logical_Mode" on, for one logical drive on a controller of `type`.
std::string logicalTextOf(std::int32_t type, const LogicalDrive& drive) {
    Generation run;
    run.add(type, -1).captured()->addLogicalDrive(drive);
    EXPECT_TRUE(run.run());
    const std::string text = run.file();
    const std::string start = "Logical_Mode = CUSTOM\n";
    return text.substr(text.find(start) + start.size());
}

TEST(PolicyTextTest, LogicalDrivesDependOnTheType) {
    const LogicalDrive drive = makeLogicalDrive(1, 1024, raid_level::raid1, write_cache::on);
    const char* lines[] = {
        "B:1024:1:ON", // 1
        "B:1024:1:ON", // 2
        "B:FILL:1",    // 3
        "B:FILL:1",    // 4
        "B:FILL:1",    // 5
        "B:FILL:1:ON", // 6
        "B:1024:1:ON", // 7
        "B:FILL:1:ON", // 8
        "B:FILL:1",    // 9
        "B:1024:1",    // 10
        "B:1024:1:ON", // 11
        "B:1024:1:ON", // 12
    };
    for (std::int32_t type = 1; type <= 12; ++type) {
        EXPECT_EQ(logicalTextOf(type, drive),
                  "Logical.1 = " + std::string(lines[type - 1]) + "\n\n")
            << type;
    }
}

struct LogicalCase {
    LogicalDrive drive;
    const char* line;
};

TEST(PolicyTextTest, LogicalDriveValues) {
    const LogicalCase cases[] = {
        {makeLogicalDrive(0, 1, 0, 0), "A:1:0:OFF"},
        {makeLogicalDrive(15, 2147483647, 1, 1), "P:2147483647:1:ON"},
        {makeLogicalDrive(0, sizeFill, 2, 2), "A:FILL:1E"},
        {makeLogicalDrive(0, 0, 3, 3), "A:FILL:5:ERROR"},
        {makeLogicalDrive(0, -1, 4, -1), "A:FILL:5E:ERROR"},
        {makeLogicalDrive(0, 9, 5, 2), "A:9:5EE"},
        {makeLogicalDrive(0, 9, 6, 2), "A:9:6"},
        {makeLogicalDrive(0, 9, 7, 2), "A:9:10"},
        {makeLogicalDrive(0, 9, 8, 2), "A:9:50"},
        {makeLogicalDrive(0, 9, 9, 2), "A:9:60"},
        {makeLogicalDrive(0, 9, 10, 2), "A:9:VOLUME"},
        {makeLogicalDrive(0, 9, 11, 2), "A:9:ERROR"},
        {makeLogicalDrive(0, 9, 12, 2), "A:9:ERROR"},
        {makeLogicalDrive(0, 9, 13, 2), "A:9:SIMPLE VOLUME"},
        {makeLogicalDrive(0, 9, -1, 2), "A:9:ERROR"},
        {makeLogicalDrive(-1, 9, 0, 2), "ERROR:9:0"},
        {makeLogicalDrive(16, 9, 0, 2), "ERROR:9:0"},
    };
    for (const LogicalCase& c : cases) {
        EXPECT_EQ(logicalTextOf(12, c.drive), "Logical.1 = " + std::string(c.line) + "\n\n");
    }
}

TEST(PolicyTextTest, AFullRecordIsWrittenWhole) {
    Generation run;
    RAIDController& controller = run.add(10, -1);
    std::string arrays;
    for (std::int32_t i = 0; i < 16; ++i) {
        controller.setSize(1, i, 1000);
        controller.captured()->addArray(makeArray({{1, i}}));
        arrays += std::string("Array.") + "ABCDEFGHIJKLMNOP"[i] + " = " + std::to_string(i + 1);
        arrays += "\n";
    }
    std::string hotspares;
    std::string logicalDrives;
    for (std::int32_t i = 0; i < 8; ++i) {
        controller.captured()->addHotspare(makeHotspare(1, i));
        controller.captured()->addLogicalDrive(makeLogicalDrive(i, 100 + i, 0, 1));
        hotspares += (i == 0 ? "" : ",") + std::to_string(i + 1);
        logicalDrives += "Logical." + std::to_string(i + 1) + " = " + "ABCDEFGH"[i] + ":" +
                         std::to_string(100 + i) + ":0\n";
    }
    ASSERT_TRUE(run.run());
    const std::string text = run.file();
    EXPECT_EQ(text.substr(text.find("AppliesTo")),
              "AppliesTo.1 = t:LSI-SAS-RAID,d:16\n\nArray_Mode = CUSTOM\n" + arrays +
                  "\nHotspares = " + hotspares + "\n\nLogical_Mode = CUSTOM\n" + logicalDrives +
                  "\n");
}

/// The drive lists of the policy of a controller: what stands between the modes.
std::string drivesOf(Generation& run) {
    EXPECT_TRUE(run.run());
    const std::string text = run.file();
    const std::string start = "Array_Mode = CUSTOM\n";
    const std::size_t from = text.find(start) + start.size();
    return text.substr(from, text.find("Logical_Mode") - from);
}

TEST(PolicyTextTest, DrivesAreNumberedByChannelAndId) {
    Generation run;
    RAIDController& controller = run.add(4, -1);
    controller.setSize(0, 0, 1000); // channel 0 does not count
    controller.setSize(4, 35, 1000);
    controller.setSize(2, 9, 1000);
    controller.setSize(2, 0, 1000);
    controller.setSize(1, 35, 1000);
    controller.captured()->addArray(makeArray({{4, 35}, {2, 9}}));
    controller.captured()->addArray(makeArray({{1, 35}}));
    controller.captured()->addHotspare(makeHotspare(2, 0));
    EXPECT_EQ(drivesOf(run), "Array.A = 4,3\nArray.B = 1\n\nHotspares = 2\n\n");
}

TEST(PolicyTextTest, AListWithAMissingDriveIsWrittenAsPositions) {
    Generation run;
    RAIDController& controller = run.add(4, -1);
    controller.setSize(1, 0, 1000);
    controller.setSize(1, 1, 1000);
    controller.setSize(0, 7, 1000);
    controller.setSize(1, 8, 0);
    RAIDConfiguration& configuration = *controller.captured();
    configuration.addArray(makeArray({{1, 1}, {1, 5}}));
    configuration.addArray(makeArray({{1, 1}}));
    configuration.addArray(makeArray({{0, 7}}));
    configuration.addArray(makeArray({{1, 8}}));
    configuration.addArray(makeArray({{5, 0}, {1, 36}, {-1, -1}}));
    configuration.addHotspare(makeHotspare(1, 0));
    configuration.addHotspare(makeHotspare(3, 0));
    EXPECT_EQ(drivesOf(run), "Array.A = 1:1,1:5\n"
                             "Array.B = 2\n"
                             "Array.C = 0:7\n"
                             "Array.D = 1:8\n"
                             "Array.E = 5:0,1:36,-1:-1\n\n"
                             "Hotspares = 1:0,3:0\n\n");
}

TEST(PolicyTextTest, HotSparesOfType12AreFoundByTheirEnclosure) {
    Generation run;
    RAIDController& controller = run.add(12, 2);
    controller.setSizeAndTarget(1, 4, 1000, 2); // enclosure 2 is channel 1
    controller.setSizeAndTarget(2, 4, 1000, 1); // enclosure 1 is channel 2
    controller.setSizeAndTarget(2, 5, 1000, 1);
    controller.captured()->addHotspare(makeHotspare(1, 4));
    controller.captured()->addHotspare(makeHotspare(2, 4));
    EXPECT_EQ(drivesOf(run), "\nHotspares = 2,1\n\n");
}

TEST(PolicyTextTest, AnUnknownHotSpareOfType12MakesTheWholeListPositions) {
    Generation run;
    RAIDController& controller = run.add(12, 2);
    controller.setSizeAndTarget(1, 4, 1000, 8);
    controller.setSizeAndTarget(3, 5, 1000, 9);
    controller.captured()->addHotspare(makeHotspare(8, 4));
    controller.captured()->addHotspare(makeHotspare(3, 5)); // no enclosure 3
    EXPECT_EQ(drivesOf(run), "\nHotspares = 1:4,3:5\n\n");
}

TEST(PolicyTextTest, HotSparesOfOtherTypesHaveTheirChannel) {
    Generation run;
    RAIDController& controller = run.add(7, 1);
    controller.setSizeAndTarget(1, 4, 1000, 2);
    controller.setSizeAndTarget(2, 4, 1000, 1);
    controller.captured()->addHotspare(makeHotspare(1, 4));
    EXPECT_EQ(drivesOf(run), "\nHotspares = 1\n\n");
}

} // namespace
} // namespace zolex
