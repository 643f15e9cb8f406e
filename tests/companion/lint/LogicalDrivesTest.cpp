#include "LintText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

TEST(ZX401, ALevelThatTheModelLacks) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C7,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              R"(7:20 error plan ZX401: RAID 6 is not possible on Kestrix-C7
  help: Kestrix-C7 has 0, 1, 10
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX401, OneOfTwoModelsLacksIt) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C7,d:8
AppliesTo.2 = t:Kestrix-C9,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              R"(8:20 warning plan ZX401: RAID 6 is not possible on Kestrix-C7
  help: Kestrix-C7 has 0, 1, 10
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX401, ByDefault) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C7
Logical_Defaults = FILL:6:ON
)"),
              R"(3:25 error utility ZX401: RAID 6 is not possible on Kestrix-C7
  help: Kestrix-C7 has 0, 1, 10
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX401, TheModelHasIt) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C9,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              "");
}

TEST(ZX401, NoModelIsNamed) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              "");
}

TEST(ZX402, TooFewDrivesForAnyModel) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Hotspares = 1:7
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5
)"),
        R"(7:20 error plan ZX402: RAID 5 takes 3 or more drives, and Array.A has 2 drives, see 4:11 2 drives
  help: change the list of drives, or the level
)");
}

TEST(ZX402, EnoughDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837
Array_Mode = CUSTOM
Array.A = 1:0,1:1,1:2
Hotspares = 1:7
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5
)"),
              "");
}

TEST(ZX402, OddNumberFor50ByDefault) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C9,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7
Hotspares = 8
Logical_Defaults = FILL:50:ON
)"),
        R"(6:25 error plan ZX402: RAID 50 takes 6 or more drives, an even number, and Array.A has 7 drives, see 4:11 7 drives
  help: Kestrix-C9 makes 0, 5, 6 or 10 of 7 drives
)");
}

TEST(ZX402, OneDriveWithoutALevel) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-A9
Array_Mode = CUSTOM
Array.A = 1:0
Array_Defaults = 0%:0
)"),
              R"(4:11 error plan ZX402: no RAID level fits 1 drive of Array.A
  help: change the list of drives, or the level
)");
}

TEST(ZX402, AllThatRemainIsTooLittle) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:FILL:5
)"),
        R"(9:20 error plan ZX402: RAID 5 takes 3 or more drives, and Array.B gets 2 drives at most, see 5:11 the drives that remain
  help: change the list of drives, or the level
)");
}

TEST(ZX402, AllThatRemainIsEnough) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = m:8837,d:5
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
Logical.2 = B:FILL:5
)"),
              "");
}

TEST(ZX403, AStripSizeThatTheModelLacks) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
StripeSize = 256
)"),
              R"(3:14 error plan ZX403: a strip size of 256 KB is not possible on LSI-MegaRAID-8480
  help: LSI-MegaRAID-8480 takes 16, 32, 64, 128
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX403, OneOfTwoModelsLacksIt) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
AppliesTo.2 = m:8837
StripeSize = 256
)"),
        R"(4:14 warning plan ZX403: a strip size of 256 KB is not possible on LSI-MegaRAID-8480
  help: LSI-MegaRAID-8480 takes 16, 32, 64, 128
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX403, TheModelHasIt) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
StripeSize = 128
)"),
              "");
}

TEST(ZX404, Raid10OfFiveDrives) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:10:ON
)"),
        R"(7:20 warning ZX404: RAID 10 is made of pairs, and Array.A has 5 drives, see 4:19 left out
  help: MEGACLI leaves drive 5 out, without a word
  help: take it out of Array.A
)");
}

TEST(ZX404, Raid10OfFiveDrivesByDefault) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C7,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5
Hotspares = 8
)"),
        R"(4:11 warning ZX404: RAID 10 is made of pairs, and Array.A has 5 drives, see 4:19 left out
  help: MEGACLI leaves drive 5 out, without a word
  help: take it out of Array.A
)");
}

TEST(ZX404, Raid10OfFiveDrivesThatTheUtilityRefuses) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B7,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:10:ON
)"),
        R"(7:20 error utility ZX404: RAID 10 is made of pairs, and Array.A has 5 drives, see 4:19 left out
  help: the utility refuses the command, exit code 11, when those before it are done
  help: take drive 5 out of Array.A
)");
}

TEST(ZX404, Raid10OfFourDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:10:ON
)"),
              "");
}

