#include "foundation/CString.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex {
namespace {

using namespace std::literals;

std::string textOf(const CString& string) {
    EXPECT_EQ(string.length(), std::string(string.c_str()).size());
    EXPECT_EQ(string.isEmpty(), string.length() == 0);
    return std::string(string.view());
}

// Construct and assign

TEST(CString, ConstructsFromEveryKindOfText) {
    const char* none = nullptr;
    EXPECT_EQ(textOf(CString()), "");
    EXPECT_EQ(textOf(CString(none)), "");
    EXPECT_EQ(textOf(CString("")), "");
    EXPECT_EQ(textOf(CString("abc")), "abc");
    EXPECT_EQ(textOf(CString("abcdef"sv.substr(1, 3))), "bcd");
    EXPECT_EQ(textOf(CString(std::string("a b"))), "a b");
    EXPECT_EQ(textOf(CString(CString("copy"))), "copy");
}

TEST(CString, ConstructsFromARepeatedCharacter) {
    EXPECT_EQ(textOf(CString('-', 0)), "");
    EXPECT_EQ(textOf(CString('-', 1)), "-");
    EXPECT_EQ(textOf(CString('-', 70)), std::string(70, '-'));
}

TEST(CString, ConstructsFromNumbers) {
    EXPECT_EQ(textOf(CString(std::uint32_t{0})), "0");
    EXPECT_EQ(textOf(CString(std::uint32_t{2147483648U})), "2147483648");
    EXPECT_EQ(textOf(CString(std::numeric_limits<std::uint32_t>::max())), "4294967295");
    EXPECT_EQ(textOf(CString::fromInt(0)), "0");
    EXPECT_EQ(textOf(CString::fromInt(-25)), "-25");
    EXPECT_EQ(textOf(CString::fromInt(std::numeric_limits<std::int32_t>::min())), "-2147483648");
    EXPECT_EQ(textOf(CString::fromInt(std::numeric_limits<std::int64_t>::min())),
              "-9223372036854775808");
    EXPECT_EQ(textOf(CString::fromInt(std::numeric_limits<std::int64_t>::max())),
              "9223372036854775807");
}

TEST(CString, NarrowsWideText) {
    EXPECT_EQ(textOf(CString(u"Kestrix", 7)), "Kestrix");
    EXPECT_EQ(textOf(CString(u"Kestrix", 3)), "Kes");
    EXPECT_EQ(textOf(CString(u"Kestrix", 0)), "");
    EXPECT_EQ(textOf(CString(u"\u00e9\u1241", 2)), "\xE9\x41");
    const char16_t* none = nullptr;
    EXPECT_EQ(textOf(CString(none, 5)), "");
}

// Symptom: a string made of text that holds a NUL compared and printed as different texts.
TEST(CString, ANulEndsTheText) {
    EXPECT_EQ(textOf(CString("ab\0cd"sv)), "ab");
    EXPECT_EQ(textOf(CString("ab\0cd"s)), "ab");
    EXPECT_EQ(textOf(CString("\0ab"sv)), "");
    EXPECT_EQ(textOf(CString('\0', 3)), "");
    EXPECT_EQ(textOf(CString(u"a\u0100b", 3)), "a");
    CString string("ab");
    EXPECT_EQ(textOf(string.append("cd\0ef"sv)), "abcd");
    EXPECT_EQ(textOf(string.append('\0')), "abcd");
    EXPECT_EQ(textOf(string.prepend("x\0y"sv)), "xabcd");
    EXPECT_EQ(textOf(CString::concatenate("a\0b"sv, "c\0d"sv, "e\0f"sv)), "ace");
    EXPECT_EQ(textOf(formatText("a%cb", '\0')), "a");
    EXPECT_EQ(textOf(formatText("%600s%cb", "x", '\0')), std::string(599, ' ') + "x");
}

TEST(CString, CopiesOwnTheirText) {
    CString first("first");
    CString copy(first);
    CString assigned;
    assigned = first;
    first.append(" changed");
    EXPECT_EQ(textOf(copy), "first");
    EXPECT_EQ(textOf(assigned), "first");
    EXPECT_NE(copy.c_str(), assigned.c_str());
    const CString& same = assigned;
    assigned = same;
    EXPECT_EQ(textOf(assigned), "first");
    assigned = "other";
    EXPECT_EQ(textOf(assigned), "other");
    assigned = CString();
    EXPECT_EQ(textOf(assigned), "");
}

TEST(CString, AMovedFromStringIsEmpty) {
    CString source("text");
    CString target(std::move(source));
    EXPECT_EQ(textOf(target), "text");
    EXPECT_EQ(textOf(source), ""); // NOLINT(bugprone-use-after-move)
    source = "again";
    target = std::move(source);
    EXPECT_EQ(textOf(target), "again");
    EXPECT_EQ(textOf(source), ""); // NOLINT(bugprone-use-after-move)
}

TEST(CString, TakesPartsOfItself) {
    CString string("abcdef");
    string = string.view().substr(2, 3);
    EXPECT_EQ(textOf(string), "cde");
    string.append(string.view());
    EXPECT_EQ(textOf(string), "cdecde");
    string.prepend(string.view().substr(4));
    EXPECT_EQ(textOf(string), "decdecde");
}

TEST(CString, ClearEmpties) {
    CString string("abc");
    string.setError();
    string.clear();
    EXPECT_EQ(textOf(string), "");
    EXPECT_FALSE(string.hasError());
    EXPECT_EQ(string, CString());
}

// Access

TEST(CString, GivesTheByteAtAnIndex) {
    const CString string("ab\xFF");
    EXPECT_EQ(string.at(0), 'a');
    EXPECT_EQ(string.at(2), '\xFF');
    EXPECT_EQ(string.at(3), '\0');
    EXPECT_EQ(string.at(std::numeric_limits<std::size_t>::max()), '\0');
    EXPECT_EQ(CString().at(0), '\0');
}

// Conversion

TEST(CString, ConvertsTheLeadingInteger) {
    struct Row {
        const char* text;
        std::int32_t number;
    };
    constexpr Row rows[] = {
        {"", 0},
        {"0", 0},
        {"12abc", 12},
        {"abc", 0},
        {"12", 12},
        {" \t\n12", 12},
        {"-12", -12},
        {"+12", 12},
        {"--12", 0},
        {"+-12", 0},
        {"- 12", 0},
        {"-", 0},
        {" ", 0},
        {"0012", 12},
        {"0x12", 0},
        {"12.9", 12},
        {"1 2", 1},
        {"2147483647", 2147483647},
        {"2147483648", 2147483647},
        {"-2147483648", std::numeric_limits<std::int32_t>::min()},
        {"-2147483649", std::numeric_limits<std::int32_t>::min()},
        {"99999999999999999999999999", 2147483647},
        {"-99999999999999999999999999", std::numeric_limits<std::int32_t>::min()},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CString(row.text).toInt(), row.number) << row.text;
    }
    EXPECT_EQ(CString().toInt(), 0);
}

