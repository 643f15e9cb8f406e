#include "companion/families/SpanRules.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

FamilyLimits usualLimits() {
    FamilyLimits limits;
    limits.mostDrivesPerSpan = 32;
    limits.mostSpans = 8;
    return limits;
}

/// "4" for spans of four, "-" for one span, or why it does not go.
std::string spans(const char* level, std::size_t drives, std::size_t wanted = 0) {
    const SpanChoice choice = chooseSpans(level, drives, wanted, usualLimits());
    return !choice.fault.empty()       ? choice.fault
           : choice.drivesPerSpan == 0 ? "-"
                                       : std::to_string(choice.drivesPerSpan);
}

TEST(SpanRules, MirrorsArePairsUntilThereAreTooMany) {
    EXPECT_EQ(spans("RAID10", 4), "2");
    EXPECT_EQ(spans("RAID10", 6), "2");
    EXPECT_EQ(spans("RAID10", 16), "2");
    EXPECT_EQ(spans("RAID10", 20), "4");
    EXPECT_EQ(spans("RAID10", 24), "4");
    EXPECT_EQ(spans("RAID10", 64), "8");
    EXPECT_EQ(spans("RAID10", 5),
              "RAID 10 takes an even number of drives, 4 or more, in 8 spans of "
              "32 at most, and the array has 5");
    EXPECT_EQ(spans("RAID10", 2),
              "RAID 10 takes an even number of drives, 4 or more, in 8 spans of "
              "32 at most, and the array has 2");
}

TEST(SpanRules, MirrorsOfAllDrivesHaveAnyNumberOfThem) {
    EXPECT_EQ(spans("RAID1", 4), "-");
    EXPECT_EQ(spans("RAID1", 3),
              "RAID 1 takes an even number of drives, 2 or more, and the array has 3");
    FamilyLimits ofAll = usualLimits();
    ofAll.deepMirrors = DeepMirrors::ofAll;
    EXPECT_EQ(chooseSpans("RAID1", 3, 0, ofAll).fault, "");
    EXPECT_EQ(chooseSpans("RAID1", 1, 0, ofAll).fault,
              "RAID 1 takes 2 drives or more, and the array has 1");
}

TEST(SpanRules, ParityHasAsFewSpansAsDivideEvenly) {
    EXPECT_EQ(spans("RAID50", 6), "3");
    EXPECT_EQ(spans("RAID50", 9), "3");
    EXPECT_EQ(spans("RAID50", 12), "6");
    EXPECT_EQ(spans("RAID50", 240), "30");
    EXPECT_EQ(spans("RAID60", 8), "4");
    EXPECT_EQ(spans("RAID60", 15), "5");
    EXPECT_EQ(spans("RAID50", 7), "RAID 50 takes 6 drives or more that spans of 3 or more divide "
                                  "evenly, in 8 spans of 32 at most, and the array has 7");
    EXPECT_EQ(spans("RAID60", 6), "RAID 60 takes 8 drives or more that spans of 4 or more divide "
                                  "evenly, in 8 spans of 32 at most, and the array has 6");
}

TEST(SpanRules, AsThePolicySays) {
    EXPECT_EQ(spans("RAID50", 12, 4), "3");
    EXPECT_EQ(spans("RAID50", 12, 3), "4");
    EXPECT_EQ(spans("RAID10", 16, 4), "4");
    EXPECT_EQ(spans("RAID50", 12, 6), "RAID 50 takes 6 drives or more that spans of 3 or more "
                                      "divide evenly; 12 drives are not 6 such spans");
    EXPECT_EQ(spans("RAID5", 12, 3), "-");
}

TEST(SpanRules, LevelsOfOneSpan) {
    EXPECT_EQ(spans("RAID0", 1), "-");
    EXPECT_EQ(spans("RAID1", 2), "-");
    EXPECT_EQ(spans("RAID1", 3),
              "RAID 1 takes an even number of drives, 2 or more, and the array has 3");
    EXPECT_EQ(spans("RAID5", 2), "RAID 5 takes 3 drives or more, and the array has 2");
    EXPECT_EQ(spans("RAID6", 33), "RAID 6 takes 32 drives at most, and the array has 33");
    EXPECT_EQ(spans("RAID5E", 5), "RAID 5E is not made on such controllers");
    EXPECT_EQ(spans("None", 1), "VOLUME is not made on such controllers");
}

TEST(SpanRules, AUtilityWithoutSpans) {
    FamilyLimits limits = usualLimits();
    limits.mostSpans = 1;
    EXPECT_EQ(chooseSpans("RAID10", 4, 0, limits).drivesPerSpan, 0U);
    EXPECT_EQ(chooseSpans("RAID10", 4, 0, limits).fault, "");
    EXPECT_EQ(chooseSpans("RAID10", 2, 0, limits).fault,
              "RAID 10 takes an even number of drives, 4 or more, and the array has 2");
}

} // namespace
} // namespace zolex::companion