TEST(ZX404, WideRaid50) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C9,d:16
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12
Hotspares = 16
Logical_Mode = CUSTOM
Logical.1 = A:FILL:50:ON
)"),
              R"(7:20 note ZX404: RAID 50 over 12 drives is made of 2 spans of 6
  help: policies cannot ask for more spans
)");
}

TEST(ZX404, NarrowRaid50) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-C9,d:16
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8
Hotspares = 16
Logical_Mode = CUSTOM
Logical.1 = A:FILL:50:ON
)"),
              "");
}

TEST(ZX405, TwoOnOneArrayWithMegaCli) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:50%:5:ON
)"),
        R"(8:13 warning ZX405: Logical.2 is not made: Array.A has Logical.1 already, see 7:13 first here
  help: MEGACLI gets a command for Logical.1 alone, and zolex ends with 0
  help: list the drives of Array.A again as a further array
)");
}

TEST(ZX405, TwoOnOneArrayWithArcconf) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:50%:5:ON
)"),
        R"(8:13 error plan ZX405: ARCCONF makes one logical drive on an array: Logical.2 is the second on Array.A, see 7:13 first here
  help: zolex ends with 11 here, and controllers before are configured
)");
}

TEST(ZX405, TwoOnOneArrayWithQtcsend) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-A1,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5
Logical.2 = A:50%:5
)"),
              "");
}

TEST(ZX405, TwoOnOneArrayWithAnything) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:50%:5:ON
)"),
              "");
}

TEST(ZX405, TwoWithHyperwin) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-IDEal-RAID,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:0:ON
)"),
        R"(9:13 error plan ZX405: HYPERWIN makes one logical drive: Logical.2 is one too many, see 8:13 first here
  help: zolex ends with 11 here, and controllers before are configured
9:20 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX407, NoCommandForTheLevel) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
Logical_Defaults = FILL:5EE
)"),
              R"(3:25 error utility ZX407: MEGACLI has no command for RAID 5EE
  help: zolex writes ERROR in its place, and the utility refuses the line
  help: LSI-MegaRAID-8480 has 0, 1, 5, 10, 50
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX407, NoCommandOnOneOfTwo) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-SAS-RAID
AppliesTo.2 = t:Kestrix-A1
Logical_Defaults = FILL:5
)"),
              R"(4:25 warning utility ZX407: CFGGEN has no command for RAID 5
  help: zolex writes ERROR in its place, and the utility refuses the line
  help: LSI-SAS-RAID has 0, 1, 1E
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX407, TheSameInLogical1) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5EE
)"),
        R"(7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
7:20 error plan ZX401: RAID 5EE is not possible on LSI-MegaRAID-8480
  help: LSI-MegaRAID-8480 has 0, 1, 5, 10, 50
  help: AppliesTo.1 (line 2) names this model
)");
}

TEST(ZX408, SettingsOfArcconf) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:5:ON
)"),
              R"(3:15 warning ZX408: RebuildRate has no effect with ARCCONF
  help: leave it out
4:13 warning ZX408: ReadAhead = ON makes no command with ARCCONF
  help: leave it out
)");
}

TEST(ZX408, ReadAheadOffIsTold) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
ReadAhead = OFF
Logical_Defaults = 50%:5:ON
)"),
              "");
}

TEST(ZX408, StripSizeOfAMirror) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
StripeSize = 64
Logical_Defaults = FILL:1
)"),
        R"(3:14 warning ZX408: StripeSize has no effect with ARCCONF for the levels of this policy
  help: leave it out
)");
}

TEST(ZX408, StripSizeOfAWideRaid6) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1,d:16
StripeSize = 1024
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12
Hotspares = 16
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              R"(3:14 warning ZX408: ARCCONF is told less than 1024 KB for a level of so many drives
  help: leave it out
)");
}

TEST(ZX408, StripSizeOfANarrowRaid6) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1,d:16
StripeSize = 1024
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Hotspares = 16
Logical_Mode = CUSTOM
Logical.1 = A:FILL:6:ON
)"),
              "");
}

TEST(ZX408, SettingsOfMegaCli) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:5:ON
)"),
              R"(3:15 warning ZX408: RebuildRate has no effect with MEGACLI
  help: leave it out
6:8 warning ZX408: Init has no effect with MEGACLI
  help: leave it out
)");
}

TEST(ZX408, SettingsOfHrconf) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-A9
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:0:ON
)"),
              R"(4:13 warning ZX408: ReadAhead has no effect with HRCONF
  help: leave it out