TEST(CString, ConvertsToUnsigned) {
    struct Row {
        const char* text;
        std::uint32_t number;
    };
    constexpr Row rows[] = {
        {"", 0},
        {"0", 0},
        {"12", 12},
        {"12abc", 12},
        {"abc", 0},
        {" 7", 7},
        {"+7", 7},
        {"-7", 0},
        {"++7", 0},
        {"4294967295", 4294967295U},
        {"0049", 49},
        {"4294967296", 4294967295U},
        {"99999999999999999999", 4294967295U},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(CString(row.text).toUnsigned(), row.number) << row.text;
    }
    EXPECT_EQ(CString().toUnsigned(), 0U);
}

TEST(CString, AFailedStringConvertsToZero) {
    CString string("12");
    EXPECT_FALSE(string.hasError());
    string.setError();
    EXPECT_TRUE(string.hasError());
    EXPECT_EQ(string.toInt(), 0);
    EXPECT_EQ(string.toUnsigned(), 0U);
    const CString copy(string);
    EXPECT_TRUE(copy.hasError());
    EXPECT_EQ(copy.toInt(), 0);
    EXPECT_EQ(textOf(copy), "12");
    string = "13";
    EXPECT_FALSE(string.hasError());
    EXPECT_EQ(string.toInt(), 13);
    CString empty;
    empty.setError();
    EXPECT_TRUE(CString(empty).hasError());
}

