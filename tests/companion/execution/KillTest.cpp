// The process is killed at every moment of its work; the run is gone on with, and ends in the
// planned layout.

#include "companion/execution/ApplyBench.h"
#include "companion/execution/StorcliRuns.h"

#include <gtest/gtest.h>

#include <random>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::ChildFate;
using test::Killed;
using test::Lines;
using test::onePolicy;

/// How the server stands before the plan, and what is planned.
enum class Start { blank, configured, spare };

struct KillCase {
    std::string sample; ///< or a definition
    Start start = Start::blank;
    std::string name = sample;
    std::string policies = {}; ///< instead of those of the sample
};

void PrintTo(const KillCase& each, std::ostream* stream) {
    *stream << each.name << " " << static_cast<int>(each.start);
}

std::string nameOfKill(const testing::TestParamInfo<KillCase>& info) {
    std::string name = info.param.name;
    if (!info.param.policies.empty()) {
        return "Storcli" + name;
    }
    std::replace(name.begin(), name.end(), '-', '_');
    std::replace(name.begin(), name.end(), '.', '_');
    return name + (info.param.start == Start::blank        ? "Blank"
                   : info.param.start == Start::configured ? "Configured"
                                                           : "Rebuilt");
}

class KilledRun : public testing::TestWithParam<KillCase> {
  protected:
    KilledRun() : bench_(GetParam().sample) {
        if (!GetParam().policies.empty()) {
            bench_.makePlan(GetParam().policies, StrategyWish::automatic, false);
            initial_ = bench_.server.platform.server;
            return;
        }
        const std::string policies = bench_.server.samplePolicies();
        StrategyWish wish = StrategyWish::automatic;
        std::string planned = policies;
        if (GetParam().start == Start::configured) {
            bench_.server.carryOut(bench_.server.plan(policies));
            planned = onePolicy;
        } else if (GetParam().start == Start::spare) {
            bench_.server.carryOut(bench_.server.plan(policies));
            wish = StrategyWish::rebuild;
        }
        bench_.makePlan(planned, wish);
        initial_ = bench_.server.platform.server;
    }

    void reset() {
        bench_.server.platform.server = initial_;
        bench_.server.platform.fileFake.files.clear();
        bench_.disk = {};
        bench_.system.locks.clear();
        bench_.system.folders.clear();
        bench_.system.restart();
        bench_.listener.log.clear();
    }

    /// Whether the run was killed at this moment of it; false: it came to its end before.
    bool isKilled(std::size_t moment) {
        bench_.system.killAt = moment;
        try {
            const ApplyEnd end = bench_.apply();
            EXPECT_EQ(end.exitCode, 0) << end.what;
            return false;
        } catch (const Killed&) {
            ++kills_;
        }
        return true;
    }

    /// Kills a run at this moment and goes on; false: it came to its end before.
    bool killAndGoOn(std::size_t moment, ChildFate fate, const Lines& planned) {
        reset();
        bench_.system.fate = fate;
        if (!isKilled(moment)) {
            return false;
        }
        const std::string where = "moment " + std::to_string(moment) + ", fate " +
                                  std::to_string(static_cast<int>(fate)) + ", " +
                                  testing::PrintToString(bench_.events());
        bench_.system.restart();
        expectPlanned(goOn(), planned, where);
        return true;
    }

    /// Begins anew or goes on, as the journal says.
    ApplyEnd goOn() {
        if (bench_.disk.entries.empty()) {
            bench_.disk = {};
            return bench_.apply();
        }
        if (const auto history = bench_.disk.history();
            history.end() != nullptr && history.end()->exitCode == 0) {
            EXPECT_EQ(bench_.resume().exitCode, 3);
            for (const auto& [name, lock] : bench_.system.locks) {
                EXPECT_FALSE(lock.isHeld) << name;
            }
            bench_.system.locks.clear(); // it is left to whoever comes next
            return {};
        }
        return bench_.resume();
    }

    void expectPlanned(const ApplyEnd& end, const Lines& planned, const std::string& where) {
        EXPECT_EQ(end.exitCode, 0) << where << "\n" << testing::PrintToString(test::endLines(end));
        EXPECT_EQ(bench_.layout(), planned) << where;
        EXPECT_TRUE(bench_.system.locks.empty()) << where;
        EXPECT_TRUE(bench_.system.folders.empty()) << where;
        EXPECT_EQ(bench_.system.running(), Lines{}) << where;
    }

    ApplyBench bench_;
    zolex_sim::Server initial_;
    std::size_t kills_ = 0;
};

