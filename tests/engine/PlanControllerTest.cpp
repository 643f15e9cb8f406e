#include "engine/PlanController.h"

#include "engine/PlanningFixture.h"
#include "inventory/ControllerList.h"
#include "support/FaultList.h"
#include "support/ModeRun.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

const zolex::Machine thisMachine{"8837", "ABC1234"};

Policy policyForAll(Policy policy = makePolicy()) {
    AppliesTo entry;
    entry.all = true;
    policy.appliesTo.push_back(std::move(entry));
    return policy;
}

Policy policyForNumber(std::int32_t number, Policy policy) {
    AppliesTo entry;
    entry.controllerNumber = number;
    policy.appliesTo.push_back(std::move(entry));
    return policy;
}

/// Ten spares are more than a plan holds.
Policy policyWithTooManySpares() {
    Policy policy = makePolicy("Policy.spares");
    policy.arrayDefaults.hotspareCount = 10;
    return policy;
}

TEST(PlanController, EachOutcomeHasItsFields) {
    const PolicyList policies =
        listOf({policyForNumber(2, policyWithTooManySpares()), policyForNumber(1, makePolicy())});
    SilentReport report;
    const auto controller = makeController(12, 2, equalDrives(12, 1000));

    const ControllerPlan none = planController(*controller, 3, policies, thisMachine, report);
    EXPECT_EQ(none.outcome, Outcome::noPolicy);
    EXPECT_EQ(none.number, 3);
    EXPECT_EQ(none.policy, "");
    EXPECT_EQ(none.policyIndex, -1);
    EXPECT_FALSE(none.layout);
    EXPECT_FALSE(none.fault);

    const ControllerPlan planned = planController(*controller, 1, policies, thisMachine, report);
    EXPECT_EQ(planned.outcome, Outcome::planned);
    EXPECT_EQ(planned.policy, "Policy.test");
    EXPECT_EQ(planned.policyIndex, 1);
    ASSERT_TRUE(planned.layout);
    EXPECT_EQ(planned.layout->policyName, "Policy.test");
    EXPECT_FALSE(planned.fault);

    const ControllerPlan refused = planController(*controller, 2, policies, thisMachine, report);
    EXPECT_EQ(refused.outcome, Outcome::refused);
    EXPECT_EQ(refused.policy, "Policy.spares");
    EXPECT_EQ(refused.policyIndex, 0);
    EXPECT_FALSE(refused.layout);
    ASSERT_TRUE(refused.fault);
    EXPECT_EQ(refused.fault->kind, FaultKind::planTooManyHotspares);

    const auto single = makeController(10, -1, equalDrives(1));
    const ControllerPlan few = planController(*single, 1, policies, thisMachine, report);
    EXPECT_EQ(few.outcome, Outcome::tooFewDrives);
    EXPECT_EQ(few.policyIndex, 1);
    EXPECT_FALSE(few.layout);
    EXPECT_FALSE(few.fault);

    const auto unknown = makeController(13, -1, equalDrives(2));
    const ControllerPlan internal = planController(*unknown, 1, policies, thisMachine, report);
    EXPECT_EQ(internal.outcome, Outcome::refused);
    ASSERT_TRUE(internal.fault);
    EXPECT_EQ(internal.fault->kind, FaultKind::planControllerTypeUnknown);
    EXPECT_EQ(internal.fault->number, 13);
}

// Symptom: a second plan of the same record failed ("Not enough drives available"), because the
// drives of the first one stayed marked.
TEST(PlanController, PlanningTwiceGivesEqualPlansAndLeavesTheRecord) {
    Policy spares = makePolicy();
    spares.arrayDefaults.hotspareCount = 2;
    Policy listed = policyWithArrays({arrayOfNumbers({1, 2}), arrayOfAll()});
    listed.hotspares = arrayOfPositions({{1, 5}});
    for (const Policy& policy : {spares, listed, policyWithTooManySpares()}) {
        const PolicyList policies = listOf({policyForAll(policy)});
        const auto controller = makeController(12, 2, equalDrives(6, 1000));
        controller->setUsed(1, 4);
        const RAIDController before = *controller;
        FaultList report;
        const ControllerPlan first = planController(*controller, 1, policies, thisMachine, report);
        const ControllerPlan second = planController(*controller, 1, policies, thisMachine, report);
        EXPECT_TRUE(first == second) << policy.name.c_str();
        EXPECT_TRUE(*controller == before) << policy.name.c_str();
        EXPECT_EQ(first.outcome == Outcome::refused, report.faults.size() == 2U);
    }
}

