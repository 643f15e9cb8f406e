// What is removed, what is made and what is lost, on virtual servers that are configured already.

#include "companion/planning/PlannedServer.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::commandsOf;
using test::faultsOf;
using test::PlannedServer;
using Lines = std::vector<std::string>;

const std::string head = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n";
const std::string none = "Array_Defaults = 0%:0\n";

/// "KIND ID" of each loss.
Lines lossesOf(const MachinePlan& plan) {
    Lines lines;
    for (const Loss& loss : plan.losses()) {
        lines.push_back(loss.kind + " " + loss.id);
    }
    return lines;
}

Lines reasonsOf(const MachinePlan& plan) {
    Lines lines;
    for (const StrategyReason& reason : plan.controllers.front().strategyBecause) {
        lines.push_back(reason.code + ": " + reason.text);
    }
    return lines;
}

Lines summariesOf(const MachinePlan& plan) {
    Lines lines;
    for (const PlanStep& step : plan.steps()) {
        lines.push_back(step.action + ": " + step.summary);
    }
    return lines;
}

const Lines& differencesOf(const MachinePlan& plan) {
    return plan.controllers.front().oldDifferences;
}

Strategy strategyOf(const MachinePlan& plan) {
    return plan.controllers.front().strategy;
}

/// All steps are taken, and nothing is left to be done.
void expectDone(PlannedServer& server, const std::string& policies,
                StrategyWish wish = StrategyWish::automatic) {
    const MachinePlan plan = server.plan(policies, wish);
    ASSERT_EQ(faultsOf(plan), Lines{});
    EXPECT_EQ(server.carryOut(plan), Lines{});
    const MachinePlan again = server.plan(policies);
    EXPECT_EQ(faultsOf(again), Lines{});
    EXPECT_EQ(commandsOf(again), Lines{});
    EXPECT_EQ(strategyOf(again), Strategy::none);
}

/// A MegaRAID controller; `content` is what follows its drives.
std::string megaRaid(const std::string& drives, const std::string& content = {}) {
    return R"({"machineType": "8837", "serialNumber": "KQ1", "controllers": [{"utility": "MEGACLI",
        "generation": "later", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           drives + "]" + (content.empty() ? "" : ", " + content) + "}]}";
}

// MEGACLI

