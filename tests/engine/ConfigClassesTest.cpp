#include "engine/ConfigClasses.h"

#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex::test {
namespace {

const ConfigDefaults& rulesOf(const RAIDController& controller) {
    return *rulesFor(controller.type(), controller.subtype());
}

bool canConfigure(const RAIDController& controller) {
    return rulesOf(controller).canConfigure(controller.numberOfDrives());
}

std::string title(std::int32_t type, std::int32_t subtype) {
    return "type " + std::to_string(type) + ", subtype " + std::to_string(subtype);
}

// What a class answers by the number of drives on the controller, one character for 0 to 9 drives.
struct ByDriveCount {
    std::int32_t type;
    std::int32_t subtype;
    const char* hotspares;
    const char* canConfigure;
};

TEST(ConfigClasses, HotsparesAndConfigurabilityByNumberOfDrives) {
    // clang-format off
    const std::vector<ByDriveCount> rows{
        {12, -1, "0000111111", "0111111111"},
        {12,  1, "0000111111", "0111111111"},
        {12,  8, "0000111111", "0111111111"},
        {12, 11, "0000111111", "0111111111"},
        {12, 14, "0000111111", "0111111111"},
        { 6,  1, "0000000000", "0111111111"},
        { 5,  1, "0001111111", "0011111111"},
        { 5, -1, "0001111111", "0011111111"},
        {10, -1, "0000111111", "0011111111"},
        {10,  1, "0001111111", "0011111111"},
        {10,  2, "0000111111", "0011111111"},
        {10,  3, "0000111111", "0011111111"},
        { 4,  1, "0001010101", "0011111111"},
        { 3, -1, "0000000000", "0011111111"},
        { 8, -1, "0001010101", "0011111111"},
        { 9, -1, "0001111111", "0111111111"},
        { 2, -1, "0000000000", "0111111111"},
        { 2,  1, "0000000000", "0111111111"},
        { 7,  1, "0000111111", "0111111111"},
        { 7,  7, "0000111111", "0111111111"},
        {11,  2, "0000111111", "0111111111"},
        {11,  1, "0001010101", "0111111111"},
        {11, -1, "0000000000", "0111111111"},
        { 1, -1, "0000111111", "0111111111"},
        { 1,  7, "0000111111", "0111111111"},
    };
    // clang-format on
    for (const ByDriveCount& row : rows) {
        std::string hotspares;
        std::string configurable;
        for (std::int32_t drives = 0; drives < 10; ++drives) {
            const auto controller = makeController(row.type, row.subtype, equalDrives(drives));
            hotspares += std::to_string(
                rulesOf(*controller).defaultHotspareCount(controller->numberOfDrives()));
            configurable += canConfigure(*controller) ? "1" : "0";
        }
        EXPECT_EQ(hotspares, row.hotspares) << title(row.type, row.subtype);
        EXPECT_EQ(configurable, row.canConfigure) << title(row.type, row.subtype);
    }
}

// Channel 0 is not counted; a drive of size 0 is.
TEST(ConfigClasses, DrivesAreCountedAsTheControllerCountsThem) {
    const auto uncounted = makeController(12, 3, {{0, 0, 70000}, {0, 1, 70000}});
    EXPECT_FALSE(canConfigure(*uncounted));
    const auto empty = makeController(12, 3, {{1, 0, 0}});
    EXPECT_TRUE(canConfigure(*empty));
}

struct FixedAnswers {
    std::int32_t type;
    std::int32_t subtype;
    std::int32_t writeCache;
    std::int32_t readAhead;
    std::int32_t stripeSize;
    const char* stripeSizes; // one character for the codes -1 to 11
    const char* raidLevels;  // the codes of -1 to 14 that are supported
};

TEST(ConfigClasses, FixedDefaultsAndSupportedCodes) {
    const char* const mega5 = "0 1 3 7 8 ";
    const char* const mega6 = "0 1 3 6 7 8 9 ";
    // clang-format off
    const std::vector<FixedAnswers> rows{
        {12, -1, 1, 0,  3, "0111110000000", mega6},
        {12,  0, 1, 0,  3, "0111110000000", mega6},
        {12,  1, 1, 0,  3, "0111110000000", mega5},
        {12,  2, 1, 0,  3, "0111110000000", mega6},
        {12,  7, 1, 0,  3, "0111110000000", mega6},
        {12,  8, 1, 0,  3, "0111110000000", "0 1 7 "},
        {12,  9, 1, 0,  3, "0111110000000", mega5},
        {12, 10, 1, 0,  3, "0111110000000", mega6},
        {12, 11, 1, 0,  3, "0111110000000", mega5},
        {12, 12, 1, 0,  3, "0111110000000", mega6},
        {12, 14, 1, 0,  3, "0111110000000", mega6},
        { 6,  1, 2, 0,  3, "0001111111100", "0 1 "},
        { 5,  1, 2, 0, 10, "1111111111111", "1 "},
        { 5, -1, 2, 0, 10, "1111111111111", "1 "},
        {10,  1, 2, 0, 10, "1111111111111", "0 1 "},
        {10, -1, 2, 0, 10, "1111111111111", "0 1 2 "},
        {10,  2, 2, 0, 10, "1111111111111", "0 1 2 "},
        {10,  3, 2, 0, 10, "1111111111111", "0 1 2 "},
        { 4,  1, 2, 1,  3, "0011100000000", "0 1 7 "},
        { 3, -1, 2, 0,  3, "0011100000000", "0 1 "},
        { 8, -1, 2, 0,  3, "0011100000000", "0 1 7 "},
        { 9, -1, 2, 0,  3, "0011100000000", "0 1 7 10 13 "},
        { 2, -1, 2, 1,  3, "0111100000000", "0 1 3 7 10 "},
        { 7,  1, 2, 1,  5, "0011111110000", "0 1 2 3 5 6 7 8 9 10 "},
        { 7,  7, 2, 1,  5, "0011111110000", "0 1 2 3 5 6 7 8 9 10 "},
        {11,  2, 2, 1,  5, "0011111110000", "0 1 2 3 6 7 10 "},
        {11,  1, 2, 1,  5, "0011111110000", "0 1 7 10 "},
        {11, -1, 2, 1,  5, "0011111110000", ""},
        {11,  3, 2, 1,  5, "0011111110000", ""},
        { 1,  1, 2, 0,  0, "0111100000000", "0 1 2 3 4 5 "},
        { 1, -1, 2, 0,  0, "0111100000000", "0 1 2 3 4 5 "},
    };
    // clang-format on
    Bench bench;
    for (const FixedAnswers& row : rows) {
        const auto controller = makeController(row.type, row.subtype, equalDrives(4));
        const ConfigDefaults& rules = rulesOf(*controller);
        const std::string at = title(row.type, row.subtype);
        EXPECT_EQ(rules.writeCache, row.writeCache) << at;
        EXPECT_EQ(rules.readAhead, row.readAhead) << at;
        EXPECT_EQ(rules.stripeSize, row.stripeSize) << at;
        const auto two = makeController(row.type, row.subtype, equalDrives(2));
        const auto made = planOf(bench, *two, makePolicy()).layout;
        ASSERT_TRUE(made && made->logicalDrives().size() == 1) << at;
        EXPECT_EQ(made->logicalDrives().front().sizeMb, -101) << at;
        EXPECT_EQ(made->rebuildRate, 0) << at;
        std::string stripeSizes;
        for (std::int32_t code = -1; code <= 11; ++code) {
            stripeSizes += rules.stripeSizes.contains(code) ? "1" : "0";
        }
        EXPECT_EQ(stripeSizes, row.stripeSizes) << at;
        std::string raidLevels;
        for (std::int32_t code = -1; code <= 40; ++code) {
            raidLevels += rules.raidLevels.contains(code) ? std::to_string(code) + " " : "";
        }
        EXPECT_EQ(raidLevels, row.raidLevels) << at;
    }
}

struct DefaultLevels {
    std::int32_t type;
    std::int32_t subtype;
    const char* levels; // default RAID level code of an array of 0 to 9 drives
};

TEST(ConfigClasses, DefaultRAIDLevelByDrivesOfTheArray) {
    // clang-format off
    const std::vector<DefaultLevels> rows{
        {12, -1, "-1 0 1 3 3 3 3 3 3 3 "},
        {12,  1, "-1 0 1 3 3 3 3 3 3 3 "},
        {12,  8, "-1 0 1 0 7 7 7 7 7 7 "},
        {12,  9, "-1 0 1 3 3 3 3 3 3 3 "},
        {12, 11, "-1 0 1 3 3 3 3 3 3 3 "},
        {12, 13, "-1 0 1 3 3 3 3 3 3 3 "},
        { 6,  1, "0 0 1 0 0 0 0 0 0 0 "},
        { 5,  1, "-1 -1 1 1 1 1 1 1 1 1 "},
        { 5, -1, "-1 -1 1 1 1 1 1 1 1 1 "},
        {10,  1, "-1 -1 1 1 1 1 1 1 1 1 "},
        {10, -1, "-1 -1 1 2 2 2 2 2 2 2 "},
        {10,  3, "-1 -1 1 2 2 2 2 2 2 2 "},
        { 4,  1, "-1 -1 1 1 7 1 7 1 7 1 "},
        { 3, -1, "-1 -1 1 1 1 1 1 1 1 1 "},
        { 8, -1, "-1 -1 1 1 7 1 7 1 7 1 "},
        { 9, -1, "-1 10 1 1 7 1 7 1 7 1 "},
        {11,  1, "-1 10 1 10 7 10 7 10 7 10 "},
        {11,  2, "-1 10 1 3 3 3 3 3 3 3 "},
        {11, -1, "-1 10 1 3 3 3 3 3 3 3 "},
        { 2, -1, "-1 10 1 3 7 3 3 3 3 3 "},
        { 7,  1, "-1 10 1 3 3 3 3 3 3 3 "},
        { 7,  7, "-1 10 1 3 3 3 3 3 3 3 "},
        { 1, -1, "-1 0 1 3 3 3 3 3 3 3 "},
        { 1,  6, "-1 0 1 3 3 3 3 3 3 3 "},
    };
    // clang-format on
    for (const DefaultLevels& row : rows) {
        std::string levels;
        for (std::size_t drives = 0; drives < 10; ++drives) {
            const ConfigDefaults& rules = *rulesFor(row.type, row.subtype);
            levels += std::to_string(rules.defaultRAIDLevel(drives)) + " ";
        }
        EXPECT_EQ(levels, row.levels) << title(row.type, row.subtype);
    }
}

TEST(ConfigClasses, EveryTypeHasItsClassAndItsTrace) {
    struct Row {
        std::int32_t type;
        ConfigClass kind;
        const char* trace;
    };
    const std::vector<Row> rows{
        {1, ConfigClass::KXConfig, "Creating KXConfig\n"},
        {2, ConfigClass::KXTConfig, "Creating KXTConfig\n"},
        {3, ConfigClass::SATAConfig, "Creating SATAConfig\n"},
        {4, ConfigClass::SCSIConfig, "Creating SCSIConfig\n"},
        {5, ConfigClass::LSIConfig, "Creating LSIConfig\n"},
        {6, ConfigClass::IDEConfig, ""},
        {7, ConfigClass::KXTConfig, "Creating KXTConfig\n"},
        {8, ConfigClass::SATAConfig, "Creating SATAConfig\n"},
        {9, ConfigClass::SATAConfig, "Creating SATAConfig\n"},
        {10, ConfigClass::LSIConfig, "Creating LSIConfig\n"},
        {11, ConfigClass::KXTConfig, "Creating KXTConfig\n"},
        {12, ConfigClass::MEGAConfig, "Creating MEGAConfig\n"},
    };
    for (const Row& row : rows) {
        for (const std::int32_t subtype : {-1, 0, 1, 2, 8, 99}) {
            const ConfigDefaults* rules = rulesFor(row.type, subtype);
            ASSERT_NE(rules, nullptr) << title(row.type, subtype);
            EXPECT_EQ(rules->type, row.type);
            EXPECT_EQ(rules->configClass, row.kind) << title(row.type, subtype);
        }
        EXPECT_STREQ(creationTrace(row.kind), row.trace) << row.type;
    }
    for (const std::int32_t type : {-1, 0, 13, 100}) {
        EXPECT_EQ(rulesFor(type, -1), nullptr) << type;
    }
}

TEST(CodeSet, HoldsTheCodesGiven) {
    constexpr CodeSet some{0, 3, 31};
    EXPECT_TRUE(some.contains(0));
    EXPECT_TRUE(some.contains(31));
    EXPECT_FALSE(some.contains(1));
    EXPECT_FALSE(some.contains(-1));
    EXPECT_FALSE(some.contains(32));
    EXPECT_FALSE(CodeSet::range(2, 4).contains(1));
    EXPECT_TRUE(CodeSet::range(2, 4).contains(4));
    EXPECT_FALSE(CodeSet::range(2, 4).contains(5));
    EXPECT_TRUE(CodeSet::range(2, 4).with(9).contains(9));
    EXPECT_TRUE(CodeSet::every().contains(-1));
    EXPECT_TRUE(CodeSet::every().contains(1000));
}

} // namespace
} // namespace zolex::test