TEST(PlanController, ReasonsAreLeftOutOnRequest) {
    const PolicyList policies = listOf({policyForAll()});
    const auto controller = makeController(12, 2, equalDrives(6, 1000));
    SilentReport report;
    ControllerPlan with = planController(*controller, 1, policies, thisMachine, report);
    const ControllerPlan without =
        planController(*controller, 1, policies, thisMachine, {.reasons = false}, report);
    EXPECT_FALSE(with.reasons.empty());
    EXPECT_TRUE(without.reasons.empty());
    with.reasons.clear();
    EXPECT_TRUE(with == without);
}

// All faults of all controllers are known before anything is done to one of them.
TEST(PlanControllers, GoOnAfterARefusal) {
    ControllerList controllers;
    for (int i = 0; i < 4; ++i) {
        controllers.add(*makeController(12, 2, equalDrives(12, 1000)));
    }
    Policy missing = policyWithArrays({arrayOfNumbers({1, 13})});
    const PolicyList policies =
        listOf({policyForNumber(1, policyWithTooManySpares()), policyForNumber(3, missing),
                policyForNumber(4, makePolicy())});
    FaultList report;
    const std::vector<ControllerPlan> plans =
        planControllers(controllers, policies, thisMachine, report);
    ASSERT_EQ(plans.size(), 4U);
    EXPECT_EQ(plans[0].outcome, Outcome::refused);
    EXPECT_EQ(plans[1].outcome, Outcome::noPolicy);
    EXPECT_EQ(plans[2].outcome, Outcome::refused);
    EXPECT_EQ(plans[3].outcome, Outcome::planned);
    ASSERT_EQ(report.faults.size(), 2U);
    EXPECT_EQ(report.faults[0].place.controller, 1);
    EXPECT_EQ(report.faults[1].place.controller, 3);
    EXPECT_TRUE(plans[0].fault == report.faults[0]);
    EXPECT_TRUE(plans[2].fault == report.faults[1]);
}

struct Refused {
    const char* title;
    Policy policy;
    FaultKind kind;
    const char* keyword;
    const char* wanted;
    std::int32_t number;
    const char* possible;
    std::int32_t code;
};

// Eight drives on a Kestrix-C1.
std::vector<Refused> refusedPolicies() {
    const auto custom = [](LogicalSpecification entry) {
        Policy policy = policyWithArrays({arrayOfNumbers({1, 2, 3})});
        policy.arrayDefaults.hotspareCount = 0;
        policy.customLogicalDrives = true;
        policy.logicalDrives = {{0, driveSize(100), raid_level::raid5, write_cache::notGiven},
                                entry};
        return policy;
    };
    const auto with = [](auto change) {
        Policy policy = makePolicy();
        policy.arrayDefaults.hotspareCount = 0;
        change(policy);
        return policy;
    };
    RaidArray many = arrayOfNumbers({1, 2});
    many.tooManyDrives = true;
    return {
        {"too few for spares", with([](Policy& p) { p.arrayDefaults.hotspareCount = 9; }),
         FaultKind::planHotspareShortage, "Array_Defaults", "", 9, "8", 12},
        {"no such spare", with([](Policy& p) { p.hotspares = arrayOfNumbers({9}); }),
         FaultKind::planHotspareDriveMissing, "Hotspares", "9", 0, "1 to 8", 12},
        {"no spare there", with([](Policy& p) {
             p.hotspares = arrayOfPositions({{2, 7}});
         }),
         FaultKind::planHotspareDriveMissing, "Hotspares", "2:7", 0, "1:0 to 1:7", 12},
        {"no such drive", policyWithArrays({arrayOfNumbers({1}), arrayOfNumbers({9})}),
         FaultKind::planArrayDriveMissing, "Array.B", "9", 0, "1 to 8", 13},
        {"no drive there", policyWithArrays({arrayOfPositions({{2, 7}})}),
         FaultKind::planArrayDriveMissing, "Array.A", "2:7", 0, "1:0 to 1:7", 13},
        {"a long list", policyWithArrays({many}), FaultKind::planTooManyArrayDrives, "Array.A", "",
         32, "", 13},
        {"no such array", custom({1, {}, raid_level::raid0, 2}), FaultKind::planArrayUnknown,
         "Logical.2", "B", 0, "A", 0},
        {"a level of others", custom({0, {}, raid_level::raid1E, 2}),
         FaultKind::planRaidLevelUnsupported, "Logical.2", "1E", 0, "0, 1, 5, 6, 10, 50, 60", 0},
        {"a level for other numbers", custom({0, {}, raid_level::raid6, 2}),
         FaultKind::planRaidLevelDriveCount, "Logical.2", "6", 3, "4 or more", 13},
        {"a default level for other numbers", with([](Policy& p) {
             p.logicalDefaults =
                 LogicalSpecification{-1, {}, raid_level::raid1, write_cache::notGiven};
             p.customArrays = true;
             p.arrays = {arrayOfNumbers({1, 2, 3})};
         }),
         FaultKind::planRaidLevelDriveCount, "Logical_Defaults", "1", 3, "2", 13},
        {"a stripe size of others", with([](Policy& p) { p.stripeSize = stripe::kb4096; }),
         FaultKind::planStripeSizeUnsupported, "StripeSize", "4096", 0, "8, 16, 32, 64, 128", 0},
    };
}

