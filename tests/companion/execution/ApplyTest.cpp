// Plans carried out on virtual servers: what is asked, noted, told and refused.

#include "companion/execution/ApplyBench.h"
#include "companion/machine/System.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::ApplyBench;
using test::endLines;
using test::Lines;
using test::onePolicy;
using test::otherArrays;
using test::twoArrays;

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
    EXPECT_EQ(endLines(end), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(
        bench_.events(),
        (Lines{"begin", "captured guard", "step-started 1", "child 1", "step-ended 1 accepted",
               "step-started 2", "child 2", "step-ended 2 accepted", "step-started 3", "child 3",
               "step-ended 3 accepted", "captured verify", "verified as-planned", "end 0"}));
    EXPECT_EQ(bench_.listener.log, Lines{"as planned for"});
    EXPECT_EQ(bench_.system.started, test::commandsOf(bench_.plan));
    EXPECT_EQ(
        bench_.layout(),
        (Lines{
            "controller 1: RAID1 fill, strip 64 KB, write-through, adaptive read-ahead: 32:0 32:1",
            "controller 1: RAID5 fill, strip 64 KB, write-through, adaptive read-ahead: 32:2 32:3 "
            "32:4",
            "controller 1: hot spare: 32:5"}));
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
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the code is for another list", "help: type the other one",
                     "controller 1: failed step 0 of 4: not begun"}));
    EXPECT_EQ(bench_.listener.log, (Lines{"as planned for", "asked: 2"}));
    expectUntouched();
}

TEST_F(Apply, OfAnotherMachine) {
    planOverTwoArrays();
    bench_.server.platform.server.serialNumber = "KQ99999";
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: this is another machine than the one planned for",
                     "  planned for: machine 8837, serial number KQ10Z7V",
                     "  this one is: machine 8837, serial number KQ99999",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, OfAnotherController) {
    planOverTwoArrays();
    controller().identity.serialNumber = "99";
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"3: this is another machine than the one planned for",
               "  planned for: controller 1, LSI-MegaRAID-8480 at 0000:02:0e.0, serial number "
               "1122334455",
               "  this one is: controller 1, LSI-MegaRAID-8480 at 0000:02:0e.0, serial number 99",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, OfAMachineWithMoreControllers) {
    ApplyBench two("two-controllers");
    two.makePlan(onePolicy);
    bench_.plan = two.plan;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: this is another machine than the one planned for",
                     "  there is no controller 2: this machine has one, number 1",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 2: not begun",
                     "controller 2: failed step 0 of 2: not begun"}));
    expectUntouched();
}

TEST_F(Apply, DriveSwapped) {
    planOverTwoArrays();
    controller().drives.at(3).serial = "SWAPPED1";
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: drive 32:3: serial number SWAPPED1 in the place of serial "
                     "number 3LQ2A003",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, DriveFailed) {
    planOverTwoArrays();
    controller().drives.at(6).status = zolex_sim::DriveStatus::failed;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: drive 32:6 is failed (Failed), it was good",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, LogicalDriveMade) {
    planTwoArrays();
    bench_.server.platform.play("UTIL.BAT MEGACLI -CfgLdAdd R0 [ 32:7 ] -a0");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: there now: LD 0, RAID0 fill, strip 64 KB, write-through, no "
                     "read-ahead: 32:7",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 3: not begun"}));
    expectUntouched();
}

TEST_F(Apply, LogicalDriveGone) {
    planOverTwoArrays();
    bench_.server.platform.play("UTIL.BAT MEGACLI -CfgLdDel -L1 -a0");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: no longer there: LD 1, RAID5 fill, strip 64 KB, "
                     "write-through, adaptive read-ahead: 32:2 32:3 32:4",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, SpareMoved) {
    planOverTwoArrays();
    for (const char* line : {"-Rmv -PhysDrv[32:5]", "{ -Set } -PhysDrv[ 32:6 ]"}) {
        bench_.server.platform.play(std::string("UTIL.BAT MEGACLI -PDHSP ") + line + " -a0");
    }
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: no longer there: hot spare: 32:5",
                     "  controller 1: there now: hot spare: 32:6",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, FirmwareReplaced) {
    planOverTwoArrays();
    controller().identity.firmware = "9.9.9";
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_EQ(bench_.listener.log,
              (Lines{"warning: controller 1: its firmware is 9.9.9, it was 1.11.50-0300",
                     "as planned for", "asked: 2"}));
}

