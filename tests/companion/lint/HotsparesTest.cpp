#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(ZX501, AllDrivesInArrays) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
)"),
        R"(1:1 error utility ZX501: no Hotspares: drive 4 becomes the hot spare, and is listed in Array.B
  help: the spare is the largest drive, of equal ones the last; the utility refuses it
  help: add Hotspares = 4 and take 4 out, or Array_Defaults = 0%:0 for none
)");
}

TEST(ZX501, TheLastDriveInAnArray) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:5
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 4,5
)"),
        R"(1:1 warning utility ZX501: no Hotspares: drive 5 becomes the hot spare, and is listed in Array.B
  help: the spare is the largest drive, of equal ones the last; the utility refuses it
  help: add Hotspares = 5 and take 5 out, or Array_Defaults = 0%:0 for none
)");
}

TEST(ZX501, TheLastDriveIsFree) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:5
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
)"),
              "");
}

TEST(ZX501, NoneByDefault) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
)"),
              "");
}

TEST(ZX501, PositionsOfAllDrives) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array.B = 1:2,1:3
)"),
        R"(1:1 error utility ZX501: no Hotspares: a drive becomes the hot spare, and is listed in an array
  help: the spare is the largest drive, of equal ones the last; the utility refuses it
  help: add Hotspares, or Array_Defaults = 0%:0 for none
)");
}

TEST(ZX501, AskedForByDefaults) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:4
AppliesTo.2 = m:8837
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:1
)"),
              R"(5:11 warning ZX309: Array.A names drives by number, and AppliesTo.2 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.2 (line 3), or write channel:id
7:21 warning utility ZX501: Array_Defaults asks for a hot spare: drive 4 is taken, and is listed in Array.B
  help: the spare is the largest drive, of equal ones the last; the utility refuses it
  help: add Hotspares = 4 and take 4 out, or Array_Defaults = 0%:0 for none
)");
}

TEST(ZX501, NoneIsAskedFor) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:0
)"),
              "");
}

TEST(ZX502, ASpareInAnArray) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8,4
)"),
        R"(6:15 error utility ZX502: drive 4 is a hot spare and in Array.B, see 5:13 in Array.B
  help: Array.B is made, and then the utility refuses the spare
)");
}

TEST(ZX502, AutomaticArrays) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array.A = 1,2
Hotspares = 2
)"),
              R"(3:1 warning ZX307: Array.A has no effect: zolex chooses the drives itself
  help: add Array_Mode = CUSTOM
)");
}

TEST(ZX503, NineSpares) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:20
Hotspares = 1,2,3,4,5,6,7,8,9
)"),
              R"(3:29 error plan ZX503: Hotspares lists 9 drives
  help: a controller has 8 at most
)");
}

TEST(ZX503, EightSpares) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:20
Hotspares = 1,2,3,4,5,6,7,8
)"),
              "");
}

TEST(ZX503, SeventeenSpares) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:20
Hotspares = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17
)"),
              R"(3:52 error zolex ZX503: Hotspares lists 17 drives
  help: zolex refuses the file; a controller has 8 at most
)");
}

TEST(ZX503, NineAskedFor) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Array_Defaults = 0%:9
)"),
              R"(3:21 error plan ZX503: Array_Defaults asks for 9 hot spares
  help: a controller has 8 at most
)");
}

TEST(ZX503, MoreThanDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:3
Array_Defaults = 0%:4
)"),
              R"(3:21 error plan ZX503: Array_Defaults asks for 4 hot spares
  help: AppliesTo.1 (line 2) asks for d:3
)");
}

TEST(ZX503, AsManyAsDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:4
Array_Defaults = 0%:4
)"),
              "");
}

TEST(ZX504, NoRedundancy) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1
Array.B = 2
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
Logical.2 = B:FILL:VOLUME
)"),
              R"(6:13 warning ZX504: the hot spare can cover no array: none has redundancy
  help: use the drive in an array, or take a level such as 1, 5 or 10
)");
}

TEST(ZX504, SomeRedundancy) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1
Array.B = 2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
Logical.2 = B:FILL:1
)"),
              "");
}

TEST(ZX504, HyperwinMirror) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-IDEal-RAID
Array_Defaults = 0%:1
Logical_Defaults = FILL:1
)"),
              R"(3:21 error plan ZX504: LSI-IDEal-RAID takes no hot spare beside a mirror
  help: zolex ends with 11 here, and controllers before are configured
)");
}

TEST(ZX504, HyperwinStripe) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-IDEal-RAID
Array_Defaults = 0%:1
Logical_Defaults = FILL:0
)"),
              R"(4:25 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX505, ACapturedPolicy) {
    EXPECT_EQ(
        lintText(R"([Policy.AUTO-LSI-MegaRAID-8480-1]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
)"),
        R"(1:1 warning ZX505: Policy.AUTO-LSI-MegaRAID-8480-1 gets no hot spare: its name says that it was captured
  help: add Hotspares, or Array_Defaults = 0%:0 to say that there is none
)");
}

TEST(ZX505, WithTheNumberOfSpares) {
    EXPECT_EQ(lintText(R"([Policy.AUTO-LSI-MegaRAID-8480-1]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
)"),
              "");
}

TEST(ZX505, NoneByDefaultEither) {
    EXPECT_EQ(lintText(R"([Policy.AUTO-LSI-MegaRAID-8480-1]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
)"),
              "");
}

} // namespace
} // namespace zolex::companion
