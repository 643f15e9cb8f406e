// Plans carried out on virtual servers: what is asked, noted, told and refused.

#include "companion/execution/ApplyBench.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Lines;

constexpr const char* onePolicy = "[Policy.all]\nAppliesTo.1 = ALL\nArray_Defaults = 0%:0\n";
constexpr const char* twoArrays = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                  "Array.A = 1,2\nArray.B = 3,4,5\nHotspares = 6\n"
                                  "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n"
                                  "Logical.2 = B:FILL:5\n";
constexpr const char* otherArrays = "[Policy.web]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                                    "Array.A = 1,2,3\nArray.B = 4,5\nHotspares = 6\n"
                                    "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:5\n"
                                    "Logical.2 = B:FILL:1\n";

class Apply : public testing::Test {
  protected:
    Apply() : bench_("single") {}

    /// Two arrays and a spare are planned for the blank server: three steps.
    void planTwoArrays() {
        bench_.makePlan(twoArrays);
        ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
        ASSERT_EQ(bench_.plan.steps().size(), 3U);
    }
    /// They stand, and another array is planned.
    void planOverTwoArrays() {
        ASSERT_EQ(bench_.server.carryOut(bench_.server.plan(twoArrays)), Lines{});
        bench_.makePlan(otherArrays);
        ASSERT_EQ(test::faultsOf(bench_.plan), Lines{});
    }

    void refuseLines(const std::string& match, int exitCode, const std::string& output) {
        zolex_sim::Fault fault;
        fault.match = match;
        fault.exitCode = exitCode;
        fault.output = output;
        bench_.server.platform.server.faults.push_back(fault);
    }

    /// Nothing was started but captures, and nothing is left behind.
    void expectUntouched() {
        EXPECT_EQ(bench_.system.started, Lines{});
        EXPECT_EQ(bench_.events(), Lines{});
        EXPECT_FALSE(bench_.disk.isThere);
        EXPECT_TRUE(bench_.system.locks.empty());
        EXPECT_EQ(bench_.server.changes(), Lines{});
    }

    [[nodiscard]] zolex_sim::Controller& controller(std::size_t index = 0) {
        return bench_.server.platform.server.controllers.at(index);
    }

    ApplyBench bench_;
};