TEST_F(Apply, Twice) {
    planOverTwoArrays();
    ASSERT_EQ(bench_.apply().exitCode, 0);
    bench_.disk = {};
    bench_.system.started.clear();
    bench_.server.platform.children.clear();
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: the machine has changed since it was planned for",
                     "  controller 1: no longer there: LD 0, RAID1 fill, strip 64 KB, "
                     "write-through, adaptive read-ahead: 32:0 32:1",
                     "  controller 1: no longer there: LD 1, RAID5 fill, strip 64 KB, "
                     "write-through, adaptive read-ahead: 32:2 32:3 32:4",
                     "  controller 1: there now: LD 0, RAID5 fill, strip 64 KB, write-through, "
                     "adaptive read-ahead: 32:0 32:1 32:2",
                     "  controller 1: there now: LD 1, RAID1 fill, strip 64 KB, write-through, "
                     "adaptive read-ahead: 32:3 32:4",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
    bench_.makePlan(otherArrays);
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: already"}));
    EXPECT_EQ(bench_.listener.log, Lines{"as planned for"});
    expectUntouched();
}

TEST_F(Apply, PlanThatIsRefused) {
    bench_.makePlan("[Policy.a]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\nArray.A = 1,99\n");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the plan cannot be carried out as it stands",
                     "  controller 1: there is no drive 99 among 8",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 0 of 0: there is no drive 99 among 8"}));
    expectUntouched();
    EXPECT_EQ(bench_.server.platform.children, Lines{});
}

TEST_F(Apply, ControllerThatThePlanLacks) {
    planTwoArrays();
    bench_.terms.controllers = {2};
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the plan has no controller 2",
                     "help: zolexctl plan site.ini plans from what is there"}));
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
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the machine could not be captured",
                     "  controller 1: UTIL.BAT MEGACLI -pdList -a0 ended with exit code 1 [ZP104]",
                     "help: zolexctl doctor tells whether the utilities are there and are read",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

TEST_F(Apply, ListingIsAnErrorText) {
    planOverTwoArrays();
    refuseLines("-pdList", 0, "Error: the driver is gone\n");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the machine could not be captured",
                     "  controller 1: UTIL.BAT MEGACLI -pdList -a0 ended with exit code 0, but "
                     "printed: Error: the driver is gone [ZP105]",
                     "help: zolexctl doctor tells whether the utilities are there and are read",
                     "controller 1: failed step 0 of 4: not begun"}));
    expectUntouched();
}

/// What stands is as planned then, but nobody is to take the server for a sound one.
TEST_F(Apply, ADriveThatFailsMeanwhileIsTold) {
    planTwoArrays();
    bench_.system.onMoment = [this](const std::string& moment) {
        if (moment.starts_with("written step-ended 3")) {
            bench_.server.platform.server.controllers[0].drives[0].status =
                zolex_sim::DriveStatus::failed;
        }
    };
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
    ASSERT_FALSE(bench_.listener.log.empty());
    EXPECT_TRUE(bench_.listener.log.back().starts_with("warning: controller 1: ") &&
                bench_.listener.log.back().find("32:0") != std::string::npos)
        << bench_.listener.log.back();
}

/// What was not removed stands, and is not told as gone.
TEST_F(Apply, UtilityLiesOfWhatIsLost) {
    planOverTwoArrays();
    zolex_sim::Fault lie;
    lie.match = "-CfgLdDel";
    lie.occurrence = 2;
    lie.exitCode = 0;
    bench_.server.platform.server.faults.push_back(lie);
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(end.exitCode, 4);
    const auto now = std::find_if(end.details.begin(), end.details.end(), [](const auto& line) {
        return line.starts_with("now on controller 1: ");
    });
    ASSERT_NE(now, end.details.end());
    EXPECT_EQ(*now, "now on controller 1: hot spare 32:5 stands, array A, array B do not; "
                    "still there: LD 0");
}

TEST_F(Apply, ACodeOfTheFirmwareIsSaidInWords) {
    const auto refusal = [this](int code, const char* output) {
        refuseLines("-CfgLdAdd R1", code, output);
        Lines lines = endLines(bench_.apply());
        bench_.server.platform.server.faults.clear();
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("4: ") && !line.starts_with("help: ");
        });
        lines.resize(std::min(lines.size(), std::size_t{2}));
        return lines;
    };
    planOverTwoArrays();
    EXPECT_EQ(refusal(13, "Exit Code: 0x0d\n"),
              (Lines{"4: step 4 of 4 was refused (exit code 13: the drives are too small): create "
                     "B: RAID1 on 32:3 32:4",
                     "help: plan for what is there: zolexctl plan site.ini"}));
}