TEST(StepsTest, OnlyWhatIsInTheWayIsRemoved) {
    PlannedServer server("configured");
    const std::string policies = head + none +
                                 "Array.A = 1,2\nArray.B = 3,4,5\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::rebuild);
    EXPECT_EQ(commandsOf(plan),
              (Lines{"UTIL.BAT MEGACLI -PDHSP -Rmv -PhysDrv[32:7] -a0",
                     "UTIL.BAT MEGACLI -CfgLdDel -L1 -a0",
                     "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]   WB   ADRA   -strpsz "
                     "64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"hotspare 32:7", "logical_drive 1"}));
    EXPECT_EQ(summariesOf(plan),
              (Lines{"remove-spare: remove the spare 32:7",
                     "delete-logical-drive: delete LD 1: RAID5 on 32:2 32:3 32:4 32:5 32:6",
                     "create-array: create B: RAID5 on 32:2 32:3 32:4"}));
    EXPECT_EQ(reasonsOf(plan), (Lines{"drives-in-use: array B needs 32:2 32:3 32:4, and LD 1 lies "
                                      "on 32:2 32:3 32:4 32:5 32:6",
                                      "different: the spare 32:7 is not wanted"}));
    EXPECT_EQ(differencesOf(plan),
              (Lines{"zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: the plan removes only "
                     "what is in the way",
                     "zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT: there is "
                     "nothing that it would clear",
                     "zolex does not run UTIL.BAT MEGACLI -PDHSP -Rmv -PhysDrv[32:7] -a0: zolex "
                     "clears the controller as a whole",
                     "zolex does not run UTIL.BAT MEGACLI -CfgLdDel -L1 -a0: zolex clears the "
                     "controller as a whole",
                     "zolex also runs UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]   WB   ADRA   "
                     "-strpsz 64  -a0: Logical.1 stands already as LD 0"}));
    const zolex_sim::Controller before = server.platform.server.controllers.front();
    expectDone(server, policies);
    const zolex_sim::Controller& after = server.platform.server.controllers.front();
    EXPECT_EQ(after.numberOf(0), 0U);
    EXPECT_EQ(after.arrays.front().spans, before.arrays.front().spans);
    EXPECT_EQ(after.logicalDrives.front().sizeMb, before.logicalDrives.front().sizeMb);
}

TEST(StepsTest, WhatStandsStaysWhenTheRestIsAdded) {
    PlannedServer server("single");
    const std::string mirror = head + none +
                               "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                               "Logical.1 = A:FILL:1:ON\n";
    expectDone(server, mirror);
    const std::string policies =
        head + "Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 8\nLogical_Mode = CUSTOM\n"
               "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(lossesOf(plan), Lines{});
    EXPECT_EQ(plan.consent, "");
    EXPECT_EQ(
        commandsOf(plan),
        (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]   WB   ADRA   -strpsz 64  -a0",
               "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0"}));
    EXPECT_EQ(summariesOf(plan), (Lines{"create-array: create B: RAID5 on 32:2 32:3 32:4",
                                        "create-spare: make 32:7 a spare"}));
    EXPECT_EQ(reasonsOf(plan),
              (Lines{"missing: Logical.2 is missing", "missing: the spare 32:7 is missing"}));
    EXPECT_EQ(differencesOf(plan),
              (Lines{"zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: what stands stays",
                     "zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT: there is "
                     "nothing that it would clear",
                     "zolex also runs UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]   WB   ADRA   "
                     "-strpsz 64  -a0: Logical.1 stands already as LD 0"}));
    expectDone(server, policies, StrategyWish::add);
}

TEST(StepsTest, OnlyTheMissingSparesAreMade) {
    PlannedServer server("single");
    const std::string start = head + "Array.A = 1,2\nHotspares = 8\nLogical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1:ON\n";
    expectDone(server, start);
    const std::string policies = head + "Array.A = 1,2\nHotspares = 7,8\nLogical_Mode = CUSTOM\n"
                                        "Logical.1 = A:FILL:1:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(commandsOf(plan), Lines{"UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:6 ] -a0"});
    EXPECT_EQ(differencesOf(plan),
              (Lines{"zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: what stands stays",
                     "zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT: there is "
                     "nothing that it would clear",
                     "zolex also runs UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]   WB   ADRA   "
                     "-strpsz 64  -a0: Logical.1 stands already as LD 0",
                     "zolex runs UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:6,32:7 ] -a0 "
                     "instead of UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:6 ] -a0: the other "
                     "spares stand already"}));
    expectDone(server, policies);
}

