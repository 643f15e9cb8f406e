#include "companion/text/TypedWord.h"

#include <gtest/gtest.h>

namespace zolex::companion::test {
namespace {

TEST(TypedWord, PutsIntoQuotesWhatAShellTakesApart) {
    EXPECT_EQ(typedWord("proofs/plan.json"), "proofs/plan.json");
    EXPECT_EQ(typedWord("C:\\raid\\plan.json"), "C:\\raid\\plan.json");
    EXPECT_EQ(typedWord("my plan.json"), "\"my plan.json\"");
    EXPECT_EQ(typedWord("plan(2).json"), "\"plan(2).json\"");
    EXPECT_EQ(typedWord("a&b.ini"), "\"a&b.ini\"");
    EXPECT_EQ(typedWord(""), "\"\"");
}

TEST(TypedWord, IsNoCommandOfItsOwn) {
    EXPECT_EQ(typedWord("$(reboot).zrec"), "'$(reboot).zrec'");
    EXPECT_EQ(typedWord("`reboot`.zrec"), "'`reboot`.zrec'");
    EXPECT_EQ(typedWord("a\";reboot;\".zrec"), "'a\";reboot;\".zrec'");
    EXPECT_EQ(typedWord("it's $HOME.zrec"), "'it'\\''s $HOME.zrec'");
    EXPECT_EQ(typedWord("\\\\server\\c$\\plan.json"), "\\\\server\\c$\\plan.json");
}

} // namespace
} // namespace zolex::companion::test
