#include "readers/MegaCliListings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex::test {
namespace {

using MEGAReaderConfigurationTest = MEGAReaderFixture;

std::vector<PdText> drivesOf(const std::string& enclosure, int first, int count,
                             const std::string& state = "Online") {
    std::vector<PdText> drives;
    for (int i = 0; i < count; ++i) {
        drives.push_back({.enclosure = enclosure, .slot = first + i, .state = state});
    }
    return drives;
}

/// A virtual disk whose header holds `line` in the place of the line that holds `key`.
std::string listingWith(const std::string& key, const std::string& line) {
    VdText disk;
    disk.spans = {drivesOf("32", 0, 2)};
    std::vector<std::string> lines = splitLines(configurationListing({disk}));
    for (std::string& candidate : lines) {
        if (candidate.compare(0, key.size(), key) == 0) {
            candidate = line + "\n";
            break;
        }
    }
    return joinLines(lines);
}

TEST_F(MEGAReaderConfigurationTest, EachVirtualDiskIsAnArrayWithALogicalDrive) {
    VdText first;
    first.spans = {drivesOf("32", 1, 2)};
    VdText second;
    second.level = "Primary-5, Secondary-0, RAID Level Qualifier-3";
    second.size = "135.500 GB";
    second.state = "Degraded";
    second.stripe = "128 KB";
    second.cache = "WriteThrough, ReadAheadNone, Direct, No Write Cache if Bad BBU";
    second.spans = {{{.enclosure = "64", .slot = 9},
                     {.enclosure = "32", .slot = 3},
                     {.enclosure = "64", .slot = 2}}};
    read(configurationListing({first, second}), "");
    EXPECT_EQ(layout(), "A=1:1,1:2 B=2:9,1:3,2:2 1=A/69376/1/1/Optimal/GOOD "
                        "2=B/138752/3/0/Degraded/BAD stripe=4 ra=2");
    for (const auto& [channel, id] : {std::pair(1, 1), {1, 2}, {2, 9}, {1, 3}, {2, 2}}) {
        EXPECT_TRUE(controller->isUsed(channel, id)) << channel << ":" << id;
    }
    EXPECT_FALSE(controller->isUsed(1, 0));
    EXPECT_EQ(controller->numberOfDrives(), 0);
    EXPECT_EQ(takeOutput(), "");
}

TEST_F(MEGAReaderConfigurationTest, WithoutTheCaptureFlagThereIsNoConfiguration) {
    detail.layout = false;
    read("", driveListing({{.slot = 0}, {.slot = 1, .state = "Hotspare"}}));
    EXPECT_EQ(layout(), "none");
    EXPECT_EQ(controller->numberOfDrives(), 2);
    EXPECT_FALSE(controller->isUsed(1, 0));
    EXPECT_FALSE(controller->isUsed(1, 1));
}

TEST_F(MEGAReaderConfigurationTest, HotSparesComeFromTheDriveListing) {
    VdText disk;
    disk.spans = {drivesOf("32", 0, 2)};
    std::vector<PdText> listed = drivesOf("32", 0, 2);
    listed.push_back({.enclosure = "32", .slot = 5, .state = "Hotspare, Spun down"});
    listed.push_back({.enclosure = "N/A", .slot = 6, .state = "Hotspare"});
    read(configurationListing({disk}), driveListing(listed));
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/1/1/Optimal/GOOD hs=32:5:5 hs=0:6:6 stripe=3 ra=0");
    EXPECT_EQ(controller->size(1, 5), 69376);
    EXPECT_EQ(controller->targetId(2, 6), 0);
    EXPECT_FALSE(controller->isUsed(1, 5));
}

TEST_F(MEGAReaderConfigurationTest, HotSparesAloneAreNoConfiguration) {
    read(configurationListing({}), driveListing({{.slot = 5, .state = "Hotspare"}}));
    EXPECT_EQ(layout(), "none");
    EXPECT_EQ(controller->numberOfDrives(), 1);
}

TEST_F(MEGAReaderConfigurationTest, ASpareThatCannotBeStoredIsNoHotSpare) {
    VdText disk;
    disk.spans = {drivesOf("1", 0, 2)};
    read(configurationListing({disk}),
         driveListing({{.enclosure = "1", .slot = 0},
                       {.enclosure = "1", .slot = 1},
                       {.enclosure = "2"},
                       {.enclosure = "3"},
                       {.enclosure = "4"},
                       {.enclosure = "5", .slot = 7, .state = "Hotspare"}}));
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0");
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tDrive position out of range for controller "
                            "LSI-MegaRAID-8480:  channel=-1, id=7\n\n");
}