// Append and join

TEST(CString, AppendsPrependsAndJoins) {
    CString string;
    string.append("").append("bc").append('d');
    EXPECT_EQ(textOf(string), "bcd");
    string.prepend("a").prepend("");
    EXPECT_EQ(textOf(string), "abcd");
    EXPECT_EQ(textOf(CString::concatenate("", "")), "");
    EXPECT_EQ(textOf(CString::concatenate("a", "b")), "ab");
    EXPECT_EQ(textOf(CString::concatenate("a", "b", "c")), "abc");
    EXPECT_EQ(textOf(CString::concatenate("", "b", "")), "b");
    const char* none = nullptr;
    EXPECT_EQ(textOf(CString("a") + CString("b")), "ab");
    EXPECT_EQ(textOf(CString("a") + "b"), "ab");
    EXPECT_EQ(textOf("a" + CString("b")), "ab");
    EXPECT_EQ(textOf(CString("a") + none), "a");
    EXPECT_EQ(textOf(none + CString("b")), "b");
    EXPECT_EQ(textOf(CString() + CString()), "");
}

// Compare

int sign(int number) {
    return number < 0 ? -1 : (number > 0 ? 1 : 0);
}

TEST(CString, AStringWithoutABufferEqualsAnEmptyOne) {
    const CString none;
    const CString empty("");
    const char* null = nullptr;
    EXPECT_TRUE(none == "");
    EXPECT_TRUE(none == empty);
    EXPECT_TRUE(none == null);
    EXPECT_TRUE(none == ""sv);
    EXPECT_FALSE(none != "");
    EXPECT_EQ(none.compareNoCase(empty), 0);
    EXPECT_TRUE(none.equalsNoCase(""));
    EXPECT_TRUE(none.startsWith(""));
    EXPECT_TRUE(none.endsWith(""));
    EXPECT_TRUE(none.contains(""));
    EXPECT_EQ(none.indexOf(""), 0);
    EXPECT_EQ(none.indexOf("a"), -1);
    EXPECT_STREQ(none.c_str(), "");
}

TEST(CString, ComparesWithAndWithoutCase) {
    struct Row {
        const char* a;
        const char* b;
        int order;
        int orderWithoutCase;
    };
    constexpr Row rows[] = {
        {"", "", 0, 0},
        {"a", "", 1, 1},
        {"", "a", -1, -1},
        {"abc", "abc", 0, 0},
        {"abc", "ABC", 1, 0},
        {"abc", "abd", -1, -1},
        {"abc", "ABD", 1, -1},
        {"ab", "abc", -1, -1},
        {"Z", "a", -1, 1},
        // Between the two cases of the letters: folded to small letters.
        {"_", "a", -1, -1},
        {"_", "A", 1, -1},
        // Bytes compare as unsigned; no letters outside the basic ones.
        {"\xE9", "z", 1, 1},
        {"\x7F", "\x80", -1, -1},
        {"\xE9", "\xC9", 1, 1},
    };
    for (const Row& row : rows) {
        const CString a(row.a);
        const CString b(row.b);
        EXPECT_EQ(a == b, row.order == 0) << row.a << " " << row.b;
        EXPECT_EQ(a != b, row.order != 0) << row.a << " " << row.b;
        EXPECT_EQ(a == row.b, row.order == 0) << row.a << " " << row.b;
        EXPECT_EQ(a != row.b, row.order != 0) << row.a << " " << row.b;
        EXPECT_EQ(a < b, row.order < 0) << row.a << " " << row.b;
        EXPECT_EQ(a > b, row.order > 0) << row.a << " " << row.b;
        EXPECT_EQ(sign(a.compareNoCase(b)), row.orderWithoutCase) << row.a << " " << row.b;
        EXPECT_EQ(sign(b.compareNoCase(a)), -row.orderWithoutCase) << row.a << " " << row.b;
        EXPECT_EQ(a.equalsNoCase(b), row.orderWithoutCase == 0) << row.a << " " << row.b;
    }
}

// Search

