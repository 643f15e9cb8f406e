#include "model/Codes.h"

#include <array>
#include <cstddef>

namespace zolex {

namespace {

constexpr const char* noWord = "ERROR";

// The word of each code, by code; null where a code has none.
constexpr std::array<const char*, 14> raidLevelWords = {
    "0",  "1",  "1E", "5",      "5E",    "5EE",   "6",
    "10", "50", "60", "VOLUME", nullptr, nullptr, "SIMPLE VOLUME"};
static_assert(raidLevelWords.size() == raid_level::simpleVolume + 1);

constexpr std::array<const char*, 10> stripeSizeWords = {"8",   "16",  "32",   "64",   "128",
                                                         "256", "512", "1024", "2048", "4096"};
static_assert(stripeSizeWords.size() == stripe::none);

constexpr std::array<const char*, 3> rebuildRateWords = {"HIGH", "MED", "LOW"};
static_assert(rebuildRateWords.size() == rebuild_rate::low + 1);

constexpr std::array<const char*, 3> readAheadWords = {"ADAPTIVE", "ON", "OFF"};
static_assert(readAheadWords.size() == read_ahead::off + 1);

template <std::size_t n>
const char* wordOf(const std::array<const char*, n>& words, std::int32_t code) {
    if (code < 0 || static_cast<std::size_t>(code) >= n) {
        return noWord;
    }
    const char* word = words[static_cast<std::size_t>(code)];
    return word != nullptr ? word : noWord;
}

} // namespace

const char* raidLevelWord(std::int32_t code) {
    return wordOf(raidLevelWords, code);
}

const char* stripeSizeWord(std::int32_t code) {
    return wordOf(stripeSizeWords, code);
}

const char* rebuildRateWord(std::int32_t code) {
    return wordOf(rebuildRateWords, code);
}

const char* readAheadWord(std::int32_t code) {
    return wordOf(readAheadWords, code);
}

} // namespace zolex
