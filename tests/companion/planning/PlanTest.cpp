#include "companion/planning/Plan.h"

#include "PlanServers.h"
#include "PlanText.h"
#include "setup/ServerFiles.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::arcPlanServer;
using test::customPolicy;
using test::eightDrives;
using test::megaPlanServer;
using test::outcomeText;
using test::planOf;
using test::planText;
using test::SimulatedPlatform;
using test::stepsText;
using Words = std::vector<std::string>;

constexpr const char* twoPolicies = R"([Policy.six]
AppliesTo.1 = t:LSI-MegaRAID-8480,d:8
AppliesTo.2 = c:2,d:6
Array_Defaults = 0%:0
Logical_Defaults = FILL:5:ON
[Policy.rest]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Array.A = 1,2
Array.B = ALL
Hotspares = 6
Logical_Mode = CUSTOM
Logical.1 = A:10000:1
Logical.2 = B:50%:5:OFF
)";

TEST(Plan, SaysWhyOfEachDriveAndValue) {
    EXPECT_EQ(planText(planOf("two-controllers", twoPolicies)), R"(controller 1 planned
13:13 note ZX412: Logical.1 gives no write cache: LSI-MegaRAID-8480 keeps its own mode
  help: that is write-through on most; add :ON for write-back, or :OFF
13:15 warning ZX704: Array.A leaves 116.0 GB of its drives unused
  help: the drives are larger than the sizes are for; FILL takes all that is left
Policy.six:1 no
  AppliesTo.1:2 no [t:LSI-MegaRAID-8480 is LSI-MegaRAID-8480] [d:8 is not 6]
  AppliesTo.2:3 no [c:2 is not 1] [d:6 is 6]
Policy.rest:6 yes
  AppliesTo.1:7 yes [ALL is ]
by Policy.rest:6 AppliesTo.1
array A 145492017152
  32:0 listed Array.A:9 "1"
  32:1 listed Array.A:9 "2"
array B 218238025728
  32:2 all-remaining Array.B:10 "ALL"
  32:3 all-remaining Array.B:10 "ALL"
  32:4 all-remaining Array.B:10 "ALL"
Logical.1 A RAID1 10000 MB 10485760000 +-1179648 strip 65536 AdaptiveReadAhead
  raid_type given Logical.1:13 "1"
  read_cache_policy class-default
  size given Logical.1:13 "10000"
  strip_size_bytes class-default
  write_cache_policy left-to-controller
Logical.2 B RAID5 50% 72746008576 +-1245184 strip 65536 WriteThrough AdaptiveReadAhead
  raid_type given Logical.2:14 "5"
  read_cache_policy class-default
  size given Logical.2:14 "50%"
  strip_size_bytes class-default
  write_cache_policy given Logical.2:14 "OFF"
spare 32:5 covers A B listed Hotspares:11 "6"
before:
after:
  RAID1 9.8 GB, strip 64 KB, adaptive read-ahead: 32:0 32:1
  RAID5 67.8 GB, strip 64 KB, write-through, adaptive read-ahead: 32:2 32:3 32:4
  hot spare: 32:5
strategy add
  blank: nothing stands on the controller
controller 2 planned
Policy.six:1 yes
  AppliesTo.1:2 no [t:LSI-MegaRAID-8480 is not Kestrix-D4] [d:8 is not 6]
  AppliesTo.2:3 yes [c:2 is 2] [d:6 is 6]
Policy.rest:6 not asked
by Policy.six:1 AppliesTo.2
array A 11993993969664
  252:0 first-free
  252:1 like-first "0%"
  252:2 like-first "0%"
  252:3 like-first "0%"
  252:4 like-first "0%"
  252:5 like-first "0%"
Logical.1 A RAID5 FILL 9994994974720 +-20136135228 strip 65536 UnprotectedWriteBack AdaptiveReadAhead
  raid_type policy-default Logical_Defaults:5 "5"
  read_cache_policy class-default
  size policy-default Logical_Defaults:5 "FILL"
  strip_size_bytes class-default
  write_cache_policy policy-default Logical_Defaults:5 "ON"
before:
after:
  RAID5 fill, strip 64 KB, write-back, adaptive read-ahead: 252:0 252:1 252:2 252:3 252:4 252:5
strategy add
  blank: nothing stands on the controller
1 UTIL.BAT MEGACLI -CfgLdAdd R1 [ 32:0,32:1 ] ADRA { -sz10000 } -strpsz 64 -a0
2 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:2,32:3,32:4 ] WT ADRA { -sz69376 } -strpsz 64 -a0
3 UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:5 ] -a0
4 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 252:0,252:1,252:2,252:3,252:4,252:5 ] WB ADRA -strpsz 64 -a1
old: zolex /f:site.ini
)");
}

