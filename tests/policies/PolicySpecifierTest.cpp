#include "policies/PolicyTestSupport.h"
#include "policies/PolicyValidator.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using test::errorBlock;
using test::PolicyReading;

struct SpecifierRow {
    std::string lines;
    std::string expected;
};

std::string text(const CString& value) {
    return std::string(value.view());
}

std::string entryText(const AppliesTo& entry) {
    return "<m:" + text(entry.machineType) + " s:" + text(entry.serialNumber) +
           " t:" + text(entry.controllerType) + " c:" + std::to_string(entry.controllerNumber) +
           " o:" + std::to_string(entry.scanOrder) + " d:" + std::to_string(entry.numberOfDrives) +
           (entry.all ? " ALL>" : ">");
}

const SpecifierRow specifierRejects[] = {
    {"AppliesTo.2 = c:0", "Policy.A, AppliesTo.2 -- Invalid controller number specified:  0\n"},
    {"AppliesTo.2 = c:", "Policy.A, AppliesTo.2 -- Invalid controller number specified:  \n"},
    {"AppliesTo.2 = c: 1", "Policy.A, AppliesTo.2 -- Invalid controller number specified:   1\n"},
    {"AppliesTo.15 = C:1a", "Policy.A, AppliesTo.15 -- Invalid controller number specified:  1a\n"},
    {"AppliesTo.3 = c:1,o:-1", "Policy.A, AppliesTo.3 -- Invalid scan order:  -1\n"},
    {"AppliesTo.3 = t:Kestrix-Z1",
     "Policy.A, AppliesTo.3 -- Invalid controller type:  Kestrix-Z1\n"},
    {"AppliesTo.3 = t:kestrix-c1",
     "Policy.A, AppliesTo.3 -- Invalid controller type:  kestrix-c1\n"},
    {"AppliesTo.3 = t:", "Policy.A, AppliesTo.3 -- Invalid controller type:  \n"},
    {"AppliesTo.3 = d:x", "Policy.A, AppliesTo.3 -- Invalid number of drives specified:  x\n"},
    {"AppliesTo.3 = x:1", "Policy.A, AppliesTo.3 -- Invalid specifier:  x:1\n"},
    {"AppliesTo.3 = m", "Policy.A, AppliesTo.3 -- Invalid specifier:  m\n"},
    {"AppliesTo.3 = c :1", "Policy.A, AppliesTo.3 -- Invalid specifier:  c :1\n"},
    {"AppliesTo.3 = ALLE", "Policy.A, AppliesTo.3 -- Invalid specifier:  ALLE\n"},
    {"AppliesTo.3 =", "Policy.A, AppliesTo.3 -- Invalid specifier:  \n"},
    {"AppliesTo.3 = ALL,", "Policy.A, AppliesTo.3 -- Invalid specifier:  \n"},
    {"AppliesTo.3 = c:0,c:1", "Policy.A, AppliesTo.3 -- Invalid controller number specified:  0\n"},
};

TEST(PolicySpecifierTest, SpecifiersThatAreRefused) {
    for (const SpecifierRow& row : specifierRejects) {
        PolicyReading reading;
        EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1 = ALL\n" + row.lines + "\n"))
            << row.lines;
        EXPECT_EQ(reading.output(), errorBlock(row.expected)) << row.lines;
        EXPECT_EQ(reading.reader.policies(), nullptr) << row.lines;
    }
}

TEST(PolicySpecifierTest, AcceptedSpecifiers) {
    const SpecifierRow rows[] = {
        {"ALL", "<m: s: t: c:-25 o:-25 d:-25 ALL>"},
        {"all", "<m: s: t: c:-25 o:-25 d:-25 ALL>"},
        {"m:8840-4AU, s:KQ 1", "<m:8840-4AU s:KQ 1 t: c:-25 o:-25 d:-25>"},
        {"M: a:b", "<m: a:b s: t: c:-25 o:-25 d:-25>"},
        {"m:,t:Kestrix-C1", "<m: s: t:Kestrix-C1 c:-25 o:-25 d:-25>"},
        {"C:1,O:02,D:3", "<m: s: t: c:1 o:2 d:3>"},
        {"T:LSI-MegaRAID-8480,ALL", "<m: s: t:LSI-MegaRAID-8480 c:-25 o:-25 d:-25 ALL>"},
        {"c:1,t:Kestrix-A8,c:2,t:LSI-MegaRAID", "<m: s: t:LSI-MegaRAID c:2 o:-25 d:-25>"},
    };
    for (const SpecifierRow& row : rows) {
        PolicyReading reading;
        ASSERT_TRUE(reading.read("[Policy.A]\nAppliesTo.1=" + row.lines)) << reading.output();
        ASSERT_EQ(reading.policy().appliesTo.size(), 1U);
        EXPECT_EQ(entryText(reading.policy().appliesTo[0]), row.expected) << row.lines;
    }
}

TEST(PolicySpecifierTest, EntriesMayBeLeftOutBetweenTheFirstAndTheFifteenth) {
    PolicyReading reading;
    ASSERT_TRUE(reading.read("[Policy.A]\nAppliesTo.15=c:15\nAppliesTo.3=c:3\nAppliesTo.1=c:1\n"));
    ASSERT_EQ(reading.policy().appliesTo.size(), 3U);
    EXPECT_EQ(reading.policy().appliesTo[0].controllerNumber, 1);
    EXPECT_EQ(reading.policy().appliesTo[1].controllerNumber, 3);
    EXPECT_EQ(reading.policy().appliesTo[2].controllerNumber, 15);
}

TEST(PolicySpecifierTest, AnAppliesToThatReadsAsAbsentIsMissing) {
    PolicyReading reading;
    EXPECT_FALSE(reading.read("[Policy.A]\nAppliesTo.1 = ^~\n"));
    EXPECT_EQ(reading.output(), errorBlock("Policy.A -- Each policy must have an AppliesTo.1\n"));
}

} // namespace
} // namespace zolex
