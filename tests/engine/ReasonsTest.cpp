#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

#include <array>

namespace zolex::test {
namespace {

const char* wordOf(Reason::Kind kind) {
    static constexpr std::array<const char*, 13> words{
        "matches",       "differs",    "gives nothing", "listed", "all remaining",
        "first free",    "like first", "largest last",  "given",  "policy default",
        "class default", "captured",   "left"};
    return words.at(static_cast<std::size_t>(kind));
}

/// The reasons of a plan for drives, one line each: index of the hot spare or array, drive, why,
/// entry, variance asked and size.
std::string drivesOf(const ControllerPlan& plan) {
    std::string text;
    for (const Reason& reason : plan.reasons) {
        if (reason.drive == DrivePosition()) {
            continue;
        }
        text += reason.subject == Reason::Subject::hotspare ? "H" : "A";
        text += std::to_string(reason.index) + " " +
                positionText(reason.drive.channel, reason.drive.id) + " " + wordOf(reason.kind) +
                " " + reason.keyword.c_str() + "/" + std::to_string(reason.asked) + "/" +
                std::to_string(reason.value) + "\n";
    }
    return text;
}

/// The reasons for one kind of value: index, why, entry, what is asked and what is planned.
std::string reasonValues(const ControllerPlan& plan, Reason::Subject subject) {
    std::string text;
    for (const Reason& reason : plan.reasons) {
        if (reason.subject == subject) {
            const bool isSize = subject == Reason::Subject::size;
            text += std::to_string(reason.index) + " " + wordOf(reason.kind) + " " +
                    reason.keyword.c_str() + "/" +
                    (isSize ? sizeText(reason.askedSize) : std::to_string(reason.asked)) + "/" +
                    std::to_string(reason.value) + "\n";
        }
    }
    return text;
}

ControllerPlan planOf(const Policy& policy, const std::vector<DriveAt>& drives,
                      std::int32_t type = 12) {
    Bench bench;
    return planOf(bench, *makeController(type, 2, drives), policy);
}

TEST(DriveReasons, OfAutomaticPlans) {
    Policy policy = makePolicy();
    policy.arrayDefaults.variancePercent = 5;
    const ControllerPlan plan = planOf(policy, drivesOfSizes({1000, 960, 3000, 3000}));
    EXPECT_EQ(drivesOf(plan), "H0 1:3 largest last /0/3000\n"
                              "A0 1:0 first free /0/1000\n"
                              "A0 1:1 like first /5/960\n"
                              "A1 1:2 first free /0/3000\n");
}

TEST(DriveReasons, OfLists) {
    Policy policy = policyWithArrays({arrayOfNumbers({2, 1}), arrayOfAll()});
    policy.hotspares = arrayOfPositions({{1, 2}});
    const ControllerPlan plan = planOf(policy, equalDrives(5, 1000));
    EXPECT_EQ(drivesOf(plan), "H0 1:2 listed Hotspares/0/1000\n"
                              "A0 1:1 listed Array.A/0/1000\n"
                              "A0 1:0 listed Array.A/0/1000\n"
                              "A1 1:3 all remaining Array.B/0/1000\n"
                              "A1 1:4 all remaining Array.B/0/1000\n");
}

TEST(DriveReasons, OfARefusedPlanEndBeforeTheFault) {
    const ControllerPlan plan =
        planOf(policyWithArrays({arrayOfNumbers({1, 9})}), equalDrives(2, 1000));
    EXPECT_EQ(plan.outcome, Outcome::refused);
    EXPECT_EQ(drivesOf(plan), "A0 1:0 listed Array.A/0/1000\n");
}

TEST(ValueReasons, OfTheNumberOfHotSpares) {
    struct Row {
        const char* name;
        std::int32_t count;
        const char* reason;
    };
    const std::vector<Row> rows{
        {"Policy.test", notGiven, "-1 class default /0/1\n"},
        {"Policy.test", 2, "-1 policy default Array_Defaults/2/2\n"},
        {"Policy.test", 0, "-1 policy default Array_Defaults/0/0\n"},
        {"Policy.AUTO-Kestrix-C1-1", notGiven, "-1 captured /0/0\n"},
        {"Policy.AUTO-Kestrix-C1-1", 1, "-1 policy default Array_Defaults/1/1\n"},
    };
    for (const Row& row : rows) {
        Policy policy = makePolicy(row.name);
        policy.customArrays = true; // as captured policies have it
        policy.arrays = {arrayOfNumbers({1, 2})};
        policy.arrayDefaults.hotspareCount = row.count;
        EXPECT_EQ(
            reasonValues(planOf(policy, equalDrives(5, 1000)), Reason::Subject::hotspareCount),
            row.reason)
            << row.name << ' ' << row.count;
    }
    Policy policy = makePolicy();
    policy.hotspares = arrayOfNumbers({2, 3});
    EXPECT_EQ(reasonValues(planOf(policy, equalDrives(5, 1000)), Reason::Subject::hotspareCount),
              "-1 given Hotspares/2/2\n");
}

TEST(ValueReasons, OfAutomaticLogicalDrives) {
    Policy policy = makePolicy();
    const ControllerPlan byClass = planOf(policy, equalDrives(3, 1000));
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::raidLevel), "0 class default /0/3\n");
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::size), "0 class default /FILL/-101\n");
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::writeCache), "0 class default /0/1\n");

    policy.logicalDefaults =
        LogicalSpecification{-1, driveSize(-50), raid_level::raid0, write_cache::off};
    const ControllerPlan byPolicy = planOf(policy, equalDrives(3, 1000));
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::raidLevel),
              "0 policy default Logical_Defaults/0/0\n");
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::size),
              "0 policy default Logical_Defaults/50%/1500\n");
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::writeCache),
              "0 policy default Logical_Defaults/0/0\n");
}

