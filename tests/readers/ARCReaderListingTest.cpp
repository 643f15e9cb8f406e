#include "readers/ARCReader.h"

#include "driver/Application.h"
#include "model/RAIDController.h"
#include "readers/ListingSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zolex::test::arc_listing {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions arcconf = {.type = controller_type::arcconf11};
constexpr ListingOptions drivesOnly = {.type = controller_type::arcconf11, .capture = false};
constexpr DeviceLines blockLines = {
    .kind = 1, .state = 2, .position = 5, .location = 6, .serialNumber = 11, .size = 12};

/// A sample listing, the numbers of its lines, and what is read of it.
struct Sample {
    const char* file;
    std::size_t infoEnd;      ///< separator behind the controller information
    std::size_t driveHeading; ///< "Logical drive information"
    std::size_t drive;        ///< "Logical drive number"
    std::size_t devices;      ///< "Physical Device information"
    std::string subtype;
    std::string settings;

    [[nodiscard]] std::string text() const { return readTestData(file); }
    [[nodiscard]] std::string controller(const std::string& fields) const {
        return "controller" + fields;
    }
    [[nodiscard]] std::vector<DeviceBlock> blocks() const {
        const std::size_t first = devices + 2;
        const std::string size = "70006";
        return {
            {first, "1:0", size, "NV7A0001", "Online/GOOD", "Enclosure 0, Slot 0", false, false},
            {first + 16, "1:1", size, "NV7A0002", "Online/GOOD", "Enclosure 0, Slot 1", false,
             false},
            {first + 32, "1:2", size, "NV7A0003", "Hot Spare/GOOD", "Enclosure 0, Slot 2", false,
             true}};
    }
};

const Sample plain = {
    "arcconf-getconfig-plain.txt", 15, 28, 30, 42, "1", "settings rebuild=0 readahead=0 stripe=10"};
const Sample segments = {"arcconf-getconfig-segments.txt",         16, 29, 31, 52, "2",
                         "settings rebuild=0 readahead=1 stripe=5"};

const std::string versions = " bios=5.2-0 (15000) firmware=5.2-0 (15000) driver=1.2-0 (29000)";
const std::string array = "array A: 1:0 1:1";
const std::string logical = "logical level=1 size=69889 array=0 cache=2 Okay/GOOD";
const std::string spare = "spare 1:2";

class ARCReaderSample : public ::testing::TestWithParam<Sample> {
  protected:
    const Sample& sample = GetParam();
    const std::string identity = " subtype=" + sample.subtype + " slot=0";
    const std::string controller = "controller" + identity + versions;

    /// What is lost with the controller's line when the fields are these instead.
    [[nodiscard]] Lines insteadOf(const std::string& fields) const {
        return {"-" + controller, "+controller" + fields};
    }
    [[nodiscard]] Lines drivesGone() const {
        Lines gone;
        for (const DeviceBlock& block : sample.blocks()) {
            gone.push_back("-" + block.drive());
        }
        return gone;
    }
    /// What the loss of a line does that both samples have.
    [[nodiscard]] std::vector<LineEffect> commonEffects() const;
};

std::vector<LineEffect> ARCReaderSample::commonEffects() const {
    const std::size_t end = sample.infoEnd;
    const std::size_t drive = sample.drive;
    Lines rulerLost = drivesGone();
    rulerLost.push_back("-" + spare);
    std::vector<LineEffect> effects = {
        {7, insteadOf(" slot=0" + versions)},
        {9, insteadOf(" subtype=" + sample.subtype + versions)},
        // Each step reads up to the separator of the next one's block.
        {end, insteadOf(identity)},
        {end + 2, insteadOf(identity)},
        {end + 3, insteadOf(identity + " firmware=5.2-0 (15000) driver=1.2-0 (29000)")},
        {end + 4, insteadOf(identity + " bios=5.2-0 (15000) driver=1.2-0 (29000)")},
        {end + 5, insteadOf(identity + " bios=5.2-0 (15000) firmware=5.2-0 (15000)")},
        {sample.driveHeading, {"-" + array, "-" + logical, "-" + sample.settings, "-" + spare}},
        {drive, {"-" + logical}},
        {drive + 2, {"-" + logical, "+logical level=-1 size=69889 array=0 cache=2 Okay/GOOD"}},
        {drive + 3, {"-" + logical, "+logical level=1 size=69889 array=0 cache=2"}},
        {drive + 4, {"-" + logical, "+logical level=1 size=-101 array=0 cache=2 Okay/GOOD"}},
        {sample.devices + 1, rulerLost},
    };
    for (const DeviceBlock& block : sample.blocks()) {
        for (const LineEffect& effect : effectsOfLostLines(block, blockLines)) {
            effects.push_back(effect);
        }
    }
    return effects;
}

TEST_P(ARCReaderSample, GivesWhatAPersonReadsInIt) {
    const ListingResult result = readListing(arcconf, sample.text());
    EXPECT_TRUE(result.read);
    Lines expected = {controller};
    for (const DeviceBlock& block : sample.blocks()) {
        expected.push_back(block.drive());
    }
    expected.insert(expected.end(), {sample.settings, array, logical, spare});
    EXPECT_EQ(result.lines, expected);
    EXPECT_EQ(result.output, "");
    expectSameWithCrLf(arcconf, sample.text());
}