TEST(CString, FindsSubstrings) {
    const CString string("abcabcABC");
    EXPECT_EQ(string.indexOf("abc"), 0);
    EXPECT_EQ(string.indexOf("abc", 1), 3);
    EXPECT_EQ(string.indexOf("abc", 3), 3);
    EXPECT_EQ(string.indexOf("abc", 4), -1);
    EXPECT_EQ(string.indexOf("ABC"), 6);
    EXPECT_EQ(string.indexOf("abcd"), -1);
    EXPECT_EQ(string.indexOf("a", 100), -1);
    EXPECT_TRUE(string.contains("cA"));
    EXPECT_FALSE(string.contains("ac"));
    EXPECT_TRUE(string.startsWith("abca"));
    EXPECT_FALSE(string.startsWith("ABC"));
    EXPECT_TRUE(string.endsWith("cABC"));
    EXPECT_FALSE(string.endsWith("abc"));
    EXPECT_FALSE(CString("b").startsWith("bc"));
    EXPECT_FALSE(CString("b").endsWith("ab"));
}

TEST(CString, CountsOccurrencesThatDoNotOverlap) {
    EXPECT_EQ(CString("aaaa").count("aa"), 2U);
    EXPECT_EQ(CString("aaaaa").count("aa"), 2U);
    EXPECT_EQ(CString("a,b,c").count(","), 2U);
    EXPECT_EQ(CString("abc").count(","), 0U);
    EXPECT_EQ(CString("abc").count(""), 0U);
    EXPECT_EQ(CString().count(","), 0U);
}

// Extract

TEST(CString, ExtractsParts) {
    const CString string("abcdef");
    constexpr std::size_t most = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(textOf(string.left(0)), "");
    EXPECT_EQ(textOf(string.left(2)), "ab");
    EXPECT_EQ(textOf(string.left(6)), "abcdef");
    EXPECT_EQ(textOf(string.left(most)), "abcdef");
    EXPECT_EQ(textOf(string.right(0)), "");
    EXPECT_EQ(textOf(string.right(2)), "ef");
    EXPECT_EQ(textOf(string.right(6)), "abcdef");
    EXPECT_EQ(textOf(string.right(most)), "abcdef");
    EXPECT_EQ(textOf(string.mid(2, 3)), "cde");
    EXPECT_EQ(textOf(string.mid(2)), "cdef");
    EXPECT_EQ(textOf(string.mid(2, 0)), "cdef");
    EXPECT_EQ(textOf(string.mid(4, 10)), "ef");
    EXPECT_EQ(textOf(string.mid(5, 1)), "f");
    EXPECT_EQ(textOf(string.mid(6)), "");
    EXPECT_EQ(textOf(string.mid(most, most)), "");
    EXPECT_EQ(textOf(CString().mid(0)), "");
    EXPECT_EQ(textOf(CString().left(3)), "");
    EXPECT_EQ(textOf(CString().right(3)), "");
}

// Case

TEST(CString, ChangesCaseInPlaceByteByByte) {
    CString string("aZ9_\xE9 k");
    string.makeUpper();
    EXPECT_EQ(textOf(string), "AZ9_\xE9 K");
    string.makeLower();
    EXPECT_EQ(textOf(string), "az9_\xE9 k");
    EXPECT_EQ(textOf(string.upper()), "AZ9_\xE9 K");
    EXPECT_EQ(textOf(string), "az9_\xE9 k");
    EXPECT_EQ(textOf(string.upper().lower()), "az9_\xE9 k");
    CString none;
    none.makeUpper();
    none.makeLower();
    EXPECT_EQ(textOf(none), "");
}

// Trim

TEST(CString, TrimsTheCharactersOfASet) {
    struct Row {
        const char* text;
        const char* set;
        const char* left;
        const char* right;
        const char* both;
    };
    constexpr Row rows[] = {
        {"\t x \n", " \t\n", "x \n", "\t x", "x"},
        {"x", " \t\n", "x", "x", "x"},
        {" \t\n", " \t\n", "", "", ""},
        {"", " \t\n", "", "", ""},
        {"a b", " \t\n", "a b", "a b", "a b"},
        {"\r\vx\r", " \t\n", "\r\vx\r", "\r\vx\r", "\r\vx\r"},
        {"xyaxy", "yx", "axy", "xya", "a"},
        {" x ", "", " x ", " x ", " x "},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(textOf(CString(row.text).trimLeft(row.set)), row.left) << row.text;
        EXPECT_EQ(textOf(CString(row.text).trimRight(row.set)), row.right) << row.text;
        EXPECT_EQ(textOf(CString(row.text).trim(row.set)), row.both) << row.text;
    }
    EXPECT_EQ(textOf(CString("\t x \n").trim()), "x");
    EXPECT_EQ(textOf(CString("\t x \n").trimLeft()), "x \n");
    EXPECT_EQ(textOf(CString("\t x \n").trimRight()), "\t x");
    EXPECT_EQ(textOf(CString().trim()), "");
    EXPECT_STREQ(whiteSpace, " \t\n");
}

