#include "readers/MegaCliText.h"
#include "model/Codes.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

using megacli::Rounding;

struct SizeRow {
    const char* value;
    std::int32_t up;
    std::int32_t down;
};

TEST(MegaCliTextTest, Sizes) {
    const SizeRow rows[] = {
        {"69376MB [0x8780000 Sectors]", 69376, 69376},
        {"69376 MB", 69376, 69376},
        {"953.869 MB", 953, 953},
        {"67.843 GB", 69472, 69471},
        {"67.843GB [0x87bb800 Sectors]", 69472, 69471},
        {"68 GB", 69632, 69632},
        {"68.000 GB", 69632, 69632},
        {"68.0000000000001 GB", 69633, 69632},
        {"68.5 GB", 70144, 70144},
        {"0.001 GB", 2, 1},
        {"136.218 GB", 139488, 139487},
        {"278.464 GB", 285148, 285147},
        {"465.250 GB", 476416, 476416},
        {"1.818 TB [0xe8b6d000 Sectors]", 1906312, 1906311},
        {"3.637 TB", 3813671, 3813670},
        {"2 TB", 2097152, 2097152},
        {"2047.999 TB", 2147482600, 2147482599},
        {"2048 TB", 2147483647, 2147483647},
        {"99999999999999999999999999 TB", 2147483647, 2147483647},
        {"99999999999999999999999999 GB", 2147483647, 2147483647},
        {"99999999999999999999999999 MB", 2147483647, 2147483647},
        {"1.99999999999999999999999999999999999999 GB", 2048, 2047},
        {"12", 12288, 12288},
        {"", 0, 0},
        {"MB", 0, 0},
        {"GB", 0, 0},
        {".5 GB", 512, 512},
        {"1. GB", 1024, 1024},
        {"1.2.3 GB", 1229, 1228},
        {"-5 GB", 0, 0},
        {"-5 MB", 0, 0},
        {"Unknown", 0, 0},
    };
    for (const SizeRow& row : rows) {
        EXPECT_EQ(megacli::sizeInMb(row.value, Rounding::up), row.up) << row.value;
        EXPECT_EQ(megacli::sizeInMb(row.value, Rounding::down), row.down) << row.value;
    }
}

TEST(MegaCliTextTest, RaidLevels) {
    const struct {
        const char* line;
        std::int32_t level;
    } rows[] = {
        {"RAID Level: Primary-0, Secondary-0, RAID Level Qualifier-0", 0},
        {"RAID Level: Primary-0, Secondary-3, RAID Level Qualifier-0", 0},
        {"RAID Level          : Primary-1, Secondary-0, RAID Level Qualifier-0", 1},
        {"RAID Level: Primary-5, Secondary-0, RAID Level Qualifier-3", 3},
        {"RAID Level: Primary-6, Secondary-0, RAID Level Qualifier-3", 6},
        {"RAID Level: Primary-1, Secondary-3, RAID Level Qualifier-0", 7},
        {"RAID Level: Primary-5, Secondary-3, RAID Level Qualifier-3", 8},
        {"RAID Level: Primary-6, Secondary-3, RAID Level Qualifier-3", 9},
        {"RAID Level: Primary-3, Secondary-0, RAID Level Qualifier-0", -1},
        {"RAID Level: Primary-1, Secondary-1, RAID Level Qualifier-0", -1},
        {"RAID Level: Primary-5", -1},
        {"RAID Level: Secondary-0", -1},
        {"RAID Level: 5", -1},
        {"RAID Level:", -1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(megacli::raidLevelOf(row.line), row.level) << row.line;
    }
}

TEST(MegaCliTextTest, SpansRaiseThreeLevels) {
    const std::int32_t spanned[] = {0, 7, 2, 8, 4, 5, 9, 7, 8, 9, 10};
    for (std::int32_t level = 0; level <= 10; ++level) {
        EXPECT_EQ(megacli::spannedLevelOf(level), spanned[level]) << level;
    }
    EXPECT_EQ(megacli::spannedLevelOf(-1), -1);
}

TEST(MegaCliTextTest, StripeSizes) {
    const struct {
        const char* kilobytes;
        std::int32_t code;
    } rows[] = {
        {"16", 1}, {"32", 2}, {"64", 3},    {"128", 4},  {"256", 5},  {"512", 6},
        {"8", 99}, {"", 99},  {"1024", 99}, {"1.0", 99}, {"64 ", 99}, {"064", 99},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(megacli::stripeSizeOf(row.kilobytes, 99), row.code) << row.kilobytes;
    }
}

TEST(MegaCliTextTest, ReadAhead) {
    EXPECT_EQ(megacli::readAheadOf("Current Cache Policy: WriteBack, ReadAheadNone, Direct"), 2);
    EXPECT_EQ(megacli::readAheadOf("Current Cache Policy: WriteBack, ReadAdaptive, Direct"), 0);
    EXPECT_EQ(megacli::readAheadOf("Current Cache Policy: WriteBack, ReadAhead, Direct"), 1);
    EXPECT_EQ(megacli::readAheadOf("Current Cache Policy:"), 1);
}

TEST(MegaCliTextTest, KeysMayHaveBlanksBeforeTheirColon) {
    const struct {
        const char* line;
        const char* key;
        bool holds;
    } rows[] = {
        {"Name:", "Name", true},
        {"Name                :", "Name", true},
        {"Name \t:boot", "Name", true},
        {"  Name: x", "Name", true},
        {"Name", "Name", false},
        {"Name   ", "Name", false},
        {"Names:", "Name", false},
        {"Names and Name:", "Name", true},
        {"Number of Virtual Disks: 1", "Virtual Disk", false},
        {"Virtual Disk: 0 (Target Id: 0)", "Virtual Disk", true},
        {"Span: 0 - Number of PDs: 3", "PD", false},
        {"PD: 0 Information", "PD", true},
        {"PD Type: SAS", "PD", false},
        {"", "PD", false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(megacli::holdsKey(row.line, row.key), row.holds) << row.line;
    }
}

TEST(MegaCliTextTest, EnclosureLines) {
    EXPECT_TRUE(megacli::isEnclosureLine("Enclosure Device ID: 252"));
    EXPECT_TRUE(megacli::isEnclosureLine("Enclosure Number: 252"));
    EXPECT_FALSE(megacli::isEnclosureLine("Enclosure position: 1"));
    EXPECT_EQ(megacli::enclosureOf("Enclosure Device ID: 252"), 252);
    EXPECT_EQ(megacli::enclosureOf("Enclosure Device ID: N/A"), 0);
    EXPECT_EQ(megacli::enclosureOf("Enclosure Device ID:"), 0);
}

} // namespace
} // namespace zolex::test
