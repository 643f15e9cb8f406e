#include "companion/text/Sizes.h"
#include "companion/text/Timestamp.h"
#include "companion/text/Utf8.h"

#include <gtest/gtest.h>

#include <limits>

namespace zolex::companion {
namespace {

TEST(Sizes, HaveTheUnitThatTheyReach) {
    constexpr std::uint64_t mb = std::uint64_t{1} << 20U;
    struct {
        std::uint64_t bytes;
        const char* text;
    } const rows[] = {
        {0, "0 B"},
        {1023, "1023 B"},
        {1024, "1 KB"},
        {65536, "64 KB"},
        {512 * mb, "512 MB"},
        {1023 * mb, "1023 MB"},
        {1024 * mb, "1.0 GB"},
        {69376 * mb, "67.8 GB"},
        {277504 * mb, "271.0 GB"},
        {1906394 * mb, "1.82 TB"},
        {(std::uint64_t{5} << 50U) + (std::uint64_t{1} << 49U), "5.50 PB"},
        {std::numeric_limits<std::uint64_t>::max(), "16384.00 PB"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(sizeText(row.bytes), row.text);
    }
    EXPECT_EQ(sizeText(std::optional<std::uint64_t>()), "?");
}

TEST(Sizes, CountsHaveTheirNoun) {
    EXPECT_EQ(countText(0, "drive", "drives"), "0 drives");
    EXPECT_EQ(countText(1, "drive", "drives"), "1 drive");
    EXPECT_EQ(countText(2, "drive", "drives"), "2 drives");
}

TEST(Timestamp, SaysHowFarTheClockIsAheadOfUtc) {
    EXPECT_EQ(timestampOf({2026, 3, 9, 4, 5, 7}), "2026-03-09T04:05:07+00:00");
    EXPECT_EQ(timestampOf({2026, 11, 21, 21, 5, 0, 570}), "2026-11-21T21:05:00+09:30");
    EXPECT_EQ(timestampOf({2026, 11, 21, 21, 5, 59, -210}), "2026-11-21T21:05:59-03:30");
}

TEST(Utf8, TheEndOfATextIsCountedInCharacters) {
    EXPECT_EQ(lastCharacters("3LQ2A000", 4), "A000");
    EXPECT_EQ(lastCharacters("A00", 4), "A00");
    EXPECT_EQ(lastCharacters("", 4), "");
    EXPECT_EQ(lastCharacters("xx\xC3\xA4\xE4yz", 4), "\xC3\xA4\xE4yz");
}

TEST(Utf8, WhatIsTooLongEndsInDots) {
    EXPECT_EQ(shortened("12345678", 8), "12345678");
    EXPECT_EQ(shortened("123456789", 8), "12345...");
    EXPECT_EQ(shortened("\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4\xC3\xA4", 4), "\xC3\xA4...");
}

} // namespace
} // namespace zolex::companion