TEST(Plan, OfAConfiguredServerByDefaults) {
    PlanRequest request;
    request.classDefaults = true;
    EXPECT_EQ(planText(planOf("configured", "", request)), R"(controller 1 planned
Policy.default:0 yes
  AppliesTo.1:0 yes [ALL is ]
by Policy.default:0 
array A 509222060032
  32:0 first-free
  32:1 like-first "0%"
  32:2 like-first "0%"
  32:3 like-first "0%"
  32:4 like-first "0%"
  32:5 like-first "0%"
  32:6 like-first "0%"
Logical.1 A RAID5 FILL 436476051456 +-1019162918 strip 65536 UnprotectedWriteBack AdaptiveReadAhead
  raid_type class-default
  read_cache_policy class-default
  size class-default
  strip_size_bytes class-default
  write_cache_policy class-default
spare 32:7 covers A largest-last
before:
  RAID1 fill, strip 64 KB, protected write-back, adaptive read-ahead: 32:0 32:1
  RAID5 fill, strip 64 KB, protected write-back, adaptive read-ahead: 32:2 32:3 32:4 32:5 32:6
  hot spare: 32:7
after:
  RAID5 fill, strip 64 KB, write-back, adaptive read-ahead: 32:0 32:1 32:2 32:3 32:4 32:5 32:6
  hot spare: 32:7
strategy rebuild
  drives-in-use: array A needs 32:0 32:1, and LD 0 lies on 32:0 32:1
  drives-in-use: array A needs 32:2 32:3 32:4 32:5 32:6, and LD 1 lies on 32:2 32:3 32:4 32:5 32:6
loses logical_drive 1
loses logical_drive 0
1 UTIL.BAT MEGACLI -CfgLdDel -L1 -a0
2 UTIL.BAT MEGACLI -CfgLdDel -L0 -a0
3 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 ] WB ADRA -strpsz 64 -a0
consent 1SCD-809T
old: zolex /r /y /d
old difference: without /r zolex stops at the first drive in use, exit code 11
old difference: controller 1: zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: the plan removes only what is in the way
old difference: controller 1: zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT: there is nothing that it would clear
old difference: controller 1: zolex does not run UTIL.BAT MEGACLI -CfgLdDel -L1 -a0: zolex clears the controller as a whole
old difference: controller 1: zolex does not run UTIL.BAT MEGACLI -CfgLdDel -L0 -a0: zolex clears the controller as a whole
old difference: controller 1: zolex also runs UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0: the spares stand already
)");
}

TEST(Plan, NothingIsToBeDoneWhereThePolicyStands) {
    SimulatedPlatform platform("configured");
    const MachinePlan plan = planOf(platform, zolex_sim::samplePolicies(platform.server).content);
    EXPECT_EQ(outcomeText(plan), "controller 1 already (as the policy says)\n");
    EXPECT_TRUE(plan.isApplicable());
    EXPECT_FALSE(plan.changesSomething());
    EXPECT_EQ(plan.consent, "");
    EXPECT_EQ(plan.oldCommand.wouldRun, Words{});
    EXPECT_EQ(plan.oldCommand.differences, Words{});
}

