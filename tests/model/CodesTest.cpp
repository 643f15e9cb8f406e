#include "model/Codes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace zolex {
namespace {

struct Word {
    std::int32_t code;
    const char* text;
};

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

TEST(Codes, EveryRAIDLevelHasItsWord) {
    constexpr Word words[] = {
        {raid_level::raid0, "0"},
        {raid_level::raid1, "1"},
        {raid_level::raid1E, "1E"},
        {raid_level::raid5, "5"},
        {raid_level::raid5E, "5E"},
        {raid_level::raid5EE, "5EE"},
        {raid_level::raid6, "6"},
        {raid_level::raid10, "10"},
        {raid_level::raid50, "50"},
        {raid_level::raid60, "60"},
        {raid_level::volume, "VOLUME"},
        {raid_level::simpleVolume, "SIMPLE VOLUME"},
        {raid_level::none, "ERROR"},
        {11, "ERROR"},
        {raid_level::notGiven, "ERROR"},
        {14, "ERROR"},
        {lowest, "ERROR"},
        {highest, "ERROR"},
    };
    for (const Word& word : words) {
        EXPECT_STREQ(raidLevelWord(word.code), word.text) << word.code;
    }
}

TEST(Codes, EveryStripeSizeHasItsWord) {
    constexpr Word words[] = {
        {0, "8"},      {1, "16"},     {2, "32"},     {3, "64"},         {4, "128"},
        {5, "256"},    {6, "512"},    {7, "1024"},   {8, "2048"},       {9, "4096"},
        {-1, "ERROR"}, {10, "ERROR"}, {11, "ERROR"}, {lowest, "ERROR"}, {highest, "ERROR"},
    };
    for (const Word& word : words) {
        EXPECT_STREQ(stripeSizeWord(word.code), word.text) << word.code;
    }
}

TEST(Codes, EveryRebuildRateHasItsWord) {
    constexpr Word words[] = {{0, "HIGH"},  {1, "MED"},        {2, "LOW"},        {-1, "ERROR"},
                              {3, "ERROR"}, {lowest, "ERROR"}, {highest, "ERROR"}};
    for (const Word& word : words) {
        EXPECT_STREQ(rebuildRateWord(word.code), word.text) << word.code;
    }
}

TEST(Codes, EveryReadAheadModeHasItsWord) {
    constexpr Word words[] = {{0, "ADAPTIVE"}, {1, "ON"},         {2, "OFF"},        {-1, "ERROR"},
                              {3, "ERROR"},    {lowest, "ERROR"}, {highest, "ERROR"}};
    for (const Word& word : words) {
        EXPECT_STREQ(readAheadWord(word.code), word.text) << word.code;
    }
}

} // namespace
} // namespace zolex