TEST_F(Apply, BlankServer) {
    planTwoArrays();
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(endLines(end), (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, Lines{"as planned for"});
    EXPECT_EQ(bench_.system.started, test::commandsOf(bench_.plan));
    EXPECT_EQ(bench_.layout(), (Lines{"?"}));
    EXPECT_TRUE(end.changedSomething);
    EXPECT_TRUE(end.isVerified);
    EXPECT_TRUE(bench_.system.locks.empty());
    EXPECT_FALSE(bench_.server.platform.fileFake.exists("plan.journal.jsonl.out"));
}

TEST_F(Apply, EventsTellAll) {
    planOverTwoArrays();
    bench_.apply();
    const JournalBegin begin = bench_.eventsOf<JournalBegin>().at(0);
    EXPECT_EQ(begin.planId, bench_.plan.id);
    EXPECT_EQ(begin.planHash, "hash of the plan");
    EXPECT_EQ(begin.planFile, "plan.json");
    EXPECT_EQ(begin.planText, "");
    EXPECT_EQ(begin.fingerprint, bench_.plan.fingerprint);
    EXPECT_EQ(begin.toolVersion, "1");
    EXPECT_EQ(begin.process, bench_.system.ownProcess());
    EXPECT_EQ(begin.consent, bench_.plan.consent);
    EXPECT_EQ(begin.steps, static_cast<std::int32_t>(bench_.plan.steps().size()));
    EXPECT_EQ(begin.controllers, std::vector<std::int32_t>{});
    const JournalAgreed agreed = bench_.eventsOf<JournalAgreed>().at(0);
    EXPECT_EQ(agreed.code, bench_.plan.consent);
    EXPECT_EQ(agreed.how, "option");
    EXPECT_EQ(agreed.by, "operator");
    const JournalCaptured guard = bench_.eventsOf<JournalCaptured>().at(0);
    EXPECT_EQ(guard.state, bench_.plan.fingerprint.state);
    const auto started = bench_.eventsOf<JournalStepStarted>();
    const auto children = bench_.eventsOf<JournalChild>();
    const auto ended = bench_.eventsOf<JournalStepEnded>();
    const std::vector<PlanStep> steps = bench_.plan.steps();
    ASSERT_EQ(started.size(), steps.size());
    ASSERT_EQ(children.size(), steps.size());
    ASSERT_EQ(ended.size(), steps.size());
    std::string before = guard.layouts.at(1);
    for (std::size_t i = 0; i < steps.size(); ++i) {
        EXPECT_EQ(started[i].step, steps[i].step);
        EXPECT_EQ(started[i].controller, 1);
        EXPECT_EQ(started[i].command, steps[i].command);
        EXPECT_EQ(started[i].expectedBefore, before);
        EXPECT_EQ(started[i].expectedAfter, steps[i].expectedAfter);
        EXPECT_EQ(started[i].attempt, 1);
        EXPECT_EQ(children[i].process.pid, 4711 + i);
        EXPECT_EQ(children[i].output, "plan.journal.jsonl.out");
        EXPECT_EQ(ended[i].outcome, ChildOutcome::ended);
        EXPECT_EQ(ended[i].exitCode, 0U);
        EXPECT_EQ(ended[i].durationMs, 700);
        EXPECT_FALSE(ended[i].output.empty());
        EXPECT_EQ(ended[i].outputBytes, ended[i].output.size());
        before = steps[i].expectedAfter;
    }
    const JournalCaptured verify = bench_.eventsOf<JournalCaptured>().back();
    EXPECT_EQ(verify.layouts.at(1), before);
    const JournalEnd end = bench_.eventsOf<JournalEnd>().at(0);
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(end.reason, "");
    ASSERT_EQ(end.results.size(), 1U);
    EXPECT_EQ(end.results[0].result, ControllerResult::Result::configured);
}

TEST_F(Apply, LossesAreAskedFor) {
    planOverTwoArrays();
    bench_.listener.answer = {false, "", "the code is for another list", {"type the other one"}};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, OfAnotherMachine) {
    planOverTwoArrays();
    bench_.server.platform.server.serialNumber = "KQ99999";
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, OfAnotherController) {
    planOverTwoArrays();
    controller().identity.serialNumber = "99";
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, OfAMachineWithMoreControllers) {
    ApplyBench two("two-controllers");
    two.makePlan(onePolicy);
    bench_.plan = two.plan;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, DriveSwapped) {
    planOverTwoArrays();
    controller().drives.at(3).serial = "SWAPPED1";
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, DriveFailed) {
    planOverTwoArrays();
    controller().drives.at(6).status = zolex_sim::DriveStatus::failed;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, LogicalDriveMade) {
    planTwoArrays();
    bench_.server.platform.play("UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:7 ] -a0");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, LogicalDriveGone) {
    planOverTwoArrays();
    bench_.server.platform.play("UTIL.BAT MEGACLI -CfgLdDel -L1 -a0");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, SpareMoved) {
    planOverTwoArrays();
    for (const char* line : {"-Rmv -PhysDrv[32:5]", "{ -Set } -PhysDrv[ 32:6 ]"}) {
        bench_.server.platform.play(std::string("UTIL.BAT MEGACLI -PDHSP ") + line + " -a0");
    }
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, FirmwareReplaced) {
    planOverTwoArrays();
    controller().identity.firmware = "9.9.9";
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
}

TEST_F(Apply, Twice) {
    planOverTwoArrays();
    ASSERT_EQ(bench_.apply().exitCode, 0);
    bench_.disk = {};
    bench_.system.started.clear();
    bench_.server.platform.children.clear();
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
    bench_.makePlan(otherArrays);
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: already"}));
    EXPECT_EQ(bench_.listener.log, Lines{"as planned for"});
    expectUntouched();
}

TEST_F(Apply, PlanThatIsRefused) {
    bench_.makePlan("[Policy.a]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,99\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
    EXPECT_EQ(bench_.server.platform.children, Lines{});
}

TEST_F(Apply, ControllerThatThePlanLacks) {
    planTwoArrays();
    bench_.terms.controllers = {2};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, NothingTellsTheMachine) {
    bench_.server.platform.server.serialNumber = "None";
    controller().identity.serialNumber = "";
    for (zolex_sim::Drive& drive : controller().drives) {
        drive.serial = "";
    }
    bench_.makePlan(twoArrays);
    ASSERT_EQ(bench_.plan.fingerprint.strength, Strength::positions);
    EXPECT_EQ(bench_.apply().exitCode, 0);
    EXPECT_EQ(bench_.listener.log, (Lines{"as planned for", "asked: 0"}));
}

TEST_F(Apply, CaptureFails) {
    planOverTwoArrays();
    refuseLines("-pdList", 1, "no adapter\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, ListingIsAnErrorText) {
    planOverTwoArrays();
    refuseLines("-pdList", 0, "Error: the driver is gone\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, UtilityRefuses) {
    planOverTwoArrays();
    refuseLines("-CfgLdAdd R1", 38, "FW error description:\n  The drive is not free.\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    EXPECT_TRUE(bench_.system.locks.empty());
    // Its cause is mended.
    bench_.server.platform.server.faults.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.resume().exitCode, 3);
}

TEST_F(Apply, UtilityLies) {
    planOverTwoArrays();
    refuseLines("-CfgLdAdd", 0, "Exit Code: 0x26\nThe drive is not free.\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.events().back(), "end 5");
    EXPECT_EQ(bench_.eventsOf<JournalVerified>().at(0).lines, (Lines{"?"}));
}

TEST_F(Apply, UtilityDoesHalf) {
    planTwoArrays();
    bench_.system.work = [this](const std::string& line) {
        std::string other = line;
        if (const auto at = other.find(",32:4"); at != std::string::npos) {
            other.erase(at, 5); // RAID 5 of two drives is refused, so it makes a stripe set
            other.replace(other.find(" R5 "), 4, " R0 ");
        }
        return bench_.server.platform.play(other);
    };
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
}

TEST_F(Apply, Careful) {
    planTwoArrays();
    bench_.terms.careful = true;
    refuseLines("-CfgLdAdd R5", 0, "done\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
}

TEST_F(Apply, ChildCannotBeStarted) {
    planTwoArrays();
    bench_.system.notStarted = " R5 ";
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    bench_.system.notStarted.clear();
    bench_.system.throwing = " R5 ";
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"?"}));
    bench_.system.throwing.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
}

TEST_F(Apply, FirstChildCannotBeStarted) {
    planTwoArrays();
    bench_.system.notStarted = " R1 ";
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(endLines(end), (Lines{"?"}));
    EXPECT_FALSE(end.changedSomething);
}

TEST_F(Apply, LimitIsOver) {
    planTwoArrays();
    bench_.terms.stepLimit = std::chrono::seconds(100);
    bench_.system.hanging = " R5 ";
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    // The locks tell of it.
    ASSERT_EQ(bench_.system.locks.size(), 2U);
    for (const auto& [name, lock] : bench_.system.locks) {
        EXPECT_FALSE(lock.isHeld) << name;
        EXPECT_EQ(lock.child.pid, 4712U) << name;
    }
    // Nobody else begins beside it.
    bench_.listener.log.clear();
    test::JournalDisk kept = bench_.disk;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(endLines(bench_.apply()).front().substr(0, 2), "3:");
    // Going on waits for it, as long again.
    bench_.disk = kept;
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
    // It comes to its end.
    bench_.system.endHanging();
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    EXPECT_TRUE(bench_.system.locks.empty());
}

/// Interrupts at the first moment with this text.
void interruptAt(ApplyBench& bench, const std::string& text) {
    bench.system.onMoment = [&bench, text](const std::string& moment) {
        bench.system.isInterrupted = bench.system.isInterrupted || moment.find(text) == 0;
    };
}

TEST_F(Apply, InterruptedBeforeTheFirstStep) {
    planOverTwoArrays();
    for (const char* moment : {"lock", "listing", "open", "write begin", "written agreed",
                               "write step-started 1", "written step-started 1"}) {
        bench_.system.isInterrupted = false;
        interruptAt(bench_, moment);
        const ApplyEnd end = bench_.apply();
        const bool isBegun = std::string(moment).find("step-started") != std::string::npos;
        EXPECT_EQ(end.exitCode, isBegun ? 4 : 3) << moment;
        if (!isBegun) {
            expectUntouched();
        }
        if (isBegun) { // its command was started, and came to its end
            EXPECT_EQ(bench_.system.started.size(), 1U);
            return;
        }
    }
}

TEST_F(Apply, InterruptedWhileAStepRuns) {
    planTwoArrays();
    bench_.system.childTakes = std::chrono::seconds(40);
    std::size_t waits = 0;
    bench_.system.onMoment = [&](const std::string& moment) {
        waits += moment == "wait" ? 1 : 0;
        bench_.system.isInterrupted = waits >= 3; // of the second step
    };
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    bench_.system.onMoment = nullptr;
    bench_.system.isInterrupted = false;
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

TEST_F(Apply, InterruptedBetweenSteps) {
    planTwoArrays();
    interruptAt(bench_, "written step-ended 1");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.layout(), (Lines{"?"}));
}

TEST_F(Apply, InterruptedAtTheLastStep) {
    planTwoArrays();
    interruptAt(bench_, "start UTIL.BAT MEGACLI -PDHSP");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
}

TEST_F(Apply, AnotherRunIsUnderWay) {
    planTwoArrays();
    bench_.system.locks["plan.json.lock"] = {true, {99, "at 1"}, {}};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.system.locks.clear();
    const std::string name =
        "/tmp/zolexctl-" + bench_.plan.fingerprint.identity.substr(0, 16) + ".lock";
    bench_.system.locks[name] = {true, {98, "at 1"}, {}};
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 3);
    EXPECT_EQ(end.details, Lines{"it holds " + name});
    EXPECT_EQ(bench_.system.locks.size(), 1U);
}

TEST_F(Apply, LockOfARunThatIsGone) {
    planTwoArrays();
    bench_.system.locks["plan.json.lock"] = {false, {99, "at 1"}, {4700, "at 2"}};
    EXPECT_EQ(bench_.apply().exitCode, 0);
    EXPECT_EQ(bench_.listener.log,
              (Lines{"warning: the lock of a run that is gone (pid 99) is taken over",
                     "as planned for"}));
    EXPECT_TRUE(bench_.system.locks.empty());
}

TEST_F(Apply, NoLock) {
    planTwoArrays();
    bench_.system.isFolderLost = true;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

TEST_F(Apply, NoJournal) {
    planTwoArrays();
    bench_.isJournalRefused = true;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    expectUntouched();
}

class ApplyTwo : public testing::Test {
  protected:
    ApplyTwo() : bench_("two-controllers") {
        bench_.makePlan(onePolicy);
        for (const PlanStep& step : bench_.plan.steps()) {
            controllers_.push_back(step.controller);
        }
    }
    ApplyBench bench_;
    std::vector<std::int32_t> controllers_;
};

TEST_F(ApplyTwo, OneResultForEach) {
    EXPECT_EQ(controllers_, (std::vector<std::int32_t>{1, 2}));
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
}

TEST_F(ApplyTwo, OneOfThem) {
    bench_.terms.controllers = {2};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    bench_.disk = {};
    // What was done does not keep the other from being done by the same plan.
    bench_.terms.controllers = {1};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"?"}));
}

TEST_F(ApplyTwo, StopsAtTheFirst) {
    bench_.system.notStarted = bench_.plan.steps().front().command;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
}

TEST_F(ApplyTwo, KeepsGoing) {
    bench_.terms.keepGoing = true;
    bench_.system.notStarted = bench_.plan.steps().front().command;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.events(), (Lines{"?"}));
    bench_.system.notStarted.clear();
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"0: ", "controller 1: configured", "controller 2: configured"}));
}

TEST_F(ApplyTwo, Skipped) {
    bench_.makePlan("[Policy.one]\nAppliesTo.1 = t:LSI-MegaRAID-8480\nArray_Defaults = 0%:0\n");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.terms.allowSkipped = true;
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"?"}));
}

} // namespace
} // namespace zolex::companion
