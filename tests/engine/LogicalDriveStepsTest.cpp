#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

constexpr const char* noDriveLine =
    "Not enough same size drives to accommodate requested configuration\n";

LogicalSpecification specification(std::int32_t arrayIndex, std::int32_t size,
                                   std::int32_t raidLevel,
                                   std::int32_t writeCache = write_cache::notGiven) {
    return {arrayIndex, driveSize(size), raidLevel, writeCache};
}

/// One array of the drives 1 to `drives`, automatic logical drives with these defaults.
Policy policyWithDefaults(std::int32_t drives, std::int32_t size, std::int32_t raidLevel,
                          std::int32_t writeCache = write_cache::notGiven) {
    Policy policy = policyWithArrays({arrayOfNumbers(numbersTo(drives))});
    policy.arrayDefaults.hotspareCount = 0;
    policy.logicalDefaults = specification(-1, size, raidLevel, writeCache);
    return policy;
}

/// One array of the drives 1 to `drives`, with these logical drives.
Policy policyWithLogicalDrives(std::int32_t drives,
                               std::vector<LogicalSpecification> logicalDrives) {
    Policy policy = policyWithArrays({arrayOfNumbers(numbersTo(drives))});
    policy.arrayDefaults.hotspareCount = 0;
    policy.customLogicalDrives = true;
    policy.logicalDrives = std::move(logicalDrives);
    return policy;
}

// One character for each number of drives from 1 to 12: whether the level takes it.
struct AcceptedCounts {
    std::int32_t type;
    std::int32_t raidLevel;
    const char* accepted;
};

TEST(IsRAIDLevelOK, NumbersOfDrives) {
    // clang-format off
    const std::vector<AcceptedCounts> rows{
        { 3,  0, "011111111111"},
        { 4,  0, "111100000000"},
        {10,  0, "111111111100"},
        { 1,  0, "111111111111"},
        { 2,  0, "111111111111"},
        { 5,  0, "111111111111"},
        { 6,  0, "111111111111"},
        { 7,  0, "111111111111"},
        { 8,  0, "111111111111"},
        { 9,  0, "111111111111"},
        {11,  0, "111111111111"},
        {12,  0, "111111111111"},
        {12,  1, "010000000000"},
        { 4,  1, "010000000000"},
        {12,  2, "001111111111"},
        {10,  2, "001111111111"},
        {12,  3, "001111111111"},
        {12,  4, "000111111111"},
        {12,  5, "000111111111"},
        {12,  6, "000111111111"},
        {12,  7, "000111111111"},
        { 8,  7, "000111111111"},
        {12,  8, "000001010101"},
        { 7,  8, "000001010101"},
        {12,  9, "000000010101"},
        {12, 10, "111111111111"},
        { 9, 10, "111111111111"},
        {12, 11, "000000000000"},
        {12, 13, "000000000000"},
        { 9, 13, "000000000000"},
        {12, 14, "000000000000"},
        {12, -1, "000000000000"},
        {12, -7, "000000000000"},
    };
    // clang-format on
    for (const AcceptedCounts& row : rows) {
        std::string accepted;
        for (std::int32_t drives = 1; drives <= 12; ++drives) {
            Bench bench;
            const auto controller = makeController(row.type, -1, equalDrives(12, 1000));
            accepted += plan(bench, *controller, policyWithDefaults(drives, -101, row.raidLevel))
                            ? "1"
                            : "0";
        }
        EXPECT_EQ(accepted, row.accepted) << "type " << row.type << ", level " << row.raidLevel;
    }
}