TEST(Plan, RebuildsWhatStandsWhereThatIsAskedFor) {
    SimulatedPlatform platform("configured");
    PlanRequest request;
    request.strategy = StrategyWish::rebuild;
    const MachinePlan plan =
        planOf(platform, zolex_sim::samplePolicies(platform.server).content, request);
    EXPECT_EQ(dispositionWord(plan.controllers.at(0).disposition), "planned");
    EXPECT_EQ(strategyWord(plan.controllers.at(0).strategy), "rebuild");
    EXPECT_EQ(plan.lostBytes(), 363730042880U);
    EXPECT_EQ(plan.losses().size(), 3U);
    EXPECT_NE(plan.consent, "");
}

TEST(Plan, IsTheSameWhenItIsMadeTwice) {
    for (const std::string& sample : SimulatedPlatform::samples()) {
        SimulatedPlatform platform(sample);
        const std::string policies = zolex_sim::samplePolicies(platform.server).content;
        EXPECT_EQ(planText(planOf(sample, policies)), planText(planOf(sample, policies)));
    }
}

TEST(Plan, OfOneController) {
    CaptureRequest capture;
    capture.controllers = {2};
    const MachinePlan plan = planOf("two-controllers", twoPolicies, {}, capture);
    EXPECT_EQ(outcomeText(plan), "controller 2 planned\n");
    EXPECT_EQ(stepsText(plan),
              "1 UTIL.BAT MEGACLI -CfgLdAdd R5 [ 252:0,252:1,252:2,252:3,252:4,252:5 ] WB ADRA "
              "-strpsz 64 -a1\n");
    EXPECT_EQ(plan.oldCommand.differences,
              Words{"zolex configures all 2 controllers, and this plan 1"});
}

TEST(Plan, AFaultAnywhereLeavesNoSteps) {
    const MachinePlan plan = planOf("two-controllers", R"([Policy.one]
AppliesTo.1 = c:1
[Policy.two]
AppliesTo.1 = c:2
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,9
Hotspares = 6
Logical.1 = A:FILL:5:ON
)");
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(plan.steps().size(), 0U);
    EXPECT_EQ(plan.losses().size(), 0U);
    EXPECT_EQ(plan.consent, "");
    EXPECT_EQ(outcomeText(plan.controllers.at(0)), "controller 1 planned\n");
    EXPECT_NE(plan.controllers.at(0).steps.size(), 0U);
}

TEST(Plan, FilesThatZolexRefusesArePlannedForNobody) {
    const MachinePlan plan = planOf("single", "[Policy.web]\nAppliesTo.1 = x:1\n");
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(plan.policiesFindings.size(), 1U);
    EXPECT_EQ(plan.policiesFindings.at(0).code, "ZX203");
    EXPECT_EQ(outcomeText(plan.controllers.at(0)),
              "controller 1 refused (the policies are at fault)\n");
}

TEST(Plan, WhatThePlanRefusesCannotBeAccepted) {
    PlanRequest request;
    request.accept = {"ZX405", "ZX702"};
    const MachinePlan plan =
        planOf(arcPlanServer(R"({"channel": 0, "device": 0, "count": 4, "sizeMB": 70000})"),
               R"([Policy.web]
AppliesTo.1 = ALL
Array_Mode = CUSTOM
Logical_Mode = CUSTOM
Array.A = 1,2,3
Hotspares = 4
Logical.1 = A:50%:5
Logical.2 = A:FILL:5
)",
               request);
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(plan.accepted, Words{});
}

