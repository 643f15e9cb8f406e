#include "companion/layout/NormalForm.h"

#include "companion/layout/Megabyte.h"

#include <gtest/gtest.h>

#include <vector>

namespace zolex::companion {
namespace {

using test::mb;

using Spans = std::vector<std::vector<std::string>>;

DriveFacts driveOfSize(const std::string& location, std::uint64_t sizeMb = 1000) {
    DriveFacts facts;
    facts.location = location;
    facts.capacityBytes = sizeMb * mb;
    return facts;
}

LogicalDriveFacts logical(const std::string& level, Spans spans, std::uint64_t sizeMb,
                          const std::string& array = "0") {
    LogicalDriveFacts facts;
    facts.array = array;
    facts.raidType = level;
    facts.spans = std::move(spans);
    facts.capacityBytes = sizeMb * mb;
    return facts;
}

Facts machine(std::vector<LogicalDriveFacts> logicalDrives, int drives = 12) {
    Facts facts;
    for (int slot = 0; slot < drives; ++slot) {
        facts.drives.push_back(driveOfSize("32:" + std::to_string(slot)));
    }
    facts.logicalDrives = std::move(logicalDrives);
    return facts;
}

TEST(NormalForm, AnEmptyLayoutHasNoLine) {
    EXPECT_EQ(normalForm(machine({})), "");
}

TEST(NormalForm, GroupsStandInTheOrderOfTheirDrivesAsNumbers) {
    Facts facts = machine({logical("RAID1", {{"32:10", "32:9"}}, 1000, "0"),
                           logical("RAID5", {{"32:3", "32:2", "32:4"}}, 500, "1")});
    facts.logicalDrives[1].stripSizeBytes = 65536;
    facts.logicalDrives[1].writeCache = "WriteThrough";
    facts.logicalDrives[1].readCache = "Off";
    facts.drives[1].hotspare = HotspareKind::global;
    facts.drives[0].hotspare = HotspareKind::dedicated;
    facts.drives[11].isForeign = true;
    facts.foreignConfigurations = {"one of another controller"};
    EXPECT_EQ(normalForm(facts),
              "drives (32:2 32:3 32:4): RAID5 500 MB, strip 64 KB, write WriteThrough, read Off\n"
              "drives (32:9 32:10): RAID1 fill\n"
              "dedicated hot spare 32:0\n"
              "hot spare 32:1\n"
              "foreign 32:11\n"
              "foreign configuration one of another controller\n");
}

TEST(NormalForm, LayoutsThatMeanTheSameAreTheSame) {
    const Spans four = {{"32:0", "32:1", "32:2", "32:3"}};
    const Spans pairs = {{"32:2", "32:3"}, {"32:1", "32:0"}};
    const std::string ten = normalForm(machine({logical("RAID10", pairs, 2000)}));
    EXPECT_EQ(ten, "drives (32:0 32:1) (32:2 32:3): RAID10 fill\n");
    EXPECT_EQ(normalForm(machine({logical("RAID10", four, 2000)})), ten);
    EXPECT_EQ(normalForm(machine({logical("RAID1", four, 2000)})), ten);
    EXPECT_EQ(normalForm(machine({logical("RAID10", four, 2000, "7")})), ten);
    Facts named = machine({logical("RAID10", four, 2000)});
    named.logicalDrives[0].name = "data";
    named.logicalDrives[0].id = "5";
    EXPECT_EQ(normalForm(named), ten);
    const Spans other = {{"32:0", "32:2"}, {"32:1", "32:3"}};
    EXPECT_NE(normalForm(machine({logical("RAID10", other, 2000)})), ten);
    EXPECT_EQ(normalForm(machine(
                  {logical("RAID50", {{"32:0", "32:1", "32:2", "32:3", "32:4", "32:5"}}, 4000)})),
              "drives (32:0 32:1 32:2) (32:3 32:4 32:5): RAID50 fill\n");
}

TEST(NormalForm, LogicalDrivesOverTheSameDrivesAreOneGroup) {
    EXPECT_EQ(normalForm(machine({logical("RAID5", {{"32:0", "32:1", "32:2"}}, 1000, "A"),
                                  logical("RAID0", {{"32:2", "32:1", "32:0"}}, 1500, "A")})),
              "drives (32:0 32:1 32:2): RAID5 1000 MB; RAID0 fill\n");
    EXPECT_EQ(normalForm(machine({logical("RAID5", {{"32:0", "32:1", "32:2"}}, 1000, "A"),
                                  logical("RAID0", {{"32:2", "32:1", "32:0"}}, 900, "A")})),
              "drives (32:0 32:1 32:2): RAID5 1000 MB; RAID0 900 MB\n");
}

/// What is within 139 MB of the whole is the whole, as it is for zolex.
TEST(NormalForm, WhatFillsItsDrivesHasNoSize) {
    struct Row {
        const char* level;
        std::uint64_t data; ///< drives that hold data, of four
    };
    for (const Row& row : {Row{"RAID0", 4}, Row{"RAID5", 3}, Row{"RAID6", 2}, Row{"RAID10", 2},
                           Row{"RAID1E", 2}, Row{"RAID5EE", 2}, Row{"None", 4}}) {
        const Spans four = {{"32:0", "32:1", "32:2", "32:3"}};
        const std::uint64_t whole = row.data * 1000;
        const auto fills = [&](std::uint64_t size) {
            return normalForm(machine({logical(row.level, four, size)})).find(" fill") !=
                   std::string::npos;
        };
        EXPECT_TRUE(fills(whole)) << row.level;
        EXPECT_TRUE(fills(whole - 135)) << row.level;
        EXPECT_FALSE(fills(whole - 160)) << row.level;
        EXPECT_FALSE(fills(whole / 2)) << row.level;
    }
}

TEST(NormalForm, SizesAreRoundedToTheDigitsOfTheListing) {
    Facts exact = machine({logical("RAID1", {{"32:0", "32:1"}}, 500)});
    Facts rounded = exact;
    rounded.logicalDrives[0].capacityTolerance = 2 * mb;
    rounded.logicalDrives[0].capacityBytes = 501 * mb - 1;
    EXPECT_EQ(normalForm(rounded), normalForm(exact));
    rounded.logicalDrives[0].capacityBytes = 504 * mb;
    EXPECT_NE(normalForm(rounded), normalForm(exact));
}

TEST(NormalForm, WhatIsNotToldIsSaidSo) {
    Facts facts = machine({logical("", {}, 500)});
    facts.logicalDrives[0].capacityBytes.reset();
    facts.logicalDrives[0].reportedLevel = "Odd";
    EXPECT_EQ(normalForm(facts), "drives : Odd size not told\n");
    facts.logicalDrives[0].spans = {{"32:0", "Missing"}};
    EXPECT_EQ(normalForm(facts), "drives (Missing 32:0): Odd size not told\n");
}

} // namespace
} // namespace zolex::companion
