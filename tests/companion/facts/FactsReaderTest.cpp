#include "companion/facts/FactsReader.h"

#include "companion/facts/VirtualListings.h"
#include "companion/support/Texts.h"
#include "model/Codes.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::companion {
namespace {

using test::replaced;

using zolex::test::readTestData;
using Lines = std::vector<std::string>;

Facts factsOf(std::int32_t type, const std::vector<std::string>& names) {
    std::vector<std::string> listings;
    for (const std::string& name : names) {
        listings.push_back(readTestData(name));
    }
    return readFacts(type, listings);
}

Lines unknownKeys(const Facts& facts) {
    Lines lines;
    for (const ListingReading& listing : facts.listings) {
        for (const auto& [key, unknown] : listing.unknownKeys) {
            lines.push_back(key + " line " + std::to_string(unknown.line) + " times " +
                            std::to_string(unknown.count));
        }
    }
    return lines;
}

Lines blocksOf(const Facts& facts) {
    Lines lines;
    for (const ListingReading& listing : facts.listings) {
        lines.push_back(std::to_string(listing.blocksRead) + "/" + std::to_string(listing.blocks) +
                        " blocks, " + std::to_string(listing.keysUsed) + "/" +
                        std::to_string(listing.keys) + " keys");
    }
    return lines;
}

// Whole listings of each utility.

TEST(FactsReader, MegacliEarly) {
    const Facts facts =
        factsOf(controller_type::megaRaid, {"megacli-ldpdinfo-early.txt",
                                            "megacli-pdlist-early.txt", "megacli-adpallinfo.txt"});
    const std::string tail = " SAS MB 69376 errors 0 0 0 C -";
    EXPECT_EQ(test::describe(facts),
              (Lines{
                  "drive 32:0 member \"NORVIK\" \"NV73455S\" \"S527\" \"3LQ2A000\"" + tail,
                  "drive 32:1 member \"NORVIK\" \"NV73455S\" \"S527\" \"3LQ2A001\"" + tail,
                  "drive 32:2 member \"NORVIK\" \"NV73455S\" \"S527\" \"3LQ2A002\"" + tail,
                  "drive 32:3 hotspare \"NORVIK\" \"NV73455S\" \"S527\" \"3LQ2A003\"" + tail,
                  "drive 32:4 free \"NORVIK\" \"NV73455S\" \"S527\" \"3LQ2A004\"" + tail,
                  "logical 0 \"\" array 0 RAID5 [32:0 32:1 32:2] strip 64 ProtectedWriteBack ok",
              }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(blocksOf(facts), (Lines{"4/4 blocks, 24/76 keys", "5/5 blocks, 61/96 keys",
                                      "0/0 blocks, 15/32 keys"}));
    EXPECT_EQ(facts.productName, "LSI MegaRAID SAS 8480E");
    EXPECT_EQ(facts.serialNumber, "1122334455");
    EXPECT_EQ(facts.firmwareVersion, "1.11.50-0300");
    EXPECT_EQ(facts.biosVersion, "NV10-1");
    EXPECT_EQ(facts.pciIds, "1000:0411:1000:1002");
    EXPECT_EQ(facts.raidTypes,
              (Lines{"RAID0", "RAID1", "RAID5", "RAID6", "RAID10", "RAID50", "RAID60"}));
    EXPECT_EQ(facts.minStripSizeBytes, 8U * 1024);
    EXPECT_EQ(facts.maxStripSizeBytes, 1024U * 1024);
    EXPECT_EQ(facts.rebuildRatePercent, 30);
    EXPECT_EQ(facts.rebuildRate, "30%");
    const DriveFacts& spare = facts.drives.at(3);
    EXPECT_EQ(spare.reportedState, "Hotspare");
    EXPECT_EQ(spare.hotspare, HotspareKind::global);
    EXPECT_EQ(spare.inquiry, "NORVIK  NV73455S        S5273LQ2A003");
    EXPECT_EQ(spare.mediaType, "HDD");
    EXPECT_EQ(spare.capacityBytes, std::uint64_t{0x8780000} * 512);
    EXPECT_EQ(spare.capacityTolerance, 0U);
    EXPECT_EQ(spare.number, 3);
    EXPECT_EQ(spare.place, (ListingPlace{1, 64}));
    EXPECT_EQ(facts.drive("32:3"), &spare);
    EXPECT_EQ(facts.drive("32:9"), nullptr);
    const LogicalDriveFacts& logical = facts.logicalDrives.at(0);
    EXPECT_EQ(logical.capacityBytes, std::uint64_t{138752} * 1024 * 1024);
    EXPECT_EQ(logical.capacityTolerance, 1024U * 1024);
    EXPECT_EQ(logical.reportedLevel, "Primary-5, Secondary-0, RAID Level Qualifier-3");
    EXPECT_EQ(logical.readCache, "AdaptiveReadAhead");
    EXPECT_EQ(logical.reportedState, "Optimal");
}

TEST(FactsReader, MegacliLater) {
    const Facts facts = factsOf(controller_type::megaRaid,
                                {"megacli-ldpdinfo-later.txt", "megacli-pdlist-later.txt"});
    const std::string tail = " SAS MB 1906394 errors 0 0 0 C 29";
    EXPECT_EQ(test::describe(facts),
              (Lines{
                  "drive 252:0 member \"NORVIK\" \"NV2000NM0023\" \"0004\" \"Z1X0A000\"" + tail,
                  "drive 252:1 member \"NORVIK\" \"NV2000NM0023\" \"0004\" \"Z1X0A001\"" + tail,
                  "drive 252:2 hotspare \"NORVIK\" \"NV2000NM0023\" \"0004\" \"Z1X0A002\"" + tail,
                  "drive 252:3 free \"NORVIK\" \"NV2000NM0023\" \"0004\" \"Z1X0A003\"" + tail,
                  "logical 0 \"\" array 0 RAID1 [252:0 252:1] strip 64 ProtectedWriteBack ok",
              }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(facts.drives.at(2).reportedState, "Hotspare, Spun down");
    EXPECT_EQ(facts.logicalDrives.at(0).capacityTolerance, std::uint64_t{1099511628});
}

TEST(FactsReader, MegacliWithAMissingMember) {
    const Facts facts = factsOf(controller_type::megaRaid,
                                {"megacli-ldpdinfo-missing.txt", "megacli-pdlist-later.txt"});
    EXPECT_EQ(test::describe(facts).back(),
              "logical 0 \"data\" array 0 RAID1 [252:1] strip 64 ProtectedWriteBack warning");
    EXPECT_EQ(test::brokenLines(facts),
              Lines{"0:5 logical drive 0 announces 2 members, and 1 is listed"});
    EXPECT_EQ(blocksOf(facts).front(), "1/2 blocks, 17/68 keys");
}

TEST(FactsReader, ArcconfWithLists) {
    const Facts facts = factsOf(controller_type::arcconf7, {"arcconf-getconfig-plain.txt"});
    const std::string tail = " SAS MB 70006 errors - - 0 C -";
    EXPECT_EQ(test::describe(facts),
              (Lines{
                  "drive 0:0 member \"NORVIK\" \"NV73455S\" \"B522\" \"NV7A0001\"" + tail,
                  "drive 0:1 member \"NORVIK\" \"NV73455S\" \"B522\" \"NV7A0002\"" + tail,
                  "drive 0:2 hotspare \"NORVIK\" \"NV73455S\" \"B522\" \"NV7A0003\"" + tail,
                  "logical 1 \"ARRAY0_LOGICAL0\" array 0 RAID1 [0:0 0:1] strip - "
                  "UnprotectedWriteBack ok",
              }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(blocksOf(facts), Lines{"5/5 blocks, 45/74 keys"});
    EXPECT_EQ(facts.productName, "Norvik Kestrix B8");
    EXPECT_EQ(facts.serialNumber, "1000001");
    EXPECT_EQ(facts.reportedState, "Okay");
    EXPECT_EQ(facts.biosVersion, "5.2-0 (15000)");
    EXPECT_EQ(facts.firmwareVersion, "5.2-0 (15000)");
    EXPECT_EQ(facts.driverVersion, "1.2-0 (29000)");
    EXPECT_EQ(facts.drives.at(1).enclosure, 0);
    EXPECT_EQ(facts.drives.at(1).slot, 1);
    EXPECT_EQ(facts.drives.at(1).channel, 0);
    EXPECT_EQ(facts.drives.at(1).id, 1);
    EXPECT_EQ(facts.drives.at(1).number, 1);
    EXPECT_EQ(facts.drives.at(1).capacityTolerance, 1024U * 1024);
}

TEST(FactsReader, ArcconfWithSegments) {
    const Facts facts = factsOf(controller_type::arcconf7, {"arcconf-getconfig-segments.txt"});
    EXPECT_EQ(test::describe(facts).back(), "logical 0 \"ARRAY0_LOGICAL0\" array 0 RAID1 [0:0 0:1] "
                                            "strip 256 ProtectedWriteBack ok");
    EXPECT_EQ(facts.logicalDrives.at(0).readCache, "ReadAhead");
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(blocksOf(facts), Lines{"7/7 blocks, 48/80 keys"});
}

TEST(FactsReader, ArcconfWhoseMembersAreToldByTheirSlots) {
    const Facts facts = factsOf(controller_type::arcconf7, {"arcconf-getconfig-expander.txt"});
    Lines lines = test::describe(facts);
    lines.erase(lines.begin(), lines.begin() + 6);
    EXPECT_EQ(lines, (Lines{
                         "logical 0 \"system\" array 0 RAID1 [0:9 0:8] strip - "
                         "ProtectedWriteBack ok",
                         "logical 1 \"data\" array 1 RAID5 [0:12 0:11 0:10] strip 256 "
                         "ProtectedWriteBack ok",
                     }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
}

TEST(FactsReader, ArcconfNewest) {
    const Facts facts = factsOf(controller_type::arcconf7, {"arcconf-getconfig-newer.txt"});
    Lines lines = test::describe(facts);
    lines.erase(lines.begin(), lines.begin() + 4);
    EXPECT_EQ(lines, (Lines{
                         "logical 0 \"system\" array 0 RAID1 [0:5 0:4] strip - "
                         "UnprotectedWriteBack ok",
                         "logical 1 \"data\" array 1 RAID0 [0:7 0:6] strip 256 WriteThrough ok",
                     }));
    EXPECT_EQ(facts.drives.at(0).mediaType, "HDD"); // a member's line tells it
    EXPECT_EQ(facts.drives.at(0).enclosure, std::nullopt);
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
}

TEST(FactsReader, Hrconf) {
    const Facts facts = factsOf(controller_type::hrconf8, {"hrconf-getconfig.txt"});
    const std::string scsi = " SCSI MB ";
    EXPECT_EQ(
        test::describe(facts),
        (Lines{
            "drive 0:0 member \"NORVIK\" \"\" \"\" \"NV7A0001\" SCSI MB 70006 errors - - 0 C -",
            "drive 0:1 member \"NORVIK\" \"\" \"\" \"NV7A0002\" SCSI MB 70006 errors - - 0 C -",
            "drive 0:2 rebuilding \"NORVIK\" \"\" \"\" \"NV7A0003\" SCSI MB 70007 errors - - "
            "0 C -",
            "drive 1:4 member \"NORVIK\" \"\" \"\" \"NV7A0004\" SCSI MB 70006 errors - - 1 C -",
            "drive 1:12 failed \"NORVIK\" \"\" \"\" \"NV7A0005\" SCSI MB 70006 errors - - 0 C "
            "-",
            "drive 1:13 hotspare \"NORVIK\" \"\" \"\" \"NV7A0006\" SCSI MB 140012 errors - - "
            "0 C -",
            "logical 1 \"ARRAY0_LOGICAL0\" array 0 RAID5 [0:0 0:1 0:2] strip 64 "
            "WriteThrough ok",
            "logical 2 \"ARRAY1_LOGICAL1\" array 1 RAID1 [1:4 1:12] strip 64 - warning",
        }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(facts.biosVersion, "4.30-17 (3152)");
    EXPECT_EQ(facts.firmwareVersion, "4.30-18 (3153)");
    EXPECT_EQ(facts.driverVersion, "2.10-3 (41)");
    EXPECT_EQ(facts.drives.at(3).health, Health::warning); // about to fail
}

TEST(FactsReader, Qtcsend) {
    const Facts facts = factsOf(controller_type::family, {"qtcsend-getconfig.txt"});
    EXPECT_EQ(
        test::describe(facts),
        (Lines{
            "drive 1:0 member \"NORVIK\" \"NV18401S\" \"\" \"NV9B0001\" SCSI MB 17357 errors - - - "
            "C -",
            "drive 1:1 member \"NORVIK\" \"NV18401S\" \"\" \"NV9B0002\" SCSI MB 17357 errors - - - "
            "C -",
            "drive 1:2 member \"NORVIK\" \"NV18401S\" \"\" \"NV9B0003\" SCSI MB 17358 errors - - - "
            "C -",
            "drive 2:0 member \"NORVIK\" \"NV18401S\" \"\" \"NV9B0004\" SCSI MB 17357 errors - - - "
            "C -",
            "drive 2:1 failed \"NORVIK\" \"NV18401S\" \"\" \"NV9B0005\" SCSI MB 17357 errors - - - "
            "C -",
            "drive 2:2 hotspare \"NORVIK\" \"NV36401S\" \"\" \"NV9B0006\" SCSI MB 34715 errors - - "
            "- C -",
            "logical 1 \"\" array A RAID5 [1:0 1:1 1:2] strip 16 UnprotectedWriteBack ok",
            "logical 2 \"\" array B RAID1 [2:0 2:1] strip - WriteThrough warning",
        }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(facts.productName, "Kestrix-A4");
    EXPECT_EQ(facts.rebuildRate, "High");
    EXPECT_EQ(facts.rebuildRatePercent, std::nullopt);
    EXPECT_EQ(facts.logicalDrives.at(0).readCache, "AdaptiveReadAhead");
}

TEST(FactsReader, Cfggen) {
    const Facts facts = factsOf(controller_type::lsiSas, {"cfggen-display.txt"});
    const std::string tail = " SAS MB 70006 errors - - - C -";
    EXPECT_EQ(
        test::describe(facts),
        (Lines{
            "drive 1:1 member \"NORVIK\" \"NV73401S\" \"B51D\" \"NV9B00010000000A0001\"" + tail,
            "drive 1:0 member \"NORVIK\" \"NV73401S\" \"B51D\" \"NV9B00020000000A0002\"" + tail,
            "drive 1:2 free \"NORVIK\" \"NV73401S\" \"B51D\" \"NV9B00030000000A0003\"" + tail,
            "logical 1 \"\" array 0 RAID1 [1:1 1:0] strip - - ok",
        }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(unknownKeys(facts), Lines());
    EXPECT_EQ(facts.productName, "SAS1064E");
    EXPECT_EQ(facts.pciAddress, "02:00.0");
    EXPECT_EQ(facts.drives.at(0).capacityBytes, std::uint64_t{143374000} * 512);
    EXPECT_EQ(facts.drives.at(0).capacityTolerance, 0U);
    EXPECT_EQ(facts.drives.at(1).number, 4);
}

TEST(FactsReader, Hyperwin) {
    const std::string drive = "HyperWin Command Line Utility 1.07\nAdapter 0, drive 1\n"
                              "Error Code (hex)                : 0000\n";
    const Facts facts = readFacts(controller_type::lsiIde,
                                  std::vector<std::string>{readTestData("hyperwin-list.txt"), drive,
                                                           replaced(drive, "drive 1", "drive 2")});
    EXPECT_EQ(test::describe(facts),
              (Lines{
                  "drive 1 member \"\" \"\" \"\" \"\" PATA MB - errors - - - C -",
                  "drive 2 member \"\" \"\" \"\" \"\" PATA MB - errors - - - C -",
                  "logical 0 \"\" array 0 RAID0 [1 2] strip 128 UnprotectedWriteBack ok",
              }));
    EXPECT_EQ(test::brokenLines(facts), Lines());
    EXPECT_EQ(blocksOf(facts),
              (Lines{"1/1 blocks, 5/5 keys", "1/1 blocks, 1/1 keys", "1/1 blocks, 1/1 keys"}));
}

TEST(FactsReader, UnknownType) {
    const Facts facts = readFacts(13, std::vector<std::string>{"Adapter #0\n"});
    EXPECT_EQ(facts.listings.size(), 1U);
    EXPECT_TRUE(facts.drives.empty());
}

// What may stand differently.

TEST(FactsReader, CarriageReturnsChangeNothing) {
    const std::vector<std::string> plain = {readTestData("megacli-ldpdinfo-later.txt"),
                                            readTestData("megacli-pdlist-later.txt")};
    std::vector<std::string> other = plain;
    for (std::string& listing : other) {
        std::string text;
        for (const char c : listing) {
            text += c == '\n' ? "\r\n" : std::string(1, c);
        }
        listing = text;
    }
    EXPECT_EQ(readFacts(controller_type::megaRaid, other),
              readFacts(controller_type::megaRaid, plain));
}

TEST(FactsReader, ALastLineWithoutItsEndCounts) {
    std::string listing = readTestData("arcconf-getconfig-plain.txt");
    const Facts whole = readFacts(controller_type::arcconf7, std::vector<std::string>{listing});
    listing.pop_back();
    EXPECT_EQ(readFacts(controller_type::arcconf7, std::vector<std::string>{listing}), whole);
}

TEST(FactsReader, DrivesInNoEnclosure) {
    std::string listing = readTestData("megacli-pdlist-early.txt");
    listing = replaced(listing, "Enclosure Device ID: 32", "Enclosure Device ID: N/A");
    const Facts facts = readFacts(
        controller_type::megaRaid,
        std::vector<std::string>{replaced(readTestData("megacli-ldpdinfo-early.txt"),
                                          "Enclosure Device ID: 32", "Enclosure Device ID: N/A"),
                                 listing});
    EXPECT_EQ(facts.drives.at(0).location, ":0");
    EXPECT_EQ(facts.drives.at(0).enclosure, std::nullopt);
    EXPECT_EQ(facts.logicalDrives.at(0).spans, (std::vector<Lines>{{":0", "32:1", "32:2"}}));
    EXPECT_EQ(test::brokenLines(facts), Lines());
}

TEST(FactsReader, InquiryTextOfTheLongForm) {
    const std::string text = "        NVK-00000042NORVIK NV2000-22                        01.0";
    const std::string listing =
        replaced(readTestData("megacli-pdlist-early.txt"),
                 "NORVIK  NV73455S        S5273LQ2A000            ", text + "1A07");
    const Facts facts =
        readFacts(controller_type::megaRaid, std::vector<std::string>{"Adapter #0\n", listing});
    EXPECT_EQ(facts.drives.at(0).serialNumber, "NVK-00000042");
    EXPECT_EQ(facts.drives.at(0).model, "NORVIK NV2000-22");
    EXPECT_EQ(facts.drives.at(0).revision, "01.01A07");
    EXPECT_EQ(facts.drives.at(0).manufacturer, "");
}

TEST(FactsReader, ForeignAndDedicated) {
    std::string listing = readTestData("megacli-pdlist-early.txt");
    const std::size_t last = listing.rfind("Foreign State: None");
    listing.replace(last, 19, "Foreign State: Foreign");
    listing = replaced(listing, "Firmware state: Hotspare\n",
                       "Firmware state: Hotspare\nHotspare Information:\n"
                       "Type: Dedicated, is not revertible\n");
    const Facts facts =
        readFacts(controller_type::megaRaid,
                  std::vector<std::string>{"Adapter #0\nExit Code: 0x00\n", listing});
    EXPECT_EQ(facts.drives.at(3).hotspare, HotspareKind::dedicated);
    EXPECT_EQ(facts.drives.at(4).state, DriveState::foreign);
    EXPECT_TRUE(facts.drives.at(4).isForeign);
    EXPECT_EQ(test::brokenLines(facts), Lines());
}

TEST(FactsReader, FailingDrivesAreWarnedOf) {
    std::string listing = readTestData("megacli-pdlist-later.txt");
    listing = replaced(listing, "Media Error Count: 0", "Media Error Count: 12");
    const std::size_t last = listing.rfind("S.M.A.R.T alert : No");
    listing.replace(last, 20, "S.M.A.R.T alert : Yes");
    const Facts facts =
        readFacts(controller_type::megaRaid,
                  std::vector<std::string>{"Adapter #0\nExit Code: 0x00\n", listing});
    EXPECT_EQ(facts.drives.at(0).mediaErrorCount, 12U);
    EXPECT_EQ(facts.drives.at(0).health, Health::warning);
    EXPECT_EQ(facts.drives.at(3).predictedFailureCount, 1U);
    EXPECT_EQ(facts.drives.at(3).health, Health::warning);
    EXPECT_EQ(facts.drives.at(1).health, Health::ok);
}

TEST(FactsReader, MembersAreTheDrivesWhereThereIsNoListOfThem) {
    const Facts facts = factsOf(controller_type::megaRaid, {"megacli-ldpdinfo-early.txt"});
    ASSERT_EQ(facts.drives.size(), 3U);
    EXPECT_EQ(facts.drives.at(2).location, "32:2");
    EXPECT_EQ(facts.drives.at(2).serialNumber, "3LQ2A002");
    EXPECT_EQ(test::brokenLines(facts), Lines());
}

TEST(FactsReader, ListsThatNameTheMembersThatAreLeft) {
    for (const char* list :
         {"(Channel,Device)                : 0,2 DDD 0,0 0,1 ", "(Channel,Device) DDD: 0,0 0,1"}) {
        const std::string listing = replaced(readTestData("arcconf-getconfig-plain.txt"),
                                             "(Channel,Device)                : 0,0 0,1 ", list);
        const Facts facts = readFacts(controller_type::arcconf7, std::vector<std::string>{listing});
        EXPECT_EQ(facts.logicalDrives.at(0).spans, (std::vector<Lines>{{"0:0", "0:1"}})) << list;
        EXPECT_EQ(test::brokenLines(facts), Lines());
    }
}

TEST(FactsReader, HyperwinWithOtherMarks) {
    const Facts facts = readFacts(controller_type::lsiIde,
                                  std::vector<std::string>{"LOGICAL_ARRAY\n  -WRITE_CACHE\n"
                                                           "RAID_MODE=MIRROR\n"
                                                           "TOTAL_PHYSICAL_DRIVES 2\n"
                                                           "Error Code (hex) 0000\n"});
    EXPECT_EQ(test::describe(facts).back(),
              "logical 0 \"\" array 0 RAID1 [1 2] strip - WriteThrough ok");
    EXPECT_EQ(test::brokenLines(facts), Lines());
}

TEST(FactsReader, UnknownKeysAreCountedWithTheirFirstLine) {
    std::string listing = readTestData("arcconf-getconfig-plain.txt");
    for (int i = 0; i < 3; ++i) {
        listing =
            replaced(listing, "         PFA     ", "         Mood : fine\n         PFA     \t");
    }
    const Facts facts = readFacts(controller_type::arcconf7, std::vector<std::string>{listing});
    EXPECT_EQ(unknownKeys(facts), Lines{"Mood line 59 times 3"});
    EXPECT_EQ(facts.drives.size(), 3U);
    EXPECT_EQ(test::brokenLines(facts), Lines());
}

} // namespace
} // namespace zolex::companion
