#include "policies/Policy.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

MatchValues machine() {
    return {"8840-4AU", "KQ1234", "Kestrix-C1", 2, 1, 6};
}

struct MatchCase {
    const char* what;
    AppliesTo entry;
    bool matches;
};

AppliesTo entryOf(const char* machineType, const char* serialNumber, const char* controllerType,
                  std::int32_t controllerNumber, std::int32_t scanOrder, std::int32_t drives,
                  bool all = false) {
    return {machineType, serialNumber, controllerType, controllerNumber, scanOrder, drives, all};
}

TEST(AppliesToTest, AllSpecifiersThatAreGivenMustHold) {
    const MatchCase cases[] = {
        {"machine type", entryOf("8840-4AU", "", "", -25, -25, -25), true},
        {"machine type, other case", entryOf("8840-4au", "", "", -25, -25, -25), true},
        {"other machine type", entryOf("8840-4A", "", "", -25, -25, -25), false},
        {"serial number, other case", entryOf("", "kq1234", "", -25, -25, -25), true},
        {"other serial number", entryOf("", "KQ1235", "", -25, -25, -25), false},
        {"controller type, other case", entryOf("", "", "KESTRIX-c1", -25, -25, -25), true},
        {"other controller type", entryOf("", "", "Kestrix-C2", -25, -25, -25), false},
        {"controller number", entryOf("", "", "", 2, -25, -25), true},
        {"other controller number", entryOf("", "", "", 1, -25, -25), false},
        {"scan order", entryOf("", "", "", -25, 1, -25), true},
        {"other scan order", entryOf("", "", "", -25, 2, -25), false},
        {"number of drives", entryOf("", "", "", -25, -25, 6), true},
        {"other number of drives", entryOf("", "", "", -25, -25, 5), false},
        {"numbers of 0 and below are not given", entryOf("", "", "Kestrix-C1", 0, -1, -25), true},
        {"all six", entryOf("8840-4AU", "KQ1234", "Kestrix-C1", 2, 1, 6), true},
        {"all six, the last one wrong", entryOf("8840-4AU", "KQ1234", "Kestrix-C1", 2, 1, 7),
         false},
        {"ALL", entryOf("", "", "", -25, -25, -25, true), true},
        {"ALL beside a specifier that holds", entryOf("", "", "Kestrix-C1", -25, -25, -25, true),
         true},
        {"ALL beside a specifier that does not", entryOf("", "", "Kestrix-C2", -25, -25, -25, true),
         false},
        {"nothing at all", entryOf("", "", "", -25, -25, -25), false},
        {"nothing at all, numbers 0", entryOf("", "", "", 0, 0, 0), false},
    };
    for (const MatchCase& c : cases) {
        EXPECT_EQ(c.entry.matches(machine()), c.matches) << c.what;
    }
}

TEST(PolicyListTest, TheFirstPolicyWithAMatchingEntryIsFound) {
    PolicyList list;
    Policy first;
    first.name = "Policy.first";
    first.appliesTo = {entryOf("other", "", "", -25, -25, -25)};
    Policy second;
    second.name = "Policy.second";
    second.appliesTo = {entryOf("other", "", "", -25, -25, -25), entryOf("", "", "", -25, -25, 6)};
    Policy third;
    third.name = "Policy.third";
    third.appliesTo = {entryOf("", "", "", -25, -25, -25, true)};
    ASSERT_TRUE(list.add(first));
    ASSERT_EQ(list.find(machine()), nullptr);
    ASSERT_TRUE(list.add(second));
    ASSERT_TRUE(list.add(third));
    ASSERT_NE(list.find(machine()), nullptr);
    EXPECT_EQ(list.find(machine())->name, "Policy.second");

    MatchValues other = machine();
    other.numberOfDrives = 7;
    EXPECT_EQ(list.find(other)->name, "Policy.third");
}

TEST(PolicyListTest, APolicyWithoutEntriesMatchesNothing) {
    PolicyList list;
    ASSERT_TRUE(list.add(Policy()));
    EXPECT_EQ(list.find(machine()), nullptr);
}

TEST(PolicyListTest, TakesAHundredPolicies) {
    PolicyList list;
    for (int i = 0; i < 100; ++i) {
        EXPECT_TRUE(list.add(Policy())) << i;
    }
    EXPECT_FALSE(list.add(Policy()));
    EXPECT_EQ(list.count(), 100U);
}

TEST(GeneratedPolicyTest, IsKnownByTheBeginningOfItsNameAndItsListedArrays) {
    Policy policy;
    policy.customArrays = true;
    for (const char* name : {"Policy.AUTO-Kestrix-C1-1", "policy.auto-x", "Policy.AUTO-"}) {
        policy.name = name;
        EXPECT_TRUE(policy.isGenerated()) << name;
        Policy automatic = policy;
        automatic.customArrays = false;
        EXPECT_FALSE(automatic.isGenerated()) << name;
    }
    for (const char* name : {"", "Policy.", "Policy.AUTO", "Policy.AUTO_1", "Policy.A.AUTO-1",
                             "Policy.default", " Policy.AUTO-1"}) {
        policy.name = name;
        EXPECT_FALSE(policy.isGenerated()) << name;
    }
    EXPECT_FALSE(makeDefaultPolicyList().policies()[0].isGenerated());
}

TEST(DefaultPolicyTest, AppliesToEveryControllerAndLeavesEverythingOpen) {
    const PolicyList list = makeDefaultPolicyList();
    ASSERT_EQ(list.count(), 1U);
    const Policy& policy = list.policies()[0];
    EXPECT_EQ(policy.name, "Policy.default");
    ASSERT_EQ(policy.appliesTo.size(), 1U);
    const AppliesTo& entry = policy.appliesTo[0];
    EXPECT_TRUE(entry.all);
    EXPECT_TRUE(entry.machineType.isEmpty());
    EXPECT_TRUE(entry.serialNumber.isEmpty());
    EXPECT_TRUE(entry.controllerType.isEmpty());
    EXPECT_EQ(entry.controllerNumber, -1);
    EXPECT_EQ(entry.scanOrder, -1);
    EXPECT_EQ(entry.numberOfDrives, -1);
    EXPECT_EQ(list.find(machine()), &policy);
    EXPECT_EQ(list.find(MatchValues()), &policy);

    EXPECT_FALSE(policy.stripeSize.has_value());
    EXPECT_FALSE(policy.customArrays);
    EXPECT_FALSE(policy.customLogicalDrives);
    EXPECT_FALSE(policy.logicalDefaults.has_value());
    EXPECT_FALSE(policy.hotspares.has_value());
    EXPECT_EQ(policy.arrayDefaults.variancePercent, 0);
    EXPECT_EQ(policy.arrayDefaults.hotspareCount, -25);
}

} // namespace
} // namespace zolex
