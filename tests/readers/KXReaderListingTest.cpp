#include "model/Codes.h"
#include "readers/ListingSupport.h"
#include "support/FakePlatform.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::test::kx_listing {
namespace {

using Lines = std::vector<std::string>;

constexpr ListingOptions cfggen = {.type = controller_type::lsiSas};
constexpr ListingOptions qtcsend = {.type = controller_type::family};

/// A drive's block in a sample listing and what is made of it.
struct Block {
    std::size_t heading; ///< number of its first line
    std::string text;    ///< the "drive" line
    std::string withoutSerial;
};

/// A sample listing and what is read of it.
struct Sample {
    ListingOptions options;
    const char* file;
    std::string controller;
    std::vector<Block> blocks; ///< in the order of the listing
    Lines layout;              ///< the other lines of the result
    // Lines of a block, counted from its heading.
    std::vector<std::size_t> needed;  ///< without one of these the drive is not stored
    std::vector<std::size_t> located; ///< without one of these reading fails
    std::size_t serial;

    [[nodiscard]] std::string text() const { return readTestData(file); }
    /// What is gone when reading fails or ends at the n-th block.
    [[nodiscard]] Lines goneFrom(std::size_t n) const {
        Lines gone;
        for (std::size_t i = n; i < blocks.size(); ++i) {
            gone.push_back("-" + blocks[i].text);
        }
        return gone;
    }
    [[nodiscard]] Lines layoutGone() const {
        Lines gone;
        for (const std::string& line : layout) {
            gone.push_back("-" + line);
        }
        return gone;
    }
    [[nodiscard]] Lines failingAt(std::size_t block) const {
        Lines gone = goneFrom(block);
        const Lines more = layoutGone();
        gone.insert(gone.end(), more.begin(), more.end());
        gone.emplace_back("false");
        return gone;
    }
};

Lines operator+(Lines a, const Lines& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// What the loss of a block's lines does; `without[n]` is what is different as well when the n-th
/// drive is not there.
std::vector<LineEffect> blockEffects(const Sample& sample, const std::vector<Lines>& without) {
    std::vector<LineEffect> effects;
    for (std::size_t n = 0; n < sample.blocks.size(); ++n) {
        const Block& block = sample.blocks[n];
        for (const std::size_t line : sample.needed) {
            effects.push_back({block.heading + line, Lines{"-" + block.text} + without[n]});
        }
        for (const std::size_t line : sample.located) {
            effects.push_back({block.heading + line, sample.failingAt(n)});
        }
        effects.push_back(
            {block.heading + sample.serial, {"-" + block.text, "+" + block.withoutSerial}});
    }
    return effects;
}

const std::string sasArray = "array A: 1:1 1:0 #1 #4";
const std::string sasVolume = "logical level=1 size=69618 array=0 cache=2 Okay (OKY)/GOOD";
const std::string sasSettings = "settings rebuild=0 readahead=0 stripe=10";
const Sample sas = {
    cfggen,
    "cfggen-display.txt",
    "controller slot=0 bus=2 bios=6.12.01.00 firmware=1.18.84.00",
    {{31, "drive 1:1 70006 t1 type SAS [1:1:1 70006] NV9B00010000000A0001 Online (ONL)/GOOD",
      "drive 1:1 70006 t1 type SAS [1:1:1 70006] Online (ONL)/GOOD"},
     {43, "drive 1:0 70006 t4 type SAS [1:4:0 70006] NV9B00020000000A0002 Online (ONL)/GOOD",
      "drive 1:0 70006 t4 type SAS [1:4:0 70006] Online (ONL)/GOOD"},
     {55, "drive 1:2 70006 t5 type SAS [1:5:2 70006] NV9B00030000000A0003 Ready (RDY)/GOOD",
      "drive 1:2 70006 t5 type SAS [1:5:2 70006] Ready (RDY)/GOOD"}},
    {sasSettings, sasArray, sasVolume},
    {0, 1, 5, 6},
    {2, 3, 4},
    10};

TEST(KXReader, ACfggenListingGivesWhatAPersonReadsInIt) {
    const ListingResult result = readListing(cfggen, sas.text());
    EXPECT_TRUE(result.read);
    EXPECT_EQ(result.lines, (Lines{sas.controller, sas.blocks[1].text, sas.blocks[0].text,
                                   sas.blocks[2].text, sasSettings, sasArray, sasVolume}));
    EXPECT_EQ(result.output, "");
    expectSameWithCrLf(cfggen, sas.text());
    ListingOptions drivesOnly = cfggen;
    drivesOnly.capture = false;
    EXPECT_EQ(readListing(drivesOnly, sas.text()).lines,
              (Lines{sas.controller, sas.blocks[1].text, sas.blocks[0].text, sas.blocks[2].text}));
}

TEST(KXReader, SurvivesEveryCutOfACfggenListing) {
    expectCuts(cfggen, sas.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {3, "false d=0 a=0 l=0 s=0"},
                {20, "true d=0 a=0 l=0 s=0"},
                {26, "true d=0 a=1 l=1 s=0"},
                {37, "true d=1 a=1 l=1 s=0"},
                {49, "true d=2 a=1 l=1 s=0"},
                {61, "true d=3 a=1 l=1 s=0"}});
}

TEST(KXReader, SurvivesEveryCutOfACfggenListingWithoutTheCaptureFlag) {
    ListingOptions drivesOnly = cfggen;
    drivesOnly.capture = false;
    // Every block in front of the drives must have its end.
    expectCuts(drivesOnly, sas.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {3, "false d=0 a=0 l=0 s=0"},
                {27, "true d=0 a=0 l=0 s=0"},
                {37, "true d=1 a=0 l=0 s=0"},
                {49, "true d=2 a=0 l=0 s=0"},
                {61, "true d=3 a=0 l=0 s=0"}});
}

