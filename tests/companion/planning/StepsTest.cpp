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
                     "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]    WB   ADRA   -strpsz "
                     "64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"hotspare 32:7", "logical_drive 1"}));
    EXPECT_EQ(summariesOf(plan), Lines{});
    EXPECT_EQ(reasonsOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
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
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(summariesOf(plan), Lines{});
    EXPECT_EQ(reasonsOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
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
    EXPECT_EQ(differencesOf(plan), Lines{});
    expectDone(server, policies);
}

TEST(StepsTest, EveryLogicalDriveOfAnArrayGetsItsLine) {
    PlannedServer server("single");
    const std::string policies = head + none +
                                 "Array.A = 1,2,3\nLogical_Mode = CUSTOM\nLogical.1 = A:20%:5:ON\n"
                                 "Logical.2 = A:30000:5:OFF\nLogical.3 = A:FILL:5:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(summariesOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
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
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 2", "logical_drive 1"}));
    EXPECT_EQ(reasonsOf(plan), Lines{});
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
                     "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]    WB   ADRA   -strpsz "
                     "64  -a0"}));
    EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 0", "logical_drive 1", "hotspare 32:7"}));
    EXPECT_EQ(differencesOf(plan), Lines{});
    EXPECT_EQ(reasonsOf(plan), Lines{});
    EXPECT_EQ(summariesOf(plan), Lines{});
    expectDone(server, policies);
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
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
    expectDone(server, policies);
}

TEST(StepsTest, DrivesThatALineCannotNameAreAFault) {
    PlannedServer server(
        megaRaid(R"({"enclosure": 32, "slot": 0, "count": 4, "sizeMB": 69376, "serial": "S"},
                    {"slot": 0, "count": 4, "sizeMB": 69376, "serial": "T"})"));
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1,2\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:1:ON\n");
    EXPECT_EQ(faultsOf(plan), Lines{});
    EXPECT_EQ(commandsOf(plan), Lines{});
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
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), Lines{"logical_drive 0"});
    EXPECT_EQ(differencesOf(plan), Lines{});
    expectDone(server, policies);
}

TEST(StepsTest, ForeignDrivesThatAreNeededAreClearedWithConsent) {
    PlannedServer server{megaRaid(foreignDrives)};
    const std::string policies = head + none +
                                 "Array.A = 4,5\nLogical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(strategyOf(plan), Strategy::rebuild);
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), (Lines{"foreign 32:4", "foreign 32:5"}));
    EXPECT_NE(plan.consent, "");
    EXPECT_EQ(reasonsOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
    EXPECT_EQ(faultsOf(server.plan(policies, StrategyWish::add)),
              Lines{"ZP220 adding is not enough: this takes a rebuild"});
    expectDone(server, policies);
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
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(lossesOf(plan), (Lines{"hotspare 0:7", "logical_drive 1"}));
    EXPECT_EQ(differencesOf(plan), Lines{});
    expectDone(server, policies);
}

TEST(StepsTest, ArcconfSetsTheCacheOfTheRightLogicalDrive) {
    PlannedServer server("arcconf");
    expectDone(server, head + none +
                           "Array.A = 3,4\nLogical_Mode = CUSTOM\n"
                           "Logical.1 = A:FILL:1:OFF\n");
    const std::string policies = head + none +
                                 "ReadAhead = OFF\nArray.A = 1,2\nArray.B = 3,4\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:OFF\nLogical.2 = B:FILL:1:OFF\n";
    const MachinePlan plan = server.plan(policies);
    EXPECT_EQ(commandsOf(plan), Lines{});
    EXPECT_EQ(summariesOf(plan), Lines{});
    EXPECT_EQ(differencesOf(plan), Lines{});
    expectDone(server, policies);
}

// Utilities that clear as a whole

TEST(StepsTest, UtilitiesWithoutRemovalsSayThatTheyClearAll) {
    for (const char* const sample : {"hrconf", "cfggen"}) {
        PlannedServer server(sample);
        const std::string start = head + none +
                                  "Array.A = 1,2\nArray.B = 3,4\n"
                                  "Logical_Mode = CUSTOM\n"
                                  "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:1\n";
        expectDone(server, start);
        const std::string policies = head + none +
                                     "Array.A = 1,2\nArray.B = 5,6\n"
                                     "Logical_Mode = CUSTOM\n"
                                     "Logical.1 = A:FILL:1\nLogical.2 = B:FILL:1\n";
        const MachinePlan plan = server.plan(policies);
        EXPECT_EQ(commandsOf(plan), Lines{});
        EXPECT_EQ(reasonsOf(plan), Lines{});
        EXPECT_EQ(lossesOf(plan), (Lines{"logical_drive 0", "logical_drive 1"}));
        expectDone(server, policies);
    }
}

TEST(StepsTest, HyperwinTakesAllDrives) {
    PlannedServer server("hyperwin");
    const MachinePlan plan = server.plan(head + none +
                                         "Array.A = 1\nLogical_Mode = CUSTOM\n"
                                         "Logical.1 = A:FILL:0\n");
    EXPECT_EQ(faultsOf(plan), Lines{});
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
    EXPECT_EQ(faultsOf(plan), Lines{});
}

} // namespace
} // namespace zolex::companion
