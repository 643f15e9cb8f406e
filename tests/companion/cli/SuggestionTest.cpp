#include "companion/cli/Suggestion.h"

#include <gtest/gtest.h>

#include <array>

namespace zolex::companion {
namespace {

TEST(Suggestion, CountsWhatMustBeChanged) {
    EXPECT_EQ(editDistance("", ""), 0U);
    EXPECT_EQ(editDistance("show", "show"), 0U);
    EXPECT_EQ(editDistance("show", "SHOW"), 0U);
    EXPECT_EQ(editDistance("", "show"), 4U);
    EXPECT_EQ(editDistance("show", ""), 4U);
    EXPECT_EQ(editDistance("sho", "show"), 1U);
    EXPECT_EQ(editDistance("shoow", "show"), 1U);
    EXPECT_EQ(editDistance("shaw", "show"), 1U);
    EXPECT_EQ(editDistance("shwo", "show"), 1U);
    EXPECT_EQ(editDistance("hsow", "show"), 1U);
    EXPECT_EQ(editDistance("chekc", "check"), 1U);
    EXPECT_EQ(editDistance("kitten", "sitting"), 3U);
}

TEST(Suggestion, FindsTheNearestWordOrNone) {
    constexpr std::array<std::string_view, 4> words{"show", "check", "record", "replay"};
    EXPECT_EQ(nearestWord("shwo", words), "show");
    EXPECT_EQ(nearestWord("SHOW", words), "show");
    EXPECT_EQ(nearestWord("recrod", words), "record");
    EXPECT_EQ(nearestWord("repaly", words), "replay");
    EXPECT_EQ(nearestWord("xyz", words), "");
    EXPECT_EQ(nearestWord("", words), "");
    EXPECT_EQ(nearestWord(std::string(41, 's'), words), "");
    EXPECT_EQ(nearestWord("ch", words), "check");
    EXPECT_EQ(nearestWord("rep", words), "replay");
    EXPECT_EQ(nearestWord("re", words), ""); // record or replay
    EXPECT_EQ(nearestWord("show", {}), "");
}

} // namespace
} // namespace zolex::companion
