#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

constexpr const char* shortageLine =
    "Not enough same size drives to accommodate requested configuration\n";

/// Automatic arrays without hot spares.
Policy automaticPolicy(std::int32_t variancePercent = 0) {
    Policy policy = makePolicy();
    policy.arrayDefaults.variancePercent = variancePercent;
    policy.arrayDefaults.hotspareCount = 0;
    return policy;
}

LogicalSpecification ofLevel(std::int32_t raidLevel, std::int32_t arrayIndex = -1) {
    LogicalSpecification given;
    given.raidLevel = raidLevel;
    given.arrayIndex = arrayIndex;
    return given;
}

Policy withoutHotspares(Policy policy) {
    policy.arrayDefaults.hotspareCount = 0;
    return policy;
}

struct Planned {
    const char* title;
    std::int32_t type;
    std::int32_t subtype;
    std::int32_t variance;
    std::vector<DriveAt> drives;
    const char* plan;
};

TEST(AutoArrays, DrivesOfLikeSizeJoin) {
    const std::vector<Planned> rows{
        {"variance 0 takes the first drive's size alone", 12, 2, 0,
         drivesOfSizes({1000, 999, 1000, 1001}),
         "A 1:0 1:2 =2000; A 1:1 =999; A 1:3 =1001; L A 1 FILL 1; L B 0 FILL 1; L C 0 FILL 1; "},
        {"variance 5 takes both ends of the range", 12, 2, 5,
         drivesOfSizes({1000, 950, 949, 1050, 1051}),
         "A 1:0 1:1 1:3 =2850; A 1:2 =949; A 1:4 =1051; L A 5 FILL 1; L B 0 FILL 1; L C 0 FILL "
         "1; "},
        {"the tolerance keeps its whole part", 12, 2, 5, drivesOfSizes({39, 38, 37, 40}),
         "A 1:0 1:1 1:3 =114; A 1:2 =37; L A 5 FILL 1; L B 0 FILL 1; "},
        {"variance 10", 12, 2, 10, drivesOfSizes({1000, 900, 1100, 899}),
         "A 1:0 1:1 1:2 =2700; A 1:3 =899; L A 5 FILL 1; L B 0 FILL 1; "},
        {"variance 100 takes up to twice the size, the smallest counts", 12, 2, 100,
         drivesOfSizes({1000, 2000, 1, 2001}),
         "A 1:0 1:1 1:2 =3; A 1:3 =2001; L A 5 FILL 1; L B 0 FILL 1; "},
        {"arrays go over channels",
         12,
         2,
         0,
         {{4, 35, 500}, {1, 35, 500}, {2, 0, 400}, {3, 1, 400}},
         "A 1:35 4:35 =1000; A 2:0 3:1 =800; L A 1 FILL 1; L B 1 FILL 1; "},
        {"a type 4 array stays in the channel of its first drive",
         4,
         1,
         0,
         {{2, 3, 500}, {2, 4, 500}, {3, 0, 500}, {3, 1, 500}},
         "A 2:3 2:4 =1000; L A 1 FILL 2; "},
        {"a type 4 array holds four drives", 4, 1, 0, equalDrives(6, 100),
         "A 1:0 1:1 1:2 1:3 =400; L A 10 FILL 2; "},
        {"type 8 gets one array of four", 8, -1, 0, equalDrives(6, 100),
         "A 1:0 1:1 1:2 1:3 =400; L A 10 FILL 2; "},
        {"type 3 gets one array of two", 3, -1, 0, equalDrives(6, 100),
         "A 1:0 1:1 =200; L A 1 FILL 2; "},
        {"type 5 gets one array of two", 5, 1, 0, equalDrives(6, 100),
         "A 1:0 1:1 =200; L A 1 FILL 2; "},
        {"type 6 gets one array of two", 6, 1, 0, equalDrives(6, 100),
         "A 1:0 1:1 =200; L A 1 FILL 2; "},
        {"type 9 gets one array of two", 9, -1, 0, equalDrives(6, 100),
         "A 1:0 1:1 =200; L A 1 FILL 2; "},
        {"type 10 gets one array of six", 10, -1, 0, equalDrives(8, 100),
         "A 1:0 1:1 1:2 1:3 1:4 1:5 =600; L A 1E FILL 2; "},
        {"type 10 subtype 1 gets one array of two", 10, 1, 0, equalDrives(8, 100),
         "A 1:0 1:1 =200; L A 1 FILL 2; "},
        {"type 2 goes on in fours", 2, -1, 0, equalDrives(6, 100),
         "A 1:0 1:1 1:2 1:3 =400; A 1:4 1:5 =200; L A 10 FILL 2; L B 1 FILL 2; "},
        {"type 1 goes on until no drive is left", 1, 1, 0, drivesOfSizes({10, 20, 30, 10}),
         "A 1:0 1:3 =20; A 1:1 =20; A 1:2 =30; L A 1 FILL 2; L B 0 FILL 2; L C 0 FILL 2; "},
    };
    for (const Planned& row : rows) {
        Bench bench;
        const auto controller = makeController(row.type, row.subtype, row.drives);
        EXPECT_TRUE(plan(bench, *controller, automaticPolicy(row.variance))) << row.title;
        EXPECT_EQ(describe(*controller), row.plan) << row.title;
        EXPECT_EQ(bench.takeOutput(), "") << row.title;
    }
}