TEST(StepsTest, EveryLogicalDriveOfAnArrayGetsItsLine) {
    PlannedServer server("single");
    const std::string policies = head + none +
                                 "Array.A = 1,2,3\nLogical_Mode = CUSTOM\nLogical.1 = A:20%:5:ON\n"
                                 "Logical.2 = A:30000:5:OFF\nLogical.3 = A:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(
        commandsOf(plan),
        (Lines{
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   { -sz27750 }  "
            "-strpsz 64  -a0",
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WT   ADRA   { -sz30000 }  "
            "-strpsz 64  -a0",
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   -strpsz 64  -a0"}));
    EXPECT_EQ(summariesOf(plan),
              (Lines{"create-array: create A: RAID5 on 32:0 32:1 32:2",
                     "create-logical-drive: create Logical.2 on A: RAID5 on 32:0 32:1 32:2",
                     "create-logical-drive: create Logical.3 on A: RAID5 on 32:0 32:1 32:2"}));
    EXPECT_EQ(
        differencesOf(plan),
        (Lines{
            "zolex does not run UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WT   ADRA   "
            "{ -sz30000 }  -strpsz 64  -a0: zolex makes the first logical drive of array A alone",
            "zolex does not run UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   "
            "-strpsz 64  -a0: zolex makes the first logical drive of array A alone"}));
    expectDone(server, policies);
}

TEST(StepsTest, TheLogicalDrivesBehindAChangedOneGoWithIt) {
    PlannedServer server("single");
    const std::string start = head + none +
                              "Array.A = 1,2,3\nLogical_Mode = CUSTOM\nLogical.1 = A:20%:5:ON\n"
                              "Logical.2 = A:30000:5:ON\nLogical.3 = A:FILL:5:ON\n";
    expectDone(server, start);
    const std::string policies = head + none +
                                 "Array.A = 1,2,3\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:20%:5:ON\nLogical.2 = A:40000:5:ON\n"
                                 "Logical.3 = A:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(
        commandsOf(plan),
        (Lines{
            "UTIL.BAT MEGACLI -CfgLdDel -L2 -a0", "UTIL.BAT MEGACLI -CfgLdDel -L1 -a0",
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   { -sz40000 }  "
            "-strpsz 64  -a0",
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   -strpsz 64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 2", "logical_drive 1"}));
    EXPECT_EQ(
        reasonsOf(plan),
        (Lines{"different: LD 1 on 32:0 32:1 32:2 is not as wanted: 39.1 GB wanted, 29.3 GB found",
               "different: LD 2 lies behind LD 1 on the same drives"}));
    expectDone(server, policies);
}

TEST(StepsTest, AWholeClearWhereNothingStays) {
    PlannedServer server("configured");
    const std::string policies = head + none +
                                 "Array.A = 1,2,3\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(commandsOf(plan),
              (Lines{"UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
                     "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT",
                     "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   -strpsz "
                     "64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 0", "logical_drive 1", "hotspare 32:7"}));
    EXPECT_EQ(differencesOf(plan), Lines{});
    EXPECT_EQ(reasonsOf(plan),
              (Lines{"drives-in-use: array A needs 32:0 32:1, and LD 0 lies on 32:0 32:1",
                     "drives-in-use: array A needs 32:2, and LD 1 lies on 32:2 32:3 32:4 32:5 32:6",
                     "different: the spare 32:7 is not wanted"}));
    EXPECT_EQ(summariesOf(plan),
              (Lines{"clear: clear the controller: 2 logical drives and 1 spare",
                     "clear-foreign: clear the layouts of other controllers: there are none",
                     "create-array: create A: RAID5 on 32:0 32:1 32:2"}));
    expectDone(server, policies);
}

TEST(StepsTest, ADedicatedSpareGoesWithTheGroupsThatItCouldBelongTo) {
    PlannedServer server("configured");
    Snapshot snapshot = server.snapshot();
    for (DriveFacts& drive : snapshot.details.front().facts.drives) {
        if (drive.location == "32:7") {
            drive.hotspare = HotspareKind::dedicated;
        }
    }
    PlanRequest request;
    request.policiesFile = "site.ini";
    request.policiesText = head + "Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 8\n"
                                  "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n"
                                  "Logical.2 = B:FILL:0:ON\n";
    const MachinePlan plan = planMachine(snapshot, request);
    EXPECT_EQ(faultsOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), (Lines{"hotspare 32:7", "logical_drive 1"}));
    EXPECT_EQ(summariesOf(plan),
              (Lines{"remove-spare: remove the spare 32:7",
                     "delete-logical-drive: delete LD 1: RAID5 on 32:2 32:3 32:4 32:5 32:6",
                     "create-array: create B: RAID0 on 32:2 32:3 32:4",
                     "create-spare: make 32:7 a spare"}));
    EXPECT_EQ(server.carryOut(plan), Lines{});
}

TEST(StepsTest, RebuildMakesAnewWhatStandsAsWanted) {
    PlannedServer server("configured");
    const std::string policies = server.samplePolicies();
    EXPECT_EQ(commandsOf(server.plan(policies)), Lines{});
    const MachinePlan plan = server.plan(policies, StrategyWish::rebuild);
    EXPECT_EQ(strategyOf(plan), Strategy::rebuild);
    EXPECT_EQ(plan.steps().size(), 5U);
    EXPECT_EQ(reasonsOf(plan), Lines{"asked: --strategy rebuild removes all and makes it anew"});
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 0", "logical_drive 1", "hotspare 32:7"}));
    EXPECT_EQ(server.carryOut(plan), Lines{});
}

TEST(StepsTest, AddingThatIsNotEnoughIsAFault) {
    PlannedServer server("configured");
    const std::string policies = head + none +
                                 "Array.A = 1,2\nArray.B = 3,4,5\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\nLogical.2 = B:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies, StrategyWish::add);
    EXPECT_EQ(faultsOf(plan), Lines{"ZP220 adding is not enough: this takes a rebuild"});
    EXPECT_FALSE(plan.isApplicable());
    EXPECT_EQ(commandsOf(plan), Lines{});
}

TEST(StepsTest, DrivesInNoEnclosureAreNamedWithoutOne) {
    PlannedServer server(megaRaid(R"({"slot": 0, "count": 5, "sizeMB": 69376, "serial": "S"})"));
    const std::string policies = head + "Array.A = 1,2\nHotspares = 5\nLogical_Mode = CUSTOM\n"
                                        "Logical.1 = A:FILL:1:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(faultsOf(plan), Lines{});
    EXPECT_EQ(commandsOf(plan),
              (Lines{"UTIL.BAT MEGACLI  -CfgLdAdd R1   [ :0,:1 ]   WB   ADRA   -strpsz 64  -a0",
                     "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ :4 ] -a0"}));
    EXPECT_EQ(
        differencesOf(plan),
        (Lines{
            "zolex runs UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 0:4 ] -a0 instead of UTIL.BAT "
            "MEGACLI -PDHSP { -Set } -PhysDrv[ :4 ] -a0: a drive in no enclosure is :4"}));
    expectDone(server, policies);
}

TEST(StepsTest, DrivesThatALineCannotNameAreAFault) {
    PlannedServer server(
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376, "serial": "S"},
                    {"slot": 0, "count": 4, "sizeMB": 69376, "serial": "T"})"));
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:1:ON\n");
    EXPECT_EQ(
        faultsOf(plan),
        (Lines{"ZX711 the command line says :0 for drive 32:0, which is another drive or none"}));
}

// Drives of other controllers

const std::string foreignDrives =
    R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376, "serial": "S"},
       {"enclosure": 32, "slot": 4, "count": 2, "sizeMB": 69376, "serial": "T",
        "status": "foreign"})";