TEST_F(Apply, UtilityRefuses) {
    planOverTwoArrays();
    refuseLines("-CfgLdAdd R1", 38, "FW error description:\n  The drive is not free.\n");
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"4: step 4 of 4 was refused (exit code 38): create B: RAID1 on 32:3 32:4",
               "  UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:3,32:4 ]    ADRA   -strpsz 64  -a0",
               "  | FW error description:", "  |   The drive is not free.",
               "  now on controller 1: array A, hot spare 32:5 stand, array B does not; what the "
               "plan removes is gone",
               "  remains: step 4: create B: RAID1 on 32:3 32:4",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 4 of 4: exit code 38"}));
    EXPECT_EQ(bench_.events(),
              (Lines{"begin", "captured guard", "agreed", "step-started 1", "child 1",
                     "step-ended 1 accepted", "step-started 2", "child 2", "step-ended 2 accepted",
                     "step-started 3", "child 3", "step-ended 3 accepted", "step-started 4",
                     "child 4", "step-ended 4 refused 38", "captured step", "end 4"}));
    EXPECT_TRUE(bench_.system.locks.empty());
    // Its cause is mended.
    bench_.server.platform.server.faults.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.resume().exitCode, 3);
}

TEST_F(Apply, UtilityLies) {
    planOverTwoArrays();
    refuseLines("-CfgLdAdd", 0, "Exit Code: 0x26\nThe drive is not free.\n");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"5: what stands on controller 1 now is not what was planned",
                     "  Logical.1, missing: planned is RAID5 fill, strip 64 KB, adaptive "
                     "read-ahead: 32:0 32:1 32:2; found is none",
                     "  Logical.2, missing: planned is RAID1 fill, strip 64 KB, adaptive "
                     "read-ahead: 32:3 32:4; found is none",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 4 of 4: what stands is not what was planned"}));
    EXPECT_EQ(bench_.events().back(), "end 5");
    EXPECT_EQ(bench_.eventsOf<JournalVerified>().at(0).lines,
              (Lines{"controller 1: Logical.1, missing: planned is RAID5 fill, strip 64 KB, "
                     "adaptive read-ahead: 32:0 32:1 32:2; found is none",
                     "controller 1: Logical.2, missing: planned is RAID1 fill, strip 64 KB, "
                     "adaptive read-ahead: 32:3 32:4; found is none"}));
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
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"5: what stands on controller 1 now is not what was planned",
                     "  LD 1, drives: planned is 32:2 32:3 32:4; found is 32:2 32:3",
                     "  LD 1, raid_type: planned is RAID5; found is RAID0",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 3 of 3: what stands is not what was planned"}));
}

TEST_F(Apply, Careful) {
    planTwoArrays();
    bench_.terms.careful = true;
    refuseLines("-CfgLdAdd R5", 0, "done\n");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: what stands on controller 1 after step 2 of 3 is not what was planned",
                     "  Logical.2, missing: planned is RAID5 fill, strip 64 KB, adaptive "
                     "read-ahead: 32:2 32:3 32:4; found is none",
                     "  remains: step 3: make 32:5 a spare",
                     "help: zolexctl plan site.ini plans from what is there",
                     "controller 1: failed step 2 of 3: what stands is not what was planned"}));
    EXPECT_EQ(bench_.events(),
              (Lines{"begin", "captured guard", "step-started 1", "child 1",
                     "step-ended 1 accepted", "captured step", "step-started 2", "child 2",
                     "step-ended 2 accepted", "captured step", "end 4"}));
}