TEST(AutoArrays, UsedDrivesSizeZeroAndChannelZeroStayOut) {
    Bench bench;
    const auto controller =
        makeController(12, 2, {{0, 0, 100}, {1, 0, 100}, {1, 1, 0}, {1, 2, 100}, {1, 3, 100}});
    controller->setUsed(1, 2);
    ASSERT_TRUE(plan(bench, *controller, automaticPolicy(100)));
    EXPECT_EQ(describe(*controller), "A 1:0 1:3 =200; L A 1 FILL 1; ");
    EXPECT_EQ(describeUsed(*controller), "1:0 1:2 1:3 ");
}

TEST(AutoArrays, NoFreeDriveLeavesAnEmptyPlan) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(1));
    controller->setUsed(1, 0);
    EXPECT_TRUE(plan(bench, *controller, automaticPolicy()));
    ASSERT_NE(controller->captured(), nullptr);
    EXPECT_EQ(describe(*controller), "");
}

TEST(AutoArrays, GreatSizesDoNotOverflow) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 2147483647));
    ASSERT_TRUE(plan(bench, *controller, automaticPolicy(100)));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 1:2 =6442450941; L A 5 FILL 1; ");
}

/// The number of drives that the first logical drive was checked with.
std::string firstDriveCount(std::int32_t type, std::int32_t subtype, const Policy& policy) {
    Bench bench;
    bench.application.printer().setVerbosity(level::traces);
    const auto controller = makeController(type, subtype, equalDrives(32));
    plan(bench, *controller, policy);
    const std::string output = bench.takeOutput();
    const std::string key = "Number of drives=";
    const std::size_t begin = output.find(key) + key.size();
    return output.substr(begin, output.find(',', begin) - begin);
}

TEST(MaximumDrivesPerArray, ByTypeWhenNoLevelIsGiven) {
    struct Row {
        std::int32_t type;
        std::int32_t subtype;
        const char* most;
    };
    const std::vector<Row> rows{
        {1, 1, "16"}, {2, -1, "4"}, {3, -1, "2"},  {4, 1, "4"},   {5, 1, "2"},    {6, 1, "2"},
        {7, 1, "16"}, {7, 7, "16"}, {8, -1, "4"},  {9, -1, "2"},  {10, -1, "6"},  {10, 1, "2"},
        {10, 2, "6"}, {10, 3, "6"}, {11, 1, "16"}, {11, 2, "16"}, {12, -1, "32"}, {12, 8, "32"}};
    for (const Row& row : rows) {
        EXPECT_EQ(firstDriveCount(row.type, row.subtype, automaticPolicy()), row.most) << row.type;
        // A level that is left to the class is not given.
        Policy policy = automaticPolicy();
        policy.logicalDefaults = ofLevel(raid_level::notGiven);
        EXPECT_EQ(firstDriveCount(row.type, row.subtype, policy), row.most) << row.type;
    }
}

