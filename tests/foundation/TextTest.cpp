#include "foundation/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>

namespace zolex::text {
namespace {

using namespace std::literals;

constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t highest = std::numeric_limits<std::int32_t>::max();

TEST(Text, FoldsAsciiLettersOnly) {
    for (int byte = 0; byte < 256; ++byte) {
        const char c = static_cast<char>(byte);
        const bool small = byte >= 'a' && byte <= 'z';
        const bool large = byte >= 'A' && byte <= 'Z';
        EXPECT_EQ(lower(c), large ? static_cast<char>(byte + 32) : c) << byte;
        EXPECT_EQ(upper(c), small ? static_cast<char>(byte - 32) : c) << byte;
    }
}

TEST(Text, ComparesWithoutCase) {
    EXPECT_EQ(compareNoCase("Logical", "LOGICAL"), 0);
    EXPECT_LT(compareNoCase("a", "B"), 0);
    EXPECT_GT(compareNoCase("C", "b"), 0);
    EXPECT_LT(compareNoCase("ab", "ABC"), 0);
    EXPECT_GT(compareNoCase("abc", "AB"), 0);
    EXPECT_GT(compareNoCase("\xFF", "a"), 0);
    EXPECT_TRUE(equalsNoCase("", ""));
    EXPECT_TRUE(equalsNoCase("a\0B"sv, "A\0b"sv));
    EXPECT_FALSE(equalsNoCase("a\0B"sv, "A\0c"sv));
    EXPECT_FALSE(equalsNoCase("a", "ab"));
}

TEST(Text, FindsKeysInLines) {
    EXPECT_TRUE(contains("Device is a Hard drive", "Hard drive"));
    EXPECT_FALSE(contains("Device is a Hard drive", "hard drive"));
    EXPECT_TRUE(contains("abc", ""));
    EXPECT_FALSE(contains("", "a"));
    EXPECT_TRUE(containsNoCase("CONTROLLER Information", "controller information"));
    EXPECT_FALSE(containsNoCase("controller", "controllers"));
    EXPECT_TRUE(containsNoCase("", ""));
    EXPECT_TRUE(containsNoCase("abc", ""));
    EXPECT_FALSE(containsNoCase("", "a"));
}

TEST(Text, Trims) {
    EXPECT_EQ(trim(" \t\nx y\n\t "), "x y");
    EXPECT_EQ(trim(" \t\n"), "");
    EXPECT_EQ(trim(""), "");
    EXPECT_EQ(trim("\rx\r\n"), "\rx\r");
    EXPECT_EQ(trim("..x..", "."), "x");
    EXPECT_EQ(trim(" x ", ""), " x ");
}

TEST(Text, TheValueStandsAfterTheFirstColon) {
    EXPECT_EQ(valueAfterColon("Size : 34 GB\n"), "34 GB");
    EXPECT_EQ(valueAfterColon("Time: 10:20:30"), "10:20:30");
    EXPECT_EQ(valueAfterColon("Key:"), "");
    EXPECT_EQ(valueAfterColon(":x"), "x");
    EXPECT_EQ(valueAfterColon("no value"), "");
    EXPECT_EQ(valueAfterColon(""), "");
}

TEST(Text, ATokenEndsAtTheNextDelimiter) {
    EXPECT_EQ(token("Time: 10:20:30", ":", 0), "Time");
    EXPECT_EQ(token("Time: 10:20:30", ":", 1), " 10");
    EXPECT_EQ(token("Time: 10:20:30", ":", 3), "30");
    EXPECT_EQ(token("Time: 10:20:30", ":", 4), "");
    EXPECT_EQ(token("a,,b", ",", 1), "");
    EXPECT_EQ(token("a,,b", ",", 2), "b");
    EXPECT_EQ(token("a::b", "::", 1), "b");
    EXPECT_EQ(token("abc", ",", 0), "abc");
    EXPECT_EQ(token("abc", ",", 1), "");
    EXPECT_EQ(token("abc", "", 0), "");
    EXPECT_EQ(token("", ",", 0), "");
    EXPECT_EQ(token("abc", ",", std::numeric_limits<std::size_t>::max()), "");
}

TEST(Text, ConvertsTheLeadingInteger) {
    struct Row {
        std::string_view text;
        std::int32_t number;
    };
    constexpr Row rows[] = {
        {"", 0},
        {"7", 7},
        {"  7", 7},
        {"\t\n\v\f\r7", 7},
        {"7 8", 7},
        {"12abc", 12},
        {"abc", 0},
        {"-12MB", -12},
        {"+5", 5},
        {"+", 0},
        {"-+5", 0},
        {"00000000000000000005", 5},
        {"2147483646", 2147483646},
        {"2147483647", highest},
        {"2147483648", highest},
        {"-2147483647", -2147483647},
        {"-2147483648", lowest},
        {"-2147483649", lowest},
        {"123456789012345678901234567890", highest},
        {"-123456789012345678901234567890", lowest},
        {"1\0"
         "2"sv,
         1},
        {"\xB2", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(leadingInt(row.text), row.number) << row.text;
    }
}

TEST(Text, AWholeNumberIsDigitsAndNothingElse) {
    struct Row {
        std::string_view text;
        std::optional<std::int32_t> number;
    };
    const Row rows[] = {
        {"0", 0},
        {"7", 7},
        {"007", 7},
        {"00000000000000000000000000000000009", 9},
        {"2147483647", highest},
        {"2147483648", std::nullopt},
        {"99999999999999999999999999", std::nullopt},
        {"", std::nullopt},
        {" 7", std::nullopt},
        {"7 ", std::nullopt},
        {"+7", std::nullopt},
        {"-7", std::nullopt},
        {"-0", std::nullopt},
        {"7x", std::nullopt},
        {"0x7", std::nullopt},
        {"7.0", std::nullopt},
        {"7\0"sv, std::nullopt},
        {"\xB2", std::nullopt},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(wholeNumber(row.text), row.number) << row.text;
    }
}

TEST(Text, AgreesWithTheCLibraryOnRandomNumbers) {
    std::mt19937 random(5941);
    for (int run = 0; run < 5000; ++run) {
        std::string text;
        for (std::size_t n = random() % 14; n > 0; --n) {
            text += " +-0123456789x"[random() % 14];
        }
        const long long value = std::strtoll(text.c_str(), nullptr, 10);
        const long long clamped = std::min<long long>(highest, std::max<long long>(lowest, value));
        EXPECT_EQ(leadingInt(text), clamped) << text;
        const bool digitsOnly =
            !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
        EXPECT_EQ(wholeNumber(text).has_value(), digitsOnly && value <= highest) << text;
    }
}

} // namespace
} // namespace zolex::text
