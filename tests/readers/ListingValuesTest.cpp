#include "readers/ListingValues.h"

#include "driver/Application.h"
#include "readers/StateTranslation.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::test {
namespace {

constexpr auto words = std::to_array<WordCode>({{"one", 1}, {"two", 2}, {"minus", -1}});

TEST(ListingValues, CodesAreFoundByWholeWords) {
    EXPECT_EQ(findCode(words, "one"), 1);
    EXPECT_EQ(findCode(words, "minus"), -1);
    for (const std::string_view other : {"", "on", "ones", "One", " one"}) {
        EXPECT_EQ(findCode(words, other), std::nullopt) << other;
    }
    EXPECT_EQ(findCode({}, "one"), std::nullopt);
}

TEST(ListingValues, TablesAreCheckedForDoubleAndMissingWords) {
    constexpr auto twice = std::to_array<WordCode>({{"one", 1}, {"two", 2}, {"one", 3}});
    constexpr auto missing = std::to_array<WordCode>({{"one", 1}, {"", 0}});
    static_assert(hasDistinctWords<WordCode>(words));
    static_assert(!hasDistinctWords<WordCode>(twice));
    static_assert(!hasDistinctWords<WordCode>(missing));
}

TEST(ListingValues, KeysAnywhereInALine) {
    constexpr std::array<std::string_view, 2> keys = {"Hot Spare", "spare part"};
    EXPECT_TRUE(holdsAny("a Hot Spare drive", keys));
    EXPECT_TRUE(holdsAny("spare part", keys));
    EXPECT_FALSE(holdsAny("hot spare", keys));
    EXPECT_FALSE(holdsAny("", keys));
    EXPECT_TRUE(holdsAnyNoCase("a hOT sPARE drive", keys));
    EXPECT_FALSE(holdsAnyNoCase("hotspare", keys));
}

TEST(ListingValues, TheValueBetweenTwoColons) {
    EXPECT_EQ(valueBetweenColons("Key : \t1.2 : 3"), "1.2");
    EXPECT_EQ(valueBetweenColons("Key:value"), "value");
    EXPECT_EQ(valueBetweenColons("Key"), "");
    EXPECT_EQ(valueBetweenColons("Key::x"), "");
    EXPECT_EQ(valueBetweenColons(""), "");
}

TEST(ListingValues, Positions) {
    using Position = std::pair<std::int32_t, std::int32_t>;
    const std::vector<std::pair<std::string, Position>> positions = {
        {"0,3", {0, 3}},
        {"12,35 ", {12, 35}},
        {" 0 , 1", {0, 1}},
        {"0,0(0:0)", {0, 0}},
        {"-1,2", {-1, 2}},
        {"1,2,3", {1, 2}},
        {"99999999999,1", {2147483647, 1}}};
    for (const auto& [text, position] : positions) {
        const auto parsed = parsePosition(text, ",");
        ASSERT_TRUE(parsed) << text;
        EXPECT_EQ(Position(parsed->channel, parsed->id), position) << text;
    }
    for (const std::string text : {"", ",", "1", "1,", ",1", "a,1", "1,b", "1/2", "-,1", "(1,2)"}) {
        EXPECT_FALSE(parsePosition(text, ",")) << text;
    }
    EXPECT_TRUE(parsePosition("1/2", "/"));
    EXPECT_EQ(parsePositions("  1,0   x 1,1\t", ","), (std::vector<DrivePosition>{{1, 0}, {1, 1}}));
    EXPECT_TRUE(parsePositions("", ",").empty());
    EXPECT_EQ(splitAtBlanks(" 1  4 "), (std::vector<std::string_view>{"1", "4"}));
    EXPECT_TRUE(splitAtBlanks("   ").empty());
}

TEST(StateTranslation, IgnoresLetterCaseAndTracesWhatItDoesNotKnow) {
    constexpr auto states =
        std::to_array<StateWord>({{"defunct", badState}, {"hot spare", goodState}});
    FakePlatform platform;
    Application application(platform);
    application.printer().setVerbosity(9);
    EXPECT_EQ(deriveState(states, "Defunct", application.report()), "BAD");
    EXPECT_EQ(deriveState(states, "HOT SPARE", application.report()), "GOOD");
    EXPECT_EQ(platform.consoleFake.takeOutput(), "");
    EXPECT_EQ(deriveState(states, "hot", application.report()), "????");
    EXPECT_EQ(platform.consoleFake.takeOutput(), "***** Unable to recognize input state: hot\n");
    EXPECT_EQ(deriveState(states, "", application.report()), "????");
    EXPECT_EQ(platform.consoleFake.takeOutput(), "***** Unable to recognize input state: \n");
}

} // namespace
} // namespace zolex::test