TEST(MaximumDrivesPerArray, ByLevelWhenItIsGiven) {
    struct Row {
        std::int32_t level;
        const char* type10;
        const char* others;
    };
    const std::vector<Row> rows{{0, "10", "16"}, {1, "2", "2"},   {2, "6", "16"},   {3, "16", "16"},
                                {4, "16", "16"}, {5, "16", "16"}, {6, "16", "16"},  {7, "16", "16"},
                                {8, "16", "16"}, {9, "16", "16"}, {10, "16", "16"}, {11, "2", "2"},
                                {13, "2", "2"},  {14, "2", "2"}};
    for (const Row& row : rows) {
        Policy policy = automaticPolicy();
        policy.logicalDefaults = ofLevel(row.level);
        for (const std::int32_t type : {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12}) {
            EXPECT_EQ(firstDriveCount(type, -1, policy), row.others) << type << ' ' << row.level;
        }
        EXPECT_EQ(firstDriveCount(10, -1, policy), row.type10) << row.level;
        EXPECT_EQ(firstDriveCount(10, 1, policy), row.type10) << row.level;
    }
}

TEST(MaximumDrivesPerArray, AnAllArrayLooksAtItsOwnLogicalDrive) {
    struct Row {
        std::int32_t custom;   // level of Logical.1, on array B
        std::int32_t defaults; // level of Logical_Defaults; -1: none
        const char* plan;
    };
    // Type 10, subtype 2: 6 without a level.
    const std::vector<Row> rows{
        {raid_level::raid1, -1, "A 1:0 1:1 =200; A 1:2 1:3 =200; L B 1 FILL 2; "},
        {raid_level::notGiven, raid_level::raid1,
         "A 1:0 1:1 =200; A 1:2 1:3 1:4 1:5 1:6 1:7 =600; L B 1E FILL 2; "},
        {raid_level::raid0, raid_level::raid1,
         "A 1:0 1:1 =200; A 1:2 1:3 1:4 1:5 1:6 1:7 1:8 1:9 1:10 1:11 =1000; L B 0 FILL 2; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(10, 2, equalDrives(14, 100));
        Policy policy = withoutHotspares(policyWithArrays({arrayOfNumbers({1, 2}), arrayOfAll()}));
        policy.customLogicalDrives = true;
        policy.logicalDrives = {ofLevel(row.custom, 1)};
        if (row.defaults >= 0) {
            policy.logicalDefaults = ofLevel(row.defaults);
        }
        EXPECT_TRUE(plan(bench, *controller, policy));
        EXPECT_EQ(describe(*controller), row.plan);
    }
}

TEST(MaximumDrivesPerArray, TheFirstLogicalDriveOfTheArrayDecides) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(20, 1000));
    Policy policy = withoutHotspares(policyWithArrays({arrayOfNumbers({1}), arrayOfAll()}));
    policy.customLogicalDrives = true;
    policy.logicalDrives = {ofLevel(raid_level::raid0, 0), ofLevel(raid_level::raid1, 1),
                            ofLevel(raid_level::raid0, 1)};
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller),
              "A 1:0 =1000; A 1:1 1:2 =2000; L A 0 FILL 2; L B 1 FILL 2; L B 0 FILL 2; ");
}

// Logical drives that the policy holds but that are not planned do not decide an array's size.
TEST(MaximumDrivesPerArray, LogicalDrivesOfAnAutomaticModeDoNotCount) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(5, 100));
    Policy policy = withoutHotspares(policyWithArrays({arrayOfAll()}));
    policy.logicalDrives = {ofLevel(raid_level::raid1, 0)};
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 1:2 1:3 1:4 =500; L A 5 FILL 1; ");
}

TEST(CustomArrays, AllTakesEveryFreeDriveOfAnySize) {
    Bench bench;
    const auto controller = makeController(
        12, 2, {{0, 0, 5}, {1, 0, 100}, {1, 1, 0}, {1, 2, 300}, {3, 0, 200}, {4, 35, 900}});
    controller->setUsed(3, 0);
    ASSERT_TRUE(plan(bench, *controller, withoutHotspares(policyWithArrays({arrayOfAll()}))));
    EXPECT_EQ(describe(*controller), "A 1:0 1:2 4:35 =300; L A 5 FILL 1; ");
}

TEST(CustomArrays, AllWithoutADriveAddsNoArrayAndEndsTheList) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(2, 100));
    const Policy policy = withoutHotspares(
        policyWithArrays({arrayOfNumbers({1, 2}), arrayOfAll(), arrayOfNumbers({1})}));
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 =200; L A 1 FILL 1; ");
}