TEST(IsRAIDLevelOK, ARefusalIsReported) {
    Bench bench;
    bench.application.printer().setVerbosity(level::shortage);
    const auto controller = makeController(12, 2, equalDrives(8, 1000));
    Policy policy = policyWithDefaults(7, -101, raid_level::raid50);
    EXPECT_FALSE(plan(bench, *controller, policy));
    EXPECT_EQ(bench.takeOutput(),
              std::string("\n#### ERROR\n\tCould not use Policy.test to configure Kestrix-C1 "
                          "controller.\nThe number of drives in the Array.A cannot accommodate "
                          "the RAID level specified.\n\n") +
                  noDriveLine);
    EXPECT_EQ(bench.application.returnCode, 13);
    EXPECT_EQ(describe(*controller), "no plan");
    EXPECT_EQ(describeUsed(*controller), "1:0 1:1 1:2 1:3 1:4 1:5 1:6 ");

    // The letter is that of the array at hand; below verbosity 1 the error block stands alone.
    bench.application.printer().setVerbosity(level::always);
    const auto second = makeController(12, 2, equalDrives(3, 1000));
    policy.arrays = {arrayOfNumbers({1, 2}), arrayOfNumbers({3})};
    policy.logicalDefaults->raidLevel = raid_level::raid1;
    EXPECT_FALSE(plan(bench, *second, policy));
    EXPECT_EQ(bench.takeOutput(),
              "\n#### ERROR\n\tCould not use Policy.test to configure Kestrix-C1 controller.\nThe "
              "number of drives in the Array.B cannot accommodate the RAID level specified.\n\n");
}

TEST(IsRAIDLevelOK, NoLevelFitsOneDriveOfLsi) {
    Bench bench;
    const auto controller = makeController(10, -1, equalDrives(2, 1000));
    Policy policy = policyWithArrays({arrayOfNumbers({1})});
    EXPECT_FALSE(plan(bench, *controller, policy));
    EXPECT_EQ(bench.application.returnCode, 13);
}

