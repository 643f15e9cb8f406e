#include "readers/IDEReader.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ListingSupport.h"
#include "readers/MegaCliListings.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zolex::test {
namespace {

using Lines = std::vector<std::string>;
using Outputs = std::vector<std::string>;

constexpr ListingOptions hyperwin = {.type = controller_type::lsiIde};
constexpr ListingOptions ideDrivesOnly = {.type = controller_type::lsiIde, .capture = false};

constexpr const char* drive0 = "drive 1:0 38154";
constexpr const char* drive1 = "drive 1:1 38154";

/// The drives of the positions on channel 1.
Lines drives(const std::vector<int>& ids) {
    Lines lines;
    for (const int id : ids) {
        lines.push_back("1:" + std::to_string(id) + " 38154");
    }
    return lines;
}

TEST(IDEReader, StatusCodesPlaceDrives) {
    const std::vector<std::pair<Outputs, std::vector<int>>> rows = {
        {{"0000\n000a\n0000\n"}, {0, 2}},
        {{"Error Code (hex): 0000\n", "Error Code (hex): 000a\n", "Error Code (hex): 0000\n"},
         {0, 2}},
        {{"Error Code (hex): 000a\n", "Error Code (hex): 0000\n"}, {1}},
        {{"", "", "0000\n0000\n"}, {0, 1}},
        {{"0000\n", "0000\n", "0000\n", "0000\n"}, {0, 1, 2}},
        {{"000A\n0001\nLOGICAL_ARRAY\nTOTAL_PHYSICAL_DRIVES 2\n0000 000a\n000a\n10000\n"}, {0, 2}},
        // An unterminated last line of an output is lost and does not go on in the next.
        {{"0000\n000", "0\n0000", "0000\n"}, {0, 1}},
        {{"0000\r\n000a\r\n0000\r\n"}, {0, 2}},
        {{""}, {}},
    };
    for (const auto& [outputs, ids] : rows) {
        const ListingResult result = readListing(ideDrivesOnly, outputs);
        EXPECT_TRUE(result.read);
        EXPECT_EQ(result.of("drive"), drives(ids)) << joinLines(outputs);
        EXPECT_EQ(result.output, "");
    }
}

TEST(IDEReader, StatusCodesBeyondThePositionRangeAreLeftOut) {
    std::string text;
    for (int i = 0; i < 35; ++i) {
        text += "000a\n";
    }
    const ListingResult result = readListing(ideDrivesOnly, text + "0000\n0000\n");
    EXPECT_EQ(result.of("drive"), drives({35}));
    EXPECT_EQ(result.output, "\n#### ERROR\n\tDrive position out of range for controller "
                             "LSI-IDEal-RAID:  channel=1, id=36\n\n");
}

TEST(IDEReader, ReadsAWholeListing) {
    const std::string sample = readTestData("hyperwin-list.txt");
    const ListingResult result = readListing(hyperwin, sample);
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.lines,
              (Lines{"controller", drive0, drive1, "settings rebuild=0 readahead=0 stripe=4",
                     "array A: 1:0 1:1", "logical level=0 size=-101 array=0 cache=1"}));
    EXPECT_EQ(result.output, "");
    expectSameWithCrLf(hyperwin, sample);
    // The listing goes on in the next outputs.
    const Lines lines = splitLines(sample);
    EXPECT_EQ(readListing(hyperwin, Outputs{joinLines(Lines(lines.begin(), lines.begin() + 4)),
                                            joinLines(Lines(lines.begin() + 4, lines.begin() + 6)),
                                            joinLines(Lines(lines.begin() + 6, lines.end()))})
                  .lines,
              result.lines);
}

TEST(IDEReader, RaidModes) {
    const std::vector<std::pair<std::string, std::string>> modes = {{"MIRROR", "1"},
                                                                    {"STRIPE", "0"}};
    for (const auto& [mode, level] : modes) {
        for (const std::string& line :
             {"RAID_MODE " + mode, "RAID_MODE : " + mode, "RAID_MODE=" + mode,
              "  RAID_MODE =\t" + mode + " ", "The RAID_MODE:" + mode}) {
            const ListingResult result = readListing(hyperwin, "LOGICAL_ARRAY\n" + line + "\n");
            EXPECT_EQ(result.of("logical"), Lines{"level=" + level + " size=-101 array=0 cache=2"})
                << line;
        }
    }
    for (const std::string mode : {"RAID5", "", "mirror", "MIRROR 2"}) {
        const std::string text = "LOGICAL_ARRAY\nTOTAL_PHYSICAL_DRIVES 1\nRAID_MODE : " + mode;
        const ListingResult result = readListing(hyperwin, text + "\n");
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.lines, (Lines{"controller", drive0}));
        EXPECT_EQ(result.output, "Error: Could not recognize RAID level:  " + mode + "\n");
        EXPECT_TRUE(readListing(ideDrivesOnly, text + "\n").read);
    }
    // Only the first such line is looked at.
    EXPECT_EQ(
        readListing(hyperwin, "LOGICAL_ARRAY\nRAID_MODE MIRROR\nRAID_MODE RAID5\n").of("logical"),
        Lines{"level=1 size=-101 array=0 cache=2"});
}

