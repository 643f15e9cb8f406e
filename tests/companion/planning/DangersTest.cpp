// What went wrong on servers without a word, told by a plan before anything is run.
#include "PlanServers.h"
#include "PlanText.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::arcPlanServer;
using test::customPolicy;
using test::eightDrives;
using test::megaPlanServer;
using test::outcomeText;
using test::planOf;
using test::stepsText;

PlanRequest byDefaults() {
    PlanRequest request;
    request.classDefaults = true;
    return request;
}

PlanRequest accepting(const std::string& id) {
    PlanRequest request;
    request.accept = {id};
    return request;
}

/// What is told, and the commands.
std::string told(const MachinePlan& plan) {
    return outcomeText(plan) + stepsText(plan);
}

TEST(PlanDangersA, ATypoInAKeyword) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives),
                          R"([Policy.web]
AppliesTo.1 = ALL
Hotspare = 1
)")),
              R"(3:1 error ZX007: unknown keyword "Hotspare"
  help: did you mean Hotspares?
  help: for more: zolexctl explain ZX007
controller 1 refused (the policies are at fault)
)");
}

TEST(PlanDangersA, PoliciesThatMatchNoController) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(eightDrives),
                    R"([Policy.six]
AppliesTo.1 = d:6
[Policy.arc]
AppliesTo.1 = t:Kestrix-B7
)")),
        R"(controller 1 skipped (no policy fits: Policy.six asks for d:6, and it is 8; Policy.arc asks for t:Kestrix-B7, and it is LSI-MegaRAID-8480)
)");
}

TEST(PlanDangersA, OneDriveFailedAndThePolicyNamesIt) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1:0,1:1
Array.B = 1:2,1:3,1:4
Hotspares = 1:7
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"))),
        R"(controller 1 refused (there is no drive at 1:2)
6:11 error ZX303: there is no drive at 1:2
  help: 32:2 (Failed, serial ZS000002) has no number
  help: for more: zolexctl explain ZX303
warning ZX701: 32:2 (Failed, serial ZS000002) has no number in policies: drive 3 is 32:3 now
  detail: every number from there on names the next drive
  help: name drives by channel:id, or take this drive out
)");
}

TEST(PlanDangersA, AStripSizeThatNoPlanAccepts) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(StripeSize = 256
Array.A = 1,2,3,4,5,6,7
Hotspares = 8
Logical.1 = A:FILL:5:ON
)"))),
              R"(controller 1 refused (a strip size of 256 KB is not possible)
5:14 error ZX403: a strip size of 256 KB is not possible
  help: LSI-MegaRAID-8480 takes 8, 16, 32, 64, 128
  help: for more: zolexctl explain ZX403
)");
}

TEST(PlanDangersA, SeveralVirtualDisksOnOneArrayElsewhere) {
    EXPECT_EQ(
        told(planOf(arcPlanServer(R"({"channel": 0, "device": 0, "count": 4, "sizeMB": 70000})"),
                    R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:50%:5
Logical.2 = A:FILL:5
)")),
        R"(controller 1 refused (ARCCONF makes one logical drive on an array: Logical.2 is the second on Array.A)
8:13 error ZX405: ARCCONF makes one logical drive on an array: Logical.2 is the second on Array.A
  help: give each array one logical drive: Logical.1 = A:FILL:AUTO
  help: for more: zolexctl explain ZX405
)");
}

TEST(PlanDangersA, DrivesMovedInFromAnotherServer) {
    EXPECT_EQ(
        told(planOf(
            megaPlanServer(
                R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376, "status": "foreign"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376})"),
            customPolicy(R"(Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:FILL:5:ON
)"))),
        R"(controller 1 planned
warning ZX710: the foreign configuration on 32:0, 32:1, 32:2 is cleared
  help: what another server wrote there is lost; take the drives out to keep it
1 UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:3 ] -a0
)");
}

TEST(PlanDangersB, ASizeThatDoesNotFit) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,7
Hotspares = 8
Logical.1 = A:900000:5:ON
)"))),
        R"(controller 1 refused (Array.A has room for 416256 MB, and Logical.1 asks for 900000)
