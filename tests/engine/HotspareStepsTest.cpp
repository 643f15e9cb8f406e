#include "engine/PlanningFixture.h"

#include <gtest/gtest.h>

namespace zolex::test {
namespace {

constexpr const char* noSpareLine = "Not enough available drives to allocate hot spares\n";

Policy policyWithHotspareCount(std::int32_t count) {
    Policy policy = makePolicy();
    policy.arrayDefaults.hotspareCount = count;
    return policy;
}

Policy policyWithHotspares(RaidArray list) {
    Policy policy = makePolicy();
    policy.hotspares = std::move(list);
    return policy;
}

TEST(AutoHotspares, TheLastOfTheLargestDrivesIsTakenFirst) {
    Bench bench;
    const auto controller = makeController(12, 2, drivesOfSizes({36000, 36000, 73000, 73000}));
    ASSERT_TRUE(plan(bench, *controller, makePolicy()));
    EXPECT_EQ(describe(*controller),
              "H 1:3; A 1:0 1:1 =72000; A 1:2 =73000; L A 1 FILL 1; L B 0 FILL 1; ");
    EXPECT_EQ(bench.takeOutput(), "");
}

TEST(AutoHotspares, ScanOrderGoesOverChannels) {
    Bench bench;
    const auto controller =
        makeController(12, 2, {{2, 0, 500}, {1, 35, 500}, {4, 35, 400}, {3, 7, 500}});
    Policy policy = policyWithHotspareCount(3);
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "H 3:7; H 2:0; H 1:35; A 4:35 =400; L A 0 FILL 1; ");
}

TEST(AutoHotspares, UsedDrivesAndDrivesOfSizeZeroAreLeftAlone) {
    Bench bench;
    const auto controller =
        makeController(12, 2, {{0, 0, 9000}, {1, 0, 100}, {1, 1, 200}, {1, 2, 0}, {1, 3, 300}});
    controller->setUsed(1, 3);
    ASSERT_TRUE(plan(bench, *controller, policyWithHotspareCount(1)));
    EXPECT_EQ(describe(*controller), "H 1:1; A 1:0 =100; L A 0 FILL 1; ");
}

TEST(AutoHotspares, ThePolicyCountReplacesTheClassDefault) {
    struct Row {
        std::int32_t count;
        const char* plan;
    };
    // The class default for four drives is one hot spare.
    const std::vector<Row> rows{
        {-25, "H 1:3; A 1:0 1:1 1:2 =300; L A 5 FILL 1; "},
        {0, "A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        {-1, "A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        {2, "H 1:3; H 1:2; A 1:0 1:1 =200; L A 1 FILL 1; "},
        {4, "H 1:3; H 1:2; H 1:1; H 1:0; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(12, 2, equalDrives(4, 100));
        EXPECT_TRUE(plan(bench, *controller, policyWithHotspareCount(row.count))) << row.count;
        EXPECT_EQ(describe(*controller), row.plan) << row.count;
    }
}

TEST(AutoHotspares, ACapturedLayoutWithoutHotSparesGetsNone) {
    struct Row {
        const char* name;
        bool listed; ///< whether the policy lists the drives of its array
        std::int32_t count;
        const char* plan;
    };
    const std::vector<Row> rows{
        {"Policy.AUTO-Kestrix-C1-1", true, -25, "A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        {"policy.auto-mine", true, -25, "A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        {"Policy.AUTO-Kestrix-C1-1", true, 1, "H 1:3; A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        {"Policy.AUTO", true, -25, "H 1:3; A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
        // Any other policy of such a name is somebody's own.
        {"Policy.AUTO-Kestrix-C1-1", false, -25, "H 1:3; A 1:0 1:1 1:2 =300; L A 5 FILL 1; "},
        {"Policy.AUTO-Kestrix-C1-1", false, 0, "A 1:0 1:1 1:2 1:3 =400; L A 5 FILL 1; "},
    };
    for (const Row& row : rows) {
        Bench bench;
        const auto controller = makeController(12, 2, equalDrives(4, 100));
        Policy policy = policyWithHotspareCount(row.count);
        policy.name = row.name;
        if (row.listed) {
            policy.customArrays = true;
            policy.arrays = {arrayOfNumbers(numbersTo(4))};
        }
        EXPECT_TRUE(plan(bench, *controller, policy)) << row.name;
        EXPECT_EQ(describe(*controller), row.plan) << row.name;
    }
}

TEST(AutoHotspares, ScsiKeepsOneOfFiveDrivesAndNoneOfFour) {
    Bench bench;
    const auto five = makeController(4, 1, equalDrives(5, 100));
    ASSERT_TRUE(plan(bench, *five, makePolicy()));
    EXPECT_EQ(describe(*five), "H 1:4; A 1:0 1:1 1:2 1:3 =400; L A 10 FILL 2; ");
    const auto four = makeController(4, 1, equalDrives(4, 100));
    ASSERT_TRUE(plan(bench, *four, makePolicy()));
    EXPECT_EQ(describe(*four), "A 1:0 1:1 1:2 1:3 =400; L A 10 FILL 2; ");
}

TEST(AutoHotspares, TooFewDrivesFailThePlan) {
    Bench bench;
    bench.application.printer().setVerbosity(level::shortage);
    const auto controller = makeController(12, 2, equalDrives(2, 100));
    EXPECT_FALSE(plan(bench, *controller, policyWithHotspareCount(3)));
    EXPECT_EQ(bench.takeOutput(), std::string("\n#### ERROR\n\tPolicy.test, Hotspares -- Not "
                                              "enough drives available to create 3 hot-spare "
                                              "drives.\n\tKestrix-C1 controller.\n\n") +
                                      noSpareLine);
    EXPECT_EQ(bench.application.returnCode, 12);
    EXPECT_EQ(describe(*controller), "no plan");
    EXPECT_EQ(describeUsed(*controller), "1:0 1:1 ") << "hot spares made so far stay used";
}

TEST(AutoHotspares, TheShortageLineIsForVerbosityOne) {
    Bench bench;
    bench.application.printer().setVerbosity(level::always);
    const auto controller = makeController(12, 2, equalDrives(1, 100));
    EXPECT_FALSE(plan(bench, *controller, policyWithHotspareCount(2)));
    EXPECT_EQ(bench.takeOutput(),
              "\n#### ERROR\n\tPolicy.test, Hotspares -- Not enough drives available to create 2 "
              "hot-spare drives.\n\tKestrix-C1 controller.\n\n");
}

TEST(AutoHotspares, ThePlanHoldsEight) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(12, 100));
    EXPECT_TRUE(plan(bench, *controller, policyWithHotspareCount(8)));
    EXPECT_EQ(controller->captured()->hotspares().size(), 8U);

    const auto other = makeController(12, 2, equalDrives(12, 100));
    EXPECT_FALSE(plan(bench, *other, policyWithHotspareCount(9)));
    EXPECT_EQ(bench.takeOutput(), "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                  "support more than 8 hot-spare drives.\n\n");
    EXPECT_EQ(bench.application.returnCode, 13);
    EXPECT_EQ(describe(*other), "no plan");
}

TEST(AutoHotspares, ACountBeyondTheDrivesEndsWithoutThem) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 100));
    EXPECT_FALSE(plan(bench, *controller, policyWithHotspareCount(2147483647)));
    EXPECT_EQ(bench.application.returnCode, 12);
}

TEST(CustomHotspares, DriveNumbersCountDrivesWithASize) {
    Bench bench;
    const auto controller = makeController(
        12, 2, {{0, 1, 900}, {1, 2, 100}, {1, 3, 0}, {2, 0, 100}, {4, 35, 100}, {3, 1, 100}});
    ASSERT_TRUE(plan(bench, *controller, policyWithHotspares(arrayOfNumbers({2, 4}))));
    EXPECT_EQ(describe(*controller), "H 2:0; H 4:35; A 1:2 3:1 =200; L A 1 FILL 1; ");
}

TEST(CustomHotspares, TheListReplacesTheAutomaticCount) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(4, 100));
    Policy policy = policyWithHotspares(arrayOfNumbers({1}));
    policy.arrayDefaults.hotspareCount = 2;
    ASSERT_TRUE(plan(bench, *controller, policy));
    EXPECT_EQ(describe(*controller), "H 1:0; A 1:1 1:2 1:3 =300; L A 5 FILL 1; ");
}