// A server whose first virtual disk lay in its second enclosure was deployed to other drives than
// the captured ones: capture numbered the enclosures by virtual disks, deploy by drives.
TEST_F(MEGAReaderConfigurationTest, CaptureAndDeployNumberTheEnclosuresAlike) {
    const std::string listed = driveListing({{.enclosure = "32", .slot = 0},
                                             {.enclosure = "N/A", .slot = 1},
                                             {.enclosure = "64", .slot = 2},
                                             {.enclosure = "64", .slot = 3}});
    VdText disk;
    disk.spans = {drivesOf("64", 2, 2)};
    read(configurationListing({disk}), listed);
    EXPECT_EQ(layout(), "A=3:2,3:3 1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0");
    std::vector<std::string> captured = drives();
    EXPECT_EQ(captured, (std::vector<std::string>{"1:0 69376 t32 Online GOOD SERIAL",
                                                  "2:1 69376 t0 Online GOOD SERIAL",
                                                  "3:2 69376 t64 Online GOOD SERIAL used",
                                                  "3:3 69376 t64 Online GOOD SERIAL used"}));
    detail.layout = false;
    read("", listed);
    const std::vector<std::string> deployed = drives();
    ASSERT_EQ(deployed.size(), captured.size());
    for (std::size_t i = 0; i < deployed.size(); ++i) {
        EXPECT_EQ(captured[i].substr(0, deployed[i].size()), deployed[i]);
    }
}

TEST_F(MEGAReaderConfigurationTest, SpansRaiseTheLevel) {
    const struct {
        const char* level;
        std::size_t spans;
        std::int32_t code;
    } rows[] = {
        {"Primary-0, Secondary-0", 1, 0}, {"Primary-0, Secondary-0", 2, 0},
        {"Primary-1, Secondary-0", 1, 1}, {"Primary-1, Secondary-0", 2, 7},
        {"Primary-1, Secondary-0", 3, 7}, {"Primary-5, Secondary-0", 2, 8},
        {"Primary-6, Secondary-0", 2, 9}, {"Primary-1, Secondary-3", 2, 7},
        {"Primary-5, Secondary-3", 2, 8}, {"Primary-6, Secondary-3", 2, 9},
        {"Primary-5, Secondary-3", 1, 8},
    };
    for (const auto& row : rows) {
        VdText disk;
        disk.level = row.level;
        std::string members;
        for (std::size_t s = 0; s < row.spans; ++s) {
            const int slot = static_cast<int>(2 * s);
            disk.spans.push_back(drivesOf("32", slot, 2));
            members += ",1:" + std::to_string(slot) + ",1:" + std::to_string(slot + 1);
        }
        read(configurationListing({disk}), "");
        EXPECT_EQ(layout(), "A=" + members.substr(1) + " 1=A/69376/" + std::to_string(row.code) +
                                "/1/Optimal/GOOD stripe=3 ra=0")
            << row.level << " " << row.spans;
    }
}

TEST_F(MEGAReaderConfigurationTest, TheNumberOfSpansDecidesNotTheirHeadings) {
    read(listingWith("Number of Spans", "Number of Spans: 2"), "");
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/7/1/Optimal/GOOD stripe=3 ra=0");
}