7:15 error ZX110: Array.A has room for 416256 MB, and Logical.1 asks for 900000
  help: MEGACLI refuses the command, exit code 11, when those before it are done
  help: write FILL for all that is left
  help: to let it pass: zolexctl plan site.ini --accept ZX110
)");
}

TEST(PlanDangersB, PercentagesThatDoNotFit) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2
Array.B = 1,2
Array.C = 3,4,5,6,7
Hotspares = 8
Logical.1 = A:60%:1:ON
Logical.2 = B:60%:1:ON
Logical.3 = C:FILL:5:ON
)"))),
              R"(controller 1 refused (Array.B has room for 27750 MB, and Logical.2 asks for 60%)
10:15 error ZX110: Array.B has room for 27750 MB, and Logical.2 asks for 60%
  help: MEGACLI refuses the command, exit code 11, when those before it are done
  help: write FILL for all that is left
  help: to let it pass: zolexctl plan site.ini --accept ZX110
)");
}

TEST(PlanDangersB, NothingIsLeftForAnArrayOfTheSameDrives) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2
Array.B = 1,2
Array.C = 3,4,5,6,7
Hotspares = 8
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:1:ON
Logical.3 = C:FILL:5:ON
)"))),
              R"(controller 1 refused (Array.B has room for 0 MB, and Logical.2 asks for FILL)
10:15 error ZX110: Array.B has room for 0 MB, and Logical.2 asks for FILL
  help: MEGACLI refuses the command, exit code 11, when those before it are done
  help: give the logical drives before it less
  help: to let it pass: zolexctl plan site.ini --accept ZX110
)");
}

TEST(PlanDangersB, ADriveTwice) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,2
Array.B = 3,4,5,6,7
Hotspares = 8
Logical.1 = A:FILL:5:ON
Logical.2 = B:FILL:5:ON
)"))),
              R"(controller 1 refused (drive 2 is listed twice in Array.A)
5:15 error ZX301: drive 2 is listed twice in Array.A
  help: zolex takes it twice, and MEGACLI refuses the command
  help: to let it pass: zolexctl plan site.ini --accept ZX301
)");
}

TEST(PlanDangersB, ASpareThatIsAMember) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,7,8
Hotspares = 3
Logical.1 = A:FILL:5:ON
)"))),
              R"(controller 1 refused (32:2 is a hot spare and in Array.A)
6:13 error ZX502: 32:2 is a hot spare and in Array.A
  help: Array.A is made, and then MEGACLI refuses the spare
  help: to let it pass: zolexctl plan site.ini --accept ZX502
)");
}

TEST(PlanDangersB, ACloneOntoSmallerDrives) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 34715})"),
                    customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:69376:1:ON
)"))),
        R"(controller 1 refused (Array.A has room for 34715 MB, and Logical.1 asks for 69376)
7:15 error ZX110: Array.A has room for 34715 MB, and Logical.1 asks for 69376
  help: MEGACLI refuses the command, exit code 11, when those before it are done
  help: write FILL for all that is left
  help: to let it pass: zolexctl plan site.ini --accept ZX110
)");
}

TEST(PlanDangersC, NoDrives) {
    EXPECT_EQ(told(planOf(megaPlanServer(R"()"), customPolicy(R"(Array.A = 1,2
Logical.1 = A:FILL:1:ON
)"))),
              R"(controller 1 skipped (it has no drives)
)");
}

TEST(PlanDangersC, SeveralLogicalDrivesOnOneArrayAreMadeAllTheSame) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,7
Hotspares = 8
Logical.1 = A:50%:5:ON
Logical.2 = A:FILL:5:ON
)"))),
              R"(controller 1 planned
8:13 warning ZX405: zolex leaves out Logical.2: Array.A has Logical.1 already
  help: zolexctl makes it; zolex makes the first of an array alone
1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 ] WB ADRA { -sz208128 } -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0
)");
}

