#include "MachineText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::machineText;
using test::megaServer;

/// What is told but that zolex refuses such entries.
std::string formText(std::string_view entries) {
    return lintText("[Policy.one]\nAppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n" + std::string(entries),
                    {}, {"ZX610", "ZX9"});
}

std::string boundText(std::string_view drives, std::string_view entries) {
    return machineText(megaServer(drives), "[Policy.one]\nAppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n" +
                                               std::string(entries));
}

constexpr std::string_view eight = R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376})";

TEST(KindEntries, ZolexRefusesThem) {
    EXPECT_EQ(lintText(R"([Policy.one]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Drives.A = 2 x SSD <500GB
drives.b = REST OF ONE SIZE
Spares = 1 covering A,B
Level.B = 6 else 5
)"),
              R"(3:1 note zolex ZX610: zolex refuses this file: it does not know Drives.A
4:1 note zolex ZX610: zolex refuses this file: it does not know drives.b
5:1 note zolex ZX610: zolex refuses this file: it does not know Spares
6:1 note zolex ZX610: zolex refuses this file: it does not know Level.B
)");
}

TEST(KindEntries, FaultsOfFormStandAtTheirWords) {
    EXPECT_EQ(formText("Drives.A = 2 HDD\nSpares = 1 covering Q\nLevel.A = 7\n"),
              R"(3:14 error zolex ZX112: "HDD" stands where "x" is wanted
  help: write how many and which: 2 x SSD <500GB, rest of one size, all HDD, slots 32:0,32:1
4:21 error zolex ZX113: "Q" stands where the letter of an array is wanted
  help: write how many, or which: 1, 1 covering A,B, slots 32:7, serials 3LQ2A000
5:11 error zolex ZX114: "7" stands where a RAID level is wanted
  help: write levels between else: 6 else 5 else 1
)");
}

TEST(KindEntries, StandInThePlaceOfOthers) {
    EXPECT_EQ(formText("Drives.A = 2 x HDD\nArray.B = 3,4\nHotspares = 8\n"
                       "Array_Defaults = 0%:1\nLevel.A = 1\nLogical.1 = A:FILL:1:ON\n"),
              R"(4:1 error zolex ZX311: Array.B beside Drives.<x>
  help: write its drives as Drives.B = slots 32:0,32:1
5:1 error zolex ZX311: Hotspares beside Drives.<x>
  help: write Spares = 1, or Spares = slots 32:7
6:1 error zolex ZX311: Array_Defaults beside Drives.<x>
  help: take the line out, and write Spares = 1 for a hot spare
7:1 error zolex ZX311: Level.A beside Logical.1 of the same array
  help: leave one of them
)");
}

TEST(KindEntries, SpeakOfWhatThereIs) {
    EXPECT_EQ(formText("Drives.A = slots 32:0,32:1\nDrives.C = slots 32:2,32:1\n"
                       "Drives.I = rest\nSpares = 1 covering A,D\nLevel.E = 5\n"),
              R"(4:1 error zolex ZX312: Drives.C without Drives.B
  help: letter the arrays from A, without a gap
4:23 error zolex ZX312: 32:1 is in Drives.A already
  help: name each drive once
5:1 error zolex ZX312: there is no array I
  help: arrays are A to H
6:23 error zolex ZX312: Spares covers D, and there is no Drives.D
  help: name arrays of this policy
7:1 error zolex ZX312: Level.E without Drives.E
  help: write its drives as Drives.E
)");
    EXPECT_EQ(formText("Spares = 1\nLevel.A = 5\n"),
              R"(3:1 error zolex ZX312: Spares without Drives.A
  help: write Array_Defaults = 0%:1, or Drives.A = all
4:1 error zolex ZX312: Level.A without Drives.A
  help: write the level into Logical.<n>, or the array as Drives.<x>
)");
}

TEST(KindEntries, TwiceIsAFaultOfTheFile) {
    EXPECT_EQ(formText("Drives.A = 2 x HDD\nDrives.A = 3 x HDD\n"),
              R"(4:1 error zolex ZX008: Drives.A is in Policy.one twice, see 3:1 first here
  help: leave one of the two lines
)");
}

TEST(KindEntries, ALineThatIsTooLongIsToldOnce) {
    std::string slots = "Drives.A = slots 32:0";
    for (int i = 1; i < 60; ++i) {
        slots += ",32:" + std::to_string(i);
    }
    EXPECT_EQ(
        formText(slots + "\n"),
        R"(3:256 error zolex ZX012: line of 366 characters: what is beyond 255 is read as another line
  help: shorten it: no entry goes on in a second line
)");
}

TEST(KindEntriesOnAMachine, WhatFitsIsSilent) {
    EXPECT_EQ(boundText(eight, "Drives.A = 2 x HDD\nDrives.B = rest\nSpares = 1 covering A,B\n"
                               "Level.B = 6 else 5\n"),
              "");
}

TEST(KindEntriesOnAMachine, WhatIsNotThereIsTold) {
    EXPECT_EQ(
        boundText(eight, "Drives.A = 2 x SSD <500GB\nDrives.B = 9 x HDD\n"),
        R"(3:12 error plan ZX313: controller 1 of KQ10Z7V: 2 SSD below 500 GB are wanted; there are none
  help: zolexctl show lists the drives
4:12 error plan ZX313: controller 1 of KQ10Z7V: 9 HDD are wanted; there are 8: 32:0 (67.8 GB), 32:1 (67.8 GB), 32:2 (67.8 GB), 32:3 (67.8 GB), 32:4 (67.8 GB), 32:5 (67.8 GB), 32:6 (67.8 GB), 32:7 (67.8 GB)
  help: zolexctl show lists the drives
)");
}

TEST(KindEntriesOnAMachine, TheOtherRulesLookAtTheBoundDrives) {
    EXPECT_EQ(
        boundText(eight,
                  "; two drives\nDrives.A = 2 x HDD\nDrives.B = 4 x HDD\n"
                  "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:5:ON\nLogical.2 = B:FILL:5:ON\n"),
        R"(7:20 error plan ZX402: controller 1 of KQ10Z7V: RAID 5 takes 3 or more drives, and Drives.A has 2 drives, see 4:12 2 drives
  help: LSI-MegaRAID-8480 makes 0 or 1 of 2 drives
)");
    EXPECT_EQ(boundText(eight, "Drives.A = 2 x HDD\nDrives.B = 4 x HDD\n"),
              R"(1:1 note ZX712: controller 1 of KQ10Z7V: 2 drives get no job: 32:6, 32:7
  help: list them, or leave it so
)");
    EXPECT_EQ(
        boundText(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "count": 6, "sizeMB": 139392})",
                  "Drives.A = 8 x HDD any size\n"),
        R"(3:12 warning ZX704: controller 1 of KQ10Z7V: Drives.A leaves 410.3 GB of its drives unused
  help: 32:0 has 67.8 GB, 32:2 has 136.1 GB
)");
}

TEST(KindEntriesOnAMachine, AControllerWithoutAPolicyIsTold) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376})"),
                    "[Policy.one]\nAppliesTo.1 = c:2\nDrives.A = all\n"),
        R"(1:1 warning ZX707: controller 1 of KQ10Z7V: no policy fits (LSI-MegaRAID-8480, 8 drives)
  help: Policy.one, AppliesTo.1: c:2, and it is 1
)");
}

} // namespace
} // namespace zolex::companion
