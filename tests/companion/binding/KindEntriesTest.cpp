#include "companion/binding/KindEntries.h"

#include "companion/text/Sizes.h"

#include <gtest/gtest.h>

#include <random>

namespace zolex::companion {
namespace {

template <typename Wish>
std::string faultText(const KindReading<Wish>& reading) {
    return reading.fault
               ? std::to_string(reading.fault->word.column) + "-" +
                     std::to_string(reading.fault->word.endColumn) + " " + reading.fault->what
               : "none";
}

/// Of a value in column 12.
std::string drives(std::string_view value) {
    return faultText(readDrivesWish(value, 12));
}
std::string spares(std::string_view value) {
    return faultText(readSparesWish(value, 10));
}
std::string level(std::string_view value) {
    return faultText(readLevelWish(value, 11));
}

TEST(KindGrammar, Keywords) {
    for (const char* keyword : {"Drives.A", "drives.h", "SPARES", "Level.B", "Drives.Z"}) {
        EXPECT_TRUE(isKindKeyword(keyword)) << keyword;
    }
    for (const char* keyword :
         {"Drives", "Drives.", "Drives.AB", "Level.1", "Spares.A", "Hotspares", "Array.A", ""}) {
        EXPECT_FALSE(isKindKeyword(keyword)) << keyword;
    }
}

TEST(KindGrammar, WhatIsGiven) {
    const KindReading<DrivesWish> reading =
        readDrivesWish("LARGEST  4 X ssd sas 200gb-1.5TB Any Size", 12);
    ASSERT_TRUE(reading.wish);
    EXPECT_EQ(reading.wish->order, DrivesWish::Order::largest);
    EXPECT_EQ(reading.wish->count, 4);
    EXPECT_EQ(reading.wish->kindWords(), "SAS SSD from 200 GB to 1.5 TB");
    EXPECT_TRUE(reading.wish->anySize);
    EXPECT_EQ(reading.wish->size->low, std::uint64_t{200} << 30U);
    EXPECT_EQ(reading.wish->size->high, std::uint64_t{1536} << 30U);
    EXPECT_EQ(readDrivesWish("4 x SSD of one size", 1).wish, readDrivesWish("4 x SSD", 1).wish);
    EXPECT_EQ(readDrivesWish("all", 1).wish->kindWords(), "drives");
}

TEST(KindGrammar, NamesKeepTheirColumns) {
    const KindReading<DrivesWish> reading = readDrivesWish("slots 32:0 ,\t:3,0:12", 12);
    ASSERT_TRUE(reading.wish);
    EXPECT_EQ(reading.wish->names,
              (std::vector<KindWord>{{"32:0", 18, 22}, {":3", 25, 27}, {"0:12", 28, 32}}));
    const KindReading<SparesWish> spares = readSparesWish("1 covering a , B and 2", 10);
    ASSERT_TRUE(spares.wish);
    EXPECT_EQ(spares.wish->groups,
              (std::vector<SpareGroup>{{1, {{"A", 21, 22}, {"B", 25, 26}}}, {2, {}}}));
}

TEST(KindGrammar, FaultsOfDrives) {
    EXPECT_EQ(drives(""), "12-12 a number of drives is missing");
    EXPECT_EQ(drives("two x SSD"), R"(12-15 "two" stands where a number of drives is wanted)");
    EXPECT_EQ(drives("0 x SSD"), R"(12-13 "0" is no number of drives from 1 to 256)");
    EXPECT_EQ(drives("257 x SSD"), R"(12-15 "257" is no number of drives from 1 to 256)");
    EXPECT_EQ(drives("99999999999 x"),
              R"(12-23 "99999999999" is no number of drives from 1 to 256)");
    EXPECT_EQ(drives("2"), R"(13-13 "x" is missing)");
    EXPECT_EQ(drives("2 SSD"), R"(14-17 "SSD" stands where "x" is wanted)");
    EXPECT_EQ(drives("2 x smallest"), R"(16-24 "smallest" says nothing of drives)");
    EXPECT_EQ(drives("2 x SSD HDD"), "20-23 a media type is given twice");
    EXPECT_EQ(drives("2 x SAS sata"), "20-24 a protocol is given twice");
    EXPECT_EQ(drives("2 x <1TB >1GB"), "21-25 a size is given twice");
    EXPECT_EQ(drives("2 x <1"), R"(16-18 "<1" is no size)");
    EXPECT_EQ(drives("2 x < 1GB"), R"(16-17 "<" is no size)");
    EXPECT_EQ(drives("2 x =1.GB"), R"(16-21 "=1.GB" is no size)");
    EXPECT_EQ(drives("2 x =1.2345GB"), R"(16-25 "=1.2345GB" is no size)");
    EXPECT_EQ(drives("2 x =12345678GB"), R"(16-27 "=12345678GB" is no size)");
    EXPECT_EQ(drives("2 x 400GB"), R"(16-21 "400GB" is no size)");
    EXPECT_EQ(drives("2 x 400GB-"), R"(16-22 "400GB-" is no size)");
    EXPECT_EQ(drives("2 x 400GB-200GB"),
              R"(16-27 the first size of "400GB-200GB" is the larger one)");
    EXPECT_EQ(drives("2 x any"), R"(19-19 "size" is missing)");
    EXPECT_EQ(drives("rest of size"), R"(20-24 "size" stands where "one size" is wanted)");
    EXPECT_EQ(drives("rest any size of one size"), "26-28 any size or of one size is given twice");
    EXPECT_EQ(drives("slots"), "17-17 a slot is missing");
    EXPECT_EQ(drives("slots 32:0,,32:1"), "23-23 a slot is missing");
    EXPECT_EQ(drives("slots 32:0 32:1"), R"(18-27 no comma between the words of "32:0 32:1")");
    EXPECT_EQ(drives("serials ab,AB"), R"(23-25 "AB" stands there twice)");
    std::string many = "slots 1:0";
    for (int i = 1; i < 257; ++i) {
        many += ",1:" + std::to_string(i);
    }
    EXPECT_EQ(drives(many), "1444-1449 more than 256 drives");
    EXPECT_EQ(drives(std::string(100, 'x')),
              "12-112 \"" + std::string(40, 'x') +
                  R"(..." stands where a number of drives is wanted)");
}

TEST(KindGrammar, FaultsOfSpares) {
    EXPECT_EQ(spares(""), "10-10 a number of hot spares is missing");
    EXPECT_EQ(spares("9"), R"(10-11 "9" is no number of hot spares from 1 to 8)");
    EXPECT_EQ(spares("5 covering A and 4"), "27-28 more than 8 hot spares");
    EXPECT_EQ(spares("1 covering"), "20-20 the letter of an array is missing");
    EXPECT_EQ(spares("1 covering A,I"),
              R"(23-24 "I" stands where the letter of an array is wanted)");
    EXPECT_EQ(spares("1 SSD"), R"(12-15 "SSD" is no "and")");
    EXPECT_EQ(spares("1 and"), "15-15 a number of hot spares is missing");
    EXPECT_EQ(spares("slots"), "15-15 a slot is missing");
}

TEST(KindGrammar, FaultsOfLevels) {
    EXPECT_EQ(level(""), "11-11 a RAID level is missing");
    EXPECT_EQ(level("6 else"), "17-17 a RAID level is missing");
    EXPECT_EQ(level("6 5"), R"(13-14 "5" is no "else")");
    EXPECT_EQ(level("6 else AUTO"), R"(18-22 "AUTO" stands where a RAID level is wanted)");
    EXPECT_EQ(level("6 else 5 else 6"), R"(25-26 "6" stands there twice)");
    EXPECT_EQ(level("6 else volume else 1e"), "none");
}

TEST(KindSizes, AreThoseThatShowPrints) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::uint64_t bytes = random() >> (14 + random() % 50);
        const std::string shown = sizeText(bytes);
        if (!shown.starts_with("1024 ")) { // it is the next unit then
            EXPECT_EQ(sizeText(shownSize(bytes)), shown);
        }
    }
}

