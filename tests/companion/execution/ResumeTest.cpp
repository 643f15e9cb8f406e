// Going on with runs that stopped or were killed, when meanwhile something has happened.

#include "companion/execution/ApplyBench.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Killed;
using test::Lines;
using test::twoArrays;

const Lines configured = {"0: ", "controller 1: configured"};

class Resume : public testing::Test {
  protected:
    Resume() : bench_("single") { bench_.makePlan(twoArrays); }

    /// Kills the run at the first moment that begins so.
    void killAt(const std::string& text, test::ChildFate fate = test::ChildFate::done) {
        bench_.system.fate = fate;
        bench_.system.onMoment = [this, text](const std::string& moment) {
            if (moment.find(text) == 0) {
                bench_.system.onMoment = nullptr;
                bench_.system.kill();
            }
        };
        EXPECT_THROW(static_cast<void>(bench_.apply()), Killed) << text;
        bench_.system.restart();
        bench_.listener.log.clear();
        bench_.system.started.clear();
    }

    void play(const std::string& line) {
        const ChildResult result = bench_.server.platform.play("UTIL.BAT MEGACLI " + line);
        ASSERT_EQ(result.exitCode, 0U) << result.output;
    }

    [[nodiscard]] zolex_sim::Controller& controller() {
        return bench_.server.platform.server.controllers.at(0);
    }

    ApplyBench bench_;
};

TEST_F(Resume, WaitsForTheOldChild) {
    bench_.system.childTakes = std::chrono::seconds(70);
    killAt("write child 2", test::ChildFate::later);
    // The journal does not know it; the lock does.
    EXPECT_EQ(endLines(bench_.resume()), configured);
    EXPECT_EQ(bench_.listener.log,
              (Lines{"warning: the lock of a run that is gone (pid 100) is taken over",
                     "Waiting for MEGACLI (pid 4712) of the interrupted run",
                     "still waiting: step 2, pid 4712, 30000 ms",
                     "still waiting: step 2, pid 4712, 60000 ms",
                     "still waiting: step 3, pid 4713, 30000 ms",
                     "still waiting: step 3, pid 4713, 60000 ms"}));
    EXPECT_EQ(bench_.events(),
              (Lines{"begin", "captured guard", "step-started 1", "child 1",
                     "step-ended 1 accepted", "step-started 2", "captured resume",
                     "step-ended 2 not seen", "step-found-done 2", "step-started 3", "child 3",
                     "step-ended 3 accepted", "captured verify", "verified as-planned", "end 0"}));
}

TEST_F(Resume, WaitsForTheOldChildOfTheJournal) {
    bench_.system.childTakes = std::chrono::seconds(70);
    killAt("wait", test::ChildFate::later);
    bench_.system.locks.clear();
    EXPECT_EQ(endLines(bench_.resume()), configured);
    EXPECT_EQ(bench_.listener.log, (Lines{"Waiting for MEGACLI (pid 4711) of the interrupted run",
                                          "still waiting: step 1, pid 4711, 30000 ms",
                                          "still waiting: step 1, pid 4711, 60000 ms",
                                          "still waiting: step 2, pid 4712, 30000 ms",
                                          "still waiting: step 2, pid 4712, 60000 ms",
                                          "still waiting: step 3, pid 4713, 30000 ms",
                                          "still waiting: step 3, pid 4713, 60000 ms"}));
    // What it wrote is not lost.
    const JournalStepEnded ended = bench_.eventsOf<JournalStepEnded>().at(0);
    EXPECT_EQ(ended.outcome, ChildOutcome::stillRunning);
    EXPECT_NE(ended.output.find("Created VD 0"), std::string::npos) << ended.output;
    EXPECT_FALSE(bench_.server.platform.fileFake.exists("plan.journal.jsonl.out"));
}