TEST(PlanController, FaultsAreRecords) {
    for (const Refused& row : refusedPolicies()) {
        const auto controller = makeController(12, 2, equalDrives(8, 1000));
        FaultList report;
        const ControllerPlan plan =
            planController(*controller, 5, listOf({policyForAll(row.policy)}), thisMachine, report);
        EXPECT_EQ(plan.outcome, Outcome::refused) << row.title;
        ASSERT_TRUE(plan.fault) << row.title;
        EXPECT_EQ(plan.fault->kind, row.kind) << row.title;
        EXPECT_EQ(plan.fault->place.section, "Policy.test") << row.title;
        EXPECT_EQ(plan.fault->place.model, "Kestrix-C1") << row.title;
        EXPECT_EQ(plan.fault->place.controller, 5) << row.title;
        EXPECT_STREQ(plan.fault->place.keyword.c_str(), row.keyword) << row.title;
        EXPECT_STREQ(plan.fault->wanted.c_str(), row.wanted) << row.title;
        EXPECT_EQ(plan.fault->number, row.number) << row.title;
        EXPECT_STREQ(plan.fault->possible.c_str(), row.possible) << row.title;
        EXPECT_EQ(planningCodeOf(plan.fault->kind), row.code) << row.title;
        ASSERT_EQ(report.faults.size(), 1U) << row.title;
        EXPECT_TRUE(report.faults.front() == *plan.fault) << row.title;
    }
}

// Where the drives that can be named are, in a policy's words.
TEST(PlanController, AFaultOfAMissingDriveNamesThoseThatExist) {
    struct Row {
        const char* title;
        std::vector<DriveAt> drives;
        const char* numbers;
        const char* positions;         ///< for an array
        const char* hotsparePositions; ///< of any size
    };
    const std::vector<Row> rows{
        {"one", {{1, 7, 100}}, "1", "1:7", "1:7"},
        {"two neighbours", {{1, 7, 100}, {1, 8, 100}}, "1 to 2", "1:7 to 1:8", "1:7 to 1:8"},
        {"channels and gaps",
         {{1, 0, 100},
          {1, 1, 100},
          {1, 2, 100},
          {1, 5, 100},
          {1, 35, 100},
          {2, 0, 100},
          {4, 34, 100},
          {4, 35, 100}},
         "1 to 8",
         "1:0 to 1:2, 1:5, 1:35, 2:0, 4:34 to 4:35",
         "1:0 to 1:2, 1:5, 1:35, 2:0, 4:34 to 4:35"},
        {"a drive of unknown size is a hot spare at most",
         {{1, 0, 100}, {1, 1, 0}, {1, 2, 100}},
         "1 to 2",
         "1:0, 1:2",
         "1:0 to 1:2"},
        {"no drive that has a size", {{3, 3, 0}}, "none", "none", "3:3"},
    };
    const auto possibleOf = [](const Row& row, const Policy& policy) {
        FaultList report;
        const ControllerPlan plan =
            planController(*makeController(12, 2, row.drives), 1, listOf({policyForAll(policy)}),
                           thisMachine, report);
        return plan.fault ? std::string(plan.fault->possible.view()) : "no fault";
    };
    for (const Row& row : rows) {
        Policy spare = makePolicy();
        spare.hotspares = arrayOfNumbers({9});
        EXPECT_EQ(possibleOf(row, spare), row.numbers) << row.title;
        spare.hotspares = arrayOfPositions({{2, 7}});
        EXPECT_EQ(possibleOf(row, spare), row.hotsparePositions) << row.title;
        Policy array = policyWithArrays({arrayOfNumbers({9})});
        array.arrayDefaults.hotspareCount = 0;
        EXPECT_EQ(possibleOf(row, array), row.numbers) << row.title;
        array.arrays = {arrayOfPositions({{2, 7}})};
        EXPECT_EQ(possibleOf(row, array), row.positions) << row.title;
    }
}

