#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace zolex::test {
namespace {

struct SettingsRow {
    std::int32_t type;
    std::int32_t subtype;
    std::optional<std::int32_t> stripeSize;
    std::optional<std::int32_t> readAhead;
    std::optional<std::int32_t> rebuildRate;
    std::optional<std::int32_t> init;
    std::vector<std::int32_t> codes; // stripe size, read-ahead, rebuild rate, init
};

TEST(ControllerSettings, CodesOfThePolicyAndDefaultsOfTheClass) {
    const std::vector<SettingsRow> rows{
        {12, 2, {}, {}, {}, {}, {3, 0, 0, 0}},
        {1, 1, {}, {}, {}, {}, {0, 0, 0, 0}},
        {2, -1, {}, {}, {}, {}, {3, 1, 0, 0}},
        {7, 1, {}, {}, {}, {}, {5, 1, 0, 0}},
        {10, -1, {}, {}, {}, {}, {10, 0, 0, 0}},
        {4, 1, {}, {}, {}, {}, {3, 1, 0, 0}},
        {12,
         2,
         stripe::kb8,
         read_ahead::adaptive,
         rebuild_rate::high,
         init_choice::quick,
         {0, 0, 0, 0}},
        {12,
         2,
         stripe::kb16,
         read_ahead::on,
         rebuild_rate::medium,
         init_choice::build,
         {1, 1, 1, 1}},
        {12, 2, stripe::kb32, read_ahead::off, rebuild_rate::low, init_choice::build, {2, 2, 2, 1}},
        {12,
         2,
         stripe::kb64,
         read_ahead::adaptive,
         rebuild_rate::high,
         init_choice::quick,
         {3, 0, 0, 0}},
        {12,
         2,
         stripe::kb128,
         read_ahead::on,
         rebuild_rate::medium,
         init_choice::build,
         {4, 1, 1, 1}},
        {10,
         -1,
         stripe::kb256,
         read_ahead::off,
         rebuild_rate::low,
         init_choice::quick,
         {5, 2, 2, 0}},
        {10, -1, stripe::kb512, {}, {}, {}, {6, 0, 0, 0}},
        {10, -1, stripe::kb1024, {}, {}, {}, {7, 0, 0, 0}},
        {10, -1, stripe::kb2048, {}, {}, {}, {8, 0, 0, 0}},
        {10, -1, stripe::kb4096, {}, {}, {}, {9, 0, 0, 0}},
    };
    for (const SettingsRow& row : rows) {
        Bench bench;
        const auto controller = makeController(row.type, row.subtype, equalDrives(2));
        Policy policy = makePolicy();
        policy.stripeSize = row.stripeSize;
        policy.readAhead = row.readAhead;
        policy.rebuildRate = row.rebuildRate;
        policy.init = row.init;
        const std::ptrdiff_t at = &row - rows.data();
        ASSERT_TRUE(plan(bench, *controller, policy)) << at;
        const RAIDConfiguration& made = *controller->captured();
        EXPECT_EQ((std::vector<std::int32_t>{made.stripeSize, made.readAhead, made.rebuildRate,
                                             made.init}),
                  row.codes)
            << at;
        EXPECT_EQ(made.policyName, "Policy.test");
    }
}

TEST(ControllerSettings, StripeSizesThatTheClassDoesNotSupport) {
    struct Row {
        std::int32_t type;
        std::int32_t subtype;
        std::int32_t accepted;
        std::int32_t refused;
        const char* model;
    };
    const std::vector<Row> rows{
        {1, 1, stripe::kb64, stripe::kb128, "Kestrix-A1"},
        {12, 2, stripe::kb128, stripe::kb256, "Kestrix-C1"},
        {2, -1, stripe::kb64, stripe::kb128, "Kestrix-A8"},
        {7, 1, stripe::kb16, stripe::kb8, "Kestrix-B2"},
        {7, 1, stripe::kb1024, stripe::kb2048, "Kestrix-B2"},
        {11, 2, stripe::kb1024, stripe::kb4096, "Kestrix-B7"},
        {6, 1, stripe::kb32, stripe::kb16, "LSI-IDEal-RAID"},
        {4, 1, stripe::kb16, stripe::kb8, "Kestrix-A10"},
        {9, -1, stripe::kb64, stripe::kb128, "Kestrix-B4"},
    };
    for (const Row& row : rows) {
        Bench bench;
        Policy policy = makePolicy();
        policy.stripeSize = row.accepted;
        const auto taken = makeController(row.type, row.subtype, equalDrives(2));
        EXPECT_TRUE(plan(bench, *taken, policy)) << row.model;

        policy.stripeSize = row.refused;
        const auto controller = makeController(row.type, row.subtype, equalDrives(2));
        EXPECT_FALSE(plan(bench, *controller, policy)) << row.model;
        EXPECT_EQ(bench.takeOutput(), std::string("\n#### ERROR\n\tError in Policy.test -- ") +
                                          row.model +
                                          " does not support the stripe size specified.\n\n");
        EXPECT_EQ(describe(*controller), "no plan");
        EXPECT_EQ(bench.application.returnCode, 0);
        EXPECT_EQ(describeUsed(*controller), "1:0 1:1 ");
    }
}

/// Whether a run logs `line`.
bool logs(Bench& bench, RAIDController& controller, const Policy& policy, const char* line) {
    bench.application.printer().setVerbosity(level::traces);
    plan(bench, controller, policy);
    return bench.takeOutput().find(line) != std::string::npos;
}

TEST(CreateConfig, EveryExitHasItsNumber) {
    Bench bench;
    // (1): cannot be configured.
    const auto single = makeController(10, -1, equalDrives(1));
    EXPECT_TRUE(logs(bench, *single, makePolicy(), "Exiting RAIDConfigCreator::createConfig(1)\n"));
    EXPECT_EQ(describe(*single), "no plan");
    // (2): hot spares.
    Policy policy = makePolicy();
    policy.hotspares = arrayOfNumbers({9});
    const auto two = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *two, policy, "Exiting RAIDConfigCreator::createConfig(2)\n"));
    // (3): arrays.
    const auto three = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *three, policyWithArrays({arrayOfNumbers({3})}),
                     "Exiting RAIDConfigCreator::createConfig(3)\n"));
    // (4): logical drives.
    policy = makePolicy();
    policy.logicalDefaults = LogicalSpecification{-1, {}, raid_level::raid60, 2};
    const auto four = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *four, policy, "Exiting RAIDConfigCreator::createConfig(4)\n"));
    // (5): stripe size.
    policy = makePolicy();
    policy.stripeSize = stripe::kb4096;
    const auto five = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *five, policy, "Exiting RAIDConfigCreator::createConfig(5)\n"));
    // (9): planned.
    const auto nine = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *nine, makePolicy(), "Exiting RAIDConfigCreator::createConfig(9)\n"));
}