TEST(KXReader, SurvivesEveryLostLineOfACfggenListing) {
    const Lines allGone = sas.goneFrom(0) + sas.layoutGone();
    const Lines controllerLost =
        sas.failingAt(0) + Lines{"-" + sas.controller, "+controller slot=0 bus=0"};
    const Lines drivesGone = sas.goneFrom(0) + Lines{"-" + sasArray, "+array A: #1 #4"};
    const auto controller = [](const std::string& fields) {
        return Lines{"-" + sas.controller, "+controller" + fields};
    };
    const Lines without1 = {"-" + sasArray, "+array A: 1:0 #1 #4"};
    const Lines without4 = {"-" + sasArray, "+array A: 1:1 #1 #4"};
    std::vector<LineEffect> effects = blockEffects(sas, {without1, without4, {}});
    // The blocks are counted by their separators.
    effects.push_back({3, controllerLost});
    effects.push_back({5, controllerLost});
    effects.push_back({7, controller(" slot=0 bus=2 firmware=1.18.84.00")});
    effects.push_back({8, controller(" slot=0 bus=2 bios=6.12.01.00")});
    effects.push_back({13, controller(" bus=2 bios=6.12.01.00 firmware=1.18.84.00")});
    effects.push_back({14, controller(" slot=0 bios=6.12.01.00 firmware=1.18.84.00")});
    effects.push_back({18, allGone});
    effects.push_back({20, allGone});
    effects.push_back({21, {"-" + sasVolume}});
    effects.push_back({23, {"-" + sasVolume, "+logical level=1 size=69618 array=0 cache=2"}});
    effects.push_back(
        {24, {"-" + sasVolume, "+logical level=-1 size=69618 array=0 cache=2 Okay (OKY)/GOOD"}});
    effects.push_back(
        {25, {"-" + sasVolume, "+logical level=1 size=-101 array=0 cache=2 Okay (OKY)/GOOD"}});
    effects.push_back({26, sas.layoutGone()});
    effects.push_back({27, drivesGone});
    effects.push_back({29, drivesGone});
    // A block without its last line goes on with the next, whose lines then count; behind the last
    // block they are those of the enclosure.
    effects.push_back({42, Lines{"-" + sas.blocks[0].text} + without1});
    effects.push_back({54, Lines{"-" + sas.blocks[1].text} + without4});
    effects.push_back(
        {66, Lines{"-" + sas.blocks[1].text, "-" + sas.blocks[2].text,
                   "+drive 1:0 70006 t5 type SAS [1:5:0 70006] NV9B00030000000A0003 Ready "
                   "(RDY)/GOOD"} +
                 without4});
    expectLostLines(cfggen, sas.text(), effects);
}

TEST(KXReader, SurvivesEveryDoubledLineOfACfggenListing) {
    expectDoubledLines(cfggen, sas.text(),
                       {{18, sas.layoutGone()},
                        {20, sas.layoutGone()},
                        {21, {"+logical level=-1 size=-101 array=-1 cache=2"}},
                        {26,
                         {"-" + sasVolume, "+array B: 1:1 1:0 #1 #4",
                          "+logical level=1 size=69618 array=1 cache=2 Okay (OKY)/GOOD"}}});
}

const std::string scsiController = "controller subtype=4 slot=3 bios=7.12.02 firmware=7.12.05";
const std::string scsiSettings = "settings rebuild=0 readahead=0 stripe=1";
const std::string arrayA = "array A: 1:0 1:1 1:2";
const std::string arrayB = "array B: 2:0 2:1";
const std::string logical1 = "logical level=3 size=34714 array=0 cache=1 Okay (OKY)/GOOD";
const std::string logical2 =
    "logical level=1 size=17357 array=1 cache=0 Degraded, critical (CRT)/BAD";