TEST(StepsTest, ForeignDrivesThatAreNotNeededStay) {
    PlannedServer server(megaRaid(
        foreignDrives, R"("virtualDisks": [{"level": "RAID0", "spans": [["32:0", "32:1"]]}])"));
    const std::string policies = head + none +
                                 "Array.A = 2,3\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(
        commandsOf(plan),
        (Lines{"UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
               "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:1,32:2 ]   WB   ADRA   -strpsz 64  -a0"}));
    EXPECT_EQ(lossesOf(plan), Lines{"logical_drive 0"});
    EXPECT_EQ(differencesOf(plan), (Lines{"zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 "
                                          "-SILENT: the plan does not need 32:4 32:5"}));
    expectDone(server, policies);
}

TEST(StepsTest, ForeignDrivesThatAreNeededAreClearedWithConsent) {
    PlannedServer server{megaRaid(foreignDrives)};
    const std::string policies = head + none +
                                 "Array.A = 4,5\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::rebuild);
    EXPECT_EQ(
        commandsOf(plan),
        (Lines{"UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT",
               "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:3,32:4 ]   WB   ADRA   -strpsz 64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"foreign 32:4", "foreign 32:5"}));
    EXPECT_NE(plan.consent, "");
    EXPECT_EQ(
        reasonsOf(plan),
        (Lines{
            "blank: nothing stands on the controller",
            "foreign: 32:4 carries a layout of another controller; clearing takes all of them"}));
    EXPECT_EQ(plan.oldCommand.wouldRun, Lines{"zolex /r /y /f:site.ini"});
    EXPECT_EQ(plan.oldCommand.differences,
              (Lines{"without /r zolex stops at the first drive in use, exit code 11",
                     "controller 1: zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: nothing "
                     "stands on the controller"}));
    EXPECT_EQ(faultsOf(server.plan(policies, StrategyWish::add)),
              Lines{"ZP220 adding is not enough: this takes a rebuild"});
    expectDone(server, policies);
}

// Spares that stepped in

/// RAID 5 over all drives but the spare, which zolex chooses.
const std::string chosenDrives = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:1\n";

/// The spare 32:7 stands in for 32:2, which has been replaced and is free.
std::string steppedIn(const std::string& member) {
    return megaRaid(R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376, "serial": "S"})",
                    R"("virtualDisks": [{"level": "RAID5", "writePolicy": "WB",
                        "readPolicy": "ADRA", "spans": [["32:0", "32:1", ")" +
                        member + R"(", "32:3", "32:4", "32:5", "32:6"]]}])");
}