TEST(CustomHotspares, AUsedDriveIsTakenAgain) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(3, 100));
    controller->setUsed(1, 0);
    ASSERT_TRUE(plan(bench, *controller, policyWithHotspares(arrayOfNumbers({1, 1}))));
    EXPECT_EQ(describe(*controller), "H 1:0; H 1:0; A 1:1 1:2 =200; L A 1 FILL 1; ");
}

TEST(CustomHotspares, PositionsTakeDrivesOfSizeZeroToo) {
    Bench bench;
    const auto controller = makeController(12, 2, {{1, 0, 100}, {1, 1, 100}, {3, 9, 0}});
    ASSERT_TRUE(plan(bench, *controller, policyWithHotspares(arrayOfPositions({{3, 9}, {1, 1}}))));
    EXPECT_EQ(describe(*controller), "H 3:9; H 1:1; A 1:0 =100; L A 0 FILL 1; ");
    EXPECT_EQ(describeUsed(*controller), "1:0 1:1 3:9 ");
}

TEST(CustomHotspares, AMissingDriveIsNamed) {
    struct Row {
        RaidArray list;
        const char* drive;
    };
    const std::vector<Row> rows{
        {arrayOfNumbers({2, 5, 1}), "5"},
        {arrayOfPositions({{1, 0}, {2, 7}}), "2:7"},
        {arrayOfPositions({{5, 0}}), "5:0"},
        {arrayOfPositions({{1, 36}}), "1:36"},
    };
    for (const Row& row : rows) {
        Bench bench;
        bench.application.printer().setVerbosity(level::shortage);
        const auto controller = makeController(12, 2, equalDrives(4, 100));
        EXPECT_FALSE(plan(bench, *controller, policyWithHotspares(row.list)));
        EXPECT_EQ(bench.takeOutput(),
                  std::string("\n#### ERROR\n\tPolicy.test, Hotspares -- The following drive does "
                              "not exist:  ") +
                      row.drive + "\n\tKestrix-C1 controller.\n\n" + noSpareLine);
        EXPECT_EQ(bench.application.returnCode, 12);
        EXPECT_EQ(describe(*controller), "no plan");
    }
}