const std::string scsiSpare = "spare 2:2";

Block scsiBlock(std::size_t heading, const std::string& channel, const std::string& id,
                const std::string& size, const std::string& serial, const std::string& state) {
    const std::string position = channel + ":" + id;
    const std::string start =
        "drive " + position + " " + size + " t" + id + " [" + position + " " + size + "]";
    return {heading, start + " " + serial + " " + state, start + " " + state};
}

/// The drives of the family utility's sample, their channels counted from another one than 1.
std::vector<Block> scsiBlocks(int firstChannel, int secondChannel) {
    const std::string first = std::to_string(firstChannel);
    const std::string second = std::to_string(secondChannel);
    return {scsiBlock(45, first, "0", "17357", "NV9B0001", "Online (ONL)/GOOD"),
            scsiBlock(52, first, "1", "17357", "NV9B0002", "Online (ONL)/GOOD"),
            scsiBlock(59, first, "2", "17358", "NV9B0003", "Online (ONL)/GOOD"),
            scsiBlock(73, second, "0", "17357", "NV9B0004", "Online (ONL)/GOOD"),
            scsiBlock(80, second, "1", "17357", "NV9B0005", "Defunct (DDD)/BAD used"),
            scsiBlock(87, second, "2", "34715", "NV9B0006", "Hot spare (HSP)/GOOD")};
}

const Sample scsi = {qtcsend,
                     "qtcsend-getconfig.txt",
                     scsiController,
                     scsiBlocks(1, 2),
                     {scsiSettings, arrayA, arrayB, logical1, logical2, scsiSpare},
                     {0, 1, 3, 4},
                     {2},
                     5};

/// The difference when the drives stand on other channels. On one channel the later ones replace
/// the earlier ones.
Lines onChannels(int firstChannel, int secondChannel) {
    const std::size_t drivesPerChannel = 3;
    Lines difference = {"-" + scsiSpare, "+spare " + std::to_string(secondChannel) + ":2"};
    const std::vector<Block> moved = scsiBlocks(firstChannel, secondChannel);
    for (std::size_t i = 0; i < moved.size(); ++i) {
        const bool replaced = i < drivesPerChannel && firstChannel == secondChannel;
        if (replaced || moved[i].text != scsi.blocks[i].text) {
            difference.push_back("-" + scsi.blocks[i].text);
        }
        if (!replaced && moved[i].text != scsi.blocks[i].text) {
            difference.push_back("+" + moved[i].text);
        }
    }
    return difference;
}

TEST(KXReader, AFamilyListingGivesWhatAPersonReadsInIt) {
    const ListingResult result = readListing(qtcsend, scsi.text());
    EXPECT_TRUE(result.read);
    Lines expected = {scsiController};
    for (const Block& block : scsi.blocks) {
        expected.push_back(block.text);
    }
    EXPECT_EQ(result.lines, expected + scsi.layout);
    EXPECT_EQ(result.output, "");
    expectSameWithCrLf(qtcsend, scsi.text());
    ListingOptions drivesOnly = qtcsend;
    drivesOnly.capture = false;
    EXPECT_EQ(readListing(drivesOnly, scsi.text()).summary(), "true d=6 a=0 l=0 s=0");
    // The state of a failed drive is derived only where configurations are read.
    EXPECT_EQ(readListing(drivesOnly, scsi.text()).of("drive").at(4),
              "2:1 17357 t1 [2:1 17357] NV9B0005 Defunct (DDD)/GOOD used");
}

TEST(KXReader, SurvivesEveryCutOfAFamilyListing) {
    expectCuts(qtcsend, scsi.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {3, "false d=0 a=0 l=0 s=0"},
                {22, "true d=0 a=0 l=0 s=0"},
                {37, "true d=0 a=1 l=2 s=0"},
                {39, "true d=0 a=2 l=2 s=0"},
                {49, "true d=1 a=2 l=2 s=0"},
                {56, "true d=2 a=2 l=2 s=0"},
                {63, "true d=3 a=2 l=2 s=0"},
                {77, "true d=4 a=2 l=2 s=0"},
                {84, "true d=5 a=2 l=2 s=0"},
                {91, "true d=6 a=2 l=2 s=1"}});
}

TEST(KXReader, SurvivesEveryCutOfAFamilyListingWithoutTheCaptureFlag) {
    ListingOptions drivesOnly = qtcsend;
    drivesOnly.capture = false;
    expectCuts(drivesOnly, scsi.text(),
               {{0, "true d=0 a=0 l=0 s=0"},
                {3, "false d=0 a=0 l=0 s=0"},
                {40, "true d=0 a=0 l=0 s=0"},
                {49, "true d=1 a=0 l=0 s=0"},
                {56, "true d=2 a=0 l=0 s=0"},
                {63, "true d=3 a=0 l=0 s=0"},
                {77, "true d=4 a=0 l=0 s=0"},
                {84, "true d=5 a=0 l=0 s=0"},
                {91, "true d=6 a=0 l=0 s=0"}});
}