TEST_F(Apply, ChildCannotBeStarted) {
    planTwoArrays();
    bench_.system.notStarted = " R5 ";
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"4: step 2 of 3 could not be started: create B: RAID5 on 32:2 32:3 32:4",
               "  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]    ADRA   -strpsz 64  -a0",
               "  this step has changed nothing",
               "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
               "  remains: step 3: make 32:5 a spare",
               "help: zolexctl doctor tells what is missing",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 2 of 3: its command could not be started"}));
    bench_.system.notStarted.clear();
    bench_.system.throwing = " R5 ";
    EXPECT_EQ(
        endLines(bench_.resume()),
        (Lines{"4: step 2 of 3 could not be started: create B: RAID5 on 32:2 32:3 32:4",
               "  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]    ADRA   -strpsz 64  -a0",
               "  memory ran out", "  this step has changed nothing",
               "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
               "  remains: step 3: make 32:5 a spare",
               "help: zolexctl doctor tells what is missing",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 2 of 3: its command could not be started"}));
    bench_.system.throwing.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.events(), (Lines{"begin",
                                      "captured guard",
                                      "step-started 1",
                                      "child 1",
                                      "step-ended 1 accepted",
                                      "step-started 2",
                                      "step-ended 2 not started",
                                      "end 4",
                                      "captured resume",
                                      "step-started 2 attempt 2",
                                      "step-ended 2 not started",
                                      "end 4",
                                      "captured resume",
                                      "step-started 2 attempt 3",
                                      "child 2",
                                      "step-ended 2 accepted",
                                      "step-started 3",
                                      "child 3",
                                      "step-ended 3 accepted",
                                      "captured verify",
                                      "verified as-planned",
                                      "end 0"}));
}

TEST_F(Apply, FirstChildCannotBeStarted) {
    planTwoArrays();
    bench_.system.notStarted = " R1 ";
    const ApplyEnd end = bench_.apply();
    EXPECT_EQ(
        endLines(end),
        (Lines{"4: step 1 of 3 could not be started: create A: RAID1 on 32:0 32:1",
               "  UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]    ADRA   -strpsz 64  -a0",
               "  this step has changed nothing", "  remains: step 1: create A: RAID1 on 32:0 32:1",
               "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
               "  remains: step 3: make 32:5 a spare",
               "help: zolexctl doctor tells what is missing",
               "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
               "help: zolexctl plan site.ini plans from what is there",
               "controller 1: failed step 1 of 3: its command could not be started"}));
    EXPECT_FALSE(end.changedSomething);
}

TEST_F(Apply, LimitIsOver) {
    planTwoArrays();
    bench_.terms.stepLimit = std::chrono::seconds(100);
    bench_.system.hanging = " R5 ";
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"4: step 2 of 3 has not ended within 100 s: MEGACLI (pid 4712) is still running",
               "  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:2,32:3,32:4 ]    ADRA   -strpsz 64  -a0",
               "  it goes on by itself; what it does is not known yet",
               "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
               "  remains: step 3: make 32:5 a spare",
               "help: zolexctl apply --resume plan.journal.jsonl waits for it and goes on",
               "controller 1: failed step 2 of 3: it has not ended within 100 s"}));
    EXPECT_EQ(bench_.listener.log,
              (Lines{"as planned for", "still waiting: step 2, pid 4712, 30000 ms",
                     "still waiting: step 2, pid 4712, 60000 ms",
                     "still waiting: step 2, pid 4712, 90000 ms"}));
    EXPECT_EQ(bench_.events(), (Lines{"begin", "captured guard", "step-started 1", "child 1",
                                      "step-ended 1 accepted", "step-started 2", "child 2",
                                      "step-ended 2 not seen", "end 4"}));
    // The locks tell of it.
    ASSERT_EQ(bench_.system.locks.size(), 2U);
    for (const auto& [name, lock] : bench_.system.locks) {
        EXPECT_FALSE(lock.isHeld) << name;
        EXPECT_EQ(lock.child.pid, 4712U) << name;
    }
    // Nobody else begins beside it.
    bench_.listener.log.clear();
    test::JournalDisk kept = bench_.disk;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: a utility of an interrupted run is still running (pid 4712)",
                     "help: wait until it has ended, or go on with that run: zolexctl apply "
                     "--resume JOURNAL",
                     "controller 1: failed step 0 of 3: not begun"}));
    EXPECT_EQ(endLines(bench_.apply()).front().substr(0, 2), "3:");
    // Going on waits for it, as long again.
    bench_.disk = kept;
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"4: MEGACLI (pid 4712) of the interrupted run is still running after 100 s",
                     "  it goes on by itself; what it does is not known yet",
                     "help: zolexctl apply --resume plan.journal.jsonl waits for it and goes on",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.listener.log,
              (Lines{"warning: the lock of a run that is gone (pid 100) is taken over",
                     "Waiting for MEGACLI (pid 4712) of the interrupted run",
                     "still waiting: step 2, pid 4712, 30000 ms",
                     "still waiting: step 2, pid 4712, 60000 ms",
                     "still waiting: step 2, pid 4712, 90000 ms"}));
    // It comes to its end.
    bench_.system.endHanging();
    bench_.listener.log.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(
        bench_.events(),
        (Lines{"begin", "captured guard", "step-started 1", "child 1", "step-ended 1 accepted",
               "step-started 2", "child 2", "step-ended 2 not seen", "end 4", "captured resume",
               "step-ended 2 not seen", "step-found-done 2", "step-started 3", "child 3",
               "step-ended 3 accepted", "captured verify", "verified as-planned", "end 0"}));
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
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: interrupted before step 3 of 3", "  remains: step 3: make 32:5 a spare",
                     "help: zolexctl apply --resume plan.journal.jsonl goes on",
                     "controller 1: failed step 3 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.listener.log,
              (Lines{"as planned for", "still waiting: step 1, pid 4711, 30000 ms",
                     "interrupted: waiting for the command to end; once more leaves it alone",
                     "still waiting: step 2, pid 4712, 30000 ms"}));
    EXPECT_EQ(bench_.events(), (Lines{"begin", "captured guard", "step-started 1", "child 1",
                                      "step-ended 1 accepted", "step-started 2", "child 2",
                                      "step-ended 2 accepted", "end 4"}));
    bench_.system.onMoment = nullptr;
    bench_.system.isInterrupted = false;
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