TEST(CustomArrays, AllStopsAtThirtyTwo) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(40, 100));
    ASSERT_TRUE(plan(bench, *controller, withoutHotspares(policyWithArrays({arrayOfAll()}))));
    EXPECT_EQ(controller->captured()->arrays().at(0).driveCount(), 32U);
    EXPECT_EQ(controller->captured()->arrays().at(0).capacityMb, 3200);
}

TEST(CustomArrays, NumbersAndPositionsAreTakenAsListed) {
    struct Row {
        const char* title;
        std::vector<RaidArray> arrays;
        const char* plan;
    };
    const std::vector<Row> rows{
        {"numbers, in list order, of any size",
         {arrayOfNumbers({3, 1}), arrayOfNumbers({2})},
         "A 2:1 1:0 =200; A 1:5 =200; L A 1 FILL 1; L B 0 FILL 1; "},
        {"positions",
         {arrayOfPositions({{2, 1}, {1, 5}, {1, 0}})},
         "A 2:1 1:5 1:0 =300; L A 5 FILL 1; "},
        {"a drive named twice is taken twice",
         {arrayOfNumbers({1, 1}), arrayOfPositions({{1, 0}})},
         "A 1:0 1:0 =200; A 1:0 =100; L A 1 FILL 1; L B 0 FILL 1; "},
        {"a list of numbers ends at the first item below 1",
         {arrayOfNumbers({1, 2, -1, 3})},
         "A 1:0 1:5 =200; L A 1 FILL 1; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller =
            makeController(12, 2, {{1, 0, 100}, {1, 3, 0}, {1, 5, 200}, {2, 1, 300}});
        EXPECT_TRUE(plan(bench, *controller, withoutHotspares(policyWithArrays(row.arrays))))
            << row.title;
        EXPECT_EQ(describe(*controller), row.plan) << row.title;
    }
}

TEST(CustomArrays, AHotSpareIsTakenAgainWhenItIsNamed) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(2, 100));
    Policy policy = policyWithArrays({arrayOfNumbers({1, 2})});
    policy.hotspares = arrayOfNumbers({2});
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "H 1:1; A 1:0 1:1 =200; L A 1 FILL 1; ");
}

TEST(CustomArrays, ArraysOfAnAutomaticModeAreNotPlanned) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 100));
    Policy policy = withoutHotspares(policyWithArrays({arrayOfNumbers({1})}));
    policy.customArrays = false;
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "A 1:0 1:1 1:2 =300; L A 5 FILL 1; ");
}

TEST(CustomArrays, AMissingDriveIsNamed) {
    struct Row {
        std::vector<RaidArray> arrays;
        const char* named;
    };
    const std::vector<Row> rows{
        {{arrayOfNumbers({1, 4})}, "Array.A -- The following drive does not exist:  4"},
        {{arrayOfNumbers({1}), arrayOfNumbers({100})},
         "Array.B -- The following drive does not exist:  100"},
        {{arrayOfPositions({{1, 0}, {1, 9}})},
         "Array.A -- The following drive does not exist:  1:9"},
        // The first that is missing ends the list.
        {{arrayOfNumbers({1, 9, 10})}, "Array.A -- The following drive does not exist:  9"},
        {{arrayOfPositions({{1, 9}, {1, 8}})},
         "Array.A -- The following drive does not exist:  1:9"},
        {{arrayOfPositions({{1, 3}})}, "Array.A -- The following drive does not exist:  1:3"},
        {{arrayOfNumbers({1}), arrayOfPositions({{1, 0}}), arrayOfPositions({{9, 99}})},
         "Array.C -- The following drive does not exist:  9:99"},
    };
    for (const Row& row : rows) {
        Bench bench;
        bench.application.printer().setVerbosity(level::shortage);
        // A drive of size 0 does not count for arrays.
        const auto controller =
            makeController(12, 2, {{1, 0, 100}, {1, 1, 100}, {1, 2, 100}, {1, 3, 0}});
        EXPECT_FALSE(plan(bench, *controller, withoutHotspares(policyWithArrays(row.arrays))));
        EXPECT_EQ(bench.takeOutput(), std::string("\n#### ERROR\n\tPolicy.test, ") + row.named +
                                          "\n\tKestrix-C1 controller.\n\n" + shortageLine);
        EXPECT_EQ(bench.application.returnCode, 13);
        EXPECT_EQ(describe(*controller), "no plan");
        // What stood in front of it is taken already.
        const bool namesTheFirst = !row.arrays[0].driveNumbers().empty() ||
                                   row.arrays[0].drives().front() == DrivePosition{1, 0};
        EXPECT_EQ(controller->isUsed(1, 0), namesTheFirst);
    }
}

