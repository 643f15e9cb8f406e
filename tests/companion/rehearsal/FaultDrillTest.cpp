#include "companion/rehearsal/FaultDrill.h"

#include "companion/machine/Fingerprint.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/HandMadePlan.h"
#include "companion/rehearsal/Rehearse.h"

#include <gtest/gtest.h>

namespace zolex::companion {
namespace {

using test::step;

TEST(ResumeAt, GoesByTheLayoutThatIsFound) {
    EXPECT_EQ(resumeAt("before", "before", "after", false), ResumeAt::again);
    EXPECT_EQ(resumeAt("after", "before", "after", false), ResumeAt::behind);
    EXPECT_EQ(resumeAt("after", "before", "after", true), ResumeAt::behind);
    EXPECT_EQ(resumeAt("other", "before", "after", true), ResumeAt::nowhere);
    EXPECT_EQ(resumeAt("same", "same", "same", true), ResumeAt::again);
    EXPECT_EQ(resumeAt("same", "same", "same", false), ResumeAt::nowhere);
}

/// A copy, steps, and the stages that they go through.
struct Course {
    explicit Course(std::string_view definition, std::vector<PlanStep> all)
        : steps(std::move(all)) {
        const Snapshot snapshot = test::snapshotOf(definition);
        const ControllerSnapshot& details = snapshot.details.front();
        MadeCopy made =
            copyController(details, snapshot.controllers.controller(details.index)->type());
        copy = std::move(made.copy);
        stages.push_back({copy->state(), layoutHash(copy->capture())});
        for (std::size_t i = 0; i < steps.size(); ++i) {
            steps[i].step = static_cast<std::int32_t>(i) + 1;
            EXPECT_TRUE(isAccepted(steps[i], copy->play(steps[i].argv)));
            stages.push_back({copy->state(), layoutHash(copy->capture())});
        }
    }
    DrillResult drill() { return drillFaults(*copy, steps, stages); }

    std::vector<PlanStep> steps;
    std::optional<VirtualCopy> copy;
    std::vector<RehearsalStage> stages;
};

TEST(FaultDrill, EveryStepOfAPlanCanFail) {
    Course course(test::megaRaid,
                  {step("UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT", true),
                   step("UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT", true),
                   step("UTIL.BAT MEGACLI -CfgLdAdd R5 [32:0,32:1,32:2] -sz1000 -a0"),
                   step("UTIL.BAT MEGACLI -CfgLdAdd R5 [32:0,32:1,32:2] -a0"),
                   step("UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:3 ] -a0"),
                   step("UTIL.BAT MEGACLI -CfgLdDel -L0 -a0")});
    const DrillResult result = course.drill();
    EXPECT_EQ(result.faultsTried, 6);
    EXPECT_EQ(result.resumesAsPlanned, 6);
    EXPECT_TRUE(result.notResumable.empty());
    // It ends where the rehearsal did.
    EXPECT_EQ(course.copy->state(), course.stages.back().state);
}

TEST(FaultDrill, CacheModesAreSetAgainWithoutHarm) {
    Course course("arcconf",
                  {step("UTIL.BAT ARCCONF CREATE 1 LOGICALDRIVE MAX 1 0 0 0 1 NOPROMPT"),
                   step("UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 1 ron NOPROMPT", true),
                   step("UTIL.BAT ARCCONF SETCACHE 1 LOGICALDRIVE 1 wt NOPROMPT", true)});
    EXPECT_EQ(course.stages[1].layout, course.stages[2].layout);
    EXPECT_NE(course.stages[2].layout, course.stages[3].layout);
    EXPECT_EQ(course.drill().resumesAsPlanned, 3);
}

// What is called repeatable and is not: the second time it is refused.
TEST(FaultDrill, AStepThatCannotBeRepeatedIsFound) {
    Course course(test::megaRaid, {step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:2] -a0", true),
                                   step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:3] -a0")});
    const DrillResult result = course.drill();
    EXPECT_EQ(result.faultsTried, 2);
    EXPECT_EQ(result.resumesAsPlanned, 1);
    EXPECT_EQ(result.notResumable, std::vector<std::int32_t>{1});
}

// QTCSEND takes a further logical drive each time: repeating it ends otherwise.
TEST(FaultDrill, AStepThatDoesMoreEachTimeIsFound) {
    Course course("qtcsend",
                  {step("UTIL.BAT QTCSEND SETCONFIG 1 DEFAULT NOPROMPT", true),
                   step("UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE NEWARRAY 100 0 1 0 NOPROMPT"),
                   step("UTIL.BAT QTCSEND CREATE 1 LOGICALDRIVE A 100 0 NOPROMPT", true)});
    EXPECT_EQ(course.drill().notResumable, std::vector<std::int32_t>{3});
    course.steps[2].isRepeatable = false;
    EXPECT_TRUE(course.drill().notResumable.empty());
}

// A layout that was not foreseen is no place to go on from.
TEST(FaultDrill, AnUnforeseenLayoutIsFound) {
    Course course(test::megaRaid, {step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:2] -a0")});
    course.stages[1] = {course.stages[0].state, "another"};
    EXPECT_EQ(course.drill().notResumable, std::vector<std::int32_t>{1});
}

TEST(FaultDrill, WhatCannotBeResumedIsWarnedOf) {
    const Snapshot snapshot = test::snapshotOf(test::megaRaid);
    MachinePlan plan =
        test::handMadePlan(snapshot, {step("UTIL.BAT MEGACLI -CfgLdAdd R0 [32:2] -a0", true),
                                      step("UTIL.BAT MEGACLI -CfgLdDel -L1 -a0")});
    rehearse(snapshot, plan);
    EXPECT_TRUE(plan.rehearsal.endsAsPlanned);
    EXPECT_EQ(plan.rehearsal.faultsTried, 2);
    EXPECT_EQ(plan.rehearsal.resumesAsPlanned, 1);
    ASSERT_EQ(plan.controllers.front().warnings.size(), 1U);
    const Finding& warning = plan.controllers.front().warnings.front();
    EXPECT_EQ(warning.code, "ZP243");
    EXPECT_EQ(warning.severity, Severity::warning);
    EXPECT_EQ(warning.summary, "a run that stops at step 1 could not be resumed");
}

} // namespace
} // namespace zolex::companion
