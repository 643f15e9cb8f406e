// The steps of plans for the virtual servers that come as samples: they are the lines that zolex
// runs, every utility takes them, and behind them nothing is left to be done.

#include "companion/planning/PlannedServer.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::commandsOf;
using test::faultsOf;
using test::PlannedServer;
using Lines = std::vector<std::string>;

class StepsOnSamples : public testing::TestWithParam<std::string> {};

Lines sorted(Lines lines) {
    std::sort(lines.begin(), lines.end());
    return lines;
}

/// Whether nothing of any controller stays.
bool clearsAll(const MachinePlan& plan) {
    return std::all_of(plan.controllers.begin(), plan.controllers.end(), [](const auto& each) {
        return !each.steps.empty() && each.steps.front().action == "clear";
    });
}

/// Every line that only one of the runs has is named, or is of a controller that stays as it is.
void expectNamed(const MachinePlan& plan, const Lines& theirs) {
    const Lines mine = commandsOf(plan);
    const auto isNamed = [&](const std::string& line) {
        const Lines& differences = plan.oldCommand.differences;
        return std::any_of(differences.begin(), differences.end(), [&](const std::string& text) {
            return text.find(line) != std::string::npos;
        });
    };
    const auto staysAsItIs = [&](const std::string& line) {
        return std::any_of(plan.controllers.begin(), plan.controllers.end(), [&](const auto& each) {
            return each.disposition == Disposition::already &&
                   line.find("UTIL.BAT " + each.controller.utility + " ") == 0;
        });
    };
    for (const std::string& line : mine) {
        EXPECT_TRUE(std::count(theirs.begin(), theirs.end(), line) > 0 || isNamed(line)) << line;
    }
    for (const std::string& line : theirs) {
        EXPECT_TRUE(std::count(mine.begin(), mine.end(), line) > 0 || isNamed(line) ||
                    staysAsItIs(line))
            << line;
    }
}

/// Plan and zolex on two servers that are alike. Both end with nothing left to do.
void expectSameRun(const std::string& sample, PlannedServer& planned, const std::string& policies,
                   const std::vector<const char*>& switches) {
    PlannedServer byZolex(sample);
    byZolex.platform.server = planned.platform.server;

    const MachinePlan plan = planned.plan(policies);
    ASSERT_EQ(faultsOf(plan), Lines{});
    ASSERT_EQ(byZolex.runZolex(policies, switches), 0) << byZolex.platform.consoleFake.output;
    if (clearsAll(plan)) {
        // zolex clears all controllers first.
        EXPECT_EQ(sorted(commandsOf(plan)), sorted(byZolex.changes()));
    } else if (switches.empty()) {
        EXPECT_EQ(commandsOf(plan), byZolex.changes());
    } else {
        expectNamed(plan, byZolex.changes());
    }
    EXPECT_EQ(planned.carryOut(plan), Lines{});

    for (PlannedServer* const server : {&planned, &byZolex}) {
        const MachinePlan again = server->plan(policies);
        EXPECT_EQ(faultsOf(again), Lines{});
        EXPECT_EQ(commandsOf(again), Lines{});
        for (const ControllerPlanning& controller : again.controllers) {
            EXPECT_EQ(controller.strategy, Strategy::none) << controller.controller.model;
            EXPECT_TRUE(controller.disposition == Disposition::already ||
                        controller.disposition == Disposition::skipped);
        }
    }
}

TEST_P(StepsOnSamples, ABlankServerIsConfiguredAsByZolex) {
    PlannedServer server(GetParam());
    const std::string policies = server.samplePolicies();
    server.runZolex("[Policy.none]\nAppliesTo.1 = c:36\n", {"/r", "/y"});
    expectSameRun(GetParam(), server, policies, {});
}

TEST_P(StepsOnSamples, DefaultsOnABlankServerAreThoseOfZolex) {
    PlannedServer server(GetParam());
    server.runZolex("[Policy.none]\nAppliesTo.1 = c:36\n", {"/r", "/y"});
    expectSameRun(GetParam(), server, "[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n",
                  {});
}

/// On a server that nothing can stay on, plans clear it as zolex does.
TEST_P(StepsOnSamples, AConfiguredServerIsMadeAnewAsByZolex) {
    PlannedServer server(GetParam());
    const std::string policies = server.samplePolicies();
    server.runZolex("[Policy.none]\nAppliesTo.1 = c:36\n", {"/r", "/y"});
    ASSERT_EQ(server.runZolex("[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n", {}), 0);
    expectSameRun(GetParam(), server, policies, {"/r", "/y"});
}

INSTANTIATE_TEST_SUITE_P(All, StepsOnSamples, testing::ValuesIn(test::SimulatedPlatform::samples()),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace
} // namespace zolex::companion