TEST(StepsTest, ADriveInThePlaceOfTheSpareBecomesTheSpare) {
    PlannedServer server(steppedIn("32:7"));
    const MachinePlan plan = server.plan(chosenDrives);
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(commandsOf(plan), (Lines{"UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0"}));
    EXPECT_EQ(reasonsOf(plan), (Lines{"missing: the spare 32:2 is missing"}));
    EXPECT_EQ(
        differencesOf(plan),
        (Lines{
            "zolex also runs UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT: what stands stays",
            "zolex also runs UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT: there is nothing "
            "that it would clear",
            "zolex also runs UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2,32:3,32:4,32:5,32:6 "
            "]   WB   ADRA   -strpsz 64  -a0: Logical.1 stands already as LD 0",
            "zolex runs UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0 instead of UTIL.BAT "
            "MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0: equal drives have changed places"}));
    EXPECT_EQ(plan.controllers.front().spares.front().location, "32:2");
    expectDone(server, chosenDrives, StrategyWish::add);
}

TEST(StepsTest, TheMissingSpareIsTheOneThatIsPlanned) {
    PlannedServer server(steppedIn("32:2"));
    const MachinePlan plan = server.plan(chosenDrives);
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(commandsOf(plan), (Lines{"UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:7 ] -a0"}));
    expectDone(server, chosenDrives, StrategyWish::add);
}

// ARCCONF

TEST(StepsTest, ArcconfRemovesSingly) {
    PlannedServer server("arcconf");
    const std::string start = head +
                              "Array.A = 1,2\nArray.B = 3,4,5\nArray.C = 6,7\nHotspares = 8\n"
                              "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\nLogical.2 = B:FILL:5\n"
                              "Logical.3 = C:FILL:1\n";
    expectDone(server, start);
    const std::string policies = head + "Array.A = 1,2\nArray.B = 3,4,5,8\nArray.C = 6,7\n" + none +
                                 "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n"
                                 "Logical.2 = B:FILL:5:OFF\nLogical.3 = C:FILL:1\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(faultsOf(plan), Lines{});
    EXPECT_EQ(commandsOf(plan),
              (Lines{"UTIL.BAT ARCCONF SETSTATE 1 DEVICE 0 7 RDY",
                     "UTIL.BAT ARCCONF DELETE 1 LOGICALDRIVE 2 NOPROMPT",
                     "UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE Stripesize 256  Name ARRAY1_LOGICAL1 "
                     "Method QUICK MAX 5 0 2 0 3 0 4 0 7 NOPROMPT ",
                     "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT "}));
    EXPECT_EQ(lossesOf(plan), (Lines{"hotspare 0:7", "logical_drive 1"}));
    EXPECT_EQ(differencesOf(plan),
              (Lines{"zolex also runs UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT: the plan "
                     "removes only what is in the way",
                     "zolex does not run UTIL.BAT ARCCONF SETSTATE 1 DEVICE 0 7 RDY: zolex clears "
                     "the controller as a whole",
                     "zolex does not run UTIL.BAT ARCCONF DELETE 1 LOGICALDRIVE 2 NOPROMPT: zolex "
                     "clears the controller as a whole",
                     "zolex also runs UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 "
                     "Method QUICK MAX 1 0 0 0 1 NOPROMPT : Logical.1 stands already as LD 0",
                     "zolex also runs UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY2_LOGICAL2 "
                     "Method QUICK MAX 1 0 5 0 6 NOPROMPT : Logical.3 stands already as LD 2"}));
    expectDone(server, policies);
}