TEST(KXReader, SurvivesEveryLostLineOfAFamilyListing) {
    const Lines controllerLost = scsi.failingAt(0) + Lines{"-" + scsiController, "+controller"};
    const Lines allGone = scsi.goneFrom(0) + scsi.layoutGone();
    const Lines drivesGone = scsi.goneFrom(0) + Lines{"-" + scsiSpare};
    const auto controller = [](const std::string& fields) {
        return Lines{"-" + scsiController, "+controller" + fields};
    };
    std::vector<LineEffect> effects = blockEffects(scsi, {{}, {}, {}, {}, {}, {"-" + scsiSpare}});
    const std::vector<LineEffect> others = {
        {3, controllerLost},
        {5, controllerLost},
        {6, controller(" slot=3 bios=7.12.02 firmware=7.12.05")},
        {7, controller(" subtype=4 slot=3 firmware=7.12.05")},
        {8, controller(" subtype=4 slot=3 bios=7.12.02")},
        {14, controller(" subtype=4 bios=7.12.02 firmware=7.12.05")},
        // No line ends the controller's block.
        {15, scsi.failingAt(0)},
        {18, {"-" + scsiSettings, "+settings rebuild=0 readahead=0 stripe=10"}},
        {20, allGone},
        {22, allGone},
        {23, {"-" + logical1}},
        {24, {"-" + logical1, "+logical level=3 size=34714 array=0 cache=1"}},
        {25, {"-" + logical1, "+logical level=-1 size=34714 array=0 cache=1 Okay (OKY)/GOOD"}},
        {26, {"-" + logical1, "+logical level=3 size=-101 array=0 cache=1 Okay (OKY)/GOOD"}},
        {27, {"-" + logical1, "+logical level=3 size=34714 array=0 cache=2 Okay (OKY)/GOOD"}},
        {30, {"-" + logical1, "+logical level=3 size=34714 array=-1 cache=1 Okay (OKY)/GOOD"}},
        {31, {"-" + logical1}},
        {32, {"-" + logical2, "+logical level=1 size=17357 array=1 cache=0"}},
        {33,
         {"-" + logical2,
          "+logical level=-1 size=17357 array=1 cache=0 Degraded, critical (CRT)/BAD"}},
        {34,
         {"-" + logical2,
          "+logical level=1 size=-101 array=1 cache=0 Degraded, critical (CRT)/BAD"}},
        {35,
         {"-" + logical2,
          "+logical level=1 size=17357 array=1 cache=2 Degraded, critical (CRT)/BAD"}},
        {36,
         {"-" + logical2,
          "+logical level=1 size=17357 array=-1 cache=0 Degraded, critical (CRT)/BAD"}},
        {37, {"-" + arrayA, "-" + arrayB, "+array A: 2:0 2:1"}},
        {38, {"-" + arrayA, "+array A: 1:0 1:1"}},
        {39, {"-" + arrayB}},
        {40, drivesGone},
        {42, drivesGone},
        {43, onChannels(0, 1)},
        // A block without its last line goes on with the next, and over the next channel's line.
        {51, {"-" + scsi.blocks[0].text}},
        {58, {"-" + scsi.blocks[1].text}},
        {65, {"-" + scsi.blocks[2].text}},
        {70, onChannels(1, 1)},
        {71, onChannels(1, 1)},
        {79, {"-" + scsi.blocks[3].text}},
        {86, {"-" + scsi.blocks[4].text}},
    };
    effects.insert(effects.end(), others.begin(), others.end());
    expectLostLines(qtcsend, scsi.text(), effects);
}

TEST(KXReader, SurvivesEveryDoubledLineOfAFamilyListing) {
    const std::string empty = "+logical level=-1 size=-101 array=-1 cache=2";
    expectDoubledLines(qtcsend, scsi.text(),
                       {{20, scsi.layoutGone()},
                        {22, scsi.layoutGone()},
                        {23, {empty}},
                        {31, {empty}},
                        {37,
                         {"-" + arrayA, "-" + arrayB, "+array A: 1:0 1:1", "+array B: 1:0 1:1 1:2",
                          "+array C: 2:0 2:1"}},
                        {38, {"-" + arrayA, "+array A: 1:0 1:1 1:2 1:2"}},
                        {39, {"+array C: 2:0 2:1"}},
                        {43, onChannels(2, 3)},
                        {71, onChannels(1, 3)}});
}

} // namespace
} // namespace zolex::test::kx_listing
