#include "MachineText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::arcServer;
using test::machineText;
using test::megaServer;

TEST(ZX701OnAMachine, AFailedDriveShiftsTheNumbersBehindIt) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 6, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
        R"(5:11 error ZX701: controller 1 of KQ10Z7V: drive 3 is 32:3 now, as 32:2 (Failed, serial ZS000002) has no number
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
6:13 error ZX701: controller 1 of KQ10Z7V: drive 8 is 32:8 now, as 32:2 (Failed, serial ZS000002) has no number
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
)");
}

TEST(ZX701OnAMachine, PositionsStay) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 6, "sizeMB": 69376})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1:0,1:1
Array.B = 1:3,1:4,1:5,1:6,1:7
Hotspares = 1:8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
              "");
}

TEST(ZX701OnAMachine, NumbersBeforeItStay) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              R"(1:1 note ZX712: controller 1 of KQ10Z7V: 1 drive gets no job: 32:3
  help: list them, or leave it so
)");
}

TEST(ZX702OnAMachine, ABadDriveIsTaken) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "bad"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376, "status": "bad"})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
        R"(4:15 error utility ZX702: controller 1 of KQ10Z7V: 32:2 (serial ZS000002) is Unconfigured(bad), and goes into Array.A
  help: replace 32:2, or take it out of the list
5:13 error utility ZX702: controller 1 of KQ10Z7V: 32:3 (serial ZS000003) is Unconfigured(bad), and goes into the hot spares
  help: replace 32:3, or take it out of the list
)");
}

TEST(ZX703OnAMachine, ErrorsAndPredictedFailures) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "sizeMB": 69376, "mediaErrors": 12, "predictiveFailures": 1},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "mediaErrors": 1})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(4:13 warning ZX703: controller 1 of KQ10Z7V: 32:1 has 12 media errors, 1 predicted failure, and goes into Array.A
  help: replace 32:1 before the array is made
5:13 warning ZX703: controller 1 of KQ10Z7V: 32:2 has 1 media error, and goes into the hot spares
  help: replace 32:2 before the array is made
)");
}

TEST(ZX704OnAMachine, SizesThatDiffer) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "count": 2, "sizeMB": 139392})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
        R"(4:11 warning ZX704: controller 1 of KQ10Z7V: Array.A leaves 136.8 GB of its drives unused
  help: 32:0 has 67.8 GB, 32:1 has 136.1 GB
)");
}

TEST(ZX704OnAMachine, SasBesideSata) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "sizeMB": 69376, "interface": "SATA"})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              R"(4:13 warning ZX704: controller 1 of KQ10Z7V: Array.A has SAS and SATA drives
  help: 32:0 is SAS, 32:1 is SATA
)");
}

TEST(ZX704OnAMachine, SizesInMbForSmallerDrives) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 139392})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:69376:1:ON
)"),
        R"(6:15 warning ZX704: controller 1 of KQ10Z7V: Array.A leaves 136.8 GB of its drives unused
  help: the drives are larger than the sizes are for; FILL takes all that is left
)");
}

TEST(ZX704OnAMachine, EqualDrives) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 139392})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        "");
}

TEST(ZX705OnAMachine, BothHalvesInOneEnclosure) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 33, "slot": 0, "count": 2, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:0:ON
)"),
        R"(4:11 warning ZX705: controller 1 of KQ10Z7V: both halves of Array.A are in enclosure 32
  help: take one half from enclosure 33
)");
}

TEST(ZX705OnAMachine, OneHalfInEach) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 1, "sizeMB": 69376},
{"enclosure": 33, "slot": 0, "count": 1, "sizeMB": 69376})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1:0,2:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              "");
}

TEST(ZX706OnAMachine, ASpareThatIsTooSmall) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 139392},
{"enclosure": 32, "slot": 2, "count": 1, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(5:13 error utility ZX706: controller 1 of KQ10Z7V: 32:2 is too small a hot spare for Array.A
  help: it has 67.8 GB, the smallest drive of Array.A has 136.1 GB
)");
}