TEST(PlanDangersC, Raid10OfFiveDrives) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 6, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2,3,4,5
Hotspares = 6
Logical.1 = A:FILL:10:ON
)"))),
        R"(controller 1 planned
7:20 warning ZX404: RAID 10 is made of pairs, and Array.A has 5 drives
  help: MEGACLI leaves drive 5 out, without a word
  help: take it out of Array.A
1 UTIL.BAT MEGACLI -CfgSpanAdd R10 -Array0[ 32:0,32:1 ] -Array1[ 32:2,32:3 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:5 ] -a0
)");
}

TEST(PlanDangersC, ListsWithoutCustomModes) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives),
                          R"([Policy.web]
AppliesTo.1 = ALL
Array.A = 1,2
Logical.1 = A:FILL:1:ON
)")),
              R"(controller 1 planned
3:1 warning ZX307: Array.A has no effect: zolex chooses the drives itself
  help: add Array_Mode = CUSTOM
4:1 note ZX410: Logical.1 has no effect: each array gets one logical drive by defaults
  help: add Logical_Mode = CUSTOM
1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0
)");
}

TEST(PlanDangersC, AllTakes16Of24Drives) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 24, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Array.B = ALL
Hotspares = 24
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"))),
        R"(controller 1 planned
1:1 note ZX712: 5 drives get no job: 32:18, 32:19, 32:20, 32:21, 32:22
  help: list them, or leave it so
6:11 warning ZX305: Array.B takes 16 of 21 drives that remain
  help: 5 are left over, and zolex does not say so
  help: list the drives, in two arrays
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4,32:5,32:6,32:7,32:8,32:9,32:10,32:11,32:12,32:13,32:14,32:15,32:16,32:17 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:23 ] -a0
)");
}

TEST(PlanDangersC, AFifthEnclosure) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 10, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 11, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 12, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 13, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 14, "slot": 0, "count": 2, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1:0,2:0
Array.B = 1:1,2:1,3:0,3:1,4:0
Hotspares = 4:1
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"))),
        R"(controller 1 planned
1:1 note ZX712: 2 drives get no job: 14:0, 14:1
  help: list them, or leave it so
warning ZX701: 14:0 (Unconfigured(good), serial ZS000008) has no number in policies
  detail: policies can name drives of 4 enclosures or channels, with numbers up to 35
  help: name drives by channel:id, or take this drive out
warning ZX701: 14:1 (Unconfigured(good), serial ZS000009) has no number in policies
  detail: policies can name drives of 4 enclosures or channels, with numbers up to 35
  help: name drives by channel:id, or take this drive out
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 10:0,11:0 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 10:1,11:1,12:0,12:1,13:0 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 13:1 ] -a0
)");
}

TEST(PlanDangersC, HyperwinTakesBothDrives) {
    EXPECT_EQ(told(planOf("hyperwin",
                          R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1
Logical.1 = A:FILL:0
)")),
              R"(controller 1 refused (the array is planned on 1, and the command takes 1 2)
error ZP222: the array is planned on 1, and the command takes 1 2
  help: list all drives of the controller: Array.A = 1,2
  help: for more: zolexctl explain ZP222
5:11 warning ZX408: HYPERWIN takes both drives, whatever Array.A lists
  help: what is on the other drive is lost, too
)");
}

TEST(PlanDangersC, DrivesInAnEnclosureBesideDrivesInNone) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376},
{"slot": 0, "count": 4, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Array_Defaults = 0%:0
Logical.1 = A:FILL:1:ON
)"))),
        R"(controller 1 refused (the command line says :0 for drive 32:0, which is another drive or none)