TEST(StepsTest, ArcconfSetsTheCacheOfTheRightLogicalDrive) {
    PlannedServer server("arcconf");
    expectDone(server, head + none +
                           "ReadAhead = OFF\nArray.A = 3,4\nLogical_Mode = CUSTOM\n"
                           "Logical.1 = A:FILL:1:OFF\n");
    const std::string policies = head + none +
                                 "ReadAhead = OFF\nArray.A = 1,2\nArray.B = 3,4\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:OFF\nLogical.2 = B:FILL:1:OFF\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(commandsOf(plan), (Lines{"UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name "
                                       "ARRAY0_LOGICAL0 Method QUICK MAX 1 0 0 0 1 NOPROMPT ",
                                       "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 roff NOPROMPT ",
                                       "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT "}));
    EXPECT_EQ(summariesOf(plan),
              (Lines{"create-array: create A: RAID1 on 0:0 0:1",
                     "set: set Logical.1: read-ahead off", "set: set Logical.1: write-through"}));
    EXPECT_EQ(
        differencesOf(plan),
        (Lines{"zolex also runs UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT: what stands stays",
               "zolex runs UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 1 roff NOPROMPT  instead of "
               "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 roff NOPROMPT : the logical drive gets "
               "number 2 beside those that stand",
               "zolex runs UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 1 wt NOPROMPT  instead of "
               "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT : the logical drive gets "
               "number 2 beside those that stand",
               "zolex also runs UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY1_LOGICAL1 "
               "Method QUICK MAX 1 0 2 0 3 NOPROMPT : Logical.2 stands already as LD 0",
               "zolex also runs UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 roff NOPROMPT : "
               "Logical.2 stands already as LD 0",
               "zolex also runs UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT : Logical.2 "
               "stands already as LD 0"}));
    expectDone(server, policies);
}

/// No data goes for a cache mode where the utility can set it.
TEST(StepsTest, ArcconfSetsTheCacheOfWhatStands) {
    PlannedServer server("arcconf");
    const std::string first = head + none +
                              "Array.A = 1,2\nArray.B = 3,4,5\nArray.C = 6,7\n"
                              "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n"
                              "Logical.2 = B:FILL:5:ON\nLogical.3 = C:FILL:1:ON\n";
    expectDone(server, first);
    std::string policies = first;
    policies.replace(policies.find("B:FILL:5:ON"), 11, "B:FILL:5:OFF");
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(commandsOf(plan), Lines{"UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT "});
    EXPECT_EQ(summariesOf(plan), Lines{"set: set Logical.2: write-through"});
    EXPECT_EQ(lossesOf(plan), Lines{});
    EXPECT_EQ(reasonsOf(plan), Lines{"set: LD 1 stays and gets another cache mode: write-through "
                                     "wanted, protected write-back found"});
    // Beside something that goes, and on a logical drive whose number is not that of its array.
    policies.replace(policies.find("Array.A = 1,2"), 13, "Array.A = 1,8");
    const MachinePlan more = server.plan(policies);
    EXPECT_EQ(lossesOf(more), Lines{"logical_drive 0"});
    EXPECT_EQ(commandsOf(more),
              (Lines{"UTIL.BAT ARCCONF DELETE 1 LOGICALDRIVE 1 NOPROMPT",
                     "UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Method QUICK "
                     "MAX 1 0 0 0 7 NOPROMPT ",
                     "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 1 wbb NOPROMPT ",
                     "UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 2 wt NOPROMPT "}));
    expectDone(server, policies);
}