TEST_P(KilledRun, EndsAsPlanned) {
    ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
    if (bench_.plan.steps().empty()) {
        return; // there is nothing to do
    }
    reset();
    ASSERT_EQ(bench_.apply().exitCode, 0);
    const Lines planned = bench_.layout();
    for (std::size_t moment = 1; killAndGoOn(moment, ChildFate::later, planned); ++moment) {
        // What becomes of a child matters only where one was at work.
        if (bench_.system.ranWhenKilled) {
            killAndGoOn(moment, ChildFate::done, planned);
            killAndGoOn(moment, ChildFate::gone, planned);
        }
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(kills_, 30U);
    RecordProperty("kills", static_cast<int>(kills_));
}

/// The machine loses its power, and the journal its last lines with it: it ends as planned, or
/// tells that it cannot go on, and has changed nothing more.
TEST_P(KilledRun, EndsAsPlannedOrStopsWhenTheJournalIsCut) {
    if (bench_.plan.steps().empty()) {
        return; // there is nothing to do
    }
    reset();
    ASSERT_EQ(bench_.apply().exitCode, 0);
    const std::size_t moments = bench_.system.moments;
    const Lines planned = bench_.layout();
    std::size_t stops = 0;
    for (std::size_t moment = 1; moment <= moments; moment += 3) {
        for (const std::size_t lost : {std::size_t{1}, std::size_t{2}}) {
            reset();
            bench_.system.fate = moment % 2 == 0 ? ChildFate::done : ChildFate::gone;
            ASSERT_TRUE(isKilled(moment));
            std::vector<JournalEntry>& entries = bench_.disk.entries;
            if (entries.size() <= lost) {
                continue; // there is no run to go on with
            }
            entries.resize(entries.size() - lost);
            const std::string where =
                "moment " + std::to_string(moment) + ", " + testing::PrintToString(bench_.events());
            bench_.system.restart();
            bench_.system.started.clear();
            const Lines stood = bench_.layout();
            const ApplyEnd end = bench_.resume();
            if (end.exitCode == 4) {
                ++stops;
                EXPECT_EQ(bench_.system.started, Lines{}) << where;
                EXPECT_EQ(bench_.layout(), stood) << where;
                EXPECT_FALSE(end.details.empty()) << where;
                continue;
            }
            expectPlanned(end, planned, where);
            if (HasFailure()) {
                return;
            }
        }
    }
    EXPECT_LT(stops * 2, kills_);
    RecordProperty("kills", static_cast<int>(kills_));
    RecordProperty("stops", static_cast<int>(stops));
}

/// Killed again and again, at moments that nobody chose, until it comes to its end.
TEST_P(KilledRun, EndsAsPlannedWhenKilledAgain) {
    if (bench_.plan.steps().empty()) {
        return; // there is nothing to do
    }
    reset();
    ASSERT_EQ(bench_.apply().exitCode, 0);
    const std::size_t moments = bench_.system.moments;
    const Lines planned = bench_.layout();
    std::mt19937 random(4711);
    for (int round = 0; round < 12; ++round) {
        reset();
        std::string where = "round " + std::to_string(round);
        for (int again = 0; again < 5; ++again) {
            bench_.system.fate = static_cast<ChildFate>(random() % 3);
            bench_.system.killAt = 1 + random() % moments;
            where += ", killed at " + std::to_string(bench_.system.killAt);
            try {
                goOn();
                break;
            } catch (const Killed&) {
                ++kills_;
            }
            bench_.system.restart();
        }
        bench_.system.restart();
        expectPlanned(goOn(), planned, where + ", " + testing::PrintToString(bench_.events()));
        if (HasFailure()) {
            return;
        }
    }
    RecordProperty("kills", static_cast<int>(kills_));
}

std::vector<KillCase> killCases() {
#ifdef ZOLEX_FEW_CASES
    const Lines samples{"single", "arcconf"};
#else
    Lines samples = test::SimulatedPlatform::samples();
    // They have no policies of their own.
    std::erase_if(samples, [](const std::string& sample) {
        return sample.starts_with("storcli") || sample == "percli";
    });
#endif
    std::vector<KillCase> cases;
    for (const std::string& sample : samples) {
        for (const Start start : {Start::blank, Start::configured, Start::spare}) {
            cases.push_back({sample, start});
        }
    }
#ifdef ZOLEX_FEW_CASES
    const Lines runs{"RebuiltWithTheForeignDrives"};
#else
    const Lines runs{"BlankWithoutNolog", "RebuiltWithTheForeignDrives", "SparesOfStandingGroups"};
#endif
    for (const test::StorcliRun& run : test::storcliRuns()) {
        if (std::find(runs.begin(), runs.end(), run.name) == runs.end()) {
            continue;
        }
        cases.push_back({run.definition, Start::blank, run.name, run.policies});
    }
    return cases;
}

INSTANTIATE_TEST_SUITE_P(All, KilledRun, testing::ValuesIn(killCases()), nameOfKill);

} // namespace
} // namespace zolex::companion
