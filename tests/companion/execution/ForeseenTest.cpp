// The layouts that a plan foresees between its steps are those that servers really have.

#include "companion/execution/ApplyBench.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::Lines;
using test::onePolicy;

class ForeseenSample : public testing::TestWithParam<std::string> {
  protected:
    /// Carries out a plan that was not rehearsed, and holds each layout against what is foreseen.
    /// What a controller chooses by itself is not what a copy would have chosen.
    void expectForeseen(const std::string& policies, StrategyWish wish) {
        ApplyBench& bench = bench_;
        bench.makePlan(policies, wish, false);
        ASSERT_EQ(test::faultsOf(bench.plan), Lines{});
        for (const ControllerPlanning& planning : bench.plan.controllers) {
            const std::size_t count = planning.steps.size();
            for (std::size_t done = 0; done <= count; ++done) {
                const Snapshot snapshot = bench.server.snapshot();
                const Facts& facts = snapshot.details.at(planning.controller.index).facts;
                EXPECT_TRUE(standsAfterSteps(bench.plan, planning, done, facts))
                    << planning.controller.model << ", " << done << " steps done";
                // The one before, unless its step changes nothing that is listed.
                if (done > 0 && !planning.steps[done - 1].isRepeatable) {
                    EXPECT_FALSE(standsAfterSteps(bench.plan, planning, done - 1, facts))
                        << planning.controller.model << ", " << done << " steps done";
                }
                if (done < count && !planning.steps[done].isRepeatable) {
                    EXPECT_FALSE(standsAfterSteps(bench.plan, planning, done + 1, facts))
                        << planning.controller.model << ", " << done << " steps done";
                }
                if (done < count) {
                    bench.server.platform.play(planning.steps[done].command);
                }
            }
        }
    }

    ApplyBench bench_{GetParam()};
};

TEST_P(ForeseenSample, FromBlank) {
    expectForeseen(bench_.server.samplePolicies(), StrategyWish::automatic);
}

TEST_P(ForeseenSample, OverItself) {
    const std::string policies = bench_.server.samplePolicies();
    bench_.server.carryOut(bench_.server.plan(policies));
    expectForeseen(policies, StrategyWish::rebuild);
}

TEST_P(ForeseenSample, OverAnother) {
    bench_.server.carryOut(bench_.server.plan(bench_.server.samplePolicies()));
    expectForeseen(onePolicy, StrategyWish::automatic);
}

/// A controller that chooses other cache modes and strip sizes than a copy would is no reason to
/// stop, nor to go astray after a kill.
TEST_P(ForeseenSample, RehearsedOtherwise) {
    for (zolex_sim::Controller& controller : bench_.server.platform.server.controllers) {
        controller.identity.defaultBatteryProtected = true;
    }
    bench_.makePlan(onePolicy, StrategyWish::rebuild);
    bench_.terms.careful = true;
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 0) << testing::PrintToString(test::endLines(end));
}

INSTANTIATE_TEST_SUITE_P(All, ForeseenSample, testing::ValuesIn(test::SimulatedPlatform::samples()),
                         [](const auto& sample) {
                             std::string name = sample.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(Certificate, TellsWhatStands) {
    ApplyBench bench("single");
    bench.makePlan(onePolicy);
    const ApplyEnd end = bench.apply();
    ASSERT_EQ(end.exitCode, 0);
    const Certificate certificate = certificateOf(bench.plan, end, bench.terms);
    const Snapshot snapshot = bench.server.snapshot();
    EXPECT_EQ(certificate.planId, bench.plan.id);
    EXPECT_EQ(certificate.planHash, "hash of the plan");
    EXPECT_EQ(certificate.policiesFile, "site.ini");
    EXPECT_EQ(certificate.journalFile, "plan.journal.jsonl");
    EXPECT_EQ(certificate.fingerprint, fingerprintOf(snapshot));
    EXPECT_EQ(certificate.results, end.results);
    ASSERT_EQ(certificate.controllers.size(), 1U);
    const Certificate::Controller& controller = certificate.controllers.at(0);
    EXPECT_EQ(controller.number, 1);
    EXPECT_EQ(controller.model, "LSI-MegaRAID-8480");
    EXPECT_EQ(controller.utility, "MEGACLI");
    EXPECT_EQ(controller.facts, snapshot.details.at(0).facts);
    EXPECT_EQ(controller.layout, capturedLayout(controller.facts));
    EXPECT_EQ(controller.layoutHash, layoutHash(controller.facts));
}

TEST(Words, OfEvents) {
    EXPECT_EQ(journalEventWord(JournalBegin()), "begin");
    EXPECT_EQ(journalEventWord(JournalCaptured()), "captured");
    EXPECT_EQ(journalEventWord(JournalAgreed()), "agreed");
    EXPECT_EQ(journalEventWord(JournalStepStarted()), "step-started");
    EXPECT_EQ(journalEventWord(JournalChild()), "child");
    EXPECT_EQ(journalEventWord(JournalStepEnded()), "step-ended");
    EXPECT_EQ(journalEventWord(JournalStepFoundDone()), "step-found-done");
    EXPECT_EQ(journalEventWord(JournalVerified()), "verified");
    EXPECT_EQ(journalEventWord(JournalEnd()), "end");
}

TEST(History, EndStandsBehindAllButCaptures) {
    JournalHistory history;
    history.entries = {{1, "", JournalBegin()}};
    EXPECT_EQ(history.end(), nullptr);
    history.entries.push_back({2, "", JournalEnd{4, {}, ""}});
    ASSERT_NE(history.end(), nullptr);
    history.entries.push_back({3, "", JournalCaptured()});
    ASSERT_NE(history.end(), nullptr);
    EXPECT_EQ(history.end()->exitCode, 4);
    history.entries.push_back({4, "", JournalStepStarted()});
    EXPECT_EQ(history.end(), nullptr);
}

} // namespace
} // namespace zolex::companion
