// Random servers and policies: each plan is refused with a reason, or all of it is taken on the
// copy, ends as planned there and on the server itself, and goes on from each fault.

#include "companion/planning/PlannedServer.h"
#include "companion/rehearsal/RandomServers.h"
#include "companion/rehearsal/Rehearse.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace zolex::companion {
namespace {

using test::makeRandom;
using test::PlannedServer;
using Lines = std::vector<std::string>;

std::size_t below(std::mt19937& random, std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
}

std::string ordinals(std::size_t first, std::size_t count) {
    std::string text;
    for (std::size_t i = first; i < first + count; ++i) {
        text += (text.empty() ? "" : ",") + std::to_string(i);
    }
    return text;
}

/// Entries that suit a controller of so many drives now and then.
std::string randomPolicies(std::size_t drives, std::mt19937& random) {
    const std::string head = "[Policy.any]\nAppliesTo.1 = ALL\n";
    const Lines levels = {"AUTO", "0", "1", "5", "6", "10"};
    const Lines sizes = {"FILL", "FILL", "50%", "1000"};
    const auto level = [&] { return levels[below(random, levels.size())]; };
    if (below(random, 3) == 0) {
        return head + "Array_Defaults = 0%:" + std::to_string(below(random, 3)) + "\n";
    }
    const std::size_t first = 1 + below(random, 3);
    const std::size_t second = 1 + below(random, 4);
    std::string text = head + "Array_Mode = CUSTOM\nArray.A = " + ordinals(1, first) + "\n";
    if (below(random, 2) == 0) {
        text += "Array.B = " + (below(random, 2) == 0 ? "ALL" : ordinals(first + 1, second)) + "\n";
        text += "Logical_Mode = CUSTOM\nLogical.1 = A:" + sizes[below(random, sizes.size())] + ":" +
                level() + "\nLogical.2 = B:FILL:" + level() + "\n";
    } else {
        text += "Logical_Mode = CUSTOM\nLogical.1 = A:" + sizes[below(random, sizes.size())] + ":" +
                level() + "\n";
    }
    if (below(random, 3) == 0) {
        text += "Hotspares = " + std::to_string(drives) + "\n";
    }
    return text;
}

/// What came of one plan, in a word or two; and holds it.
std::string outcomeOf(PlannedServer& server, const std::string& policies, StrategyWish wish) {
    const Snapshot snapshot = server.snapshot();
    MachinePlan plan = server.plan(policies, wish);
    if (!plan.isApplicable()) {
        return "refused by the plan";
    }
    const std::size_t steps = plan.steps().size();
    if (steps == 0) {
        return "nothing to do";
    }
    rehearse(snapshot, plan);
    if (!plan.rehearsal.done) {
        return plan.rehearsal.notDoneBecause.front();
    }
    if (!plan.isApplicable()) {
        EXPECT_FALSE(plan.rehearsal.endsAsPlanned);
        // The plan does not know all that utilities refuse.
        return plan.controllers.front().diagnostics.back().code;
    }
    EXPECT_TRUE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.faultsTried, static_cast<std::int32_t>(steps));
    EXPECT_EQ(plan.rehearsal.resumesAsPlanned, static_cast<std::int32_t>(steps));
    EXPECT_EQ(server.carryOut(plan), Lines{});
    const MachinePlan again = server.plan(policies);
    EXPECT_EQ(test::commandsOf(again), Lines{});
    return "as planned";
}

TEST(RandomPlans, EndAsRehearsed) {
    std::map<std::string, int> outcomes;
    for (unsigned seed = 0; seed < 800; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        PlannedServer server("single");
        makeRandom(server, random);
        const std::size_t drives = server.platform.server.controllers.front().drives.size();
        const std::string policies = randomPolicies(drives, random);
        const StrategyWish wish =
            below(random, 2) == 0 ? StrategyWish::automatic : StrategyWish::rebuild;
        ++outcomes[outcomeOf(server, policies, wish)];
        if (HasFailure()) {
            FAIL() << policies;
        }
    }
    EXPECT_GT(outcomes["as planned"], 200);
    EXPECT_GT(outcomes["nothing to do"], 20);
    EXPECT_GT(outcomes["refused by the plan"], 200);
    EXPECT_LT(outcomes["ZP240"], 10);
    EXPECT_EQ(outcomes.size(), 4U);
}

} // namespace
} // namespace zolex::companion
