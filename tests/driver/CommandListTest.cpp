#include "driver/CommandList.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace zolex {
namespace {

CString command(std::size_t n) {
    return "command " + CString(static_cast<std::uint32_t>(n));
}

TEST(CommandList, AFreshListHoldsNothing) {
    const CommandList list;
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(list.get(i), nullptr) << i;
    }
}

TEST(CommandList, ThirtyTwoCommandsCanBeAddedAndTheFirstSixteenFetched) {
    CommandList list;
    for (std::size_t i = 0; i < 32; ++i) {
        EXPECT_TRUE(list.add(command(i))) << i;
    }
    EXPECT_FALSE(list.add("one too many"));
    EXPECT_FALSE(list.add(""));
    for (std::size_t i = 0; i < 16; ++i) {
        ASSERT_NE(list.get(i), nullptr) << i;
        EXPECT_TRUE(*list.get(i) == command(i)) << i;
    }
    for (std::size_t i = 16; i < 40; ++i) {
        EXPECT_EQ(list.get(i), nullptr) << i;
    }
    EXPECT_EQ(list.get(std::numeric_limits<std::size_t>::max()), nullptr);
}

TEST(CommandList, TheSeventeenthCommandIsStoredButCannotBeFetched) {
    CommandList list;
    for (std::size_t i = 0; i < 16; ++i) {
        ASSERT_TRUE(list.add(command(i)));
    }
    EXPECT_TRUE(list.add("the seventeenth"));
    EXPECT_EQ(list.get(16), nullptr);
    EXPECT_TRUE(*list.get(15) == command(15));
}

TEST(CommandList, EachCommandGoesIntoTheFirstEmptySlot) {
    CommandList list;
    EXPECT_TRUE(list.add("first"));
    EXPECT_EQ(list.get(1), nullptr);
    EXPECT_TRUE(list.add("second "));
    EXPECT_TRUE(*list.get(0) == "first");
    EXPECT_TRUE(*list.get(1) == "second ");
    EXPECT_EQ(list.get(2), nullptr);
}

} // namespace
} // namespace zolex