TEST(ZX707OnAMachine, NoPolicyFits) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 7, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
[Policy.db]
AppliesTo.1 = m:8840
AppliesTo.2 = s:KQ10Z8C,c:1
)"),
        R"(1:1 warning ZX707: controller 1 of KQ10Z7V: no policy fits (LSI-MegaRAID-8480, 7 drives)
  help: Policy.web, AppliesTo.1: d:8, and it is 7
  help: Policy.db, AppliesTo.1: m:8840, and it is 8837
  help: Policy.db, AppliesTo.2: s:KQ10Z8C, and it is KQ10Z7V
)");
}

TEST(ZX708OnAMachine, NoDrives) {
    EXPECT_EQ(machineText(megaServer(""), R"([Policy.web]
AppliesTo.1 = ALL
)"),
              R"(1:1 warning ZX708: controller 1 of KQ10Z7V: it has no drives
  help: it is skipped, and zolex ends with 0 unless it was started with /e3
)");
}

TEST(ZX709OnAMachine, APlaceholder) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 1, "sizeMB": 69376})",
                                     "", "None"),
                          R"([Policy.web]
AppliesTo.1 = ALL
Logical_Defaults = FILL:0
)"),
              R"(1:1 note ZX709: the serial number "None" says nothing of a machine
  help: s: cannot tell this machine from others
)");
}

TEST(ZX710OnAMachine, ForeignDrives) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "foreign"})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              R"(1:1 warning ZX710: controller 1 of KQ10Z7V: drives of another server: 32:2
  help: zolex /r clears their arrays, too; without /r the utility refuses the drives
)");
}

TEST(ZX711OnAMachine, AHotSpareInNoEnclosure) {
    EXPECT_EQ(
        machineText(megaServer(R"({"slot": 0, "count": 4, "sizeMB": 69376})"), R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
        R"(5:13 error utility ZX711: controller 1 of KQ10Z7V: zolex writes 0:3 for drive :3, which is another drive or none
  help: use drives of enclosures alone, or of none alone; no hot spare without an enclosure
)");
}

TEST(ZX711OnAMachine, DrivesOfAnEnclosureBesideDrivesInNone) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
{"slot": 0, "count": 4, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(1:1 note ZX712: controller 1 of KQ10Z7V: 6 drives get no job: 32:2, 32:3, :0, :1 and 2 more
  help: list them, or leave it so
4:11 error utility ZX711: controller 1 of KQ10Z7V: zolex writes :0 for drive 32:0, which is another drive or none
  help: use drives of enclosures alone, or of none alone; no hot spare without an enclosure
)");
}

TEST(ZX711OnAMachine, DrivesInNoEnclosureAlone) {
    EXPECT_EQ(machineText(megaServer(R"({"slot": 0, "count": 2, "sizeMB": 69376})"), R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              "");
}

TEST(ZX601OnAMachine, EighteenCommands) {
    EXPECT_EQ(machineText(arcServer(R"({"channel": 0, "device": 0, "count": 18, "sizeMB": 69889})"),
                          R"([Policy.web]
AppliesTo.1 = t:Kestrix-B7,d:18
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array.C = 5,6
Array.D = 7,8
Array.E = 9,10
Array.F = 11,12
Array.G = 13,14
Array.H = 15,16
Hotspares = 17,18
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
Logical.3 = C:FILL:1:ON
Logical.4 = D:FILL:1:ON
Logical.5 = E:FILL:1:ON
Logical.6 = F:FILL:1:ON
Logical.7 = G:FILL:1:ON
Logical.8 = H:FILL:1:ON
)"),
              R"(1:1 warning ZX601: KQ52A1R needs 18 commands, and zolex runs 16
  help: 2 are left out, and zolex ends with 0
  help: left out: UTIL.BAT ARCCONF SETSTATE 1 DEVICE 0 16 HSP
  help: left out: UTIL.BAT ARCCONF SETSTATE 1 DEVICE 0 17 HSP
)");
}

TEST(ZX601OnAMachine, SixteenCommands) {
    EXPECT_EQ(machineText(arcServer(R"({"channel": 0, "device": 0, "count": 16, "sizeMB": 69889})"),
                          R"([Policy.web]
AppliesTo.1 = t:Kestrix-B7,d:16
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array.C = 5,6
Array.D = 7,8
Array.E = 9,10
Array.F = 11,12
Array.G = 13,14
Array.H = 15,16
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
Logical.3 = C:FILL:1:ON
Logical.4 = D:FILL:1:ON
Logical.5 = E:FILL:1:ON
Logical.6 = F:FILL:1:ON
Logical.7 = G:FILL:1:ON
Logical.8 = H:FILL:1:ON
)"),
              "");
}

TEST(ZX602OnAMachine, NumbersOfDrivesWithTwoDigits) {
    EXPECT_EQ(
        machineText(arcServer(R"({"channel": 0, "device": 4, "count": 32, "sizeMB": 69889})"),
                    R"([Policy.web]
AppliesTo.1 = t:Kestrix-B7,d:32
Array_Mode = CUSTOM
Array.A = 1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31,32
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5:ON
)"),
        R"(4:95 warning ZX602: controller 1 of KQ52A1R: ARCCONF lists 32 drives in a line of 200 bytes, and 198 are read
  help: a capture names wrong drives from 0:35 on
)");
}

TEST(ZX605OnAMachine, DrivesInUse) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})",
                               R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
)"),
        R"(1:1 warning utility ZX605: controller 1 of KQ10Z7V: Policy.web needs 2 drives in use: 32:0, 32:1
  help: without /r the utility refuses the first command for them, exit code 11
  help: zolex /r erases all arrays of all controllers first, with their data
)");
}

