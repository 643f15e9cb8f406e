#include "readers/HRReader.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ListingSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zolex::test::hr_listing {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions hrconf = {.type = controller_type::hrconf4};
constexpr ListingOptions drivesOnly = {.type = controller_type::hrconf4, .capture = false};

// The lines of the sample's result.
const std::string versions = "controller bios=4.30-17 (3152) driver=2.10-3 (41)";
const std::string settings = "settings rebuild=0 readahead=0 stripe=3";
const std::string arrayA = "array A: 1:0 1:1 1:2";
const std::string arrayB = "array B: 2:4 2:12";
const std::string logical1 = "logical level=3 size=140012 array=0 cache=2 Okay/GOOD";
const std::string logical2 = "logical level=1 size=69889 array=1 cache=2 Degraded/BAD";
const std::string spare = "spare 2:13";

const std::vector<DeviceBlock> blocks = {
    {37, "1:0", "70006", "NV7A0001", "Online/GOOD", "", false, false},
    {46, "1:1", "70006", "NV7A0002", "Online/GOOD", "", false, false},
    {55, "1:2", "70007", "NV7A0003", "Rebuilding/GOOD", "", false, false},
    {64, "2:4", "70006", "NV7A0004", "Online/GOOD", "", false, false},
    {73, "2:12", "70006", "NV7A0005", "Defunct/BAD", "", true, false},
    {82, "2:13", "140012", "NV7A0006", "Standby Hot Spare/GOOD", "", false, true},
};
constexpr DeviceLines blockLines = {
    .kind = 1, .state = 2, .position = 4, .location = 0, .serialNumber = 6, .size = 7};

Lines allDrivesGone() {
    return {"-" + blocks[0].drive(), "-" + blocks[1].drive(), "-" + blocks[2].drive(),
            "-" + blocks[4].drive(), "-" + blocks[5].drive(), "-" + blocks[3].drive()};
}

TEST(HRReader, SurvivesEveryCut) {
    expectCuts(hrconf, readTestData("hrconf-getconfig.txt"),
               {{0, "true d=0 a=0 l=0 s=0"},
                {25, "true d=0 a=1 l=1 s=0"},
                {26, "true d=0 a=1 l=2 s=0"},
                {32, "true d=0 a=2 l=2 s=0"},
                {44, "true d=1 a=2 l=2 s=0"},
                {53, "true d=2 a=2 l=2 s=0"},
                {62, "true d=3 a=2 l=2 s=0"},
                {71, "true d=4 a=2 l=2 s=0"},
                {77, "true d=5 a=2 l=2 s=0"},
                {86, "true d=5 a=2 l=2 s=1"},
                {89, "true d=6 a=2 l=2 s=1"}});
}

TEST(HRReader, SurvivesEveryCutWithoutTheCaptureFlag) {
    expectCuts(drivesOnly, readTestData("hrconf-getconfig.txt"),
               {{0, "true d=0 a=0 l=0 s=0"},
                {44, "true d=1 a=0 l=0 s=0"},
                {53, "true d=2 a=0 l=0 s=0"},
                {62, "true d=3 a=0 l=0 s=0"},
                {71, "true d=4 a=0 l=0 s=0"},
                {77, "true d=5 a=0 l=0 s=0"},
                {89, "true d=6 a=0 l=0 s=0"}});
}