TEST_P(ARCReaderSample, GivesTheDrivesAloneWithoutTheCaptureFlag) {
    const std::string unknownLevel = replaced(sample.text(), "  : 1\n", "  : 4\n");
    const ListingResult result = readListing(drivesOnly, unknownLevel);
    EXPECT_EQ(result.summary(), "true d=3 a=0 l=0 s=0");
    EXPECT_EQ(result.lines.front(), controller);
    EXPECT_FALSE(readListing(arcconf, unknownLevel).read);
}

INSTANTIATE_TEST_SUITE_P(ARCReader, ARCReaderSample, ::testing::Values(plain, segments),
                         [](const auto& sample) {
                             return sample.index == 0 ? "Plain" : "Segments";
                         });

class ARCReaderPlain : public ARCReaderSample {};
class ARCReaderSegments : public ARCReaderSample {};
INSTANTIATE_TEST_SUITE_P(ARCReader, ARCReaderPlain, ::testing::Values(plain));
INSTANTIATE_TEST_SUITE_P(ARCReader, ARCReaderSegments, ::testing::Values(segments));

TEST_P(ARCReaderPlain, SurvivesEveryCut) {
    expectCuts(arcconf, sample.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {38, "true d=0 a=1 l=1 s=0"},
                {56, "true d=1 a=1 l=1 s=0"},
                {72, "true d=2 a=1 l=1 s=0"},
                {81, "true d=2 a=1 l=1 s=1"},
                {88, "true d=3 a=1 l=1 s=1"}});
}

TEST_P(ARCReaderSegments, SurvivesEveryCut) {
    expectCuts(arcconf, sample.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {47, "true d=0 a=1 l=1 s=0"},
                {66, "true d=1 a=1 l=1 s=0"},
                {82, "true d=2 a=1 l=1 s=0"},
                {91, "true d=2 a=1 l=1 s=1"},
                {98, "true d=3 a=1 l=1 s=1"}});
}

TEST_P(ARCReaderPlain, SurvivesEveryCutWithoutTheCaptureFlag) {
    expectCuts(drivesOnly, sample.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {56, "true d=1 a=0 l=0 s=0"},
                {72, "true d=2 a=0 l=0 s=0"},
                {88, "true d=3 a=0 l=0 s=0"}});
}

TEST_P(ARCReaderSegments, SurvivesEveryCutWithoutTheCaptureFlag) {
    expectCuts(drivesOnly, sample.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {66, "true d=1 a=0 l=0 s=0"},
                {82, "true d=2 a=0 l=0 s=0"},
                {98, "true d=3 a=0 l=0 s=0"}});
}

TEST_P(ARCReaderPlain, SurvivesEveryLostLine) {
    std::vector<LineEffect> effects = commonEffects();
    effects.push_back({38, {"-" + array, "-" + logical, "-" + sample.settings, "-" + spare}});
    // Without the heading of the drives their lines belong to the logical drive.
    Lines headingLost = drivesGone();
    headingLost.insert(headingLost.end(),
                       {"-" + logical, "-" + spare, "+array B: 1:0", "+array C: 1:1",
                        "+array D: 1:2", "+array E: 3:0",
                        "+logical level=1 size=70006 array=4 cache=2 Okay/GOOD"});
    effects.push_back({42, headingLost});
    expectLostLines(arcconf, sample.text(), effects);
}

TEST_P(ARCReaderSegments, SurvivesEveryLostLine) {
    std::vector<LineEffect> effects = commonEffects();
    const std::string settings = "-" + sample.settings;
    effects.push_back({36, {settings, "+settings rebuild=0 readahead=1 stripe=10"}});
    effects.push_back({37, {settings, "+settings rebuild=0 readahead=0 stripe=5"}});
    effects.push_back({45, {"-" + array, "-" + logical, settings, "-" + spare}});
    effects.push_back({47, {"-" + array, "+array A: 1:1"}});
    effects.push_back({48, {"-" + array, "+array A: 1:0"}});
    // Without the heading of the drives their lines belong to the logical drive, but for their
    // positions: its members are known.
    Lines headingLost = drivesGone();
    headingLost.insert(
        headingLost.end(),
        {"-" + logical, "-" + spare, "+logical level=1 size=70006 array=0 cache=2 Okay/GOOD"});
    effects.push_back({52, headingLost});
    expectLostLines(arcconf, sample.text(), effects);
}

TEST_P(ARCReaderPlain, SurvivesEveryDoubledLine) {
    expectDoubledLines(arcconf, sample.text(),
                       {{15, insteadOf(identity)},
                        {17, insteadOf(identity)},
                        {30, {"+logical level=-1 size=-101 array=-1 cache=2"}},
                        {38,
                         {"-" + logical, "+array B: 1:0 1:1",
                          "+logical level=1 size=69889 array=1 cache=2 Okay/GOOD"}}});
}