TEST(PlanController, AShortageOfHotsparesTellsHowManyDrivesAreFree) {
    for (const std::int32_t used : {0, 1, 3}) {
        const auto controller = makeController(12, 2, equalDrives(3, 1000));
        for (std::int32_t id = 0; id < used; ++id) {
            controller->setUsed(1, id);
        }
        Policy policy = makePolicy();
        policy.arrayDefaults.hotspareCount = 5;
        SilentReport report;
        const ControllerPlan plan =
            planController(*controller, 1, listOf({policyForAll(policy)}), thisMachine, report);
        ASSERT_TRUE(plan.fault);
        EXPECT_EQ(plan.fault->kind, FaultKind::planHotspareShortage);
        EXPECT_EQ(plan.fault->number, 5);
        EXPECT_EQ(plan.fault->possible, CString::fromInt(3 - used));
    }
}

// The stripe size of a plan is final: where it is "none", the utility has none.
TEST(PlanController, OnlyUtilitiesWithoutStripeSizesArePlannedWithoutOne) {
    for (std::int32_t type = controller_type::first; type <= controller_type::last; ++type) {
        SilentReport report;
        const auto controller = makeController(type, -1, equalDrives(2, 1000));
        const ControllerPlan plan =
            planController(*controller, 1, listOf({policyForAll()}), thisMachine, report);
        ASSERT_TRUE(plan.layout) << type;
        const bool hasNone = type == controller_type::lsiScsi || type == controller_type::lsiSas;
        EXPECT_EQ(plan.layout->stripeSize == stripe::none, hasNone) << type;
    }
}

/// A machine with one MEGACLI controller: a mirror of two drives, a hot spare, a free drive.
class MirroredMachine {
  public:
    MirroredMachine() {
        platform_.respond = [](const std::string& line) {
            const auto holds = [&line](const char* text) {
                return line.find(text) != std::string::npos;
            };
            return FakePlatform::ended(
                0, readTestData(holds("-LdPdInfo") ? "megacli-ldpdinfo-later.txt"
                                : holds("-pdList") ? "megacli-pdlist-later.txt"
                                                   : "megacli-adpallinfo.txt"));
        };
        auto controller = makeController(12, 2);
        controller->setScanOrder(1);
        controllers_.add(std::move(*controller));
    }

    /// The controller as a capture reads it.
    const RAIDController& capture(bool withLayout) {
        application_.settings.capture = withLayout;
        EXPECT_EQ(application_.captureConfiguration(controllers_), ExitCode::success);
        return *controllers_.controller(0);
    }

  private:
    FakePlatform platform_;
    ZOLEX application_{platform_};
    ControllerList controllers_;
};

// Symptom: after the layout had been read, its members were no longer planned.
TEST(PlanController, TheLayoutThatWasReadDoesNotMatter) {
    MirroredMachine withoutLayout;
    MirroredMachine withLayout;
    const RAIDController& plain = withoutLayout.capture(false);
    const RAIDController& captured = withLayout.capture(true);
    ASSERT_EQ(plain.captured(), nullptr);
    ASSERT_NE(captured.captured(), nullptr);
    ASSERT_EQ(captured.captured()->arrays().size(), 1U);

    const PolicyList policies = listOf({policyForAll()});
    SilentReport report;
    const ControllerPlan wanted = planController(plain, 1, policies, thisMachine, report);
    const ControllerPlan plan = planController(captured, 1, policies, thisMachine, report);
    ASSERT_TRUE(wanted.layout);
    EXPECT_EQ(wanted.layout->arrays().size(), 1U);
    EXPECT_EQ(wanted.layout->hotspares().size(), 1U);
    EXPECT_TRUE(plan == wanted);
}

} // namespace
} // namespace zolex::test