TEST(HRReader, SurvivesEveryLostLine) {
    std::vector<LineEffect> effects = {
        {12,
         {"-" + arrayA, "-" + arrayB, "-" + versions, "-" + logical2, "-" + logical1,
          "-" + settings, "-" + spare, "+controller"}},
        {14, {"-" + versions, "+controller driver=2.10-3 (41)"}},
        {16, {"-" + versions, "+controller bios=4.30-17 (3152)"}},
        {17, {"-" + logical1}},
        {19, {"-" + logical1, "+logical level=-1 size=140012 array=0 cache=2 Okay/GOOD"}},
        {20, {"-" + logical1, "+logical level=3 size=140012 array=0 cache=2"}},
        {21, {"-" + logical1, "+logical level=3 size=-101 array=0 cache=2 Okay/GOOD"}},
        {25,
         {"-" + arrayA, "-" + arrayB, "-" + logical2, "-" + logical1, "+array A: 2:4 2:12",
          "+logical level=1 size=69889 array=0 cache=2 Degraded/BAD",
          "+logical level=3 size=140012 array=-1 cache=2 Okay/GOOD"}},
        // The lines of the second logical drive replace those of the first.
        {26, {"-" + logical1}},
        {28, {"-" + logical2, "+logical level=-1 size=69889 array=1 cache=2 Degraded/BAD"}},
        {29, {"-" + logical2, "+logical level=1 size=69889 array=1 cache=2"}},
        {30, {"-" + logical2, "+logical level=1 size=-101 array=1 cache=2 Degraded/BAD"}},
        {32,
         {"-" + arrayB, "-" + logical2,
          "+logical level=1 size=69889 array=-1 cache=2 Degraded/BAD"}},
    };
    // Without the heading of the drives their lines belong to the logical drive in front of them.
    Lines headingLost = allDrivesGone();
    headingLost.insert(headingLost.end(),
                       {"-" + logical2, "-" + spare, "+array C: 1:0", "+array D: 1:1",
                        "+array E: 1:2", "+array F: 2:4", "+array G: 2:12", "+array H: 2:13",
                        "+array I: 2:14",
                        "+logical level=1 size=140012 array=8 cache=2 Degraded/BAD"});
    effects.push_back({35, headingLost});
    Lines rulerLost = allDrivesGone();
    rulerLost.push_back("-" + spare);
    effects.push_back({36, rulerLost});
    for (const DeviceBlock& block : blocks) {
        for (const LineEffect& effect : effectsOfLostLines(block, blockLines)) {
            effects.push_back(effect);
        }
    }
    expectLostLines(hrconf, readTestData("hrconf-getconfig.txt"), effects);
}

TEST(HRReader, SurvivesEveryDoubledLine) {
    const std::string empty = "+logical level=-1 size=-101 array=-1 cache=2";
    expectDoubledLines(
        hrconf, readTestData("hrconf-getconfig.txt"),
        {{17, {empty}},
         {25,
          {"-" + arrayB, "-" + logical2, "-" + logical1, "+array B: 1:0 1:1 1:2",
           "+array C: 2:4 2:12", "+logical level=1 size=69889 array=2 cache=2 Degraded/BAD",
           "+logical level=3 size=140012 array=1 cache=2 Okay/GOOD"}},
         {26, {empty}},
         {32,
          {"-" + logical2, "+array C: 2:4 2:12",
           "+logical level=1 size=69889 array=2 cache=2 Degraded/BAD"}}});
}

TEST(HRReader, ALineReadingEofEndsTheListing) {
    const std::string sample = readTestData("hrconf-getconfig.txt");
    EXPECT_EQ(
        readListing(hrconf, replaced(sample, "Logical drive number 2", "EOF\nLogical")).summary(),
        "true d=0 a=1 l=1 s=0");
    EXPECT_EQ(
        readListing(hrconf, replaced(sample, "      Device #2", "EOF\n      Device #2")).summary(),
        "true d=2 a=2 l=2 s=0");
}

TEST(HRReader, ALongLineIsReadInPieces) {
    // 198 bytes make a line; what follows is the next one, here with a key of its own.
    std::string line = "   RAID level : 5";
    line.resize(198, ' ');
    const ListingResult result =
        readListing(hrconf, "Logical drive information\nLogical drive number 1\n" + line +
                                "Channel,Device : 0,1\nSize : 7 MB\n");
    EXPECT_EQ(result.of("array"), Lines{"A: 1:1"});
    EXPECT_EQ(result.of("logical"), Lines{"level=3 size=7 array=0 cache=2"});
}

