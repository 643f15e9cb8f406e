#include "properties/Property.h"

#include <gtest/gtest-spi.h>

#include <sstream>

namespace zolex::properties {
namespace {

Tally tallyOfTen() {
    Tally tally;
    for (int i = 0; i < 10; ++i) {
        tally.begin();
        if (i == 0) {
            for (int times = 0; times < 30; ++times) {
                tally.count("many at once");
            }
        }
        if (i % 2 == 0) {
            tally.count("even");
        }
    }
    return tally;
}

// Symptom: one case with thirty of a kind made up for twenty-nine cases without any.
TEST(TallyTest, ACaseCountsOnceHoweverManyItHolds) {
    static const Tally tally = tallyOfTen();
    EXPECT_EQ(1, tally.casesOf("many at once"));
    EXPECT_EQ(5, tally.casesOf("even"));
    EXPECT_EQ(0, tally.casesOf("none"));
    tally.expectShare("many at once", 10);
    tally.expectShare("even", 50);
    EXPECT_NONFATAL_FAILURE(tally.expectShare("many at once", 10.1), "many at once: 1 of 10 cases");
    EXPECT_NONFATAL_FAILURE(tally.expectShare("none", 0.1), "none: 0 of 10 cases");
    std::ostringstream out;
    tally.print(out);
    EXPECT_EQ("  even: 5 of 10\n  many at once: 1 of 10, 30 times\n", out.str());
}

} // namespace
} // namespace zolex::properties