TEST(CreateConfig, AControllerThatCannotBeConfiguredKeepsNoConfiguration) {
    for (const std::int32_t type : {3, 4, 5, 8, 10}) {
        Bench bench;
        const auto controller = makeController(type, -1, equalDrives(1));
        controller->setCaptured(RAIDConfiguration());
        EXPECT_TRUE(plan(bench, *controller, makePolicy())) << type;
        EXPECT_EQ(controller->captured(), nullptr) << type;
        EXPECT_EQ(describeUsed(*controller), "") << type;
    }
    for (const std::int32_t type : {1, 2, 6, 7, 9, 11, 12}) {
        Bench bench;
        const auto controller = makeController(type, 1, equalDrives(1));
        EXPECT_TRUE(plan(bench, *controller, makePolicy())) << type;
        EXPECT_NE(controller->captured(), nullptr) << type;
        const auto none = makeController(type, 1);
        EXPECT_TRUE(plan(bench, *none, makePolicy())) << type;
        EXPECT_EQ(none->captured(), nullptr) << type;
    }
}

TEST(CreateConfig, AFailedPlanRemovesAnEarlierConfiguration) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(2));
    controller->setCaptured(RAIDConfiguration());
    Policy policy = makePolicy();
    policy.stripeSize = stripe::kb4096;
    EXPECT_FALSE(plan(bench, *controller, policy));
    EXPECT_EQ(controller->captured(), nullptr);
}