// A virtual disk of two spans whose listing counts its members once, for both spans, and has no
// closing line was not captured.
TEST_F(MEGAReaderConfigurationTest, OneCountMayStandForTheMembersOfAllSpans) {
    VdText disk;
    disk.spans = {drivesOf("32", 0, 4)};
    std::string text = configurationListing({disk});
    text.replace(text.find("Spans: 1"), 8, "Spans: 2");
    text.replace(text.find("Span: 0 - "), 10, "");
    text.erase(text.find("Exit Code"));
    read(text, "");
    EXPECT_EQ(layout(), "A=1:0,1:1,1:2,1:3 1=A/69376/7/1/Optimal/GOOD stripe=3 ra=0");
    // It still tells that members are missing.
    read(text.substr(0, text.find("PD: 3")), "");
    EXPECT_EQ(layout(), "none");
}

TEST_F(MEGAReaderConfigurationTest, ALaterVirtualDiskClosesTheSpansOfAnEarlierOne) {
    std::vector<VdText> disks(2);
    disks[0].spans = {drivesOf("32", 0, 4)};
    disks[1].spans = {drivesOf("32", 4, 2)};
    std::string text = configurationListing(disks);
    text.replace(text.find("Spans: 1"), 8, "Spans: 2");
    text.erase(text.find("Exit Code"));
    read(text, "");
    EXPECT_EQ(layout(), "A=1:0,1:1,1:2,1:3 B=1:4,1:5 1=A/69376/7/1/Optimal/GOOD "
                        "2=B/69376/1/1/Optimal/GOOD stripe=3 ra=0");
}

TEST_F(MEGAReaderConfigurationTest, AMemberStandsWhereItsOwnBlockSays) {
    std::string text = listingWith("Number Of Drives", "Slot Number: 8");
    text.replace(text.find("Foreign State: None"), 19, "Slot Number: 9");
    read(text, "");
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0");
    // The last block may lack its end.
    text = listingWith("Number Of Drives", "Number Of Drives: 2");
    text.erase(text.rfind("Inquiry Data"), 12);
    read(text, "");
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0");
}