TEST(ZX605OnAMachine, FreeDrivesBesideThem) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})",
                                     R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
              "");
}

TEST(ZX406OnAMachine, ASizeThatBecomesAll) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:69300:1:ON
)"),
        R"(6:15 warning ZX406: controller 1 of KQ10Z7V: a size of 69300 MB becomes all that is left, 69376 MB
  help: write FILL, or a size that leaves more than 139 MB
)");
}

TEST(ZX406OnAMachine, ASizeThatIsAll) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:2
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:69376:1:ON
)"),
        "");
}

TEST(ZX304OnAMachine, OnThisMachine) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 5, "sizeMB": 69376},
{"enclosure": 32, "slot": 5, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 6, "count": 2, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
        R"(5:17 error ZX701: controller 1 of KQ10Z7V: drive 6 is 32:6 now, as 32:5 (Failed, serial ZS000005) has no number
  help: each number from 6 on names the next drive
  help: replace 32:5 first, or write channel:id
6:13 error plan ZX304: controller 1 of KQ10Z7V: there is no drive 8 among 7
  help: 32:5 (Failed, serial ZS000005) has no number
)");
}

TEST(ZX303OnAMachine, OnThisMachine) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480
Array_Mode = CUSTOM
Array.A = 1:0,1:5
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(4:15 error plan ZX303: controller 1 of KQ10Z7V: there is no drive at 1:5
)");
}

TEST(ZX302OnAMachine, ANumberAndAPosition) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:4
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = 1:1,1:2
Hotspares = 1:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
)"),
        R"(1:1 note ZX712: controller 1 of KQ10Z7V: 1 drive gets no job: 32:3
  help: list them, or leave it so
5:11 error utility ZX302: controller 1 of KQ10Z7V: 32:1 is in Array.A and in Array.B
  help: Array.A is made, and then MEGACLI refuses the command for Array.B
6:13 error utility ZX502: controller 1 of KQ10Z7V: 32:0 is a hot spare and in Array.A
  help: Array.A is made, and then MEGACLI refuses the spare
)");
}

TEST(ZX501OnAMachine, OnThisMachine) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 1, "sizeMB": 139392},
{"enclosure": 32, "slot": 1, "count": 4, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:5
Array_Mode = CUSTOM
Array.A = 1,2
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(1:1 error utility ZX501: controller 1 of KQ10Z7V: no Hotspares: 32:0 becomes the hot spare, and is listed in Array.A
  help: Array.A is made, and then MEGACLI refuses the spare
  help: add Hotspares, or Array_Defaults = 0%:0 for none
1:1 note ZX712: controller 1 of KQ10Z7V: 3 drives get no job: 32:2, 32:3, 32:4
  help: list them, or leave it so
4:13 warning ZX704: controller 1 of KQ10Z7V: Array.A leaves 68.4 GB of its drives unused
  help: 32:1 has 67.8 GB, 32:0 has 136.1 GB
)");
}

TEST(ZX411OnAMachine, NobodyAskedForRaid0) {
    EXPECT_EQ(machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376},
{"enclosure": 32, "slot": 3, "count": 1, "sizeMB": 70000},
{"enclosure": 32, "slot": 4, "count": 1, "sizeMB": 139392})"),
                          R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:5
)"),
              R"(1:1 note ZX411: controller 1 of KQ10Z7V: 32:3 becomes a RAID 0 without redundancy
  help: one drive's failure loses all data of it
)");
}