TEST(ValueReasons, OfLogicalDrivesOnTheList) {
    Policy policy = policyWithArrays({arrayOfNumbers({1, 2, 3})});
    policy.customLogicalDrives = true;
    // The second takes all but 100 MB of what the first leaves: it becomes FILL.
    policy.logicalDrives = {{0, driveSize(500), raid_level::raid0, write_cache::on},
                            {0, driveSize(2400), raid_level::raid0, write_cache::notGiven}};
    const ControllerPlan plan = planOf(policy, equalDrives(3, 1000));
    EXPECT_EQ(reasonValues(plan, Reason::Subject::raidLevel),
              "0 given Logical.1/0/0\n1 given Logical.2/0/0\n");
    EXPECT_EQ(reasonValues(plan, Reason::Subject::size),
              "0 given Logical.1/500/500\n1 given Logical.2/2400/-101\n");
    EXPECT_EQ(reasonValues(plan, Reason::Subject::writeCache),
              "0 given Logical.1/1/1\n1 left /0/2\n");

    policy.logicalDrives = {{0, {}, raid_level::notGiven, write_cache::notGiven}};
    EXPECT_EQ(reasonValues(planOf(policy, equalDrives(3, 1000)), Reason::Subject::raidLevel),
              "0 class default /0/3\n");
}

TEST(ValueReasons, OfTheSettings) {
    Policy policy = makePolicy();
    const ControllerPlan byClass = planOf(policy, equalDrives(3, 1000), 7);
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::stripeSize), "-1 class default /0/5\n");
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::readAhead), "-1 class default /0/1\n");
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::rebuildRate), "-1 class default /0/0\n");
    EXPECT_EQ(reasonValues(byClass, Reason::Subject::init), "-1 class default /0/0\n");

    policy.stripeSize = stripe::kb64;
    policy.readAhead = read_ahead::off;
    policy.rebuildRate = rebuild_rate::medium;
    policy.init = init_choice::build;
    const ControllerPlan byPolicy = planOf(policy, equalDrives(3, 1000), 7);
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::stripeSize), "-1 given StripeSize/3/3\n");
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::readAhead), "-1 given ReadAhead/2/2\n");
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::rebuildRate), "-1 given RebuildRate/1/1\n");
    EXPECT_EQ(reasonValues(byPolicy, Reason::Subject::init), "-1 given Init/1/1\n");
}

} // namespace
} // namespace zolex::test