TEST(CustomHotspares, ThePlanHoldsEight) {
    Bench bench;
    const auto controller = makeController(12, 2, equalDrives(12, 100));
    EXPECT_TRUE(plan(bench, *controller, policyWithHotspares(arrayOfNumbers(numbersTo(8)))));
    for (const RaidArray& list :
         {arrayOfNumbers(numbersTo(9)),
          arrayOfPositions(
              {{1, 0}, {1, 1}, {1, 2}, {1, 3}, {1, 4}, {1, 5}, {1, 6}, {1, 7}, {1, 8}})}) {
        const auto other = makeController(12, 2, equalDrives(12, 100));
        EXPECT_FALSE(plan(bench, *other, policyWithHotspares(list)));
        EXPECT_EQ(bench.takeOutput(), "\n#### ERROR\n\tError in Policy.test -- Kestrix-C1 does not "
                                      "support more than 8 hot-spare drives.\n\n");
        EXPECT_EQ(bench.application.returnCode, 13);
    }
}

// Traces of one run, from the first hot-spare line to the last.
std::string hotspareTraces(RAIDController& controller, const Policy& policy) {
    Bench bench;
    bench.application.printer().setVerbosity(level::traces);
    plan(bench, controller, policy);
    const std::string output = bench.takeOutput();
    const std::string first = "Entering RAIDConfigCreator::doHotspares\n";
    const std::string last = "Exiting RAIDConfigCreator::doHotspares, returnValue=";
    const std::size_t begin = output.find(first);
    const std::size_t end = output.find('\n', output.find(last));
    return output.substr(begin, end + 1 - begin);
}