TEST_F(Resume, InterruptedWhileItWaits) {
    bench_.system.childTakes = std::chrono::seconds(70);
    killAt("wait", test::ChildFate::later);
    bench_.system.onMoment = [this](const std::string& moment) {
        bench_.system.isInterrupted = moment == "sleep";
    };
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{"4: interrupted while MEGACLI (pid 4711) of the interrupted run is still running",
               "help: zolexctl apply --resume plan.journal.jsonl waits for it and goes on",
               "controller 1: failed step 1 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.events().back(), "child 1");
}

TEST_F(Resume, ControllerIsNotAtRest) {
    killAt("write step-ended 2");
    int looks = 0;
    bench_.system.onMoment = [&](const std::string& moment) {
        if (moment == "sleep") { // it is different each time
            controller().drives.at(7).status =
                ++looks % 2 == 0 ? zolex_sim::DriveStatus::good : zolex_sim::DriveStatus::failed;
        }
    };
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{"2: the controller is still at work: what stands changes from one look to the next",
               "help: zolexctl apply --resume plan.journal.jsonl looks again",
               "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(looks, 4);
    EXPECT_EQ(bench_.events().back(), "child 2");
    bench_.system.onMoment = nullptr;
    controller().drives.at(7).status = zolex_sim::DriveStatus::good;
    EXPECT_EQ(endLines(bench_.resume()), configured);
    const std::vector<std::chrono::milliseconds>& pauses = bench_.system.pauses;
    EXPECT_EQ(pauses.back(), std::chrono::milliseconds(2000));
}

TEST_F(Resume, OnAnotherMachine) {
    killAt("write step-ended 2");
    bench_.server.platform.server.serialNumber = "KQ99999";
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: this is another machine than the one planned for",
                     "  planned for: machine 8837, serial number KQ10Z7V",
                     "  this one is: machine 8837, serial number KQ99999",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, DriveSwapped) {
    killAt("write step-ended 2");
    controller().drives.at(7).serial = "SWAPPED1";
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: drives are not those that were planned for",
                     "  controller 1: drive 32:7: serial number SWAPPED1 in the place of serial "
                     "number 3LQ2A007",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, CaptureFails) {
    killAt("write step-ended 2");
    zolex_sim::Fault fault;
    fault.match = "-pdList";
    fault.exitCode = 1;
    bench_.server.platform.server.faults.push_back(fault);
    EXPECT_EQ(endLines(bench_.resume()).front(), "2: the machine could not be captured");
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, OfAnotherPlan) {
    killAt("write step-ended 2");
    bench_.terms.planHash = "of another file";
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: the journal is of another plan than the file has now",
                     "  the journal is of p-000000000001, SHA-256 hash of the plan",
                     "  the file has p-000000000001, SHA-256 of another file",
                     "help: name the plan that was begun, or plan again",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, OfARunThatEnded) {
    ASSERT_EQ(bench_.apply().exitCode, 0);
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"3: this run ended as planned, at 2026-11-21T21:05:00+01:00",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: configured"}));
}

TEST_F(Resume, SomethingElseHasChangedTheController) {
    killAt("written step-ended 2");
    play("-CfgLdDel -L0 -a0");
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{
            "4: something else has changed controller 1 since step 2",
            "  nearest to what the plan foresees after step 2, but for:",
            "  Logical.1, missing: planned is RAID1 fill, strip 64 KB, adaptive read-ahead: 32:0 "
            "32:1; found is none",
            "  remains: step 3: make 32:5 a spare",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 2 of 3: what stands is not what the plan foresaw there"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    EXPECT_EQ(bench_.events(), (Lines{"begin", "captured guard", "step-started 1", "child 1",
                                      "step-ended 1 accepted", "step-started 2", "child 2",
                                      "step-ended 2 accepted", "captured resume", "end 4"}));
}