TEST(KindSizes, Conditions) {
    constexpr std::uint64_t mb = std::uint64_t{1} << 20U;
    const auto holds = [](const std::string& condition, std::uint64_t bytes) {
        return readDrivesWish("1 x " + condition, 1).wish->size->holds(shownSize(bytes));
    };
    // 69376 MB is printed as 67.8 GB, and is a little less.
    EXPECT_EQ(sizeText(69376 * mb), "67.8 GB");
    EXPECT_FALSE(holds("<67.8GB", 69376 * mb));
    EXPECT_FALSE(holds(">67.8GB", 69376 * mb));
    EXPECT_TRUE(holds("67.8GB-67.8GB", 69376 * mb));
    EXPECT_TRUE(holds("=67.8GB", 69376 * mb));
    EXPECT_TRUE(holds("=68GB", 69376 * mb));
    EXPECT_FALSE(holds("=69GB", 69376 * mb));
    EXPECT_FALSE(holds("=67GB", 69376 * mb));
    EXPECT_TRUE(holds("<68GB", 69376 * mb));
    EXPECT_TRUE(holds(">67GB", 69376 * mb));
    EXPECT_TRUE(holds(">1tb", std::uint64_t{1024 * 1024 + 12 * 1024} * mb));
    EXPECT_FALSE(holds(">1TB", std::uint64_t{1024 * 1024} * mb));
}

} // namespace
} // namespace zolex::companion