TEST(AutoLogicalDrives, DefaultsOfThePolicyAndOfTheClass) {
    struct Row {
        const char* title;
        std::int32_t type;
        LogicalSpecification defaults;
        const char* drive;
    };
    const std::vector<Row> rows{
        {"everything given", 12, specification(-1, 500, raid_level::raid0, write_cache::off),
         "L A 0 500 0; "},
        {"level left to the class", 12, specification(-1, 500, raid_level::notGiven, 1),
         "L A 5 500 1; "},
        {"write cache left to the class", 12,
         specification(-1, 500, raid_level::raid0, write_cache::notGiven), "L A 0 500 1; "},
        {"a class without a write-cache mode", 1,
         specification(-1, 500, raid_level::raid0, write_cache::notGiven), "L A 0 500 2; "},
        {"FILL", 12, specification(-1, -101, raid_level::raid5), "L A 5 FILL 1; "},
        {"levels that the class does not support are planned all the same", 1,
         specification(-1, -101, raid_level::volume), "L A VOLUME FILL 2; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(row.type, -1, equalDrives(3, 1000));
        Policy policy = policyWithDefaults(3, -101, raid_level::raid0);
        policy.logicalDefaults = row.defaults;
        EXPECT_TRUE(plan(bench, *controller, policy)) << row.title;
        EXPECT_EQ(describe(*controller), std::string("A 1:0 1:1 1:2 =3000; ") + row.drive)
            << row.title;
    }
}

struct Sized {
    std::int32_t drives;
    std::int32_t driveMb;
    std::int32_t raidLevel;
    std::int32_t asked;
    const char* planned;
};

// Percentages are of the usable capacity, in whole MB; what is within 139 MB of the rest is FILL.
TEST(LogicalDriveSize, PercentagesAndTheRest) {
    // clang-format off
    const std::vector<Sized> rows{
        {4,    1000, raid_level::raid5,  -50, "1500"},      // 0.75 of 4000
        {4,    1000, raid_level::raid10, -50, "1000"},
        {2,    1000, raid_level::raid1,  -50, "500"},
        {6,    1000, raid_level::raid50, -50, "2000"},      // 4/6
        {8,    1000, raid_level::raid60, -25, "1000"},      // 4/8
        {4,    1000, raid_level::raid6,  -75, "1500"},
        {4,    1000, raid_level::raid5E, -10, "200"},
        {4,    1000, raid_level::raid0,   -1, "40"},
        {1,    1150, raid_level::raid0,  -33, "380"},       // 379.5 is rounded up
        {1,    1149, raid_level::raid0,  -33, "379"},       // 379.17
        {4,    1000, raid_level::raid0, -100, "FILL"},
        {4,    1000, raid_level::raid0,  -97, "FILL"},      // 3880 of 4000
        {4,    1000, raid_level::raid0,  -96, "3840"},      // 160 left
        {1,     138, raid_level::raid0,   -1, "FILL"},
        {1,     140, raid_level::raid0,   -1, "FILL"},      // 1 of 140
        {1,     141, raid_level::raid0,   -1, "1"},
        // 2/3 in single precision is 0.666666686534882: three drives of 100000000 MB give
        // 200000005.96 MB.
        {3, 100000000, raid_level::raid5, -50, "100000003"},
        {32, 2147483647, raid_level::raid0, -50, "2147483647"},
        // Sizes in MB.
        {2,    1000, raid_level::raid0, 1860, "1860"},
        {2,    1000, raid_level::raid0, 1861, "FILL"},
        {2,    1000, raid_level::raid0, 2000, "FILL"},
        {2,    1000, raid_level::raid0, 2139, "FILL"},
        {2,    1000, raid_level::raid0, 2140, "2140"},
        {2,    1000, raid_level::raid1,  860, "860"},
        {2,    1000, raid_level::raid1,  861, "FILL"},
        {2,    1000, raid_level::raid0,    1, "1"},
        {2,    1000, raid_level::raid0, -101, "FILL"},
    };
    // clang-format on
    for (const Sized& row : rows) {
        const std::string at = std::to_string(row.drives) + " x " + std::to_string(row.driveMb) +
                               ", " + raidLevelWord(row.raidLevel) + ", " +
                               std::to_string(row.asked);
        const std::string expected =
            std::string("L A ") + raidLevelWord(row.raidLevel) + " " + row.planned + " 2; ";
        Bench bench;
        const std::int32_t type = row.raidLevel == raid_level::raid5E ? 1 : 7;
        const auto automatic = makeController(type, 1, equalDrives(row.drives, row.driveMb));
        EXPECT_TRUE(
            plan(bench, *automatic, policyWithDefaults(row.drives, row.asked, row.raidLevel)))
            << at;
        EXPECT_TRUE(describe(*automatic).ends_with(expected)) << at << ": " << describe(*automatic);
        const auto custom = makeController(type, 1, equalDrives(row.drives, row.driveMb));
        EXPECT_TRUE(
            plan(bench, *custom,
                 policyWithLogicalDrives(row.drives, {specification(0, row.asked, row.raidLevel)})))
            << at;
        EXPECT_TRUE(describe(*custom).ends_with(expected)) << at << ": " << describe(*custom);
    }
}

TEST(LogicalDriveSize, TheWholeOfAGreatArrayIsFILL) {
    // Symptom: 100% of an array of more than 2147483647 MB left what is beyond that unused.
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 1000000000));
    ASSERT_TRUE(plan(bench, *controller, policyWithDefaults(3, -100, raid_level::raid0)));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 1:2 =3000000000; L A 0 FILL 1; ");
}