TEST_F(Apply, InterruptedBetweenSteps) {
    planTwoArrays();
    interruptAt(bench_, "written step-ended 1");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: interrupted before step 2 of 3",
                     "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
                     "  remains: step 3: make 32:5 a spare",
                     "help: zolexctl apply --resume plan.journal.jsonl goes on",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    EXPECT_EQ(bench_.layout(), (Lines{"controller 1: RAID1 fill, strip 64 KB, write-through, "
                                      "adaptive read-ahead: 32:0 32:1"}));
}

/// What reads the controller gets the interruption, too.
TEST_F(Apply, InterruptedWhileAStepIsReadBack) {
    planTwoArrays();
    bench_.terms.careful = true;
    bool isDone = false;
    bench_.system.onMoment = [&](const std::string& moment) {
        isDone = isDone || moment.starts_with("written step-ended 1");
        if (isDone && moment.starts_with("listing") && !bench_.system.isInterrupted) {
            bench_.system.isInterrupted = true;
            refuseLines("-pdList", 130, "");
        }
    };
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"4: interrupted while what stands after step 1 of 3 was read",
                     "  remains: step 2: create B: RAID5 on 32:2 32:3 32:4",
                     "  remains: step 3: make 32:5 a spare",
                     "help: zolexctl apply --resume plan.journal.jsonl looks again and goes on",
                     "controller 1: failed step 2 of 3: stopped at this step"}));
    bench_.system.onMoment = nullptr;
    bench_.system.isInterrupted = false;
    bench_.server.platform.server.faults.clear();
    EXPECT_EQ(endLines(bench_.resume()), (Lines{"0: ", "controller 1: configured"}));
}

/// Help lines are there to be pasted.
TEST_F(Apply, AJournalWithBlanksInItsName) {
    planTwoArrays();
    bench_.terms.journalFile = "my plan.journal.jsonl";
    interruptAt(bench_, "written step-ended 1");
    EXPECT_EQ(bench_.apply().help,
              Lines{"zolexctl apply --resume \"my plan.journal.jsonl\" goes on"});
}

TEST_F(Apply, InterruptedAtTheLastStep) {
    planTwoArrays();
    interruptAt(bench_, "start UTIL.BAT MEGACLI -PDHSP");
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
}

TEST_F(Apply, AnotherRunIsUnderWay) {
    planTwoArrays();
    bench_.system.locks["plan.json.lock"] = {true, {99, "at 1"}, {}};
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"3: another run is under way on this machine (pid 99)", "  it holds plan.json.lock",
               "help: wait until it has ended; nothing was changed",
               "controller 1: failed step 0 of 3: not begun"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.system.locks.clear();
    // It is the same for plans of other controllers of the machine.
    Fingerprint machine = bench_.plan.fingerprint;
    machine.controllers.clear();
    const std::string name = std::string("/tmp") + (system::isWindows ? "\\" : "/") + "zolexctl-" +
                             identityHash(machine).substr(0, 16) + ".lock";
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
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{"2: plan.json.lock cannot be locked: no such folder",
               "help: every run makes this file: make room or rights for it, or remove what is in "
               "its place; nothing was changed",
               "controller 1: failed step 0 of 3: not begun"}));
    expectUntouched();
}