TEST(Plan, KeepsWhatWasAccepted) {
    PlanRequest request;
    request.accept = {"zx501", "ZX702"};
    const MachinePlan plan =
        planOf(megaPlanServer(eightDrives),
               customPolicy("Array.A = 1,2,3,4,5,6,7,8\nLogical.1 = A:FILL:5:ON\n"), request);
    EXPECT_TRUE(plan.isApplicable());
    EXPECT_EQ(plan.accepted, Words{"ZX501"});
    EXPECT_EQ(plan.controllers.at(0).diagnostics.size(), 0U);
}

TEST(Plan, AnUnknownMachineTypeRefusesPoliciesThatAskForIt) {
    SimulatedPlatform platform("single");
    Snapshot snapshot = captureMachine(platform, {});
    snapshot.machine.machineType = "";
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = "[Policy.web]\nAppliesTo.1 = m:8837,d:8\n[Policy.rest]\n"
                           "AppliesTo.1 = ALL\n";
    EXPECT_EQ(
        outcomeText(planMachine(snapshot, request)),
        "controller 1 refused (Policy.web asks for m:8837, and the machine type is not known)\n"
        "2:15 error ZP203: Policy.web asks for m:8837, and the machine type is not known\n"
        "  help: if it is this machine: zolexctl plan site.ini --machine-type 8837\n"
        "  help: for more: zolexctl explain ZP203\n");
    // Where it can make no difference, it is not asked for.
    request.policiesText = "[Policy.web]\nAppliesTo.1 = m:8837,d:6\nAppliesTo.2 = d:8\n";
    EXPECT_EQ(outcomeText(planMachine(snapshot, request)), "controller 1 planned\n");
    request.policiesText = "[Policy.web]\nAppliesTo.1 = m:8837\nAppliesTo.2 = d:8\n";
    EXPECT_EQ(outcomeText(planMachine(snapshot, request)), "controller 1 planned\n");
}

TEST(Plan, AControllerThatCouldNotBeCapturedIsRefused) {
    SimulatedPlatform platform("single");
    Snapshot snapshot = captureMachine(platform, {});
    snapshot.details.at(0).failed = true;
    PlanRequest request;
    request.classDefaults = true;
    request.accept = {"ZP202"};
    EXPECT_EQ(outcomeText(planMachine(snapshot, request)),
              "controller 1 refused (controller 1 could not be captured)\n"
              "error ZP202: controller 1 could not be captured\n"
              "  help: zolexctl doctor\n"
              "  help: for more: zolexctl explain ZP202\n");
}

/// zolex numbers CFGGEN's controllers behind that of HYPERWIN: the listing is of the next one, on
/// which all stands as the policy says.
TEST(Plan, WhatStandsOnAnotherControllerIsNotAsWanted) {
    const auto cfggen = [](int bus, const char* disks) {
        return R"({"utility": "CFGGEN", "model": "LSI-SAS-RAID", "productName": "SAS1064E",
            "pci": {"bus": )" +
               std::to_string(bus) + R"(, "device": 0, "vendorId": "0x1000", "deviceId": "0x0056",
                    "class": "0x010000"},
            "drives": [{"enclosure": 1, "slot": 0, "count": 2, "sizeMB": 70006}],
            "virtualDisks": [)" +
               disks + "]}";
    };
    SimulatedPlatform platform(
        R"({"machineType": "8840", "serialNumber": "KQ1", "controllers": [
        {"utility": "HYPERWIN", "model": "LSI-IDEal-RAID",
         "pci": {"bus": 1, "device": 5, "vendorId": "0x1166", "deviceId": "0x0213"},
         "drives": [{"id": 0, "count": 2, "sizeMB": 38154}]}, )" +
        cfggen(2, "") + ", " + cfggen(3, R"({"level": "RAID1", "spans": [["1:0", "1:1"]]})") +
        "]}");
    CaptureRequest capture;
    capture.controllers = {2};
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = "[Policy.web]\nAppliesTo.1 = c:2\nArray_Defaults = 0%:0\n"
                           "Array_Mode = CUSTOM\nArray.A = 1,2\nLogical_Mode = CUSTOM\n"
                           "Logical.1 = A:FILL:1\n";
    const Snapshot snapshot = captureMachine(platform, capture);
    const MachinePlan plan = planMachine(snapshot, request);
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(
        outcomeText(plan),
        R"(controller 2 refused (the listing is of the PCI function 03:00.0, not of 0000:02:00.0)
error ZP108: the listing is of the PCI function 03:00.0, not of 0000:02:00.0
  help: take one of the controllers out, or configure them by hand
  help: for more: zolexctl explain ZP108
)");
    request.accept = {"ZP108"};
    EXPECT_EQ(planMachine(snapshot, request).controllers.at(0).disposition, Disposition::refused);
}