TEST(ArrayLimits, SixteenArrays) {
    std::vector<std::int32_t> sizes;
    for (std::int32_t i = 0; i < 17; ++i) {
        sizes.push_back(1000 + i);
    }
    Bench bench;
    const auto automatic = makeController(12, 2, drivesOfSizes(sizes));
    EXPECT_FALSE(plan(bench, *automatic, automaticPolicy()));
    EXPECT_EQ(bench.takeOutput(), "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                  "support more than 16 arrays.\n\n");
    EXPECT_EQ(bench.application.returnCode, 13);
    EXPECT_EQ(describe(*automatic), "no plan");

    bench.application.returnCode = 0;
    const auto custom = makeController(12, 2, equalDrives(3));
    EXPECT_FALSE(
        plan(bench, *custom,
             withoutHotspares(policyWithArrays(std::vector<RaidArray>(17, arrayOfNumbers({1}))))));
    EXPECT_EQ(bench.takeOutput(), "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                  "support more than 16 arrays.\n\n");
    EXPECT_EQ(bench.application.returnCode, 13);

    // Sixteen fit.
    const auto fits = makeController(12, 2, equalDrives(3));
    Policy policy =
        withoutHotspares(policyWithArrays(std::vector<RaidArray>(16, arrayOfNumbers({1}))));
    policy.customLogicalDrives = true;
    EXPECT_TRUE(plan(bench, *fits, policy));
    EXPECT_EQ(fits->captured()->arrays().size(), 16U);
}

TEST(ArrayLimits, ThirtyTwoDrivesOfAList) {
    std::vector<DrivePosition> positions;
    for (std::int32_t id = 0; id < 32; ++id) {
        positions.push_back({1, id});
    }
    for (RaidArray list : {arrayOfNumbers(numbersTo(32)), arrayOfPositions(positions)}) {
        Bench bench;
        const auto fits = makeController(12, 2, equalDrives(36, 100));
        EXPECT_TRUE(plan(bench, *fits, withoutHotspares(policyWithArrays({list}))));
        EXPECT_EQ(fits->captured()->arrays().at(0).driveCount(), 32U);

        list.tooManyDrives = true; // a 33rd was listed
        const auto controller = makeController(12, 2, equalDrives(36, 100));
        EXPECT_FALSE(plan(bench, *controller, withoutHotspares(policyWithArrays({list}))));
        EXPECT_EQ(bench.takeOutput(), "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                      "support more than 32 drives per array.\n\n");
        EXPECT_EQ(bench.application.returnCode, 13);
        EXPECT_EQ(describe(*controller), "no plan");
    }
}

// Traces of one run, from the first array line to the last.
std::string arrayTraces(RAIDController& controller, const Policy& policy) {
    Bench bench;
    bench.application.printer().setVerbosity(level::traces);
    plan(bench, controller, policy);
    const std::string output = bench.takeOutput();
    const std::string first = "Entering RAIDConfigCreator::doArrays\n";
    const std::string last = "Exiting RAIDConfigCreator::doArrays, returnValue=";
    const std::size_t begin = output.find(first);
    const std::size_t end = output.find('\n', output.find(last));
    return output.substr(begin, end + 1 - begin);
}

TEST(ArrayTraces, Automatic) {
    const auto controller = makeController(12, 2, drivesOfSizes({1, 2}));
    EXPECT_EQ(arrayTraces(*controller, automaticPolicy()),
              "Entering RAIDConfigCreator::doArrays\n"
              "Entering RAIDConfigCreator::doAUTOArrays\n"
              "Exiting RAIDConfigCreator::doAUTOArrays, returning true\n"
              "Exiting RAIDConfigCreator::doArrays, returnValue=true\n");
    std::vector<std::int32_t> sizes;
    for (std::int32_t i = 0; i < 17; ++i) {
        sizes.push_back(1000 + i);
    }
    const auto many = makeController(12, 2, drivesOfSizes(sizes));
    EXPECT_EQ(arrayTraces(*many, automaticPolicy()),
              "Entering RAIDConfigCreator::doArrays\n"
              "Entering RAIDConfigCreator::doAUTOArrays\n"
              "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not support more than 16 "
              "arrays.\n\n"
              "Exiting RAIDConfigCreator::doAUTOArrays, returning false\n"
              "Exiting RAIDConfigCreator::doArrays, returnValue=false\n");
}

TEST(ArrayTraces, Custom) {
    const auto controller = makeController(12, 2, equalDrives(4, 100));
    EXPECT_EQ(arrayTraces(*controller,
                          withoutHotspares(policyWithArrays(
                              {arrayOfNumbers({2}), arrayOfPositions({{1, 0}}), arrayOfAll()}))),
              "Entering RAIDConfigCreator::doArrays\n"
              "Entering RAIDConfigCreator::doCUSTOMArrays\n"
              "Entering RAIDConfigCreator::doArrayByNumber\n"
              "Entering RAIDConfigCreator::getDriveNumber, number=2\n"
              "Exiting RAIDConfigCreator::getDriveNumber, returning true\n"
              "Exiting RAIDConfigCreator::doArrayByNumber, returning true\n"
              "Entering RAIDConfigCreator::doArrayByLocation\n"
              "Exiting RAIDConfigCreator::doArrayByLocation, returning true\n"
              "Entering RAIDConfigCreator::doArrayByAllRemaining\n"
              "Entering RAIDConfigCreator::getArrayRAIDLevel\n"
              "Exiting RAIDConfigCreator::getArrayRAIDLevel, returning -1\n"
              "Exiting RAIDConfigCreator::doArrayByAllRemaining, returning true\n"
              "Exiting RAIDConfigCreator::doCUSTOMArrays, returnValue=true\n"
              "Exiting RAIDConfigCreator::doArrays, returnValue=true\n");
}

TEST(ArrayTraces, CustomWithAMissingDrive) {
    const auto byNumber = makeController(12, 2, equalDrives(1, 100));
    EXPECT_EQ(arrayTraces(*byNumber, withoutHotspares(policyWithArrays({arrayOfNumbers({2})}))),
              "Entering RAIDConfigCreator::doArrays\n"
              "Entering RAIDConfigCreator::doCUSTOMArrays\n"
              "Entering RAIDConfigCreator::doArrayByNumber\n"
              "Entering RAIDConfigCreator::getDriveNumber, number=2\n"
              "Exiting RAIDConfigCreator::getDriveNumber, returning false\n"
              "\n#### ERROR\n\tPolicy.test, Array.A -- The following drive does not exist:  2\n"
              "\tKestrix-C1 controller.\n\n"
              "Not enough same size drives to accommodate requested configuration\n"
              "Exiting RAIDConfigCreator::doArrayByNumber, returning false\n"
              "Exiting RAIDConfigCreator::doCUSTOMArrays, returnValue=false\n"
              "Exiting RAIDConfigCreator::doArrays, returnValue=false\n");
    const auto byLocation = makeController(12, 2, equalDrives(1, 100));
    EXPECT_EQ(
        arrayTraces(*byLocation, withoutHotspares(policyWithArrays({arrayOfPositions({{2, 2}})}))),
        "Entering RAIDConfigCreator::doArrays\n"
        "Entering RAIDConfigCreator::doCUSTOMArrays\n"
        "Entering RAIDConfigCreator::doArrayByLocation\n"
        "\n#### ERROR\n\tPolicy.test, Array.A -- The following drive does not exist:  2:2\n"
        "\tKestrix-C1 controller.\n\n"
        "Not enough same size drives to accommodate requested configuration\n"
        "Exiting RAIDConfigCreator::doArrayByLocation, returning false\n"
        "Exiting RAIDConfigCreator::doCUSTOMArrays, returnValue=false\n"
        "Exiting RAIDConfigCreator::doArrays, returnValue=false\n");
}

} // namespace
} // namespace zolex::test