TEST_F(Resume, NeitherBeforeNorAfter) {
    killAt("start UTIL.BAT MEGACLI  -CfgLdAdd R5");
    play("-CfgLdAdd R0 [ 32:2 ] -a0");
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{
            "4: what stands on controller 1 is foreseen neither before nor after step 2",
            "  nearest to what the plan foresees after step 1, but for:",
            "  LD 1, surplus: planned is none; found is RAID0 fill, strip 64 KB, write-through, no "
            "read-ahead: 32:2",
            "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
            "  remains: step 3: make 32:5 a spare",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 2 of 3: what stands is not what the plan foresaw there"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    // It is taken away again.
    play("-CfgLdDel -L1 -a0");
    EXPECT_EQ(endLines(bench_.resume()), configured);
}

TEST_F(Resume, ChangedBeforeTheFirstStep) {
    killAt("write step-started 1");
    play("-CfgLdAdd R0 [ 32:7 ] -a0");
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{
            "4: something else has changed controller 1 since it was planned for",
            "  nearest to what the plan foresees before its first step, but for:",
            "  LD 0, surplus: planned is none; found is RAID0 fill, strip 64 KB, write-through, no "
            "read-ahead: 32:7",
            "  remains: step 1: create A: RAID1 on 32:0 32:1",
            "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
            "  remains: step 3: make 32:5 a spare",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 0 of 3: what stands is not what the plan foresaw there"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, DriveFailsMeanwhile) {
    // The last step would make a spare of it.
    killAt("written step-ended 2");
    controller().drives.at(5).status = zolex_sim::DriveStatus::failed;
    const ApplyEnd end = bench_.resume();
    EXPECT_EQ(end.exitCode, 4);
    EXPECT_EQ(end.results.at(0).step, 3);
    EXPECT_EQ(end.results.at(0).result, ControllerResult::Result::failed);
}

TEST_F(Resume, ConsentThatIsNotInTheJournal) {
    ASSERT_EQ(bench_.apply().exitCode, 0);
    bench_.disk = {};
    bench_.makePlan("[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,2,3\n"
                    "Hotspares = 6\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:5\n");
    killAt("write agreed");
    bench_.listener.answer = {false, "", "not agreed to", {}};
    EXPECT_EQ(endLines(bench_.resume()).front(), "3: not agreed to");
    EXPECT_EQ(bench_.listener.log.back(), "asked: 2");
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.listener.answer = {true, "typed-serial", "", {}};
    EXPECT_EQ(endLines(bench_.resume()), configured);
    // Once it is there, nobody is asked again.
    EXPECT_EQ(bench_.eventsOf<JournalAgreed>().size(), 1U);
}

TEST_F(Resume, VerifiedButNotEnded) {
    killAt("write end");
    EXPECT_EQ(endLines(bench_.resume()), configured);
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, AllDoneAndThenChanged) {
    killAt("write captured verify");
    play("-CfgLdDel -L0 -a0");
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"5: what stands on controller 1 now is not what was planned",
                     "  Logical.1, missing: planned is RAID1 fill, strip 64 KB, adaptive "
                     "read-ahead: 32:0 32:1; found is none",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 3 of 3: what stands is not what was planned"}));
    EXPECT_EQ(bench_.system.started, Lines{});
}

TEST_F(Resume, AskedForControllersStayTheSame) {
    ApplyBench two("two-controllers");
    two.makePlan("[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n");
    two.terms.controllers = {2};
    two.system.notStarted = "-CfgLdAdd";
    ASSERT_EQ(two.apply().exitCode, 4);
    two.system.notStarted.clear();
    two.terms.controllers.clear();
    EXPECT_EQ(endLines(two.resume()), (Lines{"0: ", "controller 2: configured"}));
}

/// A clear that was cut off has taken some logical drives.
TEST(ResumeClear, IsRunAgain) {
    ApplyBench bench("arcconf");
    const std::string policies = bench.server.samplePolicies();
    bench.server.carryOut(bench.server.plan(policies));
    bench.makePlan(policies, StrategyWish::rebuild);
    ASSERT_EQ(bench.plan.steps().front().action, "clear");
    zolex_sim::Server& server = bench.server.platform.server;
    bench.system.fate = test::ChildFate::gone;
    bench.system.onMoment = [&](const std::string& moment) {
        if (moment == "wait") {
            bench.system.onMoment = nullptr;
            bench.system.kill();
        }
    };
    EXPECT_THROW(static_cast<void>(bench.apply()), Killed);
    bench.system.restart();
    zolex_sim::Controller& controller = server.controllers.at(0);
    const std::size_t drives = controller.logicalDrives.size();
    ASSERT_GE(drives, 1U);
    bench.server.platform.play("UTIL.BAT ARCCONF DELETE 1 LOGICALDRIVE 1 NOPROMPT");
    ASSERT_LT(controller.logicalDrives.size(), drives);
    EXPECT_EQ(endLines(bench.resume()), configured);
    EXPECT_EQ(bench.eventsOf<JournalStepStarted>().at(1).attempt, 2);
}

} // namespace
} // namespace zolex::companion