TEST(Plan, OfAMachineWithoutControllersIsNone) {
    PlanRequest request;
    request.classDefaults = true;
    const MachinePlan plan = planMachine(Snapshot(), request);
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(plan.diagnostics.size(), 1U);
    EXPECT_EQ(plan.diagnostics.at(0).code, "ZP120");
}

TEST(Plan, SixteenCommandsAreNoLimit) {
    std::string policies = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                           "Logical_Mode = CUSTOM\n";
    for (int i = 0; i < 8; ++i) {
        policies += std::string("Array.") + static_cast<char>('A' + i) + " = " +
                    std::to_string(2 * i + 1) + "," + std::to_string(2 * i + 2) + "\n";
    }
    policies += "Hotspares = 17\n";
    for (int i = 0; i < 8; ++i) {
        policies += "Logical." + std::to_string(i + 1) + " = " + static_cast<char>('A' + i) +
                    ":FILL:1:ON\n";
    }
    const MachinePlan plan = planOf(
        arcPlanServer(R"({"channel": 0, "device": 0, "count": 17, "sizeMB": 70000})"), policies);
    EXPECT_EQ(plan.steps().size(), 17U);
    ASSERT_EQ(plan.oldCommand.differences.size(), 1U);
    EXPECT_EQ(plan.oldCommand.differences.at(0),
              "ZX601: zolex leaves out command 17 of 17: UTIL.BAT ARCCONF SETSTATE 1 DEVICE 0 16 "
              "HSP");
}

TEST(Plan, ArraysOfTheSameDrivesAreOneGroup) {
    const MachinePlan plan =
        planOf(megaPlanServer(R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 69376})"),
               customPolicy("Array.A = 1,2\nArray.B = 1,2\nArray_Defaults = 0%:0\n"
                            "Logical.1 = A:40%:1:ON\nLogical.2 = B:FILL:1:ON\n"));
    const ControllerPlanning& planning = plan.controllers.at(0);
    EXPECT_EQ(outcomeText(plan), "controller 1 planned\n");
    EXPECT_EQ(layoutLines(planning.after),
              (Words{"RAID1 27.1 GB, strip 64 KB, write-back, adaptive read-ahead; RAID1 fill, "
                     "strip 64 KB, write-back, adaptive read-ahead: 32:0 32:1"}));
    const std::uint64_t mb = std::uint64_t{1} << 20U;
    EXPECT_EQ(planning.volumes.at(0).capacityBytes, 27750 * mb);
    EXPECT_EQ(planning.volumes.at(1).capacityBytes, (69376 - 27750) * mb);
}