TEST(LogicalDriveSize, WhatIsLeftCountsEachDriveWithItsOwnFraction) {
    struct Row {
        const char* title;
        std::vector<LogicalSpecification> drives;
        const char* planned;
    };
    // Four drives of 1000 MB.
    const std::vector<Row> rows{
        {"1500 MB of RAID 5 take 2000 raw MB, which leaves 1000 MB of RAID 10",
         {specification(0, 1500, raid_level::raid5), specification(0, 860, raid_level::raid10)},
         "L A 5 1500 2; L A 10 860 2; "},
        {"139 below",
         {specification(0, 1500, raid_level::raid5), specification(0, 861, raid_level::raid10)},
         "L A 5 1500 2; L A 10 FILL 2; "},
        {"139 above",
         {specification(0, 1500, raid_level::raid5), specification(0, 1139, raid_level::raid10)},
         "L A 5 1500 2; L A 10 FILL 2; "},
        {"140 above",
         {specification(0, 1500, raid_level::raid5), specification(0, 1140, raid_level::raid10)},
         "L A 5 1500 2; L A 10 1140 2; "},
        {"percentages are of the whole array",
         {specification(0, -50, raid_level::raid0), specification(0, -50, raid_level::raid0)},
         "L A 0 2000 2; L A 0 FILL 2; "},
        {"three drives",
         {specification(0, 1000, raid_level::raid0), specification(0, 1000, raid_level::raid0),
          specification(0, 1900, raid_level::raid0)},
         "L A 0 1000 2; L A 0 1000 2; L A 0 FILL 2; "},
        {"after a FILL drive nothing is left",
         {specification(0, -101, raid_level::raid0), specification(0, 139, raid_level::raid0),
          specification(0, 140, raid_level::raid0)},
         "L A 0 FILL 2; L A 0 FILL 2; L A 0 140 2; "},
        {"a size that became FILL counts as one",
         {specification(0, 3900, raid_level::raid0), specification(0, 100, raid_level::raid0)},
         "L A 0 FILL 2; L A 0 FILL 2; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(12, 2, equalDrives(4, 1000));
        EXPECT_TRUE(plan(bench, *controller, policyWithLogicalDrives(4, row.drives))) << row.title;
        EXPECT_EQ(describe(*controller), std::string("A 1:0 1:1 1:2 1:3 =4000; ") + row.planned)
            << row.title;
    }
}

TEST(LogicalDriveSize, ArraysAreCountedApart) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(4, 1000));
    Policy policy = policyWithLogicalDrives(2, {specification(0, 1000, raid_level::raid0),
                                                specification(1, 1000, raid_level::raid0),
                                                specification(0, 1000, raid_level::raid0)});
    policy.arrays.push_back(arrayOfNumbers({3, 4}));
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 =2000; A 1:2 1:3 =2000; L A 0 1000 2; L B 0 1000 "
                                     "2; L A 0 FILL 2; ");
}

TEST(CustomLogicalDrives, LevelAndWriteCacheOfTheEntry) {
    struct Row {
        std::int32_t type;
        LogicalSpecification entry;
        const char* drive;
    };
    // The write-cache mode is the entry's own, even where it is left open.
    const std::vector<Row> rows{
        {12, specification(0, -101, raid_level::notGiven), "L A 5 FILL 2; "},
        {12, specification(0, -101, raid_level::raid0, write_cache::off), "L A 0 FILL 0; "},
        {12, specification(0, -101, raid_level::raid0, write_cache::on), "L A 0 FILL 1; "},
        {1, specification(0, 500, raid_level::notGiven), "L A 5 500 2; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(row.type, -1, equalDrives(3, 1000));
        EXPECT_TRUE(plan(bench, *controller, policyWithLogicalDrives(3, {row.entry})));
        EXPECT_EQ(describe(*controller), std::string("A 1:0 1:1 1:2 =3000; ") + row.drive);
    }
}

TEST(CustomLogicalDrives, NoEntryLeavesNoLogicalDrive) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(2, 1000));
    EXPECT_TRUE(plan(bench, *controller, policyWithLogicalDrives(2, {})));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 =2000; ");
}

TEST(CustomLogicalDrives, EntriesOfAnAutomaticModeAreNotPlanned) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(2, 1000));
    Policy policy = policyWithLogicalDrives(2, {specification(0, 500, raid_level::raid0)});
    policy.customLogicalDrives = false;
    EXPECT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 =2000; L A 1 FILL 1; ");
}

/// Output of a plan that fails, at verbosity 1.
std::string failure(Bench& bench, RAIDController& controller, const Policy& policy) {
    bench.application.printer().setVerbosity(level::shortage);
    EXPECT_FALSE(plan(bench, controller, policy));
    EXPECT_EQ(describe(controller), "no plan");
    return bench.takeOutput();
}

TEST(CustomLogicalDrives, AnArrayThatIsNotThere) {
    for (const auto& [index, letter] : {std::pair<std::int32_t, char>{1, 'B'}, {16, 'Q'}}) {
        Bench bench;
        const auto controller = makeController(12, 2, equalDrives(3, 1000));
        EXPECT_EQ(
            failure(bench, *controller,
                    policyWithLogicalDrives(3, {specification(0, 500, raid_level::raid0),
                                                specification(index, 500, raid_level::raid0)})),
            std::string("\n#### ERROR\n\tPolicy.test -- Invalid array letter specified:  ") +
                letter + "\n\n");
        EXPECT_EQ(bench.application.returnCode, 0);
    }
}