5:11 error ZX711: the command line says :0 for drive 32:0, which is another drive or none
  help: use drives of enclosures alone, or of none alone; no hot spare without an enclosure
  help: for more: zolexctl explain ZX711
1:1 note ZX712: 6 drives get no job: 32:2, 32:3, :0, :1, :2, :3
  help: list them, or leave it so
)");
}

TEST(PlanDangersC, ACloneOntoAnotherNumberOfDrives) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(eightDrives),
                    R"([Policy.AUTO-LSI-MegaRAID-8480-1]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:6
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3,4,5,6
Logical.1 = A:FILL:5:ON
)")),
        R"(controller 1 skipped (no policy fits: Policy.AUTO-LSI-MegaRAID-8480-1 asks for d:6, and it is 8)
)");
}

TEST(PlanDangersD, AFailedDriveShiftsTheNumbers) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Array.B = 3,4,5,6
Hotspares = 7
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"))),
        R"(controller 1 refused (drive 3 is 32:3 now, as 32:2 (Failed, serial ZS000002) has no number, and 1 more fault)
6:11 error ZX701: drive 3 is 32:3 now, as 32:2 (Failed, serial ZS000002) has no number
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
  help: to let it pass: zolexctl plan site.ini --accept ZX701
7:13 error ZX701: drive 7 is 32:7 now, as 32:2 (Failed, serial ZS000002) has no number
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
  help: to let it pass: zolexctl plan site.ini --accept ZX701
)");
}

TEST(PlanDangersD, AFailedDriveShiftsTheNumbersAndThatIsAccepted) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Array.B = 3,4,5,6
Hotspares = 7
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)"),
                    accepting("ZX701"))),
        R"(controller 1 planned
6:11 warning ZX701: drive 3 is 32:3 now, as 32:2 (Failed, serial ZS000002) has no number
  detail: accepted
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
7:13 warning ZX701: drive 7 is 32:7 now, as 32:2 (Failed, serial ZS000002) has no number
  detail: accepted
  help: each number from 3 on names the next drive
  help: replace 32:2 first, or write channel:id
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:3,32:4,32:5,32:6 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0
)");
}

TEST(PlanDangersD, ABadDriveGoesIntoTheArray) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "bad"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:FILL:5:ON
)"))),
        R"(controller 1 refused (32:2 (serial ZS000002) is Unconfigured(bad), and goes into Array.A)
5:15 error ZX702: 32:2 (serial ZS000002) is Unconfigured(bad), and goes into Array.A
  help: replace 32:2, or take it out of the list
  help: to let it pass: zolexctl plan site.ini --accept ZX702
)");
}

TEST(PlanDangersD, AMissingDrive) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,9
Hotspares = 8
Logical.1 = A:FILL:5:ON
)"))),
              R"(controller 1 refused (there is no drive 9 among 8)
5:23 error ZX304: there is no drive 9 among 8
  help: what there is: zolexctl show
  help: for more: zolexctl explain ZX304
)");
}

TEST(PlanDangersG, AnArrayOfAllEightDrivesAndNoHotspares) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,7,8
Logical.1 = A:FILL:5:ON
)"))),
        R"(controller 1 refused (no Hotspares: 32:7 becomes the hot spare, and is listed in Array.A)
1:1 error ZX501: no Hotspares: 32:7 becomes the hot spare, and is listed in Array.A
  help: Array.A is made, and then MEGACLI refuses the spare
  help: add Hotspares, or Array_Defaults = 0%:0 for none
  help: to let it pass: zolexctl plan site.ini --accept ZX501
)");
}

TEST(PlanDangersG, ADriveInTwoArrays) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3
Array.B = 3,4,5,6,7
Hotspares = 8
Logical.1 = A:FILL:5:ON
Logical.2 = B:FILL:5:ON
)"))),
              R"(controller 1 refused (32:2 is in Array.A and in Array.B)