TEST(Plan, DrivesToldByWhatTheyAreAreNotListed) {
    const MachinePlan plan = planOf(megaPlanServer(eightDrives), R"([Policy.web]
AppliesTo.1 = ALL
Drives.A = 2 x HDD
Drives.B = rest of one size
Spares = 1 covering A,B
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
Logical.2 = B:FILL:5:ON
)");
    const ControllerPlanning& planning = plan.controllers.at(0);
    EXPECT_EQ(outcomeText(plan), "controller 1 planned\n");
    EXPECT_EQ(planning.bindings.size(), 3U);
    EXPECT_EQ(test::reasonText(planning.arrays.at(0).drives.at(1).reason),
              "by-kind Drives.A:3 \"SAS HDD, 67.8 GB: drive 2 of 2\"");
    EXPECT_EQ(test::reasonText(planning.volumes.at(1).reasons.at("raid_type")),
              "given Logical.2:8 \"5\"");
    EXPECT_FALSE(planning.after.groups.at(0).isListed);
    EXPECT_EQ(plan.oldCommand.wouldRun, Words{});
    EXPECT_EQ(plan.oldCommand.differences,
              Words{"zolex refuses the file: Drives.*, Spares and Level.* are for zolexctl alone; "
                    "zolexctl record -o server.zrec, and zolexctl convert --to policies site.ini "
                    "--machine server.zrec writes one that it takes"});
}

/// A logical drive on 32:0 32:1, and drives of another server in 32:6 32:7 that nobody needs.
TEST(Plan, ZolexNeedsNoRestoreForForeignDrivesThatAreNotUsed) {
    constexpr const char* drives = R"({"enclosure": 32, "slot": 0, "count": 6, "sizeMB": 69376},
        {"enclosure": 32, "slot": 6, "count": 2, "sizeMB": 69376, "status": "foreign"})";
    const std::string policies =
        customPolicy("Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:1:OFF\n");
    const MachinePlan plan = planOf(megaPlanServer(drives), policies);
    EXPECT_EQ(plan.oldCommand.wouldRun, Words{"zolex /f:site.ini"});
    EXPECT_EQ(plan.oldCommand.differences, Words{});
    const MachinePlan used = planOf(
        megaPlanServer(drives, R"({"level": "RAID1", "spans": [["32:0", "32:1"]]})"), policies);
    EXPECT_EQ(used.oldCommand.wouldRun, Words{"zolex /r /y /f:site.ini"});
    EXPECT_EQ(used.oldCommand.differences,
              (Words{"without /r zolex stops at the first drive in use, exit code 11",
                     "controller 1: zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 "
                     "-SILENT: the plan does not need 32:6 32:7"}));
}

/// The spare 32:7 is being rebuilt in the place of 32:1, which was replaced and made a spare.
TEST(Plan, ASpareThatIsBeingRebuiltStandsIn) {
    EXPECT_EQ(
        outcomeText(
            planOf(megaPlanServer(
                       R"({"enclosure": 32, "slot": 0, "sizeMB": 69376},
{"enclosure": 32, "slot": 1, "sizeMB": 69376, "status": "hotspare"},
{"enclosure": 32, "slot": 7, "sizeMB": 69376, "status": "rebuild"})",
                       R"({"level": "RAID1", "writePolicy": "WB", "readPolicy": "ADRA",
                          "spans": [["32:0", "32:7"]]})"),
                   customPolicy("Array.A = 1,2\nHotspares = 3\nLogical.1 = A:FILL:1:ON\n"))),
        R"(controller 1 already (as the policy says, equivalent: the spare is 32:1 instead of 32:7)
warning ZP208: LD 0 is degraded: 32:7 rebuilding
  help: wait until it is rebuilt; the layout is as the policy says
)");
}

/// The last drive would be made the spare; 32:5 is one, and stays.
TEST(Plan, ASpareThatStaysInPlaceOfAnotherHasAJob) {
    EXPECT_EQ(
        outcomeText(planOf(megaPlanServer(
                               R"({"enclosure": 32, "slot": 0, "count": 5, "sizeMB": 69376},
{"enclosure": 32, "slot": 5, "sizeMB": 69376, "status": "hotspare"},
{"enclosure": 32, "slot": 6, "count": 2, "sizeMB": 69376})",
                               R"({"level": "RAID1", "writePolicy": "WB", "readPolicy": "ADRA",
                          "spans": [["32:0", "32:1"]]})"),
                           customPolicy("Array.A = 1,2\nLogical.1 = A:FILL:1:ON\n"))),
        R"(controller 1 already (as the policy says, equivalent: the spare is 32:5 instead of 32:7)
