#include "companion/text/Terminal.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(Terminal, ColoursStandOnlyWhereTheStyleHasThem) {
    EXPECT_EQ(emphasized("x", Emphasis::bad, TextStyle{false, 80}), "x");
    EXPECT_EQ(emphasized("x", Emphasis::bad, TextStyle{true, 80}), "\033[31mx\033[0m");
    EXPECT_EQ(emphasized("x", Emphasis::plain, TextStyle{true, 80}), "x");
    EXPECT_EQ(emphasized("", Emphasis::bad, TextStyle{true, 80}), "");
}

TEST(Terminal, ColumnsAreCharactersAndNotBytesOrColours) {
    EXPECT_EQ(columnsOf("abc"), 3U);
    EXPECT_EQ(columnsOf("a\xC3\xA4"
                        "b"),
              3U);
    EXPECT_EQ(columnsOf("a\xE4"
                        "b"),
              3U);
    EXPECT_EQ(columnsOf("\033[31mab\033[0m"), 2U);
}

TEST(Terminal, NothingThatSteersATerminalIsPrintable) {
    EXPECT_EQ(printable("a\033[2Jb\tc\x7F"), "a?[2Jb?c?");
    EXPECT_EQ(printable("\xC3\xA4\xE4\xC2\x9B"), "\xC3\xA4??");
    EXPECT_EQ(printable("\xED\xA0\x80"), "???");
}

} // namespace
} // namespace zolex::companion