6:8 warning ZX408: Init has no effect with HRCONF
  help: leave it out
7:20 warning ZX408: the size has no effect with HRCONF
  help: the logical drive is as large as its array
7:24 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
7:26 warning ZX408: the write cache has no effect with HRCONF
  help: leave it out
)");
}

TEST(ZX408, SettingsOfQtcsend) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-A1
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:5:ON
)"),
              R"(3:15 warning ZX408: RebuildRate has no effect with QTCSEND
  help: leave it out
4:13 warning ZX408: ReadAhead has no effect with QTCSEND
  help: leave it out
5:14 warning ZX408: StripeSize has no effect with QTCSEND
  help: leave it out
6:8 warning ZX408: Init has no effect with QTCSEND
  help: leave it out
7:26 warning ZX408: the write cache has no effect with QTCSEND
  help: leave it out
)");
}

TEST(ZX408, SettingsOfCfggen) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-SAS-RAID
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:1:ON
)"),
              R"(3:15 warning ZX408: RebuildRate has no effect with CFGGEN
  help: leave it out
4:13 warning ZX408: ReadAhead has no effect with CFGGEN
  help: leave it out
5:14 warning ZX408: StripeSize has no effect with CFGGEN
  help: leave it out
7:26 warning ZX408: the write cache has no effect with CFGGEN
  help: leave it out
)");
}

TEST(ZX408, SettingsOfHyperwin) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-IDEal-RAID
RebuildRate = LOW
ReadAhead = ON
StripeSize = 64
Init = BUILD
Logical_Defaults = 50%:0:ON
)"),
              R"(3:15 warning ZX408: RebuildRate has no effect with HYPERWIN
  help: leave it out
4:13 warning ZX408: ReadAhead has no effect with HYPERWIN
  help: leave it out
6:8 warning ZX408: Init has no effect with HYPERWIN
  help: leave it out
7:20 error plan ZX408: HYPERWIN takes the size FILL alone
  help: zolex ends with 11 here, and controllers before are configured
7:24 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX408, SizesOfHyperwin) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-IDEal-RAID
Logical_Defaults = 10000:0
[Policy.two]
AppliesTo.1 = t:LSI-IDEal-RAID,c:1
Logical_Defaults = 100%:1
)"),
              R"(3:20 warning plan ZX408: HYPERWIN takes the size FILL alone
  help: zolex ends with 11 here, and controllers before are configured
3:26 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
4:1 warning ZX201: Policy.two can never be used
  help: each controller that it fits fits Policy.one (line 1) before it
  help: put it before that one, or take it out
)");
}

TEST(ZX408, AnotherModelHasTheSetting) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
AppliesTo.2 = t:Kestrix-A9
RebuildRate = LOW
ReadAhead = ON
Logical_Defaults = 50%:0:ON
)"),
              R"(6:24 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX408, NotEveryEntryNamesAModel) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
AppliesTo.2 = m:8837
RebuildRate = LOW
)"),
              "");
}

TEST(ZX409, MaxLogicalDriveSize) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = ALL
Max_Logical_Drive_Size = 100000
)"),
              R"(3:1 note ZX409: Max_Logical_Drive_Size has no effect
  help: give the size in Logical.<n> or Logical_Defaults
)");
}

TEST(ZX410, LogicalDrivesWithoutMode) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Hotspares = 8
Logical.1 = A:FILL:1
Logical.2 = B:FILL:1
)"),
        R"(7:1 note ZX410: Logical.1 to Logical.2 have no effect: each array gets one logical drive by defaults
  help: add Logical_Mode = CUSTOM
)");
}

TEST(ZX410, WithMode) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
              "");
}

TEST(ZX411, Raid0OverTwoDrives) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
)"),
              R"(7:20 note ZX411: RAID 0 over 2 drives: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX411, Raid0OverOneDrive) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Array.A = 1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
)"),
              "");
}

TEST(ZX411, Raid0ByDefault) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = d:8
Logical_Defaults = FILL:0
)"),
              R"(3:25 note ZX411: RAID 0: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
)");
}

TEST(ZX412, NoCacheWordOnMegaRaid) {
    EXPECT_EQ(
        lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
        R"(7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
)");
}

TEST(ZX412, TheControllersOwnIsAskedFor) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:AUTO
)"),
              "");
}

TEST(ZX412, AnotherUtility) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:Kestrix-B1
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1
)"),
              "");
}

} // namespace
} // namespace zolex::companion