// Utilities that clear as a whole

/// Two mirrors, of which the first stays in the policy.
const std::string oneOtherMirror = head + none +
                                   "Array.A = 1,2\nArray.B = 5,6\nLogical_Mode = CUSTOM\n"
                                   "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:1\n";
const std::string twoMirrors = head + none +
                               "Array.A = 1,2\nArray.B = 3,4\nLogical_Mode = CUSTOM\n"
                               "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:1\n";

TEST(StepsTest, HrconfClearsAllAndSaysSo) {
    PlannedServer server("hrconf");
    expectDone(server, twoMirrors);
    const MachinePlan plan = server.plan(oneOtherMirror);
    EXPECT_EQ(commandsOf(plan),
              (Lines{"UTIL.BAT HRCONF SETCONFIG 1 DEFAULT NOPROMPT",
                     "UTIL.BAT HRCONF CREATE 1 LOGICALDRIVE  Name ARRAY0_LOGICAL0 Init_Priority "
                     "HIGH Init_Method QUICK MAX 1 0 0 0 1 NOPROMPT ",
                     "UTIL.BAT HRCONF CREATE 1 LOGICALDRIVE  Name ARRAY1_LOGICAL1 Init_Priority "
                     "HIGH Init_Method QUICK MAX 1 1 8 1 9 NOPROMPT "}));
    EXPECT_EQ(
        reasonsOf(plan),
        (Lines{"different: LD 2 on 0:2 0:3 is not wanted",
               "only-whole-clear: LD 1 is as planned, but the controller is cleared as a whole"}));
    EXPECT_EQ(differencesOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 1", "logical_drive 2"}));
    expectDone(server, oneOtherMirror);
}

TEST(StepsTest, CfggenClearsAllAndAddsBesideWhatStands) {
    PlannedServer server("cfggen");
    expectDone(server, twoMirrors);
    EXPECT_EQ(commandsOf(server.plan(oneOtherMirror)),
              (Lines{"UTIL.BAT CFGGEN 0 DELETE NOPROMPT",
                     "UTIL.BAT CFGGEN 0 CREATE IM MAX 1:0 1:1 qsync NOPROMPT",
                     "UTIL.BAT CFGGEN 0 CREATE IM MAX 1:4 1:5 qsync NOPROMPT"}));
    expectDone(server, oneOtherMirror);
    const std::string withSpare = oneOtherMirror + "Hotspares = 7\n";
    const MachinePlan plan = server.plan(withSpare);
    EXPECT_EQ(commandsOf(plan), (Lines{"UTIL.BAT CFGGEN 0 HOTSPARE 2:0 "}));
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    expectDone(server, withSpare, StrategyWish::add);
}

TEST(StepsTest, QtcsendAddsWhereItsLettersHold) {
    PlannedServer server("qtcsend");
    server.runZolex("[Policy.none]\nAppliesTo.1 = c:36\n", {"/r", "/y"});
    const std::string first = head + none +
                              "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                              "Logical.1 = A:FILL:1\n";
    expectDone(server, first);
    // The second array becomes B, as the lines call it.
    const std::string behind = head + none +
                               "Array.A = 1,2\nArray.B = 3,4\n"
                               "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n"
                               "Logical.2 = B:50%:1\nLogical.3 = B:FILL:1\n";
    const MachinePlan added = server.plan(behind);
    EXPECT_EQ(strategyOf(added), Strategy::add);
    EXPECT_EQ(commandsOf(added),
              (Lines{"UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY 8679 1 1 2 1 3 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE B 8678 1 NOPROMPT"}));
    // It would become B where the lines say A.
    const std::string before = head + none +
                               "Array.A = 3,4\nArray.B = 1,2\n"
                               "Logical_Mode = CUSTOM\nLogical.1 = A:50%:1\n"
                               "Logical.2 = A:FILL:1\nLogical.3 = B:FILL:1\n";
    const MachinePlan cleared = server.plan(before);
    EXPECT_EQ(strategyOf(cleared), Strategy::rebuild);
    EXPECT_EQ(commandsOf(cleared),
              (Lines{"UTIL.BAT QTCSEND SETCONFIG 1 DEFAULT NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY 8679 1 1 2 1 3 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE A 8678 1 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY MAX 1 1 0 1 1 NOPROMPT"}));
    EXPECT_EQ(
        reasonsOf(cleared),
        (Lines{"only-whole-clear: a new array gets the next free letter beside those that stand, "
               "and the command lines call it by another",
               "only-whole-clear: LD 1 is as planned, but the controller is cleared as a whole"}));
    EXPECT_EQ(lossesOf(cleared), (Lines{"logical_drive 1"}));
    expectDone(server, behind);
    expectDone(server, before);
}

/// What takes the rest leaves room to those behind it, which have sizes.
TEST(StepsTest, QtcsendFillsInFrontOfASize) {
    PlannedServer server("qtcsend");
    server.runZolex("[Policy.none]\nAppliesTo.1 = c:36\n", {"/r", "/y"});
    const std::string policies = head + none +
                                 "Array.A = 1,2\nLogical_Mode = CUSTOM\nLogical.1 = A:1000:1\n"
                                 "Logical.2 = A:FILL:1\nLogical.3 = A:5000:1\n";
    EXPECT_EQ(commandsOf(server.plan(policies)),
              (Lines{"UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY 1000 1 1 0 1 1 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE A 11357 1 NOPROMPT",
                     "UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE A 5000 1 NOPROMPT"}));
    expectDone(server, policies);
}

TEST(StepsTest, HyperwinSetsTheCacheOfWhatStands) {
    PlannedServer server("hyperwin");
    const std::string first = head + none +
                              "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                              "Logical.1 = A:FILL:1:";
    expectDone(server, first + "OFF\n");
    const MachinePlan plan = server.plan(first + "ON\n");
    EXPECT_EQ(strategyOf(plan), Strategy::add);
    EXPECT_EQ(commandsOf(plan), Lines{"UTIL.BAT HYPERWIN /OW"});
    EXPECT_EQ(lossesOf(plan), Lines{});
    expectDone(server, first + "ON\n", StrategyWish::add);
}

TEST(StepsTest, HyperwinTakesAllDrives) {
    PlannedServer server("hyperwin");
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:0\n");
    EXPECT_EQ(faultsOf(plan),
              (Lines{"ZP222 the array is planned on 1, and the command takes 1 2"}));
}

TEST(StepsTest, EachStepSaysHowItIsRun) {
    PlannedServer server("cfggen");
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:1\n");
    ASSERT_EQ(plan.steps().size(), 1U);
    const PlanStep step = plan.steps().front();
    EXPECT_EQ(step.argv, (Lines{"UTIL.BAT", "CFGGEN", "0", "CREATE", "IM", "MAX", "1:0", "1:1",
                                "qsync", "NOPROMPT"}));
    EXPECT_EQ(step.pauseBeforeSeconds, 15);
    EXPECT_EQ(step.acceptedExitCodes, std::vector<std::int32_t>{0});
    EXPECT_FALSE(step.isRepeatable);
    EXPECT_FALSE(step.deletes);
    EXPECT_EQ(step.creates, (Lines{"A", "Logical.1"}));

    PlannedServer other("configured");
    const MachinePlan clear = other.plan(other.samplePolicies(), StrategyWish::rebuild);
    EXPECT_EQ(clear.steps().front().acceptedExitCodes, (std::vector<std::int32_t>{0, 49}));
    EXPECT_TRUE(clear.steps().front().isRepeatable);
    EXPECT_TRUE(clear.steps().front().deletes);
    EXPECT_EQ(clear.steps().front().destroys, (Lines{"0", "1", "32:7"}));
}

TEST(StepsTest, LevelsWithoutACommandAreAFault) {
    PlannedServer server("single");
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1,2,3,4\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:5EE\n");
    EXPECT_EQ(faultsOf(plan), (Lines{"ZX401 RAID level 5EE is not possible"}));
}

} // namespace
} // namespace zolex::companion
