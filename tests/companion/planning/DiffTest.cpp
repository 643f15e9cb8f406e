#include "companion/planning/Diff.h"

#include "companion/planning/PlannedServer.h"

#include <gtest/gtest.h>

#include <functional>

namespace zolex::companion {
namespace {

using test::PlannedServer;
using Result = ControllerDiff::Result;
using Lines = std::vector<std::string>;

constexpr const char* policies = "[Policy.web]\n"
                                 "AppliesTo.1 = ALL\n"
                                 "StripeSize = 64\n"
                                 "ReadAhead = ADAPTIVE\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2\n"
                                 "Array.B = 3,4,5,6,7\n"
                                 "Hotspares = 8\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:FILL:1:ON\n"
                                 "Logical.2 = B:FILL:5:ON\n";

Lines differencesOf(const ControllerDiff& diff) {
    Lines lines;
    for (const Difference& each : diff.comparison.differences) {
        lines.push_back(each.attribute + " " + each.wanted + " | " + each.found);
    }
    return lines;
}

/// The sample with the layout of the policies on it.
PlannedServer deployed() {
    PlannedServer server("single");
    EXPECT_EQ(server.carryOut(server.plan(policies)), Lines());
    return server;
}

TEST(Diff, FaultsOfThePoliciesAreTold) {
    PlannedServer server("single");
    const MachineDiff diff = diffOf(server.plan("[Policy.web]\nAppliesTo.1 = ALL\nSpare = 1\n"));
    EXPECT_EQ(diff.result, Result::unknown);
    ASSERT_EQ(diff.diagnostics.size(), 1U);
    EXPECT_EQ(diff.diagnostics[0].code, "ZX007");
    EXPECT_EQ(diff.diagnostics[0].start.line, 3);
    EXPECT_EQ(diff.diagnostics[0].summary, "unknown keyword \"Spare\"");
}

TEST(Diff, ControllersThatCannotBeToldApartAreUnknown) {
    PlannedServer server = deployed();
    MachinePlan plan = server.plan(policies);
    EXPECT_EQ(diffOf(plan).result, Result::same);
    Finding same;
    same.code = "ZP109";
    plan.diagnostics.push_back(same);
    EXPECT_EQ(diffOf(plan).result, Result::unknown);
}

TEST(Diff, ABlankMachineIsToBeAddedTo) {
    PlannedServer server("single");
    const MachinePlan plan = server.plan(policies);
    const MachineDiff diff = diffOf(plan);
    EXPECT_EQ(diff.wantedBy, "site.ini");
    EXPECT_FALSE(diff.isByPlan);
    EXPECT_EQ(diff.result, Result::different);
    EXPECT_EQ(diff.fingerprint, plan.fingerprint);
    ASSERT_EQ(diff.controllers.size(), 1U);
    const ControllerDiff& controller = diff.controllers[0];
    EXPECT_EQ(controller.number, 1);
    EXPECT_EQ(controller.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(controller.policy, "Policy.web");
    EXPECT_EQ(controller.policyLine, 1);
    EXPECT_EQ(controller.result, Result::different);
    EXPECT_TRUE(controller.addingIsEnough);
    EXPECT_EQ(controller.takesRebuild, Lines());
    EXPECT_EQ(layoutLines(controller.captured), Lines());
    EXPECT_EQ(layoutLines(controller.wanted),
              (Lines{"RAID1 fill, strip 64 KB, write-back, adaptive read-ahead: 32:0 32:1",
                     "RAID5 fill, strip 64 KB, write-back, adaptive read-ahead: 32:2 32:3 32:4 "
                     "32:5 32:6",
                     "hot spare: 32:7"}));
    // Against the plan itself it is the same.
    MachinePlan earlier = plan;
    earlier.id = "p-5f1c09ab77e2";
    const MachineDiff again = diffOf(server.snapshot(), earlier);
    EXPECT_EQ(again.wantedBy, "p-5f1c09ab77e2");
    EXPECT_TRUE(again.isByPlan);
    EXPECT_EQ(again.result, Result::different);
    EXPECT_EQ(differencesOf(again.controllers[0]), differencesOf(controller));
    EXPECT_TRUE(again.controllers[0].addingIsEnough);
}

TEST(Diff, AMachineThatWasConfiguredIsTheSame) {
    PlannedServer blank("single");
    const MachinePlan earlier = blank.plan(policies);
    PlannedServer server = deployed();
    const MachineDiff diff = diffOf(server.plan(policies));
    EXPECT_EQ(diff.result, Result::same);
    EXPECT_FALSE(diff.controllers[0].addingIsEnough);
    EXPECT_EQ(diff.controllers[0].takesRebuild, Lines());
    EXPECT_EQ(diffOf(server.snapshot(), earlier).result, Result::same);
}

TEST(Diff, WhatAddingDoesNotMendIsTold) {
    PlannedServer server = deployed();
    MachinePlan earlier = server.plan(policies);
    zolex_sim::Controller& controller = server.platform.server.controllers[0];
    controller.logicalDrives[1].stripeKb = 128;
    controller.logicalDrives[1].writePolicy = zolex_sim::WritePolicy::writeThrough;
    for (const MachineDiff& diff :
         {diffOf(server.plan(policies)), diffOf(server.snapshot(), earlier)}) {
        EXPECT_EQ(diff.result, Result::different);
        EXPECT_EQ(differencesOf(diff.controllers[0]),
                  (Lines{"strip_size_bytes 64 KB | 128 KB",
                         "write_cache_policy write-back | write-through"}));
        EXPECT_FALSE(diff.controllers[0].addingIsEnough);
        EXPECT_EQ(diff.controllers[0].takesRebuild, (Lines{"strip size", "write cache"}));
    }
}

TEST(Diff, WhatIsTooMuchIsToBeRemoved) {
    PlannedServer server = deployed();
    const std::string fewer = "[Policy.web]\nAppliesTo.1 = ALL\nStripeSize = 64\n"
                              "Array_Defaults = 0%:0\nArray_Mode = CUSTOM\nArray.A = 1,2\n"
                              "Logical_Mode = CUSTOM\n"
                              "Logical.1 = A:FILL:1:ON\n";
    const MachineDiff diff = diffOf(server.plan(fewer));
    EXPECT_EQ(diff.result, Result::different);
    EXPECT_EQ(diff.controllers[0].takesRebuild, Lines());
    EXPECT_EQ(diff.controllers[0].toRemove, (Lines{"LD 1", "hot spare 32:7"}));
}

/// Drives that something else holds cannot be added to.
TEST(Diff, WhatIsMissingOnDrivesInUseIsNoAddition) {
    PlannedServer server("single");
    const MachinePlan earlier = server.plan(policies);
    const std::string other = "[Policy.web]\nAppliesTo.1 = ALL\n"
                              "Array_Mode = CUSTOM\nArray.A = 1,2\nHotspares = 4\n"
                              "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n";
    PlannedServer stands("single");
    EXPECT_EQ(stands.carryOut(stands.plan(other)), Lines());
    stands.platform.server.controllers[0].logicalDrives[0].stripeKb = 64;
    const MachineDiff diff = diffOf(stands.snapshot(), earlier);
    EXPECT_EQ(diff.result, Result::different);
    EXPECT_FALSE(diff.controllers[0].addingIsEnough);
}

TEST(Diff, AnotherMachineIsNotCompared) {
    PlannedServer server("single");
    MachinePlan earlier = server.plan(policies);
    earlier.id = "p-5f1c09ab77e2";
    struct Row {
        std::function<void(Snapshot&)> change;
        const char* detail;
    };
    const std::vector<Row> rows = {
        {[](Snapshot& each) { each.machine.machineType = "8838"; },
         "it is of type 8838, the plan is of one of type 8837"},
        {[](Snapshot& each) { each.machine.serialNumber = "OTHER"; },
         "its serial number is OTHER, the plan is of KQ10Z7V"},
        {[](Snapshot& each) { each.machine.serialNumber = ""; },
         "its serial number is not told, the plan is of KQ10Z7V"},
        {[](Snapshot& each) { each.details[0].facts.serialNumber = "9"; },
         "its controller 1 is another one than that of the plan"},
        {[](Snapshot& each) { each.details.clear(); }, "it has 0 controllers, the plan is of 1"},
    };
    for (const Row& row : rows) {
        Snapshot snapshot = server.snapshot();
        row.change(snapshot);
        const MachineDiff diff = diffOf(snapshot, earlier);
        EXPECT_EQ(diff.result, Result::unknown);
        ASSERT_EQ(diff.diagnostics.size(), 1U);
        EXPECT_EQ(diff.diagnostics[0].code, "ZP239");
        EXPECT_EQ(diff.diagnostics[0].summary, "the plan p-5f1c09ab77e2 is of another machine");
        EXPECT_EQ(diff.diagnostics[0].detail, row.detail);
        ASSERT_EQ(diff.controllers.size(), 1U);
        EXPECT_EQ(diff.controllers[0].result, Result::unknown);
        EXPECT_EQ(diff.controllers[0].because, "the plan is of another machine");
    }
}

/// A plan of one controller says nothing of the others.
TEST(Diff, APlanOfSomeControllersIsOfThisMachine) {
    PlannedServer server("two-controllers");
    MachinePlan earlier = server.plan(policies);
    Snapshot whole = server.snapshot();
    ASSERT_GT(whole.details.size(), 1U);
    Snapshot part = whole;
    part.details.resize(1);
    earlier.controllers.resize(1);
    earlier.fingerprint = fingerprintOf(part);
    EXPECT_EQ(diffOf(whole, earlier).diagnostics.size(), 0U);
    EXPECT_EQ(diffOf(whole, earlier).controllers.size(), 1U);
}

/// Of a plan of several controllers one can be compared alone, on a machine of which it alone was
/// looked at.
TEST(Diff, OneControllerOfAPlanIsOfThisMachine) {
    PlannedServer server("two-controllers");
    const MachinePlan earlier =
        server.plan("[Policy.web]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n"
                    "Array_Mode = CUSTOM\nArray.A = 1,2\n"
                    "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n");
    Snapshot second = server.snapshot();
    ASSERT_EQ(second.details.size(), 2U);
    second.details.erase(second.details.begin());
    const MachineDiff diff = diffOf(second, earlier, {2});
    EXPECT_EQ(diff.diagnostics.size(), 0U);
    ASSERT_EQ(diff.controllers.size(), 1U);
    EXPECT_EQ(diff.controllers[0].number, 2);
    EXPECT_EQ(diff.controllers[0].result, Result::different) << diff.controllers[0].because;
    second.details[0].facts.serialNumber = "9";
    EXPECT_EQ(diffOf(second, earlier, {2}).controllers[0].because,
              "the plan is of another machine");
}

TEST(Diff, TheResultIsTheWorst) {
    const auto result = [](const std::vector<std::pair<Disposition, Sameness>>& controllers) {
        MachinePlan plan;
        for (const auto& [disposition, sameness] : controllers) {
            ControllerPlanning& planning = plan.controllers.emplace_back();
            planning.disposition = disposition;
            planning.because = "so";
            planning.comparison.result = sameness;
        }
        return diffOf(plan).result;
    };
    using enum Disposition;
    using enum Sameness;
    EXPECT_EQ(result({}), Result::unknown);
    EXPECT_EQ(result({{skipped, same}}), Result::skipped);
    EXPECT_EQ(result({{skipped, same}, {already, same}}), Result::same);
    EXPECT_EQ(result({{already, equivalent}, {already, same}}), Result::equivalent);
    EXPECT_EQ(result({{already, equivalent}, {planned, different}}), Result::different);
    EXPECT_EQ(result({{refused, same}, {planned, different}}), Result::unknown);
    EXPECT_EQ(diffResultWord(Result::same), "same");
    EXPECT_EQ(diffResultWord(Result::equivalent), "equivalent");
    EXPECT_EQ(diffResultWord(Result::different), "different");
    EXPECT_EQ(diffResultWord(Result::skipped), "skipped");
    EXPECT_EQ(diffResultWord(Result::unknown), "unknown");
}

/// What a utility would refuse is wanted all the same, and is not there.
TEST(Diff, ARefusedControllerIsUnknownWhereItIsOpenWhatIsWanted) {
    MachinePlan plan;
    ControllerPlanning& planning = plan.controllers.emplace_back();
    planning.disposition = Disposition::refused;
    planning.comparison.result = Sameness::different;
    planning.comparison.differences = {{"missing", "", "Logical.1", "RAID5", "none"}};
    Finding& finding = planning.diagnostics.emplace_back();
    finding.code = "ZX702";
    finding.summary = "32:3 is in no state to be taken";
    finding.refusedBy = RefusedBy::utility;
    EXPECT_EQ(diffOf(plan).result, Result::different);
    EXPECT_TRUE(diffOf(plan).controllers[0].isRefused);
    EXPECT_FALSE(diffOf(plan).controllers[0].addingIsEnough);
    EXPECT_EQ(diffOf(plan).controllers[0].takesRebuild, Lines());
    EXPECT_EQ(diffOf(plan).controllers[0].diagnostics.size(), 1U);
    finding.refusedBy = RefusedBy::plan;
    EXPECT_EQ(diffOf(plan).result, Result::unknown);
    EXPECT_EQ(diffOf(plan).controllers[0].because, "32:3 is in no state to be taken");
}

/// So a drive that stands in for a listed one is looked for in the same place.
TEST(Diff, ListsOfPlacesAreKnownFromListsOfNumbers) {
    PlannedServer server("single");
    const auto isByPairs = [&](const std::string& drives) {
        const MachinePlan plan = server.plan(
            "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = " + drives +
            "\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:1:ON\n");
        const LayoutGroup& group = plan.controllers.at(0).after.groups.at(0);
        return group.isListed && group.isByPairs;
    };
    EXPECT_FALSE(isByPairs("1,2"));
    EXPECT_TRUE(isByPairs("1:0,1:1"));
}

} // namespace
} // namespace zolex::companion