TEST(IDEReader, StripeSizes) {
    int code = 2;
    for (const std::string size :
         {"32KB", "64KB", "128KB", "256KB", "512KB", "1024KB", "2048KB", "4096KB"}) {
        const ListingResult result =
            readListing(hyperwin, "LOGICAL_ARRAY\nSTRIPE_SIZE " + size + "\n");
        EXPECT_EQ(result.of("settings"),
                  Lines{"rebuild=0 readahead=0 stripe=" + std::to_string(code++)});
    }
    for (const std::string size : {"16KB", "64 KB", "64", "", "64kb"}) {
        const ListingResult result =
            readListing(hyperwin, "LOGICAL_ARRAY\nSTRIPE_SIZE=" + size + "\n");
        EXPECT_FALSE(result.read);
        EXPECT_EQ(result.lines, Lines{"controller"});
        EXPECT_EQ(result.output, "Error:  Could not recognize stripe size:  " + size + "\n");
    }
    EXPECT_EQ(
        readListing(hyperwin, "LOGICAL_ARRAY\nSTRIPE_SIZE 64KB\nSTRIPE_SIZE 16KB\n").of("settings"),
        Lines{"rebuild=0 readahead=0 stripe=3"});
}

TEST(IDEReader, PhysicalDrives) {
    struct Case {
        std::string count;
        std::vector<int> ids;
        std::string members;
    };
    const std::vector<Case> cases = {{"0", {}, ""},
                                     {"-1", {}, ""},
                                     {"", {}, ""},
                                     {"1", {0}, " 1:0"},
                                     {"2", {0, 1}, " 1:0 1:1"},
                                     {"9", {0, 1}, " 1:0 1:1"}};
    for (const Case& c : cases) {
        const std::string line = "TOTAL_PHYSICAL_DRIVES " + c.count + "\n";
        ListingResult result = readListing(hyperwin, "LOGICAL_ARRAY\n" + line);
        EXPECT_EQ(result.of("array"), Lines{"A:" + c.members});
        EXPECT_EQ(result.of("drive"), drives(c.ids));
        result = readListing(hyperwin, line);
        EXPECT_EQ(result.of("array"), Lines{});
        EXPECT_EQ(result.of("drive"), drives(c.ids));
    }
    EXPECT_EQ(
        readListing(hyperwin, "TOTAL_PHYSICAL_DRIVES 1\nTOTAL_PHYSICAL_DRIVES 2\n").of("drive"),
        drives({0}));
}

TEST(IDEReader, ErrorCodesPlaceDrivesWhereNothingIsConfigured) {
    const auto code = [](const std::string& value) { return "Error Code (hex) : " + value + "\n"; };
    const Outputs two = {code("000a"), code("0000"), code("0000")};
    EXPECT_EQ(readListing(hyperwin, two).of("drive"), drives({0, 1}));
    EXPECT_EQ(readListing(hyperwin, Outputs{code("0000"), code("000a"), code("0000")}).of("drive"),
              drives({1}));
    EXPECT_EQ(readListing(hyperwin, Outputs{code("0000")}).of("drive"), drives({}));
    const ListingResult configured =
        readListing(hyperwin, Outputs{"LOGICAL_ARRAY\n" + code("0000"), code("0000")});
    EXPECT_EQ(configured.summary(), "true d=0 a=1 l=1 s=0");
    // A "0000" of another line says nothing here.
    EXPECT_EQ(readListing(hyperwin, code("1") + "0000\n0000\n" + code("x0000x")).of("drive"),
              drives({0}));
}

TEST(IDEReader, WriteCacheAndSpare) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"LOGICAL_ARRAY\n", "2"},
        {"LOGICAL_ARRAY\n+WRITE_CACHE\n", "1"},
        {"LOGICAL_ARRAY\n  -WRITE_CACHE : yes\n", "0"},
        {"LOGICAL_ARRAY\n+WRITE_CACHE\n-WRITE_CACHE\n", "0"},
        {"LOGICAL_ARRAY\n+WRITE_CACHE -WRITE_CACHE\n", "1"},
        {"LOGICAL_ARRAY\nWRITE_CACHE\n+write_cache\n", "2"},
        {"LOGICAL_ARRAY +WRITE_CACHE\n", "2"},
        {"LOGICAL_ARRAY\nLOGICAL_ARRAY +WRITE_CACHE\n", "1"},
    };
    for (const auto& [text, cache] : rows) {
        EXPECT_EQ(readListing(hyperwin, text).of("logical"),
                  Lines{"level=-1 size=-101 array=0 cache=" + cache})
            << text;
    }
    EXPECT_EQ(readListing(hyperwin, "LOGICAL_ARRAY\n   SPARE : 1\n").of("spare"), Lines{"1:1"});
    // A spare takes its line, whatever else it holds; without an array there is none.
    const ListingResult result =
        readListing(hyperwin, "SPARE\nLOGICAL_ARRAY\nSPARE RAID_MODE RAID5\n");
    EXPECT_EQ(result.summary(), "true d=0 a=1 l=1 s=1");
}