TEST(CustomLogicalDrives, ALevelThatTheClassDoesNotSupport) {
    struct Row {
        std::int32_t type;
        std::int32_t subtype;
        std::int32_t raidLevel;
        const char* model;
    };
    const std::vector<Row> rows{
        {12, 8, raid_level::raid5, "Kestrix-C7"},
        {12, 9, raid_level::raid6, "Kestrix-C8"},
        {12, 2, raid_level::raid1E, "Kestrix-C1"},
        {5, 1, raid_level::raid0, "LSI-SCSI-RAID"},
        {11, -1, raid_level::notGiven, "Kestrix controller"},
        {12, 2, raid_level::simpleVolume, "Kestrix-C1"},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(row.type, row.subtype, equalDrives(4, 1000));
        EXPECT_EQ(failure(bench, *controller,
                          policyWithLogicalDrives(4, {specification(0, -101, row.raidLevel)})),
                  std::string("\n#### ERROR\n\tError in Policy.test -- ") + row.model +
                      " does not support the RAID level specified.\n\n");
        EXPECT_EQ(bench.application.returnCode, 0);
    }
}

TEST(CustomLogicalDrives, Subtype9TakesRAID5AndSubtype8PlansRAID0OnThreeDrives) {
    Bench bench;
    const auto nine = makeController(12, 9, equalDrives(3, 1000));
    EXPECT_TRUE(plan(bench, *nine,
                     policyWithLogicalDrives(3, {specification(0, -101, raid_level::raid5)})));
    const auto eight = makeController(12, 8, equalDrives(3, 1000));
    EXPECT_TRUE(plan(bench, *eight,
                     policyWithLogicalDrives(3, {specification(0, -101, raid_level::notGiven)})));
    EXPECT_EQ(describe(*eight), "A 1:0 1:1 1:2 =3000; L A 0 FILL 2; ");
}

TEST(CustomLogicalDrives, ADriveCountThatDoesNotFit) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 1000));
    EXPECT_EQ(failure(bench, *controller,
                      policyWithLogicalDrives(3, {specification(0, -101, raid_level::raid1)})),
              std::string("\n#### ERROR\n\tCould not use Policy.test to configure Kestrix-C1 "
                          "controller.\nThe number of drives in the Array.A cannot accommodate "
                          "the RAID level specified.\n\n") +
                  noDriveLine);
    EXPECT_EQ(bench.application.returnCode, 13);
}

// A simple volume is supported by type 9, but no number of drives fits it.
TEST(CustomLogicalDrives, ASimpleVolumeFitsNoNumberOfDrives) {
    Bench bench;
    const auto controller = makeController(9, -1, equalDrives(1, 1000));
    failure(bench, *controller,
            policyWithLogicalDrives(1, {specification(0, -101, raid_level::simpleVolume)}));
    EXPECT_EQ(bench.application.returnCode, 13);
}

TEST(LogicalDriveLimits, EightLogicalDrives) {
    const std::string tooMany = "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                "support more than 8 logical drives.\n\n";
    Bench bench;
    const std::vector<LogicalSpecification> eight(8, specification(0, 100, raid_level::raid0));
    const auto fits = makeController(12, 2, equalDrives(2, 10000));
    EXPECT_TRUE(plan(bench, *fits, policyWithLogicalDrives(2, eight)));
    EXPECT_EQ(fits->captured()->logicalDrives().size(), 8U);

    std::vector<LogicalSpecification> nine = eight;
    nine.push_back(eight.front());
    const auto custom = makeController(12, 2, equalDrives(2, 10000));
    EXPECT_EQ(failure(bench, *custom, policyWithLogicalDrives(2, nine)), tooMany);
    EXPECT_EQ(bench.application.returnCode, 13);

    bench.application.returnCode = 0;
    Policy automaticPolicy = makePolicy();
    automaticPolicy.arrayDefaults.hotspareCount = 0;
    const auto automatic =
        makeController(12, 2, drivesOfSizes({100, 200, 300, 400, 500, 600, 700, 800, 900}));
    EXPECT_EQ(failure(bench, *automatic, automaticPolicy), tooMany);
    EXPECT_EQ(bench.application.returnCode, 13);
}

