#include "companion/layout/Layout.h"

#include "companion/layout/Megabyte.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace zolex::companion {
namespace {

using test::mb;

using Lines = std::vector<std::string>;
using Spans = std::vector<std::vector<std::string>>;

LayoutGroup group(const std::string& id, const std::string& level, Spans spans) {
    LayoutGroup made;
    made.id = id;
    made.spans = std::move(spans);
    LayoutVolume& volume = made.volumes.emplace_back();
    volume.id = "Logical." + id;
    volume.raidType = level;
    volume.fills = true;
    return made;
}

TEST(Layout, LocationsStandInTheOrderOfTheirNumbers) {
    Lines locations = {"32:4", ":3", "32:10", "4:2", "32:9", "3", ":12", "12", "32:4"};
    std::sort(locations.begin(), locations.end(), locationStandsBefore);
    EXPECT_EQ(locations, (Lines{":3", ":12", "3", "4:2", "12", "32:4", "32:4", "32:9", "32:10"}));
}

TEST(Layout, GroupsSpansAndSparesAreSorted) {
    Layout layout;
    layout.groups = {group("A", "RAID5", {{"32:10", "32:9", "32:8"}}),
                     group("B", "RAID10", {{"32:3", "32:2"}, {"32:1", "32:0"}})};
    layout.spares = {{"32:12", {"A"}, false, true}, {"32:11", {}, true, false}};
    layout.foreignDrives = {"32:20", "32:13"};
    normalize(layout);
    EXPECT_EQ(layoutLines(layout),
              (Lines{"RAID10 fill: (32:0 32:1) (32:2 32:3)", "RAID5 fill: 32:8 32:9 32:10",
                     "dedicated hot spare: 32:11", "hot spare: 32:12", "foreign: 32:13",
                     "foreign: 32:20"}));
    EXPECT_EQ(layout.groups[0].drives(), (Lines{"32:0", "32:1", "32:2", "32:3"}));
    Layout again = layout;
    normalize(again);
    EXPECT_EQ(again, layout);
}

/// In the order of the list: sorting comes behind cutting.
TEST(Layout, OneSpanIsCutIntoThoseOfItsLevel) {
    struct Row {
        const char* level;
        Spans given;
        const char* line;
    };
    for (const Row& row :
         {Row{"RAID10", {{"3", "1", "2", "0"}}, "RAID10 fill: (0 2) (1 3)"},
          Row{"RAID1", {{"3", "1", "2", "0"}}, "RAID10 fill: (0 2) (1 3)"},
          Row{"RAID1", {{"1", "0"}}, "RAID1 fill: 0 1"},
          Row{"RAID1", {{"1", "0", "2"}}, "RAID1 fill: 0 1 2"},
          Row{"RAID50", {{"5", "4", "3", "2", "1", "0"}}, "RAID50 fill: (0 1 2) (3 4 5)"},
          Row{"RAID60", {{"0", "1", "2", "3", "4"}}, "RAID60 fill: (0 1 2) (3 4)"},
          Row{"RAID50", {{"4", "5"}, {"0", "1"}, {"2", "3"}}, "RAID50 fill: (0 1) (2 3) (4 5)"},
          Row{"RAID5", {{"2", "0", "1"}}, "RAID5 fill: 0 1 2"}}) {
        Layout layout;
        layout.groups = {group("A", row.level, row.given)};
        normalize(layout);
        EXPECT_EQ(layoutLines(layout), Lines{row.line});
    }
}

TEST(Layout, ArraysOfTheSameDrivesAreOneGroup) {
    Layout layout;
    layout.groups = {group("A", "RAID5", {{"0", "1", "2"}}), group("B", "RAID1", {{"3", "4"}}),
                     group("C", "RAID0", {{"2", "1", "0"}})};
    layout.groups[0].volumes[0].fills = false;
    layout.groups[0].volumes[0].capacityBytes = 512 * mb;
    layout.groups[2].isListed = true;
    layout.spares = {{"5", {"A", "B", "C"}, false, false}, {"6", {"C"}, false, false}};
    normalize(layout);
    EXPECT_EQ(layoutLines(layout), (Lines{"RAID5 512 MB; RAID0 fill: 0 1 2", "RAID1 fill: 3 4",
                                          "hot spare: 5", "hot spare: 6"}));
    EXPECT_EQ(layout.groups[0].id, "A");
    EXPECT_TRUE(layout.groups[0].isListed);
    EXPECT_EQ(layout.spares[0].covers, (Lines{"A", "B"}));
    EXPECT_EQ(layout.spares[1].covers, Lines{"A"});
}

TEST(Layout, WhatIsToldOfAVolumeStandsInItsLine) {
    LayoutVolume volume;
    EXPECT_EQ(layoutVolumeLine(volume), "? ?");
    volume.raidType = "RAID6";
    volume.capacityBytes = 69376 * mb;
    volume.stripSizeBytes = mb;
    volume.writeCache = "ProtectedWriteBack";
    volume.readCache = "Off";
    EXPECT_EQ(layoutVolumeLine(volume),
              "RAID6 67.8 GB, strip 1024 KB, protected write-back, no read-ahead");
    volume.writeCache = "WriteThrough";
    volume.readCache = "ReadAhead";
    EXPECT_EQ(layoutVolumeLine(volume), "RAID6 67.8 GB, strip 1024 KB, write-through, read-ahead");
}

TEST(Layout, DataHalvesAreWhatIsLeftWithoutRedundancy) {
    EXPECT_EQ(dataHalves("RAID0", 3, 1), 6U);
    EXPECT_EQ(dataHalves("None", 1, 1), 2U);
    EXPECT_EQ(dataHalves("RAID1", 2, 1), 2U);
    EXPECT_EQ(dataHalves("RAID1E", 3, 1), 3U);
    EXPECT_EQ(dataHalves("RAID10", 4, 2), 4U);
    EXPECT_EQ(dataHalves("RAID5", 3, 1), 4U);
    EXPECT_EQ(dataHalves("RAID5EE", 4, 1), 4U);
    EXPECT_EQ(dataHalves("RAID6", 4, 1), 4U);
    EXPECT_EQ(dataHalves("RAID50", 6, 2), 8U);
    EXPECT_EQ(dataHalves("RAID60", 8, 2), 8U);
    EXPECT_EQ(dataHalves("RAID6", 2, 1), 0U);
}

TEST(Layout, ACapturedLayoutKeepsWhatIsTold) {
    Facts facts;
    LogicalDriveFacts& logical = facts.logicalDrives.emplace_back();
    logical.id = "4";
    logical.array = "A";
    logical.raidType = "RAID0";
    logical.spans = {{"1", "0"}};
    logical.capacityBytes = 1000 * mb;
    logical.capacityTolerance = mb;
    logical.stripSizeBytes = 65536;
    logical.writeCache = "WriteThrough";
    logical.readCache = "Off";
    logical.reportedState = "Optimal";
    logical.health = Health::ok;
    const Layout layout = capturedLayout(facts);
    ASSERT_EQ(layout.groups.size(), 1U);
    LayoutGroup expected = group("A", "RAID0", {{"0", "1"}});
    expected.volumes[0] = {"4",   "RAID0",        1000 * mb, mb,        false,
                           65536, "WriteThrough", "Off",     "Optimal", Health::ok};
    EXPECT_EQ(layout.groups[0], expected);
}

} // namespace
} // namespace zolex::companion
