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
    // What is not seen and turns or ends what stands around it.
    EXPECT_EQ(printable("a\xE2\x80\xAE"
                        "fdp.b"),
              "a?fdp.b"); // U+202E, right to left
    EXPECT_EQ(printable("a\xE2\x80\xA8"
                        "b\xE2\x80\xA9"
                        "c"),
              "a?b?c"); // U+2028, U+2029
    EXPECT_EQ(printable("\xE2\x81\xA6\xE2\x80\x8B\xD8\x9C\xEF\xBB\xBF\xF3\xA0\x81\x81"), "?????");
    // Their neighbours are seen.
    EXPECT_EQ(printable("\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\x9F\xC2\xA0"),
              "\xE2\x80\xA7\xE2\x80\xAF\xE2\x81\x9F\xC2\xA0");
}

} // namespace
} // namespace zolex::companion
