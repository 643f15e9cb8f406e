// Whatever fails in the middle of a run: it ends with a documented code, and the journal tells all
// that was changed.

#include "companion/execution/ApplyBench.h"
#include "foundation/AllocationFaults.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Lines;
using test::otherArrays;
using test::twoArrays;
using test::WriteFault;

class Faults : public testing::Test {
  protected:
    Faults() : bench_("single") {
        bench_.server.carryOut(bench_.server.plan(twoArrays));
        bench_.makePlan(otherArrays);
        initial_ = bench_.server.platform.server;
        before_ = bench_.layout();
        EXPECT_EQ(bench_.apply().exitCode, 0);
        planned_ = bench_.layout();
        events_ = bench_.disk.entries.size();
        reset();
    }

    void reset() {
        bench_.server.platform.server = initial_;
        bench_.server.platform.fileFake.files.clear();
        bench_.disk = {};
        bench_.system.locks.clear();
        bench_.system.restart();
        bench_.system.started.clear();
        bench_.listener.log.clear();
        bench_.listener.throwsAt.clear();
        bench_.writesUntilFault = 0;
    }

    /// Every command that was started stands in the journal; the code says what is so; the run can
    /// be gone on with.
    void expectToldAndResumed(const ApplyEnd& end, const std::string& where) {
        const Lines started = bench_.system.started;
        Lines told;
        for (const JournalStepStarted& step : bench_.eventsOf<JournalStepStarted>()) {
            told.push_back(step.command);
        }
        for (const std::string& line : started) {
            EXPECT_NE(std::find(told.begin(), told.end(), line), told.end())
                << where << ": not told: " << line;
        }
        EXPECT_EQ(end.changedSomething, !started.empty()) << where;
        EXPECT_TRUE(bench_.system.locks.empty()) << where;
        if (end.exitCode == 2 || end.exitCode == 3) {
            EXPECT_EQ(started, Lines{}) << where;
            EXPECT_FALSE(bench_.disk.isThere) << where;
            EXPECT_EQ(bench_.layout(), before_) << where;
            return;
        }
        EXPECT_EQ(end.exitCode, 4) << where << testing::PrintToString(endLines(end));
        EXPECT_FALSE(end.what.empty()) << where;
        bench_.system.restart();
        bench_.listener.throwsAt.clear();
        bench_.writesUntilFault = 0;
        if (const auto kept = bench_.disk.history();
            kept.end() != nullptr && kept.end()->exitCode == 0) { // nothing was left to be done
            EXPECT_EQ(bench_.layout(), planned_) << where;
            return;
        }
        const ApplyEnd resumed = bench_.resume();
        const auto history = bench_.disk.history();
        EXPECT_EQ(resumed.exitCode, 0) << where << testing::PrintToString(endLines(resumed));
        EXPECT_EQ(bench_.layout(), planned_) << where;
        EXPECT_EQ(history.end()->exitCode, 0) << where;
    }

    ApplyBench bench_;
    zolex_sim::Server initial_;
    Lines before_;
    Lines planned_;
    std::size_t events_ = 0;
};

TEST_F(Faults, JournalCannotBeWritten) {
    for (const WriteFault fault : {WriteFault::refused, WriteFault::thrown}) {
        for (std::size_t event = 1; event <= events_; ++event) {
            reset();
            bench_.fault = fault;
            bench_.writesUntilFault = event;
            const ApplyEnd end = bench_.apply();
            EXPECT_NE(end.exitCode, 0) << event;
            expectToldAndResumed(end, "event " + std::to_string(event));
        }
    }
}

TEST_F(Faults, JournalCannotBeWrittenInTheMiddle) {
    bench_.writesUntilFault = 6; // step-ended 1
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"4: the journal plan.journal.jsonl cannot be written: nothing more is started",
               "  remains: step 2: delete LD 0: RAID1 on 32:0 32:1",
               "  remains: step 3: create A: RAID5 on 32:0 32:1 32:2",
               "  remains: step 4: create B: RAID1 on 32:3 32:4",
               "help: make room for it; then zolexctl apply --resume plan.journal.jsonl goes on",
               "controller 1: failed step 2 of 4: stopped at this step"}));
    EXPECT_EQ(bench_.events(),
              (Lines{"begin", "captured guard", "agreed", "step-started 1", "child 1"}));
}