// Tokens

TEST(CString, SplitsAtADelimiterString) {
    struct Row {
        const char* text;
        const char* delimiter;
        std::vector<std::string> tokens;
    };
    const Row rows[] = {
        {"", ",", {}},
        {"abc", ",", {"abc"}},
        {"a,b", ",", {"a", "b"}},
        {"a,,b", ",", {"a", "", "b"}},
        {"1,", ",", {"1", ""}},
        {",1", ",", {"", "1"}},
        {",", ",", {"", ""}},
        {"a, b,c", ", ", {"a", "b,c"}},
        {"a--b---c", "--", {"a", "b", "-c"}},
        {"Type : x:y", ":", {"Type ", " x", "y"}},
        {"AbA", "a", {"AbA"}},
    };
    for (const Row& row : rows) {
        const CString string(row.text);
        EXPECT_EQ(string.tokenCount(row.delimiter), row.tokens.size()) << row.text;
        for (std::size_t i = 0; i < row.tokens.size(); ++i) {
            EXPECT_EQ(textOf(string.token(row.delimiter, i)), row.tokens[i]) << row.text;
        }
        EXPECT_EQ(textOf(string.token(row.delimiter, row.tokens.size())), "") << row.text;
        EXPECT_EQ(textOf(string.token(row.delimiter, 1000)), "") << row.text;
    }
    EXPECT_EQ(CString("1,").token(",", 1).toInt(), 0);
    EXPECT_EQ(CString("abc").tokenCount(""), 0U);
    EXPECT_EQ(textOf(CString("abc").token("", 0)), "");
    EXPECT_EQ(CString().tokenCount(","), 0U);
}

TEST(CString, TokensOfRandomTextsJoinToTheText) {
    std::mt19937 random(20260309);
    for (int run = 0; run < 2000; ++run) {
        std::string text(1 + random() % 12, ' ');
        for (char& c : text) {
            c = "ab,:"[random() % 4];
        }
        for (const char* delimiter : {",", ":", ",,", "a:", "ab"}) {
            const CString string(text);
            const std::size_t count = string.tokenCount(delimiter);
            ASSERT_EQ(count, string.count(delimiter) + 1) << text;
            std::string joined;
            for (std::size_t i = 0; i < count; ++i) {
                joined += (i == 0 ? "" : delimiter);
                const CString token = string.token(delimiter, i);
                EXPECT_FALSE(token.contains(delimiter)) << text;
                joined += token.view();
            }
            EXPECT_EQ(joined, text) << delimiter;
        }
    }
}

TEST(CString, ResultsOutliveTheStringTheyCameFrom) {
    CString string("  a,b  ");
    const CString trimmed = string.trim();
    const CString token = trimmed.token(",", 1);
    const CString left = trimmed.left(1);
    string.append("changed");
    string.clear();
    EXPECT_EQ(textOf(trimmed), "a,b");
    EXPECT_EQ(textOf(token), "b");
    EXPECT_EQ(textOf(left), "a");
}

// Formatting

TEST(CString, FormatsTextsOfEveryLength) {
    EXPECT_EQ(textOf(formatText("%s %d %02X%%", "text", -5, 10U)), "text -5 0A%");
    EXPECT_EQ(textOf(formatText("%s", "")), "");
    for (const int length : {510, 511, 512, 513, 5000}) {
        EXPECT_EQ(textOf(formatText("%*d|", length, 7)),
                  std::string(static_cast<std::size_t>(length) - 1, ' ') + "7|");
    }
}

} // namespace
} // namespace zolex
