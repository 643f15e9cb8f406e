#include "companion/facts/FactValues.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

constexpr std::uint64_t mb = 1024 * 1024;
constexpr std::uint64_t gb = 1024 * mb;
constexpr std::uint64_t tb = 1024 * gb;

TEST(FactValues, SizesInWords) {
    EXPECT_EQ(parseSize("69376MB [0x8780000 Sectors]"), (Size{69376 * mb, mb}));
    EXPECT_EQ(parseSize(" 64 KB"), (Size{64 * 1024, 1024}));
    EXPECT_EQ(parseSize("8kB"), (Size{8 * 1024, 1024}));
    EXPECT_EQ(parseSize("512 Bytes"), (Size{512, 1}));
    EXPECT_EQ(parseSize("67.843 GB"), (Size{67 * gb + gb * 843 / 1000, gb / 1000 + 1}));
    EXPECT_EQ(parseSize("1.818 TB"), (Size{tb + tb * 818 / 1000, tb / 1000 + 1}));
    EXPECT_EQ(parseSize("1.5 TB"), (Size{tb + tb / 2, tb / 10 + 1}));
    EXPECT_EQ(parseSize("2. TB"), (Size{2 * tb, tb}));
    EXPECT_EQ(parseSize("1.0000000 TB"), (Size{tb, tb / 1000000 + 1})); // six digits count
    EXPECT_EQ(parseSize("70006", mb), (Size{70006 * mb, mb}));
}

TEST(FactValues, TextsThatAreNoSize) {
    for (const char* text : {"", "MB", "-1 MB", "N/A", "70006", "70006 apples", "x 1 MB",
                             "99999999999999999999 MB", "999999999999999999 TB", "1048577 TB"}) {
        EXPECT_EQ(parseSize(text), std::nullopt) << text;
    }
    EXPECT_EQ(parseSize("1048576 TB"), (Size{std::uint64_t{1} << 60, tb}));
    EXPECT_EQ(parseSize("70006 apples", mb), std::nullopt);
}

TEST(FactValues, Sectors) {
    EXPECT_EQ(hexSectors("69376MB [0x8780000 Sectors]"), 0x8780000U);
    EXPECT_EQ(hexSectors("1.818 TB [0xE8B6D000 Sectors]"), 0xE8B6D000U);
    for (const char* text : {"", "69376MB", "[0x Sectors]", "[0x12", "[0x12 sectors]",
                             "[0xg Sectors]", "[0x1234567890123 Sectors]"}) {
        EXPECT_EQ(hexSectors(text), std::nullopt) << text;
    }
}

TEST(FactValues, Numbers) {
    EXPECT_EQ(wholeNumber("0"), 0);
    EXPECT_EQ(wholeNumber("999999999"), 999999999);
    for (const char* text : {"", " 1", "1 ", "-1", "+1", "1x", "1000000000", "0x1"}) {
        EXPECT_EQ(wholeNumber(text), std::nullopt) << text;
    }
    EXPECT_EQ(lastNumber("Device #12"), 12);
    EXPECT_EQ(lastNumber("Device #"), std::nullopt);
    EXPECT_EQ(lastNumber(""), std::nullopt);
}

TEST(FactValues, Texts) {
    EXPECT_EQ(cleanText(" \tNV 1\x01\x7F"
                        "2 \r"),
              "NV 1  2");
    EXPECT_EQ(cleanText("\xE4\xFF"), "\xE4\xFF");
    EXPECT_EQ(cleanText("  "), "");
    EXPECT_EQ(locationText(32, 4), "32:4");
    EXPECT_EQ(locationText(std::nullopt, 4), ":4");
}

TEST(FactValues, Levels) {
    EXPECT_EQ(raidTypeOf("5"), "RAID5");
    EXPECT_EQ(raidTypeOf("1e"), "RAID1E");
    EXPECT_EQ(raidTypeOf("5EE"), "RAID5EE");
    EXPECT_EQ(raidTypeOf("6 Reed-Solomon"), "RAID6");
    EXPECT_EQ(raidTypeOf("Spanned_volume"), "None");
    EXPECT_EQ(raidTypeOf("MIRROR"), "RAID1");
    EXPECT_EQ(raidTypeOf("7"), "");
    EXPECT_EQ(raidTypeOf(""), "");
}

TEST(FactValues, ProtocolsAndMedia) {
    EXPECT_EQ(protocolOf("SAS 3.0 Gb/s"), "SAS");
    EXPECT_EQ(protocolOf("SATA 1.5 Gb/s"), "SATA");
    EXPECT_EQ(protocolOf("Ultra320"), "SCSI");
    EXPECT_EQ(protocolOf("2 parallel SCSI"), "SCSI");
    EXPECT_EQ(protocolOf("IDE"), "PATA");
    EXPECT_EQ(protocolOf("Unknown"), "");
    EXPECT_EQ(mediaTypeOf("Hard Disk Device"), "HDD");
    EXPECT_EQ(mediaTypeOf("Solid State Device"), "SSD");
    EXPECT_EQ(mediaTypeOf("SATA_SSD"), "SSD");
    EXPECT_EQ(mediaTypeOf("SAS"), "");
}

TEST(FactValues, StatesOfDrives) {
    using enum DriveState;
    const auto none = HotspareKind::none;
    const auto meaning = [](const char* word) { return driveStateMeaning(word); };
    EXPECT_EQ(meaning("Unconfigured(good), Spun Up"),
              (StateMeaning{DriveState::free, Health::ok, none}));
    EXPECT_EQ(meaning("Unconfigured(bad)"), (StateMeaning{failed, Health::critical, none}));
    EXPECT_EQ(meaning("Online, Spun Up"), (StateMeaning{member, Health::ok, none}));
    EXPECT_EQ(meaning("Hotspare, Spun down"),
              (StateMeaning{hotspare, Health::ok, HotspareKind::global}));
    EXPECT_EQ(meaning("Dedicated Hot-Spare"),
              (StateMeaning{hotspare, Health::ok, HotspareKind::dedicated}));
    EXPECT_EQ(meaning("Standby Hot Spare"),
              (StateMeaning{hotspare, Health::ok, HotspareKind::global}));
    EXPECT_EQ(meaning("Rebuild"), (StateMeaning{rebuilding, Health::warning, none}));
    EXPECT_EQ(meaning("Defunct (DDD)"), (StateMeaning{failed, Health::critical, none}));
    EXPECT_EQ(meaning("Missing (MIS)"), (StateMeaning{missing, Health::critical, none}));
    EXPECT_EQ(meaning("Partitioned"), (StateMeaning{jbod, Health::ok, none}));
    EXPECT_EQ(meaning("Ready (RDY)"), (StateMeaning{DriveState::free, Health::ok, none}));
    EXPECT_EQ(meaning("Sleepy"), StateMeaning());
}

TEST(FactValues, StatesOfLogicalDrives) {
    EXPECT_EQ(logicalDriveHealth("Optimal"), Health::ok);
    EXPECT_EQ(logicalDriveHealth("Okay (OKY)"), Health::ok);
    EXPECT_EQ(logicalDriveHealth("Partially Degraded"), Health::warning);
    EXPECT_EQ(logicalDriveHealth("Critical Migrating"), Health::warning);
    EXPECT_EQ(logicalDriveHealth("Degraded, critical (CRT)"), Health::warning);
    EXPECT_EQ(logicalDriveHealth("Offline"), Health::critical);
    EXPECT_EQ(logicalDriveHealth(""), Health::unknown);
}

} // namespace
} // namespace zolex::companion
