// Plans for today's controllers, carried out, failed and gone on with, in one process.

#include "companion/execution/ApplyBench.h"
#include "companion/execution/CertificateDiff.h"
#include "companion/execution/StorcliRuns.h"
#include "companion/planning/ResetPlan.h"
#include "model/StorcliController.h"

#include <gtest/gtest.h>

#include <array>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Lines;
using test::StorcliRun;

/// What becomes of one command of a run.
enum class Fate {
    refused,          ///< failure, with an exit code
    failureWithZero,  ///< failure, and exit code 0
    endedBySignal,    ///< nothing said, nothing done
    doneButFailure,   ///< says failure, and has done it
    doneButTruncated, ///< has done it, and its answer ends in the middle
    doneButSilent,    ///< has done it, and says nothing
    lie               ///< says success, and has done nothing
};
constexpr std::array honestFates = {Fate::refused,          Fate::failureWithZero,
                                    Fate::endedBySignal,    Fate::doneButFailure,
                                    Fate::doneButTruncated, Fate::doneButSilent};

std::string answerText(const std::string& status, const std::string& details) {
    return R"({"Controllers":[{"Command Status":{"CLI Version":"007.2507","Controller":0,)"
           R"("Status":")" +
           status + R"(","Description":"None")" + details + "}}]}\n";
}