TEST(IDEReader, WithoutALogicalArrayThereIsNoConfiguration) {
    const ListingResult result =
        readListing(hyperwin, "+WRITE_CACHE\nSPARE\nRAID_MODE MIRROR\nSTRIPE_SIZE 64KB\n");
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.lines, Lines{"controller"});
}

TEST(IDEReader, SurvivesEveryCut) {
    expectCuts(
        hyperwin, readTestData("hyperwin-list.txt"),
        {{0, "true d=0 a=0 l=0 s=0"}, {3, "true d=0 a=1 l=1 s=0"}, {7, "true d=2 a=1 l=1 s=0"}});
}

TEST(IDEReader, SurvivesEveryCutWithoutTheCaptureFlag) {
    expectCuts(ideDrivesOnly, readTestData("hyperwin-list.txt"),
               {{0, "true d=0 a=0 l=0 s=0"}, {8, "true d=1 a=0 l=0 s=0"}});
}

TEST(IDEReader, SurvivesEveryLostAndEveryDoubledLine) {
    const std::string settings = "settings rebuild=0 readahead=0 stripe=4";
    const std::string array = "array A: 1:0 1:1";
    const std::string logical = "logical level=0 size=-101 array=0 cache=1";
    expectLostLines(
        hyperwin, readTestData("hyperwin-list.txt"),
        {{3, {"-" + settings, "-" + array, "-" + logical}},
         {4, {"-" + logical, "+logical level=0 size=-101 array=0 cache=2"}},
         {5, {"-" + logical, "+logical level=-1 size=-101 array=0 cache=1"}},
         {6, {"-" + settings, "+settings rebuild=0 readahead=0 stripe=10"}},
         {7, {std::string("-") + drive0, std::string("-") + drive1, "-" + array, "+array A:"}}});
    expectDoubledLines(hyperwin, readTestData("hyperwin-list.txt"), {});
}

TEST(IDEReader, TracesItsStartAndItsEnd) {
    ListingOptions traced = hyperwin;
    traced.verbosity = 9;
    const std::string entering = "Entering IDEReader::readConfiguration\n";
    const std::string exiting = "Exiting IDEReader::readConfiguration, returning ";
    EXPECT_EQ(readListing(traced, "LOGICAL_ARRAY\n").output, entering + exiting + "true\n");
    EXPECT_EQ(readListing(traced, "RAID_MODE ?\n").output,
              entering + "Error: Could not recognize RAID level:  ?\n" + exiting + "false(1)\n");
    EXPECT_EQ(readListing(traced, "STRIPE_SIZE ?\n").output,
              entering + "Error:  Could not recognize stripe size:  ?\n" + exiting + "false(2)\n");
    traced.capture = false;
    EXPECT_EQ(readListing(traced, "0000\n").output, entering + exiting + "true\n");
}

TEST(IDEReader, ReadsOneControllerAfterAnother) {
    FakePlatform platform;
    Application application(platform);
    IDEReader reader({.layout = true}, application.report());
    RAIDController first;
    first.setType(controller_type::lsiIde);
    EXPECT_FALSE(reader.readConfiguration(first, Outputs{"LOGICAL_ARRAY\nRAID_MODE ?\n"}));
    RAIDController second;
    second.setType(controller_type::lsiIde);
    EXPECT_TRUE(reader.readConfiguration(
        second, Outputs{"Error Code (hex) 0000\n", "RAID_MODE MIRROR\nError Code (hex) 0000\n"}));
    EXPECT_EQ(first.captured(), nullptr);
    EXPECT_EQ(second.captured(), nullptr);
    EXPECT_EQ(second.numberOfDrives(), 1);
}

TEST(IDEReader, ReadsAllOutputsOfEachController) {
    FakePlatform platform;
    Application application(platform);
    IDEReader reader({}, application.report());
    for (int i = 0; i < 2; ++i) {
        RAIDController controller;
        controller.setType(controller_type::lsiIde);
        EXPECT_TRUE(reader.readConfiguration(controller, Outputs(3, "0000\n")));
        EXPECT_EQ(controller.numberOfDrives(), 3);
    }
}

} // namespace
} // namespace zolex::test