TEST_P(ARCReaderSegments, SurvivesEveryDoubledLine) {
    expectDoubledLines(arcconf, sample.text(),
                       {{16, insteadOf(identity)},
                        {18, insteadOf(identity)},
                        {31, {"+logical level=-1 size=-101 array=-1 cache=2"}},
                        {47, {"-" + array, "+array A: 1:0 1:0 1:1"}},
                        {48, {"-" + array, "+array A: 1:0 1:1 1:1"}}});
}

TEST(ARCReader, BothFormsGiveTheSameArraysAndLogicalDrives) {
    // The segments of the one listing read in the plain form, and the list of the other in the
    // segment form.
    const std::string failover = "   Automatic Failover                       : Enabled\n";
    const ListingResult inPlainForm = readListing(arcconf, replaced(segments.text(), failover, ""));
    const ListingResult inSegmentForm = readListing(
        arcconf, replaced(plain.text(), "   Installed memory", failover + "   Installed memory"));
    for (const ListingResult& result : {inPlainForm, inSegmentForm}) {
        EXPECT_EQ(result.of("array"), Lines{"A: 1:0 1:1"});
        EXPECT_EQ(result.of("logical"), Lines{"level=1 size=69889 array=0 cache=2 Okay/GOOD"});
        EXPECT_EQ(result.of("spare"), Lines{"1:2"});
    }
}

// The logical drives of a server with an expander were captured onto other drives.
TEST(ARCReader, AnExpandersListingGivesWhatAPersonReadsInIt) {
    const std::string text = readTestData("arcconf-getconfig-expander.txt");
    const ListingResult result = readListing(arcconf, text);
    EXPECT_EQ(result.summary(), "true d=6 a=2 l=2 s=0");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.lines.front(), "controller subtype=2 slot=2 bios=5.2-0 (18000) "
                                    "firmware=5.2-0 (18000) driver=1.2-1 (40000)");
    EXPECT_EQ(result.of("drive").front(),
              "1:8 140014 [1:8 140014] NV9A0008 Online/GOOD in Enclosure 0, Slot 1");
    EXPECT_EQ(result.of("array"), (Lines{"A: 1:9 1:8", "B: 1:12 1:11 1:10"}));
    EXPECT_EQ(result.of("logical"), (Lines{"level=1 size=139889 array=0 cache=2 Okay/GOOD",
                                           "level=3 size=279900 array=1 cache=2 Okay/GOOD"}));
    EXPECT_EQ(result.of("settings"), Lines{"rebuild=0 readahead=1 stripe=5"});
    expectSameWithCrLf(arcconf, text);
    // The logical drives are known wherever the drives break off; who is meant is not.
    EXPECT_EQ(readListing(arcconf, text.substr(0, text.find("Device #3"))).of("array"),
              (Lines{"A: 1:9 1:8", "B: 1:2 1:3 1:10"}));
    EXPECT_EQ(readListing(drivesOnly, text).summary(), "true d=6 a=0 l=0 s=0");
}

TEST(ARCReader, ANewerListingGivesWhatAPersonReadsInIt) {
    const std::string text = readTestData("arcconf-getconfig-newer.txt");
    const ListingResult result = readListing(arcconf, text);
    EXPECT_EQ(result.summary(), "true d=4 a=2 l=2 s=0");
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.of("drive").back(),
              "1:7 140014 [1:7 140014] NV9B0007 Online/GOOD in Connector 1, Device 1");
    EXPECT_EQ(result.of("array"), (Lines{"A: 1:5 1:4", "B: 1:7 1:6"}));
    EXPECT_EQ(result.of("logical"), (Lines{"level=1 size=139889 array=0 cache=2 Okay/GOOD",
                                           "level=0 size=279900 array=1 cache=0 Okay/GOOD"}));
    EXPECT_EQ(result.of("settings"), Lines{"rebuild=0 readahead=2 stripe=5"});
    expectSameWithCrLf(arcconf, text);
    // With automatic failover the same members stand there.
    const std::string inSegmentForm = replaced(text, "   Copyback",
                                               "   Automatic Failover : "
                                               "Enabled\n   Copyback");
    EXPECT_EQ(readListing(arcconf, inSegmentForm).lines, result.lines);
}

TEST(ARCReader, TheNumberOfLogicalDrivesIsNoted) {
    FakePlatform platform;
    Application application(platform);
    ARCReader reader({}, application.report());
    RAIDController controller;
    controller.setType(controller_type::arcconf11);
    const auto read = [&](const std::string& text) {
        EXPECT_TRUE(reader.readConfiguration(controller, Lines{text}));
        return reader.announcedLogicalDrives();
    };
    EXPECT_EQ(read(plain.text()), 1);
    EXPECT_EQ(read(replaced(plain.text(), ": 1/0/0", ": 12/1/0")), 12);
    EXPECT_EQ(read(replaced(plain.text(), "drives/Offline", "devices/Failed")), 1);
    EXPECT_EQ(read(""), 0);
}

} // namespace
} // namespace zolex::test::arc_listing
