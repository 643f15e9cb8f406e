#include "companion/text/StyleChoice.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

bool coloursFor(const StyleWishes& wishes) {
    return chooseStyle(wishes).colours;
}

StyleWishes onTerminal() {
    StyleWishes wishes;
    wishes.stream = {true, true, 120};
    return wishes;
}

TEST(StyleChoice, ColoursStandWhereATerminalTakesThem) {
    EXPECT_FALSE(coloursFor({}));
    EXPECT_TRUE(coloursFor(onTerminal()));
    StyleWishes wishes = onTerminal();
    wishes.stream.takesColours = false;
    EXPECT_FALSE(coloursFor(wishes));
    wishes = onTerminal();
    wishes.toFile = true;
    EXPECT_FALSE(coloursFor(wishes));
}

TEST(StyleChoice, TheEnvironmentDecidesAndTheOptionBeforeIt) {
    StyleWishes wishes = onTerminal();
    wishes.noColor = "1";
    EXPECT_FALSE(coloursFor(wishes));
    wishes.cliColorForce = "1";
    EXPECT_FALSE(coloursFor(wishes));
    wishes.colours = ColourWish::always;
    EXPECT_TRUE(coloursFor(wishes));
    wishes = onTerminal();
    wishes.noColor = "";
    EXPECT_TRUE(coloursFor(wishes));
    wishes.colours = ColourWish::never;
    EXPECT_FALSE(coloursFor(wishes));
    StyleWishes forced;
    forced.cliColorForce = "1";
    EXPECT_TRUE(coloursFor(forced));
    forced.toFile = true;
    EXPECT_FALSE(coloursFor(forced));
    forced.toFile = false;
    forced.cliColorForce = "0";
    EXPECT_FALSE(coloursFor(forced));
}

TEST(StyleChoice, WidthIsTheOptionsTheTerminalsTheEnvironmentsOrEighty) {
    StyleWishes wishes;
    EXPECT_EQ(chooseStyle(wishes).width, 80);
    wishes.columns = "100";
    EXPECT_EQ(chooseStyle(wishes).width, 100);
    wishes.stream.columns = 120;
    EXPECT_EQ(chooseStyle(wishes).width, 120);
    wishes.toFile = true;
    EXPECT_EQ(chooseStyle(wishes).width, 100);
    wishes.width = 60;
    EXPECT_EQ(chooseStyle(wishes).width, 60);
}

TEST(StyleChoice, WidthStaysWithinItsBounds) {
    StyleWishes wishes;
    for (const char* const wrong : {"", "x", "80x", "-5", "0", "99999999999"}) {
        wishes.columns = wrong;
        EXPECT_EQ(chooseStyle(wishes).width, 80) << wrong;
    }
    wishes.columns = "10";
    EXPECT_EQ(chooseStyle(wishes).width, 40);
    wishes.stream.columns = 5000;
    EXPECT_EQ(chooseStyle(wishes).width, 1000);
}

} // namespace
} // namespace zolex::companion