TEST_F(Faults, JournalCannotBeWrittenAtTheEnd) {
    bench_.writesUntilFault = events_;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: all steps are done and verified, but the journal plan.journal.jsonl "
                     "cannot be written",
                     "help: make room for it; then zolexctl apply --resume plan.journal.jsonl "
                     "verifies it again",
                     "controller 1: configured"}));
}

TEST_F(Faults, JournalCannotBeWrittenBeforeTheFirstStep) {
    bench_.writesUntilFault = 1;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the journal plan.journal.jsonl cannot be written: nothing was changed",
                     "help: make room for it, or name another place: --journal FILE",
                     "controller 1: failed step 0 of 4: not begun"}));
    EXPECT_FALSE(bench_.disk.isThere);
}

TEST_F(Faults, WhoeverIsToldThrows) {
    for (const char* word : {"begin", "captured", "agreed", "step-started", "child", "step-ended",
                             "verified", "end"}) {
        reset();
        bench_.listener.throwsAt = word;
        const ApplyEnd end = bench_.apply();
        // Told of the end, there is nothing left to be stopped.
        if (std::string(word) == "verified" || std::string(word) == "end") {
            EXPECT_EQ(end.exitCode, 0) << word;
            continue;
        }
        expectToldAndResumed(end, word);
    }
}

TEST_F(Faults, EachMomentThrows) {
    std::size_t moment = 1;
    for (;; ++moment) {
        reset();
        std::size_t count = 0;
        bool hasThrown = false;
        std::string where;
        bench_.system.onMoment = [&](const std::string& what) {
            // A child that was started is told to whoever started it.
            if (what != "started" && ++count == moment) {
                hasThrown = true;
                where = "moment " + std::to_string(moment) + ", " + what;
                throw std::bad_alloc();
            }
        };
        const ApplyEnd end = bench_.apply();
        bench_.system.onMoment = nullptr;
        if (!hasThrown) {
            EXPECT_EQ(end.exitCode, 0);
            break;
        }
        if (end.exitCode == 0) { // it was waited for again
            EXPECT_EQ(bench_.layout(), planned_) << where;
            continue;
        }
        if (end.exitCode == 5) { // what stands could not be looked at
            EXPECT_EQ(bench_.layout(), planned_) << where;
            continue;
        }
        expectToldAndResumed(end, where);
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(moment, 50U);
}

TEST_F(Faults, MemoryRunsOut) {
    std::size_t faults = 0;
    std::size_t call = 1;
    for (;; call += 1 + call / 97) {
        reset();
        zolex::test::failAllocation(zolex::test::Allocation::throwing, call);
        ApplyEnd end;
        bool isThrown = false;
        try {
            end = bench_.apply();
        } catch (const std::bad_alloc&) {
            isThrown = true; // there was no memory left to say so
        }
        const bool isOver = zolex::test::allocationsAsked(zolex::test::Allocation::throwing) < call;
        zolex::test::failAllocation(zolex::test::Allocation::throwing, 0);
        const std::string where = "allocation " + std::to_string(call);
        EXPECT_FALSE(isThrown) << where;
        if (isOver) {
            EXPECT_EQ(end.exitCode, 0);
            break;
        }
        ++faults;
        if (end.exitCode == 0 || end.exitCode == 5) {
            EXPECT_EQ(bench_.layout(), planned_) << where;
        } else {
            expectToldAndResumed(end, where);
        }
        if (HasFailure()) {
            return;
        }
    }
    EXPECT_GT(faults, 200U);
    RecordProperty("faults", static_cast<int>(faults));
}

} // namespace
} // namespace zolex::companion