6:11 error ZX302: 32:2 is in Array.A and in Array.B
  help: Array.A is made, and then MEGACLI refuses the command for Array.B
  help: to let it pass: zolexctl plan site.ini --accept ZX302
)");
}

TEST(PlanDangersG, SmallAndLargeDrivesInOneArray) {
    EXPECT_EQ(told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "count": 3, "sizeMB": 139236})"),
                          customPolicy(R"(Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:FILL:5:ON
)"))),
              R"(controller 1 planned
5:11 warning ZX704: Array.A leaves 136.4 GB of its drives unused
  help: 32:0 has 67.8 GB, 32:1 has 136.0 GB
1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:3 ] -a0
)");
}

TEST(PlanDangersG, SasWithSataAndSsdWithHdd) {
    EXPECT_EQ(
        told(planOf(
            megaPlanServer(
                R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376, "interface": "SAS"},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "interface": "SATA"},
{"enclosure": 32, "slot": 3, "sizeMB": 69376, "interface": "SAS"})"),
            customPolicy(R"(Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:FILL:5:ON
)"))),
        R"(controller 1 planned
5:15 warning ZX704: Array.A has SAS and SATA drives
  help: 32:0 is SAS, 32:2 is SATA
1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:3 ] -a0
)");
}

TEST(PlanDangersG, ASpareSmallerThanTheMembers) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 139236},
{"enclosure": 32, "slot": 2, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:FILL:1:ON
)"))),
        R"(controller 1 refused (32:2 is too small a hot spare for Array.A)
6:13 error ZX706: 32:2 is too small a hot spare for Array.A
  help: it has 67.8 GB, the smallest drive of Array.A has 136.0 GB
  help: to let it pass: zolexctl plan site.ini --accept ZX706
)");
}

TEST(PlanDangersG, ASpareForRaid0) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:FILL:0:ON
)"))),
        R"(controller 1 planned
6:13 warning ZX504: the hot spare can cover no array: none has redundancy
  help: use the drive in an array, or take a level such as 1, 5 or 10
7:20 note ZX411: RAID 0 over 2 drives: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
1 UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:0,32:1 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0
)");
}

TEST(PlanDangersG, ADefaultSpareForRaid0) {
    EXPECT_EQ(told(planOf(megaPlanServer(eightDrives), customPolicy(R"(Array.A = 1,2,3,4,5,6,7
Logical.1 = A:FILL:0:ON
)"))),
              R"(controller 1 planned
6:20 note ZX411: RAID 0 over 7 drives: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
warning ZP207: the hot spare 32:7 covers no array: none has redundancy
  help: use the drive in an array, or have no spare: Array_Defaults = 0%:0
1 UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0
)");
}

TEST(PlanDangersG, ADriveWithPredictedFailuresAndMediaErrors) {
    EXPECT_EQ(told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "sizeMB": 69376, "mediaErrors": 12, "predictiveFailures": 1},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "mediaErrors": 1})"),
                          customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:FILL:1:ON
)"))),
              R"(controller 1 planned
5:13 warning ZX703: 32:1 has 12 media errors, 1 predicted failure, and goes into Array.A
  help: replace 32:1 before the array is made
6:13 warning ZX703: 32:2 has 1 media error, and goes into the hot spares
  help: replace 32:2 before the array is made
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0
)");
}

TEST(PlanDangersG, ACloneWithSizesInMbOntoLargerDrives) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 139236})"),
                    customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:69376:1:ON
)"))),
        R"(controller 1 planned
7:15 warning ZX704: Array.A leaves 136.4 GB of its drives unused
  help: the drives are larger than the sizes are for; FILL takes all that is left
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] WB ADRA { -sz69376 } -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0
)");
}

TEST(PlanDangersG, WriteThroughWithoutAWord) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})"),
                    customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:FILL:1
)"))),
        R"(controller 1 planned
7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0
)");
}