1:1 note ZX712: 5 drives get no job: 32:2, 32:3, 32:4, 32:6, 32:7
  help: list them, or leave it so
)");
}

TEST(Plan, WhatLetsAnErrorPassIsTheCommandAsItWasTyped) {
    PlanRequest request;
    request.command = "zolexctl plan site.ini --controller 1";
    request.accept = {"ZX501"};
    const MachinePlan plan = planOf(megaPlanServer(eightDrives),
                                    customPolicy("Array.A = 1,2\nArray.B = 2,3\nHotspares = 8\n"
                                                 "Logical.1 = A:FILL:1:ON\n"
                                                 "Logical.2 = B:FILL:1:ON\n"),
                                    request);
    ASSERT_EQ(plan.controllers.at(0).diagnostics.size(), 1U);
    EXPECT_EQ(plan.controllers.at(0).diagnostics.at(0).help.back(),
              "to let it pass: zolexctl plan site.ini --controller 1 --accept ZX501,ZX302");
    EXPECT_EQ(plan.command, "zolexctl plan site.ini --controller 1 --accept ZX501");
}

TEST(Plan, BindingsThatFailRefuseTheController) {
    EXPECT_EQ(outcomeText(planOf(megaPlanServer(eightDrives), R"([Policy.web]
AppliesTo.1 = ALL
Drives.A = 2 x SSD
Logical_Mode = CUSTOM
Logical.1 = A:FILL:1:ON
)")),
              R"(controller 1 refused (Drives.A: 2 SSD are wanted; there are none)
3:12 error ZX313: Drives.A: 2 SSD are wanted; there are none
  help: zolexctl show lists the drives
  help: for more: zolexctl explain ZX313
)");
}

/// The largest machine there can be. Commands reach 15 controllers of one utility.
TEST(Plan, OfThirtySixControllersOf144Drives) {
    std::string drives;
    for (int enclosure = 1; enclosure <= 4; ++enclosure) {
        drives += std::string(drives.empty() ? "" : ", ") + R"({"enclosure": )" +
                  std::to_string(enclosure) + R"(, "slot": 0, "count": 36, "sizeMB": 69376})";
    }
    std::string controllers;
    for (int i = 0; i < 36; ++i) {
        controllers += std::string(controllers.empty() ? "" : ", ") +
                       R"({"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": )" +
                       std::to_string(i + 1) +
                       R"(, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
        "subsystemVendorId": "0x1000", "subsystemId": "0x1002"}, "drives": [)" +
                       drives + "]}";
    }
    SimulatedPlatform platform(R"({"machineType": "8837", "serialNumber": "KQ10Z7V",
        "controllers": [)" + controllers +
                               "]}");
    const Snapshot snapshot = captureMachine(platform, {});
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = customPolicy("Array.A = 1,2\nArray.B = 3,4,5,6,7,8\nArray.C = ALL\n"
                                        "Hotspares = 144\nLogical.1 = A:FILL:1:ON\n"
                                        "Logical.2 = B:FILL:5:ON\nLogical.3 = C:FILL:5:ON\n");
    request.accept = {"ZP110"};
    const MachinePlan plan = planMachine(snapshot, request);
    ASSERT_EQ(plan.controllers.size(), 36U);
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(plan.accepted, Words{});
    for (const ControllerPlanning& controller : plan.controllers) {
        const bool isAddressed = controller.controller.number <= 15;
        EXPECT_EQ(controller.steps.size(), isAddressed ? 4U : 0U);
        EXPECT_EQ(controller.diagnostics.size(), isAddressed ? 0U : 2U);
    }
    EXPECT_EQ(plan.controllers.at(15).diagnostics.at(0).code, "ZP110");
    EXPECT_EQ(plan.controllers.at(14).steps.at(3).step, 60);
}

} // namespace
} // namespace zolex::companion