TEST(HRReader, TracesEachStep) {
    ListingOptions traced = hrconf;
    traced.verbosity = 9;
    const std::string text = "Logical drive information\n"
                             "BIOS : 1\nDriver : 2\n"
                             "Logical drive number 1\nRAID level : 1\n"
                             "Status of logical drive : Okay\nSize : 500 MB\n"
                             "Stripe-unit size : 64\nChannel,Device : 0,0\n"
                             "Physical device information\n--------\n"
                             "Device #0\nDevice is a Hard disk\nState : Weird\n"
                             "Channel,Device : 0,0\nSize : 500\nPFA\n"
                             "Device #1\nDevice is a tape\nState : Online\n";
    EXPECT_EQ(readListing(traced, text).output,
              "Entering HRReader::readConfiguration\n"
              "Entering HRReader::getArraysAndLogicalDrive\n"
              "Entering HRReader::translateLogicalState\n"
              "Exitinging HRReader::translateLogicalState, derivedState=GOOD\n"
              "Setting the state of the logical drive=Okay\n"
              "Exiting HRReader::getArraysAndLogicalDrive, returning true\n"
              "Entering HRReader::getDrives\n"
              "Entering HRReader::addDevice\n"
              "Entering HRReader::translatePhysicalState\n"
              "***** Unable to recognize input state: Weird\n"
              "Exitinging HRReader::translatePhysicalState, derivedState=????\n"
              "Setting the state of the physical drive=Weird\n"
              "Exiting HRReader::addDevice, returning true\n"
              "Entering HRReader::addDevice\n"
              "Exiting HRReader::addDevice, returning true\n"
              "Entering HRReader::getDrives, returning true\n"
              "Exiting HRReader::readConfiguration, returning true\n");
    traced.verbosity = 8;
    EXPECT_EQ(readListing(traced, text).output, "");
}

TEST(HRReader, AFailingDeviceBlockFailsTheRead) {
    class FailingReader : public HRReader {
      public:
        using HRReader::HRReader;

      protected:
        bool addDevice() override { return false; }
    };
    FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(9);
    RAIDController controller;
    controller.setType(controller_type::hrconf4);
    FailingReader reader({.layout = true}, application.report());
    EXPECT_FALSE(reader.readConfiguration(controller, Lines{readTestData("hrconf-getconfig.txt")}));
    EXPECT_EQ(controller.captured(), nullptr);
    const std::string output = platform.consoleFake.takeOutput();
    const std::string end = "Entering HRReader::getDrives\n"
                            "Entering HRReader::getDrives, returning false\n"
                            "Exiting HRReader::readConfiguration, returning false(2)\n";
    ASSERT_GE(output.size(), end.size());
    EXPECT_EQ(output.substr(output.size() - end.size()), end);
}

TEST(HRReader, ReadsOneControllerAfterAnother) {
    FakePlatform platform;
    Application application(platform);
    HRReader reader({.layout = true}, application.report());
    RAIDController first;
    first.setType(controller_type::hrconf4);
    // A failed read leaves nothing behind for the next.
    EXPECT_FALSE(
        reader.readConfiguration(first, Lines{"Logical drive information\n"
                                              "Logical drive number 1\nChannel,Device : 0,0\n"
                                              "RAID level : ?\n"}));
    EXPECT_EQ(first.captured(), nullptr);
    RAIDController second;
    second.setType(controller_type::hrconf4);
    EXPECT_TRUE(reader.readConfiguration(second, Lines{"Logical drive information\nSize : 5\n"
                                                       "Channel,Device : 0,1\n"}));
    ASSERT_NE(second.captured(), nullptr);
    EXPECT_EQ(second.captured()->arrays().size(), 1U);
    EXPECT_EQ(second.captured()->logicalDrives().size(), 0U);
}

} // namespace
} // namespace zolex::test::hr_listing