ChildResult answerOf(Fate fate, const std::string& whole) {
    using zolex::test::FakePlatform;
    const std::string failure =
        answerText("Failure", R"(,"Detailed Status":[{"Ctrl":0,"Status":"Failed","ErrCd":50,)"
                              R"("ErrMsg":"device state doesn't support requested command"}])");
    switch (fate) {
    case Fate::refused:
    case Fate::doneButFailure:
        return FakePlatform::ended(50, failure);
    case Fate::failureWithZero:
        return FakePlatform::ended(0, failure);
    case Fate::endedBySignal:
        return FakePlatform::ended(137, "");
    case Fate::doneButTruncated:
        return FakePlatform::ended(0, whole.substr(0, whole.size() / 2));
    case Fate::doneButSilent:
        return FakePlatform::ended(0, "");
    case Fate::lie:
        break;
    }
    return FakePlatform::ended(0, answerText("Success", ""));
}

bool isDone(Fate fate) {
    return fate == Fate::doneButFailure || fate == Fate::doneButTruncated ||
           fate == Fate::doneButSilent;
}

std::string nameOfRun(const testing::TestParamInfo<StorcliRun>& info) {
    return info.param.name;
}

class StorcliApply : public testing::TestWithParam<StorcliRun> {
  protected:
    StorcliApply() : bench_(GetParam().definition) {
        bench_.makePlan(GetParam().policies, StrategyWish::automatic, false);
        initial_ = bench_.server.platform.server;
    }

    void reset() {
        bench_.server.platform.server = initial_;
        bench_.server.platform.fileFake.files.clear();
        bench_.disk = {};
        bench_.system.locks.clear();
        bench_.system.restart();
        bench_.system.started.clear();
        number_ = 0;
    }

    /// From now on the command of this number, from 1, comes to this.
    void failAt(std::size_t number, Fate fate) {
        bench_.system.work = [this, number, fate](const std::string& line) {
            ++number_;
            if (number_ == number && !isDone(fate)) {
                return answerOf(fate, "");
            }
            const ChildResult result = bench_.server.platform.play(line);
            return number_ == number ? answerOf(fate, result.output) : result;
        };
    }

    /// A plan from what stands has nothing to do.
    void expectNothingToDo(const std::string& where) {
        const MachinePlan again = bench_.server.plan(GetParam().policies);
        EXPECT_TRUE(again.isApplicable()) << where;
        EXPECT_EQ(test::commandsOf(again), Lines{}) << where;
    }

    ApplyBench bench_;
    zolex_sim::Server initial_;
    std::size_t number_ = 0;
};

TEST_P(StorcliApply, EndsAsPlannedAndLeavesNothingToDo) {
    ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
    const Lines commands = test::commandsOf(bench_.plan);
    ASSERT_FALSE(commands.empty());
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(endLines(end), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_TRUE(end.isVerified);
    EXPECT_EQ(
        diffOf(bench_.server.snapshot(), certificateOf(bench_.plan, end, bench_.terms)).result,
        ControllerDiff::Result::same);
    EXPECT_TRUE(bench_.system.folders.empty());
    expectNothingToDo("");
    for (const std::string& line : bench_.system.started) {
        EXPECT_EQ(line.find("force"), std::string::npos) << line;
    }
    const bool refusesNolog = bench_.server.platform.server.storcliControllers.front().refusesNolog;
    EXPECT_EQ(bench_.server.platform.logsLeft == 0, !refusesNolog);
    EXPECT_EQ(bench_.system.started.size(), commands.size() * (refusesNolog ? 2 : 1));
    bench_.plan = planReset(bench_.server.snapshot(), {}, "zolexctl reset");
    ASSERT_TRUE(bench_.plan.isApplicable());
    bench_.disk = {};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.layout(), Lines{});
}

TEST_P(StorcliApply, EachCommandFailsOnceAndIsGoneOnWith) {
    ASSERT_EQ(bench_.apply().exitCode, 0);
    const Lines planned = bench_.layout();
    const std::size_t commands = bench_.system.started.size();
    const bool isSample =
        GetParam().name == "BlankWithoutNolog" || GetParam().name == "RebuiltWithTheForeignDrives";
    for (const Fate fate : honestFates) {
        if (!isSample && fate != Fate::failureWithZero && fate != Fate::doneButFailure) {
            continue;
        }
        for (std::size_t number = 1; number <= commands; ++number) {
            reset();
            failAt(number, fate);
            const std::string where = "fate " + std::to_string(static_cast<int>(fate)) +
                                      ", command " + std::to_string(number);
            const ApplyEnd end = bench_.apply();
            EXPECT_EQ(end.exitCode, 4) << where << testing::PrintToString(endLines(end));
            ASSERT_FALSE(bench_.eventsOf<JournalStepEnded>().empty()) << where;
            EXPECT_NE(bench_.eventsOf<JournalStepEnded>().back().reason, "") << where;
            bench_.system.restart();
            const ApplyEnd resumed = bench_.resume();
            EXPECT_EQ(resumed.exitCode, 0) << where << testing::PrintToString(endLines(resumed))
                                           << testing::PrintToString(bench_.events());
            EXPECT_TRUE(resumed.isVerified) << where;
            EXPECT_TRUE(bench_.system.folders.empty()) << where;
            EXPECT_EQ(bench_.layout(), planned) << where;
            if (HasFailure()) {
                return;
            }
        }
    }
}

TEST_P(StorcliApply, SuccessWithNothingDoneIsNotBelieved) {
    ASSERT_EQ(bench_.apply().exitCode, 0);
    const Lines planned = bench_.layout();
    const MachinePlan plan = bench_.plan;
    const std::size_t commands = bench_.system.started.size();
    for (std::size_t number = 1; number <= commands; ++number) {
        reset();
        bench_.plan = plan;
        failAt(number, Fate::lie);
        const std::string where = "command " + std::to_string(number);
        const ApplyEnd end = bench_.apply();
        const bool isRate = bench_.system.started.size() >= number &&
                            bench_.system.started[number - 1].find("rebuildrate") !=
                                std::string::npos; // no part of a layout
        EXPECT_EQ(end.exitCode == 0, isRate) << where;
        bench_.disk = {};
        bench_.makePlan(GetParam().policies, StrategyWish::automatic, false);
        const ApplyEnd again = bench_.apply();
        EXPECT_EQ(again.exitCode, 0) << where << testing::PrintToString(endLines(again));
        EXPECT_EQ(bench_.layout(), planned) << where;
        if (HasFailure()) {
            return;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, StorcliApply, testing::ValuesIn(test::storcliRuns()), nameOfRun);
INSTANTIATE_TEST_SUITE_P(Layouts, StorcliApply, testing::ValuesIn(test::runsOfLayouts()),
                         nameOfRun);

} // namespace
} // namespace zolex::companion
