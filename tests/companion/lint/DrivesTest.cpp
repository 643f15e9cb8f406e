#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(ZX301, ADriveTwice) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1, 2,1
Hotspares = 8,8
)"),
              R"(4:16 error utility ZX301: drive 1 is listed twice in Array.A, see 4:11 first here
  help: zolex takes it twice, and MEGACLI refuses the command
5:15 error utility ZX301: drive 8 is listed twice in Hotspares, see 5:13 first here
  help: zolex takes it twice, and MEGACLI refuses the command
)");
}

TEST(ZX301, APositionTwice) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,1:1,1:0
Hotspares = 2:0
)"),
              R"(4:19 error utility ZX301: drive 1:0 is listed twice in Array.A, see 4:11 first here
  help: zolex takes it twice, and the utility refuses the command
)");
}

TEST(ZX301, EachOnce) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,1:1,2:0
Hotspares = 2:1
)"),
              "");
}

TEST(ZX302, ADriveInTwoArrays) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 2,3
Hotspares = 8
)"),
              R"(5:11 error utility ZX302: drive 2 is in Array.A and in Array.B, see 4:13 first here
  help: Array.A is made, and then the utility refuses the command for Array.B
)");
}

TEST(ZX302, TheSameListOnMegaRaid) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 1,2
Hotspares = 8
)"),
              "");
}

TEST(ZX302, TheSameListElsewhere) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 2,1
Hotspares = 8
)"),
              R"(5:11 error utility ZX302: drive 2 is in Array.A and in Array.B, see 4:13 first here
  help: Array.A is made, and then ARCCONF refuses the command for Array.B
5:13 error utility ZX302: drive 1 is in Array.A and in Array.B, see 4:11 first here
  help: Array.A is made, and then ARCCONF refuses the command for Array.B
)");
}

TEST(ZX302, TheSameListOnOneOfTwo) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1,d:8
AppliesTo.2 = t:Kestrix-C1,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 2,1
Hotspares = 8
)"),
        R"(6:11 warning utility ZX302: drive 2 is in Array.A and in Array.B, see 5:13 first here
  help: Array.A is made, and then the utility refuses the command for Array.B
6:13 warning utility ZX302: drive 1 is in Array.A and in Array.B, see 5:11 first here
  help: Array.A is made, and then the utility refuses the command for Array.B
)");
}

TEST(ZX303, NoSuchPosition) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,5:0,0:3
Hotspares = 1:36
)"),
              R"(4:15 error plan ZX303: no drive can be at 5:0
  help: channels are 1 to 4, ids 0 to 35
4:19 error plan ZX303: no drive can be at 0:3
  help: channels are 1 to 4, ids 0 to 35
5:13 error plan ZX303: no drive can be at 1:36
  help: channels are 1 to 4, ids 0 to 35
)");
}

TEST(ZX303, TheLastPosition) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,4:35
Hotspares = 4:0
)"),
              "");
}

TEST(ZX304, ANumberAboveEachD) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:4
AppliesTo.2 = m:8838,d:6
Array_Mode = CUSTOM
Array.A = 1,7
Hotspares = 2
)"),
              R"(5:13 error plan ZX304: there is no drive 7 among 4
  help: AppliesTo.1 (line 2) asks for d:4
)");
}

TEST(ZX304, ANumberAboveOneD) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:4
AppliesTo.2 = m:8838,d:6
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 5
)"),
              R"(6:13 warning plan ZX304: there is no drive 5 among 4
  help: AppliesTo.1 (line 2) asks for d:4
)");
}

TEST(ZX304, WithoutD) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
AppliesTo.2 = m:8838,d:6
Array_Mode = CUSTOM
Array.A = 1,7
Hotspares = 6
)"),
              R"(5:11 warning ZX309: Array.A names drives by number, and AppliesTo.1 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.1 (line 2), or write channel:id
5:13 warning plan ZX304: there is no drive 7 among 6
  help: AppliesTo.2 (line 3) asks for d:6
)");
}

TEST(ZX304, TheLastNumber) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8838,d:6
Array_Mode = CUSTOM
Array.A = 1,5
Hotspares = 6
)"),
              "");
}

TEST(ZX305, ThirtyThreeDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:40
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32,33
Hotspares = 40
)"),
              R"(4:98 error plan ZX305: Array.A lists 33 drives, and an array holds 32
  help: make two arrays of it
)");
}

TEST(ZX305, ThirtyTwoDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:40
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32
Hotspares = 40
)"),
              "");
}

TEST(ZX305, AllLeavesSomeOver) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:24
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Hotspares = 24
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:FILL:5
)"),
              R"(5:11 warning ZX305: Array.B takes 16 of 21 drives that remain
  help: 5 are left over, and zolex does not say so
  help: list the drives, in two arrays
)");
}

TEST(ZX305, AllTakesThemAll) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:19
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Hotspares = 19
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:FILL:5
)"),
              "");
}

TEST(ZX305, ADefaultHotSpareTakesTheLast) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:17
Array_Mode = CUSTOM
Array.A = ALL
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
              "");
}

TEST(ZX307, ArraysWithoutMode) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array.A = 1,2
Array.B = 2,2
)"),
        R"(3:1 warning ZX307: Array.A to Array.B have no effect: zolex chooses the drives itself
  help: add Array_Mode = CUSTOM
)");
}

TEST(ZX308, AnArrayWithoutLogicalDrive) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
              R"(5:1 error plan ZX308: Array.B has no logical drive
  help: zolex ends with 11 here, and controllers before are configured
  help: add Logical.2 = B:FILL:AUTO
)");
}

TEST(ZX308, AllThatRemainWithoutLogicalDrive) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
              R"(5:1 warning plan ZX308: Array.B has no logical drive
  help: zolex ends with 11 here, and controllers before are configured
  help: add Logical.2 = B:FILL:AUTO
)");
}

TEST(ZX308, AutomaticLogicalDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8
)"),
              "");
}

TEST(ZX309, NumbersWithoutD) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
AppliesTo.2 = m:8838
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 8
)"),
              R"(5:11 warning ZX309: Array.A names drives by number, and AppliesTo.2 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.2 (line 3), or write channel:id
)");
}

TEST(ZX309, PositionsWithoutD) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:8
AppliesTo.2 = m:8838
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Hotspares = 1:2
)"),
              "");
}

TEST(ZX309, OnlyTheHotSpare) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Hotspares = 8
)"),
              R"(3:13 warning ZX309: Hotspares names drives by number, and AppliesTo.1 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.1 (line 2), or write channel:id
)");
}

TEST(ZX309, OfTheFirstController) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = c:1
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
)"),
              R"(4:11 warning ZX309: Array.A names drives by number, and AppliesTo.1 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.1 (line 2), or write channel:id
  help: c:1 is another controller when a card is added before it
)");
}

TEST(ZX310, AVarianceBesideLists) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 10%:0
)"),
              R"(5:18 warning ZX310: a variance of 10% has no effect: the arrays are listed
  help: only the number of hot spares counts: Array_Defaults = 0%:0
)");
}

TEST(ZX310, NoVariance) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 0%:0
)"),
              "");
}

TEST(ZX310, AutomaticArrays) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
Array_Defaults = 10%:0
)"),
              "");
}

} // namespace
} // namespace zolex::companion
