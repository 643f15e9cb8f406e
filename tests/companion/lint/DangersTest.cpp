// What went wrong on servers without a word, told by the file alone.
#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(Dangers, SeveralLogicalDrivesOnOneArrayWithMegaCliOnlyTheFirstIsMade) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:50%:5:ON
Logical.3 = B:50%:5:ON
)"),
        R"(10:13 warning ZX405: Logical.3 is not made: Array.B has Logical.2 already, see 9:13 first here
  help: MEGACLI gets a command for Logical.2 alone, and zolex ends with 0
  help: list the drives of Array.B again as a further array
)");
}

TEST(Dangers, Raid10OfFiveDrivesFourAreUsed) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:10:ON
)"),
        R"(7:20 warning ZX404: RAID 10 is made of pairs, and Array.A has 5 drives, see 4:19 left out
  help: MEGACLI leaves drive 7 out, without a word
  help: take it out of Array.A
)");
}

TEST(Dangers, ListsWithoutCustomModesOneRaid5OverEverything) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array.A = 1,2
Logical.1 = A:FILL:1:ON
)"),
              R"(3:1 warning ZX307: Array.A has no effect: zolex chooses the drives itself
  help: add Array_Mode = CUSTOM
4:1 note ZX410: Logical.1 has no effect: each array gets one logical drive by defaults
  help: add Logical_Mode = CUSTOM
)");
}

TEST(Dangers, AllTakes16Of24DrivesFiveAreLeftOver) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:24
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Hotspares = 24
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
              R"(5:11 warning ZX305: Array.B takes 16 of 21 drives that remain
  help: 5 are left over, and zolex does not say so
  help: list the drives, in two arrays
)");
}

TEST(Dangers, HyperwinTakesBothDrivesWhenOneIsNamed) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-IDEal-RAID
Array_Mode = CUSTOM
Array.A = 1:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
)"),
              R"(4:11 warning ZX408: HYPERWIN takes both drives, whatever Array.A lists
  help: what is on the other drive is lost, too
)");
}

TEST(Dangers, AMemberLineOf200BytesNamesAnotherDriveWhenItIsCaptured) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:Kestrix-B1
Array_Mode = CUSTOM
Array.A = 1:4,1:5,1:6,1:7,1:8,1:9,1:10,1:11,1:12,1:13,1:14,1:15,1:16,1:17,1:18,1:19,1:20,1:21,1:22,1:23,1:24,1:25,1:26,1:27,1:28,1:29,1:30,1:31,1:32,1:33,1:34,1:35
Hotspares = 2:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
        R"(4:160 warning ZX602: ARCCONF lists 32 drives in a line of 200 bytes, and 198 are read
  help: a capture names wrong drives from drive 1:35 on
  help: make two arrays of it
)");
}

TEST(Dangers, OrdinalsAreShiftedWhenADriveIsPulledOrHasFailed) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
              R"(4:11 warning ZX309: Array.A names drives by number, and AppliesTo.1 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.1 (line 2), or write channel:id
)");
}

TEST(Dangers, ACardAddedAtALowerBusNumberGetsWhatIsForController1) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = c:1
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              R"(4:11 warning ZX309: Array.A names drives by number, and AppliesTo.1 gives no d:
  help: when a drive is missing, each number behind it is the next drive's
  help: add d: to AppliesTo.1 (line 2), or write channel:id
  help: c:1 is another controller when a card is added before it
)");
}

TEST(Dangers, TheTailOfALongCommentIsALiveLine) {
    EXPECT_EQ(
        lintText(
            R"(; 456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345678901234567890123456789012345[Policy.all]
AppliesTo.1 = ALL
)"),
        R"(1:256 error zolex ZX012: line of 266 characters: what is beyond 255 is read as another line
  help: make two lines of the comment
)");
}

TEST(Dangers, AnArrayOfAllEightDrivesAndNoHotspares) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
        R"(1:1 error utility ZX501: no Hotspares: drive 8 becomes the hot spare, and is listed in Array.A
  help: the spare is the largest drive, of equal ones the last; the utility refuses it
  help: add Hotspares = 8 and take 8 out, or Array_Defaults = 0%:0 for none
)");
}

TEST(Dangers, ADriveInTwoArrays) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 2,3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
              R"(5:11 error utility ZX302: drive 2 is in Array.A and in Array.B, see 4:13 first here
  help: Array.A is made, and then MEGACLI refuses the command for Array.B
)");
}

TEST(Dangers, AMemberThatIsASpare) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7,8
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
        R"(6:13 error utility ZX502: drive 8 is a hot spare and in Array.B, see 5:21 in Array.B
  help: Array.B is made, and then the utility refuses the spare
)");
}

TEST(Dangers, SizesBeyondTheRoom) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:Kestrix-A1,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:60%:5
Logical.2 = A:60%:5
)"),
              R"(8:15 warning ZX110: logical drives of 120% on Array.A
  help: percentages are of the whole array: all together at most 100%
)");
}

TEST(Dangers, ASpareForRaid0) {
    EXPECT_EQ(lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0:ON
)"),
              R"(5:13 warning ZX504: the hot spare can cover no array: none has redundancy
  help: use the drive in an array, or take a level such as 1, 5 or 10
7:20 note ZX411: RAID 0 over 2 drives: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(Dangers, NoCacheWordOnMegaRaidIsWriteThrough) {
    EXPECT_EQ(
        lintText(R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
        R"(7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
)");
}

TEST(Dangers, AFaultInTheCommandLinesOfController2) {
    EXPECT_EQ(
        lintText(R"([Policy.first]
AppliesTo.1 = c:1,t:LSI-MegaRAID-8480,d:8
Hotspares = 8
[Policy.second]
AppliesTo.1 = c:2,t:Kestrix-B1,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:FILL:5:ON
)"),
        R"(11:13 error plan ZX405: ARCCONF makes one logical drive on an array: Logical.2 is the second on Array.A, see 10:13 first here
  help: zolex ends with 11 here, and controllers before are configured
)");
}

TEST(Dangers, TwoControllersInOneEntryAreTheSecondAlone) {
    EXPECT_EQ(
        lintText(R"([Policy.both]
AppliesTo.1 = c:1,c:2
)"),
        R"(2:19 warning ZX204: c: stands twice in AppliesTo.1: c:2 counts, c:1 does not, see 2:15 has no effect
  help: for either of both write a further entry, such as AppliesTo.2 = c:1
)");
}

} // namespace
} // namespace zolex::companion