TEST(PlanDangersG, DefaultsMakeARaid0OfASingleDrive) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376},
{"enclosure": 32, "slot": 3, "sizeMB": 70400}, {"enclosure": 32, "slot": 4, "sizeMB": 139236})"),
                    "", byDefaults())),
        R"(controller 1 planned
note ZX411: 32:3 becomes a RAID 0 without redundancy
  help: one drive's failure loses all data of it
1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:3 ] WB ADRA -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:4 ] -a0
)");
}

TEST(PlanDangersG, AFaultOnTheSecondControllerLeavesTheFirstAlone) {
    EXPECT_EQ(told(planOf("two-controllers",
                          R"([Policy.one]
AppliesTo.1 = c:1
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3,4,5
Hotspares = 6
Logical.1 = A:FILL:5:ON
[Policy.two]
AppliesTo.1 = c:2
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3,4,5
Array.B = 6
Array_Defaults = 0%:0
Logical.1 = A:FILL:5:ON
)")),
              R"(controller 1 planned
controller 2 refused (Array.B has no logical drive)
13:1 error ZX308: Array.B has no logical drive
  help: add Logical.2 = B:FILL:AUTO
  help: for more: zolexctl explain ZX308
)");
}

TEST(PlanDangersG, ASpareInNoEnclosureIsNamedAsItIs) {
    EXPECT_EQ(told(planOf(megaPlanServer(R"({"slot": 0, "count": 3, "sizeMB": 69376})"),
                          customPolicy(R"(Array.A = 1,2
Hotspares = 3
Logical.1 = A:FILL:1:ON
)"))),
              R"(controller 1 planned
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ :0,:1 ] WB ADRA -strpsz 64 -a0
2 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ :2 ] -a0
)");
}

TEST(PlanDangersG, RedundancyIsLost) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 3, "sizeMB": 69376})",
                                   R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]]})"),
                    customPolicy(R"(Array.A = 1,2,3
Array_Defaults = 0%:0
Logical.1 = A:FILL:0:ON
)"))),
        R"(controller 1 planned
7:20 note ZX411: RAID 0 over 3 drives: one drive's failure loses all data
  help: no hot spare helps; take 1, 10 or 5 where the data matters
warning ZP206: redundancy is lost: RAID5 stands, and RAID0 is planned
  help: take a level such as 1, 5 or 10 where the data matters
1 UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT
2 UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT
3 UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:0,32:1,32:2 ] WB ADRA -strpsz 64 -a0
)");
}

TEST(PlanDangersErrands, ADegradedControllerIsAsThePolicySays) {
    EXPECT_EQ(
        told(planOf(
            megaPlanServer(
                R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})",
                R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "readPolicy": "ADRA"})"),
            R"([Policy.web]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical.1 = A:FILL:5
)")),
        R"(controller 1 already (as the policy says)
1:1 note ZX712: 5 drives get no job: 32:3, 32:4, 32:5, 32:6, 32:7
  help: list them, or leave it so
7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
warning ZP208: LD 0 is degraded: 32:2 failed
  help: replace the drive; the layout is as the policy says
)");
}

TEST(PlanDangersErrands, ADriveThatRebuildsIsAsThePolicySays) {
    EXPECT_EQ(
        told(planOf(
            megaPlanServer(
                R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "rebuild"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})",
                R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "readPolicy": "ADRA"})"),
            R"([Policy.web]
AppliesTo.1 = d:8
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3
Array_Defaults = 0%:0
Logical.1 = A:FILL:5
)")),
        R"(controller 1 already (as the policy says)
1:1 note ZX712: 5 drives get no job: 32:3, 32:4, 32:5, 32:6, 32:7
  help: list them, or leave it so
7:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
warning ZP208: LD 0 is degraded: 32:2 rebuilding
  help: wait until it is rebuilt; the layout is as the policy says
)");
}