// Traces of one run, from the first logical-drive line to the last.
std::string logicalDriveTraces(RAIDController& controller, const Policy& policy) {
    Bench bench;
    bench.application.printer().setVerbosity(level::traces);
    plan(bench, controller, policy);
    const std::string output = bench.takeOutput();
    const std::string first = "Entering RAIDConfigCreator::doLogicalDrives\n";
    const std::string last = "Exiting RAIDConfigCreator::doLogicalDrives, returnValue=";
    const std::size_t begin = output.find(first);
    const std::size_t end = output.find('\n', output.find(last));
    return output.substr(begin, end + 1 - begin);
}

TEST(LogicalDriveTraces, Automatic) {
    const auto controller = makeController(12, 2, equalDrives(3, 1000));
    EXPECT_EQ(logicalDriveTraces(*controller, policyWithDefaults(3, -101, raid_level::raid5)),
              "Entering RAIDConfigCreator::doLogicalDrives\n"
              "Entering RAIDConfigCreator::doAUTOLogicalDrives\n"
              "Entering RAIDConfigCreator::isRAIDLevelOK\n"
              "Number of drives=3, RAID level=3, Controller type=12\n"
              "Exiting RAIDConfigCreator::isRAIDLevelOK, returning true\n"
              "Exiting RAIDConfigCreator::doAUTOLogicalDrives, returning true\n"
              "Exiting RAIDConfigCreator::doLogicalDrives, returnValue=true\n");
    const auto refused = makeController(12, 2, equalDrives(3, 1000));
    EXPECT_EQ(logicalDriveTraces(*refused, policyWithDefaults(3, -101, raid_level::raid60)),
              "Entering RAIDConfigCreator::doLogicalDrives\n"
              "Entering RAIDConfigCreator::doAUTOLogicalDrives\n"
              "Entering RAIDConfigCreator::isRAIDLevelOK\n"
              "Number of drives=3, RAID level=9, Controller type=12\n"
              "\n#### ERROR\n\tCould not use Policy.test to configure Kestrix-C1 controller.\n"
              "The number of drives in the Array.A cannot accommodate the RAID level specified.\n\n"
              "Not enough same size drives to accommodate requested configuration\n"
              "Exiting RAIDConfigCreator::isRAIDLevelOK, returning false\n"
              "Exiting RAIDConfigCreator::doAUTOLogicalDrives, returning false\n"
              "Exiting RAIDConfigCreator::doLogicalDrives, returnValue=false\n");
}

TEST(LogicalDriveTraces, CustomExits) {
    struct Row {
        std::vector<LogicalSpecification> drives;
        const char* exit;
        const char* value;
    };
    const LogicalSpecification good = specification(0, 100, raid_level::raid0);
    const std::vector<Row> rows{
        {{good}, "returning true", "true"},
        {{}, "returning true", "true"},
        {{specification(1, 100, raid_level::raid0)}, "returning false(1)", "false"},
        {{specification(0, 100, raid_level::raid1E)}, "returning false(2)", "false"},
        {{specification(0, 100, raid_level::raid1)}, "returning false(3)", "false"},
        {std::vector<LogicalSpecification>(9, good), "returning false(4)", "false"},
    };
    for (const Row& row : rows) {
        const auto controller = makeController(12, 2, equalDrives(3, 10000));
        const std::string traces =
            logicalDriveTraces(*controller, policyWithLogicalDrives(3, row.drives));
        EXPECT_TRUE(traces.starts_with("Entering RAIDConfigCreator::doLogicalDrives\n"
                                       "Entering RAIDConfigCreator::doCUSTOMLogicalDrives\n"))
            << traces;
        EXPECT_TRUE(traces.ends_with(
            std::string("Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, ") + row.exit +
            "\nExiting RAIDConfigCreator::doLogicalDrives, returnValue=" + row.value + "\n"))
            << traces;
    }
}

} // namespace
} // namespace zolex::test
