#include "companion/text/Table.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

const TextStyle plain{false, 80};

Table example() {
    Table table(2);
    table.add({{"no"}, {"size", Emphasis::plain, true}, {""}, {"in"}});
    table.add({{"1"}, {"67.8 GB", Emphasis::plain, true}, {""}, {"A"}});
    table.add({{""}, {"1 GB", Emphasis::bad, true}});
    table.add({{"\xC3\xA4\xC3\xB6\xC3\xBC"}, {""}, {""}, {"B"}});
    return table;
}

TEST(Table, ColumnsAreAsWideAsTheirWidestCellAndEmptyOnesTakeNoRoom) {
    EXPECT_EQ(example().text(plain), "  no      size  in\n"
                                     "  1    67.8 GB  A\n"
                                     "          1 GB\n"
                                     "  \xC3\xA4\xC3\xB6\xC3\xBC           B\n");
    EXPECT_EQ(example().width(), 18U);
    EXPECT_EQ(Table(2).text(plain), "");
    EXPECT_EQ(Table(2).width(), 0U);
}

TEST(Table, ColoursDoNotMoveAnything) {
    EXPECT_EQ(example().lines(TextStyle{true, 80}).at(2), "          \033[31m1 GB\033[0m\n");
}

TEST(FoldedText, LinesEndBetweenPieces) {
    EXPECT_EQ(foldedText({"one", "two", "three"}, ", ", 0, 2, 9), "one, two,\n  three");
    EXPECT_EQ(foldedText({"one", "two", "three"}, "  ", 5, 2, 9), "one\n  two\n  three");
    EXPECT_EQ(foldedText({"longer than it", "x"}, " ", 0, 1, 5), "longer than it\n x");
    EXPECT_EQ(foldedText({}, " ", 0, 1, 5), "");
    EXPECT_EQ(foldedWords("  a bc   def ", 0, 2, 5), "a bc\n  def");
}

} // namespace
} // namespace zolex::companion