TEST(HotspareTraces, Automatic) {
    const auto controller = makeController(12, 2, equalDrives(4, 100));
    EXPECT_EQ(hotspareTraces(*controller, makePolicy()),
              "Entering RAIDConfigCreator::doHotspares\n"
              "Entering RAIDConfigCreator::doAUTOHotspares\n"
              "Exiting RAIDConfigCreator::doAUTOHotspares, returning true\n"
              "Exiting RAIDConfigCreator::doHotspares, returnValue=true\n");
    const auto few = makeController(12, 2, equalDrives(1, 100));
    EXPECT_EQ(hotspareTraces(*few, policyWithHotspareCount(2)),
              "Entering RAIDConfigCreator::doHotspares\n"
              "Entering RAIDConfigCreator::doAUTOHotspares\n"
              "\n#### ERROR\n\tPolicy.test, Hotspares -- Not enough drives available to create 2 "
              "hot-spare drives.\n\tKestrix-C1 controller.\n\n"
              "Not enough available drives to allocate hot spares\n"
              "Exiting RAIDConfigCreator::doAUTOHotspares, returning false\n"
              "Exiting RAIDConfigCreator::doHotspares, returnValue=false\n");
}

TEST(HotspareTraces, ByNumber) {
    const auto controller = makeController(12, 2, equalDrives(4, 100));
    EXPECT_EQ(hotspareTraces(*controller, policyWithHotspares(arrayOfNumbers({2, 9}))),
              "Entering RAIDConfigCreator::doHotspares\n"
              "Entering RAIDConfigCreator::doCUSTOMHotspares\n"
              "Entering RAIDConfigCreator::doHotspareByNumber\n"
              "Entering RAIDConfigCreator::getDriveNumber, number=2\n"
              "Exiting RAIDConfigCreator::getDriveNumber, returning true\n"
              "Exiting RAIDConfigCreator::doHotspareByNumber, returning true\n"
              "Entering RAIDConfigCreator::doHotspareByNumber\n"
              "Entering RAIDConfigCreator::getDriveNumber, number=9\n"
              "Exiting RAIDConfigCreator::getDriveNumber, returning false\n"
              "\n#### ERROR\n\tPolicy.test, Hotspares -- The following drive does not exist:  9\n"
              "\tKestrix-C1 controller.\n\n"
              "Not enough available drives to allocate hot spares\n"
              "Exiting RAIDConfigCreator::doHotspareByNumber, returning false\n"
              "Exiting RAIDConfigCreator::doCUSTOMHotspares, returning false\n"
              "Exiting RAIDConfigCreator::doHotspares, returnValue=false\n");
}

TEST(HotspareTraces, ByLocation) {
    const auto controller = makeController(12, 2, equalDrives(4, 100));
    EXPECT_EQ(hotspareTraces(*controller, policyWithHotspares(arrayOfPositions({{1, 2}, {1, 9}}))),
              "Entering RAIDConfigCreator::doHotspares\n"
              "Entering RAIDConfigCreator::doCUSTOMHotspares\n"
              "Entering RAIDConfigCreator::doHotspareByLocation\n"
              "Exiting RAIDConfigCreator::doHotspareByLocation, returning true\n"
              "Entering RAIDConfigCreator::doHotspareByLocation\n"
              "\n#### ERROR\n\tPolicy.test, Hotspares -- The following drive does not exist:  1:9\n"
              "\tKestrix-C1 controller.\n\n"
              "Not enough available drives to allocate hot spares\n"
              "Exiting RAIDConfigCreator::doHotspareByLocation, returning false\n"
              "Exiting RAIDConfigCreator::doCUSTOMHotspares, returning false\n"
              "Exiting RAIDConfigCreator::doHotspares, returnValue=false\n");
    const auto good = makeController(12, 2, equalDrives(4, 100));
    EXPECT_EQ(hotspareTraces(*good, policyWithHotspares(arrayOfPositions({{1, 2}}))),
              "Entering RAIDConfigCreator::doHotspares\n"
              "Entering RAIDConfigCreator::doCUSTOMHotspares\n"
              "Entering RAIDConfigCreator::doHotspareByLocation\n"
              "Exiting RAIDConfigCreator::doHotspareByLocation, returning true\n"
              "Exiting RAIDConfigCreator::doCUSTOMHotspares, returning true\n"
              "Exiting RAIDConfigCreator::doHotspares, returnValue=true\n");
}

} // namespace
} // namespace zolex::test
