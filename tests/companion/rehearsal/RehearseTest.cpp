// Plans for the samples of the virtual server, rehearsed: each is taken, ends as planned and goes
// on from each fault, or is refused with the utility's own words.

#include "companion/rehearsal/Rehearse.h"

#include "companion/machine/Fingerprint.h"
#include "companion/planning/PlannedServer.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::PlannedServer;
using Lines = std::vector<std::string>;

constexpr const char* onePolicy = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n";

Lines findingsOf(const MachinePlan& plan) {
    Lines lines = test::faultsOf(plan);
    lines.insert(lines.end(), plan.rehearsal.notDoneBecause.begin(),
                 plan.rehearsal.notDoneBecause.end());
    for (const ControllerPlanning& controller : plan.controllers) {
        for (const Finding& warning : controller.warnings) {
            if (warning.code.starts_with("ZP24")) {
                lines.push_back(warning.code + " " + warning.summary);
            }
        }
    }
    return lines;
}

constexpr const char* nothingToDo = "not rehearsed: there is nothing to do";

/// What a controller chooses by itself is not told beforehand.
void chooseAsUsual(PlannedServer& server) {
    for (zolex_sim::Controller& controller : server.platform.server.controllers) {
        controller.identity.defaultBatteryProtected = false;
    }
}

/// Rehearses the plan; then carries it out, and holds the layouts that were foreseen against it.
void expectRehearsed(PlannedServer& server, const std::string& policies, StrategyWish wish) {
    const Snapshot snapshot = server.snapshot();
    MachinePlan plan = server.plan(policies, wish);
    ASSERT_EQ(test::faultsOf(plan), Lines{});
    const std::size_t steps = plan.steps().size();
    rehearse(snapshot, plan);
    if (steps == 0) {
        EXPECT_EQ(findingsOf(plan), Lines{nothingToDo});
        EXPECT_FALSE(plan.rehearsal.done);
        return;
    }
    EXPECT_EQ(findingsOf(plan), Lines{});
    EXPECT_TRUE(plan.rehearsal.done);
    EXPECT_TRUE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.faultsTried, static_cast<std::int32_t>(steps));
    EXPECT_EQ(plan.rehearsal.resumesAsPlanned, static_cast<std::int32_t>(steps));
    ASSERT_EQ(plan.steps().size(), steps);
    // Each layout is the one that the server really has behind the step.
    for (const PlanStep& step : plan.steps()) {
        std::string line;
        for (const std::string& word : step.argv) {
            line += (line.empty() ? "" : " ") + word;
        }
        server.platform.play(line);
        const Snapshot now = server.snapshot();
        for (const ControllerSnapshot& controller : now.details) {
            if (controller.number == step.controller) {
                EXPECT_EQ(layoutHash(controller.facts), step.expectedAfter) << step.command;
                EXPECT_EQ(layoutLines(capturedLayout(controller.facts)),
                          plan.rehearsal.layouts[step.expectedAfter])
                    << step.command;
            }
        }
    }
}

class RehearseSample : public testing::TestWithParam<std::string> {};

TEST_P(RehearseSample, SamplePoliciesAsItComes) {
    PlannedServer server(GetParam());
    chooseAsUsual(server);
    expectRehearsed(server, server.samplePolicies(), StrategyWish::automatic);
}

TEST_P(RehearseSample, DefaultsFromAClearController) {
    PlannedServer server(GetParam());
    chooseAsUsual(server);
    expectRehearsed(server, onePolicy, StrategyWish::rebuild);
}

TEST_P(RehearseSample, DefaultsOverSamplePolicies) {
    PlannedServer server(GetParam());
    chooseAsUsual(server);
    ASSERT_EQ(server.carryOut(server.plan(server.samplePolicies())), Lines{});
    expectRehearsed(server, onePolicy, StrategyWish::automatic);
}

TEST_P(RehearseSample, NothingToDoIsNotRehearsed) {
    PlannedServer server(GetParam());
    const std::string policies = server.samplePolicies();
    ASSERT_EQ(server.carryOut(server.plan(policies)), Lines{});
    const Snapshot snapshot = server.snapshot();
    MachinePlan plan = server.plan(policies);
    rehearse(snapshot, plan);
    EXPECT_EQ(findingsOf(plan), Lines{nothingToDo});
    EXPECT_FALSE(plan.rehearsal.done);
    EXPECT_EQ(plan.rehearsal.notDoneBecause, Lines{nothingToDo});
    EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.faultsTried, 0);
}

INSTANTIATE_TEST_SUITE_P(All, RehearseSample, testing::ValuesIn(test::SimulatedPlatform::samples()),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
} // namespace zolex::companion