TEST(CreateConfig, OnePolicyPlansSeveralControllers) {
    Bench bench;
    const auto first = makeController(12, 2, equalDrives(3, 100));
    const auto second = makeController(12, 8, equalDrives(3, 100));
    const Policy policy = makePolicy();
    EXPECT_TRUE(plan(bench, *first, policy));
    EXPECT_TRUE(plan(bench, *second, policy));
    EXPECT_EQ(describe(*first), "A 1:0 1:1 1:2 =300; L A 5 FILL 1; ");
    EXPECT_EQ(describe(*second), "A 1:0 1:1 1:2 =300; L A 0 FILL 1; ");
}

TEST(CreateConfig, TheBuiltInPolicyLeavesEverythingToTheClass) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(5, 100));
    const PolicyList list = makeDefaultPolicyList();
    ASSERT_TRUE(plan(bench, *controller, list.policies().front()));
    EXPECT_EQ(describe(*controller), "H 1:4; A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; ");
    EXPECT_EQ(controller->captured()->policyName, "Policy.default");
}

TEST(CreateConfig, TheWholeTraceOfAPlan) {
    Bench bench;
    bench.application.printer().setVerbosity(level::traces);
    const auto controller = makeController(12, 2, equalDrives(2));
    ASSERT_TRUE(plan(bench, *controller, makePolicy()));
    EXPECT_EQ(bench.takeOutput(), "Entering RAIDConfigCreator::createConfig\n"
                                  "Entering RAIDConfigCreator::doHotspares\n"
                                  "Entering RAIDConfigCreator::doAUTOHotspares\n"
                                  "Exiting RAIDConfigCreator::doAUTOHotspares, returning true\n"
                                  "Exiting RAIDConfigCreator::doHotspares, returnValue=true\n"
                                  "Entering RAIDConfigCreator::doArrays\n"
                                  "Entering RAIDConfigCreator::doAUTOArrays\n"
                                  "Exiting RAIDConfigCreator::doAUTOArrays, returning true\n"
                                  "Exiting RAIDConfigCreator::doArrays, returnValue=true\n"
                                  "Entering RAIDConfigCreator::doLogicalDrives\n"
                                  "Entering RAIDConfigCreator::doAUTOLogicalDrives\n"
                                  "Entering RAIDConfigCreator::isRAIDLevelOK\n"
                                  "Number of drives=2, RAID level=1, Controller type=12\n"
                                  "Exiting RAIDConfigCreator::isRAIDLevelOK, returning true\n"
                                  "Exiting RAIDConfigCreator::doAUTOLogicalDrives, returning true\n"
                                  "Exiting RAIDConfigCreator::doLogicalDrives, returnValue=true\n"
                                  "Entering RAIDConfigCreator::doStripeSize\n"
                                  "Exiting RAIDConfigCreator::doStripeSize, returning true\n"
                                  "Entering RAIDConfigCreator::doReadAhead\n"
                                  "Exiting RAIDConfigCreator::doReadAhead, returning true\n"
                                  "Entering RAIDConfigCreator::doRebuildRate\n"
                                  "Exiting RAIDConfigCreator::doRebuildRate, returning true\n"
                                  "Entering RAIDConfigCreator::doInit\n"
                                  "Exiting RAIDConfigCreator::doInit, returning true\n"
                                  "Exiting RAIDConfigCreator::createConfig(9)\n");
    // Below verbosity 9 nothing of it is shown.
    bench.application.printer().setVerbosity(level::detail);
    const auto quiet = makeController(12, 2, equalDrives(2));
    ASSERT_TRUE(plan(bench, *quiet, makePolicy()));
    EXPECT_EQ(bench.takeOutput(), "");
}

TEST(CreateConfig, TheStripeSizeFaultIsTraced) {
    Bench bench;
    Policy policy = makePolicy();
    policy.stripeSize = stripe::kb4096;
    const auto controller = makeController(12, 2, equalDrives(2));
    EXPECT_TRUE(logs(bench, *controller, policy,
                     "Entering RAIDConfigCreator::doStripeSize\n\n#### ERROR\n\tError in "
                     "Policy.test -- Kestrix-C1 does not support the stripe size specified.\n\n"
                     "Exiting RAIDConfigCreator::doStripeSize, returning false\n"
                     "Exiting RAIDConfigCreator::createConfig(5)\n"));
}

} // namespace
} // namespace zolex::test