TEST_F(MEGAReaderConfigurationTest, HeaderValues) {
    const struct {
        const char* key;
        const char* line;
        const char* layout; ///< behind "A=1:0,1:1 "
    } rows[] = {
        {"Size", "Size                : 1.818 TB", "1=A/1906311/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Size", "Size:67.843 GB", "1=A/69471/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Size", "Size:0 MB", "1=A/-101/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Size", "Size:1MB", "1=A/1/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Size", "Sector Size: 512", "1=A/-101/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"State", "State               : Degraded", "1=A/69376/1/1/Degraded/BAD stripe=3 ra=0"},
        {"State", "State: Partially Degraded",
         "1=A/69376/1/1/Partially Degraded/BAD stripe=3 ra=0"},
        {"State", "State: Offline", "1=A/69376/1/1/Offline/GOOD stripe=3 ra=0"},
        {"Stripe", "Stripe Size: 16kB", "1=A/69376/1/1/Optimal/GOOD stripe=1 ra=0"},
        {"Stripe", "Strip Size          : 32 KB", "1=A/69376/1/1/Optimal/GOOD stripe=2 ra=0"},
        {"Stripe", "Stripe Size: 256KB", "1=A/69376/1/1/Optimal/GOOD stripe=5 ra=0"},
        {"Stripe", "Strip Size : 512 kB", "1=A/69376/1/1/Optimal/GOOD stripe=6 ra=0"},
        {"Stripe", "Stripe Size: 8kB", "1=A/69376/1/1/Optimal/GOOD stripe=10 ra=0"},
        {"Stripe", "Strip Size : 1.0 MB", "1=A/69376/1/1/Optimal/GOOD stripe=10 ra=0"},
        {"Stripe", "Stripe Size: 1024kB", "1=A/69376/1/1/Optimal/GOOD stripe=10 ra=0"},
        {"Current Cache", "Current Cache Policy: WriteThrough, ReadAhead, Direct",
         "1=A/69376/1/0/Optimal/GOOD stripe=3 ra=1"},
        {"Current Cache", "Current Cache Policy: WriteBack, ReadAheadNone, Cached",
         "1=A/69376/1/1/Optimal/GOOD stripe=3 ra=2"},
        {"Current Cache", "Current Cache Policy:", "1=A/69376/1/0/Optimal/GOOD stripe=3 ra=1"},
        {"Current Cache", "no policy", "1=A/69376/1/2/Optimal/GOOD stripe=3 ra=0"},
        {"Number of Virtual", "Number of Virtual Drives: 1",
         "1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Virtual Disk", "Virtual Drive: 0 (Target Id: 0)",
         "1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"Name", "Name                :boot", "1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0"},
        // A line of the header that holds "PD:" is no member.
        {"Number Of Drives", "VD has Emulated PD: No", "1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0"},
        {"RAID Level", "RAID Level          : Primary-0, Secondary-0, RAID Level Qualifier-0",
         "1=A/69376/0/1/Optimal/GOOD stripe=3 ra=0"},
    };
    for (const auto& row : rows) {
        read(listingWith(row.key, row.line), "");
        EXPECT_EQ(layout(), std::string("A=1:0,1:1 ") + row.layout) << row.line;
        EXPECT_EQ(takeOutput(), "") << row.line;
    }
}

TEST_F(MEGAReaderConfigurationTest, OnlyTheFirstSizeAndStateCount) {
    read(listingWith("Size", "Size:10MB\nSize:20MB\nState: Degraded\nState: Optimal"), "");
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/10/1/1/Degraded/BAD stripe=3 ra=0");
}

TEST_F(MEGAReaderConfigurationTest, ALayoutThatCannotBeReadWholeIsDropped) {
    VdText good;
    good.spans = {drivesOf("32", 0, 2)};
    VdText other = good;
    other.spans = {drivesOf("32", 2, 2)};
    const std::string two = configurationListing({good, other});
    const auto replaced = [&two](const std::string& what, const std::string& by,
                                 std::size_t from = 0) {
        std::string text = two;
        text.replace(text.find(what, from), what.size(), by);
        return text;
    };
    const std::size_t second = two.find("Virtual Disk: 1");
    const struct {
        const char* fault;
        std::string listing;
    } rows[] = {
        {"no virtual disk", configurationListing({})},
        {"empty", ""},
        {"less than none", replaced("Disks: 2", "Disks: -2")},
        {"number missing", replaced("Number of Virtual Disks: 2\n", "")},
        {"number behind a drive", replaced("\nAdapter", "\nEnclosure 1\nAdapter")},
        {"more announced than listed", replaced("Disks: 2", "Disks: 3")},
        {"far more announced", replaced("Disks: 2", "Disks: 2147483647")},
        {"level without code", replaced("Primary-1", "Primary-3")},
        {"level without code, later", replaced("Primary-1", "Primary-3", second)},
        {"no level",
         replaced("RAID Level: Primary-1, Secondary-0, RAID Level Qualifier-0\n", "", second)},
        {"no name", replaced("Name:", "Title:", second)},
        {"disks not parted", replaced("Virtual Disk: 1", "Disk 1")},
        {"member missing", replaced("Number of PDs: 2", "Number of PDs: 3")},
        {"member without slot", replaced("Slot Number: 1", "Slot: 1")},
        {"member out of range", replaced("Slot Number: 1", "Slot Number: 36")},
        {"member out of range, number unknown",
         configurationListing({{.spans = {{{.slot = 0}, {.slot = 36}}}}})
             .replace(two.find("Span: 0"), std::string("Span: 0 - Number of PDs: 2").size(), "")},
        {"no member", replaced(other.text(1), VdText().text(1))},
    };
    for (const auto& row : rows) {
        read(row.listing, driveListing(drivesOf("32", 0, 5)));
        EXPECT_EQ(layout(), "none") << row.fault;
        EXPECT_EQ(controller->numberOfDrives(), 5) << row.fault;
    }
    read(two, "");
    EXPECT_EQ(layout(), "A=1:0,1:1 B=1:2,1:3 1=A/69376/1/1/Optimal/GOOD "
                        "2=B/69376/1/1/Optimal/GOOD stripe=3 ra=0");
    // Fewer announced than listed: the first ones count.
    read(replaced("Disks: 2", "Disks: 1"), "");
    EXPECT_EQ(layout(), "A=1:0,1:1 1=A/69376/1/1/Optimal/GOOD stripe=3 ra=0");
}

TEST_F(MEGAReaderConfigurationTest, AMemberOutOfRangeIsNamed) {
    VdText disk;
    disk.spans = {{{.slot = 0}, {.slot = 40}}};
    read(configurationListing({disk}), "");
    EXPECT_EQ(layout(), "none");
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tDrive position out of range for controller "
                            "LSI-MegaRAID-8480:  channel=1, id=40\n\n" +
                                std::string(missingDrives));
}

// A configuration with a missing member was dropped without a word.
TEST_F(MEGAReaderConfigurationTest, MissingMembersAreNamed) {
    VdText good;
    good.spans = {drivesOf("32", 0, 2)};
    VdText other = good;
    other.spans = {drivesOf("32", 2, 2), drivesOf("32", 4, 2)};
    const std::string two = configurationListing({good, other});
    const auto replaced = [&two](const std::string& what, const std::string& by,
                                 std::size_t from = 0) {
        std::string text = two;
        return text.replace(text.find(what, from), what.size(), by);
    };
    const std::size_t second = two.find("Virtual Disk: 1");
    const struct {
        const char* fault;
        std::string listing;
        bool missing;
    } rows[] = {
        {"fewer than the first says", replaced("Number of PDs: 2", "Number of PDs: 3"), true},
        {"fewer than the second says", replaced("Number of PDs: 2", "Number of PDs: 3", second),
         true},
        {"fewer than the whole says", replaced("Number Of Drives:2", "Number Of Drives: 3"), true},
        {"blanks before the colon", replaced("Number Of Drives:2", "Number Of Drives    : 3"),
         true},
        {"fewer than all spans say",
         replaced("Number Of Drives:2", "Number Of Drives per span:3", second), true},
        {"no member", configurationListing({VdText()}), true},
        {"a member without slot", replaced("Slot Number: 1", "Slot: 1"), true},
        {"a level without code", replaced("Primary-1", "Primary-3"), false},
        {"more announced than listed", replaced("Disks: 2", "Disks: 3"), false},
        {"no level", replaced("RAID Level: Primary-1, Secondary-0, RAID Level Qualifier-0", ""),
         false},
    };
    for (const auto& row : rows) {
        read(row.listing, driveListing(drivesOf("32", 0, 5)));
        EXPECT_EQ(layout(), "none") << row.fault;
        EXPECT_EQ(controller->numberOfDrives(), 5) << row.fault;
        EXPECT_EQ(takeOutput(), row.missing ? missingDrives : "") << row.fault;
    }
    for (const std::string enough : {"Number Of Drives:1", "Number Of Drives per span:2"}) {
        read(replaced("Number Of Drives:2", enough, second), "");
        EXPECT_EQ(layout(), "A=1:0,1:1 B=1:2,1:3,1:4,1:5 1=A/69376/1/1/Optimal/GOOD "
                            "2=B/69376/7/1/Optimal/GOOD stripe=3 ra=0");
        EXPECT_EQ(takeOutput(), "");
    }
}

TEST_F(MEGAReaderConfigurationTest, ListingsThatBreakOffBetweenSpansAreDropped) {
    VdText disk;
    disk.level = "Primary-5, Secondary-0";
    disk.spans = {drivesOf("32", 0, 3), drivesOf("32", 3, 3)};
    const std::string listing = configurationListing({disk});
    read(listing.substr(0, listing.find("Span: 1")), "");
    EXPECT_EQ(layout(), "none");
    read(listing, "");
    EXPECT_EQ(layout(), "A=1:0,1:1,1:2,1:3,1:4,1:5 1=A/69376/8/1/Optimal/GOOD stripe=3 ra=0");
}

TEST_F(MEGAReaderConfigurationTest, MoreThanEightVirtualDisks) {
    std::vector<VdText> disks;
    std::string expected;
    for (int i = 0; i < 17; ++i) {
        VdText disk;
        disk.spans = {drivesOf("32", 2 * i, 2)};
        disks.push_back(disk);
    }
    read(configurationListing(disks), "");
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 8 logical "
                            "drives; the rest is not captured.\n\n");
    // An array that has no logical drive could not be configured again.
    ASSERT_NE(controller->captured(), nullptr);
    EXPECT_EQ(controller->captured()->arrays().size(), 8U);
    EXPECT_EQ(controller->captured()->logicalDrives().size(), 8U);
    EXPECT_EQ(controller->captured()->logicalDrives().back().arrayIndex, 7);
    EXPECT_TRUE(controller->isUsed(1, 33));
}