TEST(PlanDangersErrands, NoPolicyFitsASmallerServerWithAFailedDrive) {
    EXPECT_EQ(
        told(planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376},
{"enclosure": 32, "slot": 2, "sizeMB": 69376, "status": "failed"},
{"enclosure": 32, "slot": 3, "count": 5, "sizeMB": 69376})"),
                    R"([Policy.web]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
)")),
        R"(controller 1 skipped (no policy fits: Policy.web asks for d:8, and it is 7)
warning ZX701: 32:2 (Failed, serial ZS000002) has no number in policies: drive 3 is 32:3 now
  detail: every number from there on names the next drive
  help: name drives by channel:id, or take this drive out
)");
}

TEST(PlanDangersErrands, AMemberWithMediaErrorsThatStands) {
    EXPECT_EQ(
        told(planOf(
            megaPlanServer(
                R"({"enclosure": 32, "slot": 0, "sizeMB": 69376, "mediaErrors": 3},
{"enclosure": 32, "slot": 1, "count": 2, "sizeMB": 69376})",
                R"({"level": "RAID5", "spans": [["32:0", "32:1", "32:2"]], "readPolicy": "ADRA", "writePolicy": "WB"})"),
            customPolicy(R"(Array.A = 1,2,3
Array_Defaults = 0%:0
Logical.1 = A:FILL:5:ON
)"))),
        R"(controller 1 already (as the policy says)
5:11 warning ZX703: 32:0 has 3 media errors, and is in Array.A
  help: replace the drive while the others are well
)");
}

/// What is read is not what stands there: nothing lets that pass.
PlanRequest acceptingMisreadings() {
    PlanRequest request;
    request.accept = {"ZP105", "ZP106", "ZP107", "ZP108", "ZP109"};
    return request;
}

constexpr const char* mirrorPolicy = R"(Array.A = 1,2
Hotspares = 8
Logical.1 = A:FILL:1:ON
)";

TEST(PlanDangersD, OneControllerUnderTwoNumbersIsNotLetPass) {
    const auto controller = [](int bus) {
        return R"({"utility": "MEGACLI", "model": "LSI-MegaRAID-8480", "serialNumber": "S1",
            "pci": {"bus": )" +
               std::to_string(bus) + R"(, "device": 1, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"}, "drives": [)" +
               std::string(eightDrives) + "]}";
    };
    const std::string server =
        R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [)" + controller(2) +
        ", " + controller(3) + "]}";
    EXPECT_EQ(
        told(planOf(server, customPolicy(mirrorPolicy), acceptingMisreadings())).substr(0, 182),
        R"(error ZP109: the listings of controllers 1 and 2 tell the same serial number, S1
  help: start the listing commands by hand and compare them
  help: for more: zolexctl explain ZP109
)");
}

TEST(PlanDangersD, AListingThatTellsNothingIsNotLetPass) {
    std::string server =
        megaPlanServer(eightDrives, R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})");
    server.back() = ',';
    server += R"("faults": [{"match": "-LdPdInfo", "exitCode": 0}]})";
    const MachinePlan plan = planOf(server, customPolicy(mirrorPolicy), acceptingMisreadings());
    EXPECT_EQ(plan.accepted, std::vector<std::string>());
    EXPECT_EQ(
        test::findingsText(plan.controllers.at(0).diagnostics),
        R"(error ZP105: UTIL.BAT MEGACLI -LdPdInfo -a0 ended with exit code 0 and printed nothing
  help: start the command by hand; what it printed tells why
  help: for more: zolexctl explain ZP105
error ZP112: UTIL.BAT MEGACLI -adpallinfo -a0, line 55: "Virtual Drives" says 1, and 0 logical drives are listed
  help: zolexctl record --redact -o report.zrec, and report it
  help: to let it pass: zolexctl plan site.ini --accept ZP105,ZP106,ZP107,ZP108,ZP109,ZP112
)");
}

} // namespace
} // namespace zolex::companion