TEST(ZX712OnAMachine, ADriveWithoutAJob) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        R"(1:1 note ZX712: controller 1 of KQ10Z7V: 1 drive gets no job: 32:2
  help: list them, or leave it so
)");
}

TEST(ZX712OnAMachine, EachDriveHasOne) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2
Hotspares = 3
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        "");
}

TEST(ZX405OnAMachine, AModelThatAppliesToDoesNotName) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:FILL:5:ON
)"),
        R"(8:13 warning ZX405: controller 1 of KQ10Z7V: Logical.2 is not made: Array.A has Logical.1 already, see 7:13 first here
  help: MEGACLI gets a command for Logical.1 alone, and zolex ends with 0
  help: list the drives of Array.A again as a further array
)");
}

TEST(ZX405OnAMachine, ARefusalThatAppliesToDoesNotShow) {
    EXPECT_EQ(
        machineText(arcServer(R"({"channel": 0, "device": 0, "count": 3, "sizeMB": 69889})"),
                    R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1:0,1:1,1:2
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:50%:5:ON
Logical.2 = A:FILL:5:ON
)"),
        R"(8:13 error plan ZX405: controller 1 of KQ52A1R: ARCCONF makes one logical drive on an array: Logical.2 is the second on Array.A, see 7:13 first here
  help: zolex ends with 11 here, and controllers before are configured
)");
}

TEST(ZX408OnAMachine, HyperwinTakesBothDrives) {
    EXPECT_EQ(machineText(R"({"machineType": "8482", "serialNumber": "KQ12D8W", "controllers": [{
        "utility": "HYPERWIN", "model": "LSI-IDEal-RAID",
        "pci": {"bus": 1, "device": 5, "vendorId": "0x1166", "deviceId": "0x0213"},
        "drives": [{"id": 0, "count": 2, "sizeMB": 38154}]}]})",
                          R"([Policy.web]
AppliesTo.1 = d:2
StripeSize = 64
ReadAhead = ON
Array_Mode = CUSTOM
Array.A = 1
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:0
)"),
              R"(4:13 note ZX408: controller 1 of KQ12D8W: ReadAhead has no effect with HYPERWIN
  help: leave it out
6:11 warning ZX408: controller 1 of KQ12D8W: HYPERWIN takes both drives, whatever Array.A lists
  help: what is on the other drive is lost, too
)");
}

TEST(ZX110OnAMachine, SizesBeyondTheRoom) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:138900:5:ON
)"),
        R"(7:15 error utility ZX110: controller 1 of KQ10Z7V: Array.A has room for 138752 MB, and Logical.1 asks for 138900
  help: MEGACLI refuses the command, exit code 11, when those before it are done
  help: write FILL for all that is left
)");
}

TEST(ZX110OnAMachine, SizesThatFit) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:138000:5:ON
)"),
        "");
}

TEST(ZX401OnAMachine, ALevelThatTheModelLacks) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = d:4
Array_Mode = CUSTOM
Array.A = 1,2,3,4
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:5EE:ON
)"),
        R"(7:20 error plan ZX401: controller 1 of KQ10Z7V: RAID level 5EE is not possible
  help: LSI-MegaRAID-8480 has 0, 1, 5, 10, 50
)");
}

TEST(ZX402OnAMachine, TheFileAloneTellsIt) {
    EXPECT_EQ(
        machineText(megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = d:3
Array_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)"),
        "");
}

TEST(ZX403OnAMachine, InsteadOfZX604) {
    test::SimulatedPlatform platform(
        megaServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"));
    const Snapshot snapshot = captureMachine(platform, {});
    const PolicyDocument document = scanPolicies("p.ini", R"([Policy.web]
AppliesTo.1 = d:3
StripeSize = 256
)");
    EXPECT_EQ(
        textOf(lint(document, {&snapshot}, {})),
        R"(3:14 error plan ZX403: controller 1 of KQ10Z7V: a strip size of 256 KB is not possible
  help: LSI-MegaRAID-8480 takes 8, 16, 32, 64, 128
)");
}

} // namespace
} // namespace zolex::companion