TEST_F(Apply, NoJournal) {
    planTwoArrays();
    bench_.isJournalRefused = true;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"2: the journal plan.journal.jsonl cannot be written: nothing was changed",
                     "help: make room for it, or name another place: --journal FILE",
                     "controller 1: failed step 0 of 3: not begun"}));
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
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"0: ", "controller 1: configured", "controller 2: configured"}));
    EXPECT_EQ(bench_.events(), (Lines{"begin", "captured guard", "step-started 1", "child 1",
                                      "step-ended 1 accepted", "captured step", "captured step",
                                      "step-started 2", "child 2", "step-ended 2 accepted",
                                      "captured verify", "verified as-planned", "end 0"}));
}

TEST_F(ApplyTwo, OneOfThem) {
    bench_.terms.controllers = {2};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 2: configured"}));
    bench_.disk = {};
    // What was done does not keep the other from being done by the same plan.
    bench_.terms.controllers = {1};
    EXPECT_EQ(endLines(bench_.apply()), (Lines{"0: ", "controller 1: configured"}));
    EXPECT_EQ(bench_.listener.log,
              (Lines{"as planned for",
                     "warning: controller 2: there now: LD 0, RAID5 fill, strip 64 KB, protected "
                     "write-back, adaptive read-ahead: 252:0 252:1 252:2 252:3 252:4 252:5",
                     "as planned for"}));
}

TEST_F(ApplyTwo, StopsAtTheFirst) {
    bench_.system.notStarted = bench_.plan.steps().front().command;
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{
            "4: step 1 of 2 could not be started: create A: RAID5 on 32:0 32:1 32:2 32:3 32:4 32:5",
            "  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2,32:3,32:4,32:5 ]   WB   ADRA   "
            "-strpsz 64  -a0",
            "  this step has changed nothing",
            "  remains: step 1, controller 1: create A: RAID5 on 32:0 32:1 32:2 32:3 32:4 32:5",
            "  remains: step 2, controller 2: create A: RAID5 on 252:0 252:1 252:2 252:3 252:4 "
            "252:5",
            "help: zolexctl doctor tells what is missing",
            "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 1 of 2: its command could not be started",
            "controller 2: failed step 0 of 2: not begun"}));
}

TEST_F(ApplyTwo, KeepsGoing) {
    bench_.terms.keepGoing = true;
    bench_.system.notStarted = bench_.plan.steps().front().command;
    EXPECT_EQ(
        endLines(bench_.apply()),
        (Lines{
            "4: step 1 of 2 could not be started: create A: RAID5 on 32:0 32:1 32:2 32:3 32:4 32:5",
            "  UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2,32:3,32:4,32:5 ]   WB   ADRA   "
            "-strpsz 64  -a0",
            "  this step has changed nothing",
            "  remains: step 1, controller 1: create A: RAID5 on 32:0 32:1 32:2 32:3 32:4 32:5",
            "help: zolexctl doctor tells what is missing",
            "help: zolexctl apply --resume plan.journal.jsonl goes on when its cause is mended",
            "help: zolexctl plan site.ini plans from what is there",
            "controller 1: failed step 1 of 2: its command could not be started",
            "controller 2: configured"}));
    EXPECT_EQ(bench_.events(),
              (Lines{"begin", "captured guard", "step-started 1", "step-ended 1 not started",
                     "captured step", "step-started 2", "child 2", "step-ended 2 accepted",
                     "captured verify", "verified as-planned", "end 4"}));
    bench_.system.notStarted.clear();
    EXPECT_EQ(endLines(bench_.resume()),
              (Lines{"0: ", "controller 1: configured", "controller 2: configured"}));
}

TEST_F(ApplyTwo, Skipped) {
    bench_.makePlan("[Policy.one]\nAppliesTo.1 = t:LSI-MegaRAID-8480\nArray_Defaults = 0%:0\n");
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"3: not every controller would be configured",
                     "  controller 2 is skipped: no policy fits: Policy.one asks for "
                     "t:LSI-MegaRAID-8480, and it is Kestrix-D4",
                     "help: leave it out with --controller N, or let it pass with --allow-skipped",
                     "controller 1: failed step 0 of 1: not begun",
                     "controller 2: skipped: no policy fits: Policy.one asks for "
                     "t:LSI-MegaRAID-8480, and it is Kestrix-D4"}));
    EXPECT_EQ(bench_.system.started, Lines{});
    bench_.terms.allowSkipped = true;
    EXPECT_EQ(endLines(bench_.apply()),
              (Lines{"0: ", "controller 1: configured",
                     "controller 2: skipped: no policy fits: Policy.one asks for "
                     "t:LSI-MegaRAID-8480, and it is Kestrix-D4"}));
}

} // namespace
} // namespace zolex::companion