TEST_F(MEGAReaderConfigurationTest, MoreThan32Members) {
    VdText disk;
    disk.level = "Primary-0, Secondary-0";
    disk.spans = {drivesOf("32", 0, 36)};
    read(configurationListing({disk}), "");
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 32 drives "
                            "in an array; the rest is not captured.\n\n");
    ASSERT_NE(controller->captured(), nullptr);
    EXPECT_EQ(controller->captured()->arrays().front().drives().size(), 32U);
}

TEST_F(MEGAReaderConfigurationTest, MoreThanEightHotSpares) {
    VdText disk;
    disk.spans = {drivesOf("32", 0, 2)};
    read(configurationListing({disk}), driveListing(drivesOf("32", 2, 10, "Hotspare")));
    EXPECT_EQ(takeOutput(), "\n#### ERROR\n\tController LSI-MegaRAID-8480 has more than 8 "
                            "hot-spare drives; the rest is not captured.\n\n");
    ASSERT_NE(controller->captured(), nullptr);
    EXPECT_EQ(controller->captured()->hotspares().size(), 8U);
    EXPECT_EQ(controller->numberOfDrives(), 10);
}

TEST_F(MEGAReaderConfigurationTest, Traces) {
    application.printer().setVerbosity(level::traces);
    VdText disk;
    disk.spans = {{{.enclosure = "32", .slot = 4}}, {{.enclosure = "33", .slot = 5}}};
    read(configurationListing({disk}), "\n", "");
    EXPECT_EQ(takeOutput(), "Entering MEGAReader::readConfiguration\n"
                            "Entering MEGAReader::getArraysAndLogicalDrives\n"
                            "Setting size=69376\n"
                            "Stripe size value=64\n"
                            "Number of PDs=1 \n"
                            "Entering MEGAReader::reAssignChannelID, trueChannelID=32\n"
                            "Exiting MEGAReader::reAssignChannelID, iterator=1\n"
                            "Setting enclosure number=32\n"
                            "Setting slot number=4\n"
                            "Number of PDs=1 \n"
                            "Entering MEGAReader::reAssignChannelID, trueChannelID=33\n"
                            "Exiting MEGAReader::reAssignChannelID, iterator=2\n"
                            "Setting enclosure number=33\n"
                            "Setting slot number=5\n"
                            "Exiting MEGAReader::getArraysAndLogicalDrives, returning true\n"
                            "Entering MEGAReader::getDrives\n"
                            "Exiting MEGAReader::getDrives\n"
                            "Entering MEGAReader::getAdapterInfo\n"
                            "Exiting MEGAReader::getAdapterInfo\n"
                            "Exitng MEGAReader::readConfiguration, returning true\n");
}

TEST_F(MEGAReaderConfigurationTest, TracesWhyALayoutIsDropped) {
    application.printer().setVerbosity(level::traces);
    const struct {
        const char* key;
        const char* line;
        const char* exit;
    } rows[] = {
        {"RAID Level", "RAID Level: Primary-3, Secondary-0", "false(1)"},
        {"RAID Level", "no level", "false(2)"},
        {"Span: 0", "Span: 0 - Number of PDs: 3", "false(2)"},
    };
    for (const auto& row : rows) {
        read(listingWith(row.key, row.line), "");
        const std::string output = takeOutput();
        EXPECT_EQ(countOf(output, "Entering MEGAReader::getArraysAndLogicalDrives\n"), 1U);
        EXPECT_EQ(countOf(output, std::string("Exiting MEGAReader::getArraysAndLogicalDrives, "
                                              "returning ") +
                                      row.exit + "\nEntering MEGAReader::getDrives\n"),
                  1U)
            << output;
    }
}

} // namespace
} // namespace zolex::test
