#include "policies/PolicyGenerator.h"

#include "policies/GeneratorTestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace zolex {
namespace {

using namespace test;

const std::string dashes = "; *---------------------------------------------------------------*\n";

std::string header(const std::string& number, const std::string& type,
                   const std::string& machineType = "8840-4AU",
                   const std::string& serialNumber = "KQ1234") {
    return "\n\n" + dashes +
           "; * ZOLEX auto-generated policy.\n"
           "; * Captured on (mm/dd/yyyy): 03/09/26\n"
           "; * System time (hh:mm:ss):   14:05:07\n"
           "; * System machine type:      " +
           machineType + "\n; * System serial number:     " + serialNumber +
           "\n; * Controller number:        " + number + "\n; * Controller type:          " + type +
           "\n" + dashes + "\n";
}

const std::string megaRaidBody = "AppliesTo.1 = t:Kestrix-C1,d:6\n\n"
                                 "StripeSize = 64\n"
                                 "ReadAhead = ON\n\n"
                                 "Array_Mode = CUSTOM\n"
                                 "Array.A = 1,2,4\n"
                                 "Array.B = 5,3\n\n"
                                 "Hotspares = 6\n\n"
                                 "Logical_Mode = CUSTOM\n"
                                 "Logical.1 = A:138944:5:ON\n"
                                 "Logical.2 = B:FILL:1:OFF\n\n";

TEST(PolicyGeneratorTest, WritesAPolicyForAConfiguredController) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    EXPECT_TRUE(run.wrote);
    EXPECT_EQ(run.output(), std::string(checkingLine) + noPoliciesLine + generatingLine);
    EXPECT_EQ(run.file(),
              header("1", "Kestrix-C1") + "[Policy.AUTO-Kestrix-C1-1]\n\n" + megaRaidBody);
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
    EXPECT_EQ(run.platform.fileFake.opened,
              (std::vector<std::string>{"r p.ini", std::string("w+ ") + temporaryFile, "a p.ini"}));
}

TEST(PolicyGeneratorTest, TheProgressIsToldInDetail) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    run.application.printer().setVerbosity(level::detail);
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.output(), std::string(checkingLine) + noPoliciesLine + generatingLine +
                                "\tController 1:  Kestrix-C1\n"
                                "\t\tGenerating policy:  Policy.AUTO-Kestrix-C1-1\n");

    run.application.printer().setVerbosity(level::always);
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.output(), "");
}

TEST(PolicyGeneratorTest, NothingConfiguredLeavesThePoliciesFileAlone) {
    Generation run;
    run.add(12, 2).setCaptured(std::nullopt);
    run.add(10, 0).setCaptured(std::nullopt);
    EXPECT_TRUE(run.run());
    EXPECT_FALSE(run.wrote);
    EXPECT_EQ(run.output(), std::string(checkingLine) + noPoliciesLine + generatingLine +
                                "\tSkipped controller 1 -- controller is not configured.\n"
                                "\tSkipped controller 2 -- controller is not configured.\n");
    EXPECT_FALSE(run.platform.fileFake.exists("p.ini"));
    EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
}

TEST(PolicyGeneratorTest, ControllersAreNumberedInListOrder) {
    Generation run;
    run.add(12, 2).setCaptured(std::nullopt);
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.file(),
              header("2", "Kestrix-C1") + "[Policy.AUTO-Kestrix-C1-1]\n\n" + megaRaidBody);
}

TEST(PolicyGeneratorTest, ControllersOfOneTypeGetNumberedNames) {
    Generation run;
    fillMegaRaid(run.add(12, 2));
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.file(), header("1", "Kestrix-C1") + "[Policy.AUTO-Kestrix-C1-1]\n\n" +
                              megaRaidBody + header("2", "Kestrix-C1") +
                              "[Policy.AUTO-Kestrix-C1-2]\n\n" + megaRaidBody);
}

TEST(PolicyGeneratorTest, NamesOfTheCurrentFileAreNotUsedAgain) {
    Generation run;
    const std::string before = "[policy.auto-kestrix-c1-1]\nAppliesTo.1=ALL\n"
                               "[Policy.AUTO-Kestrix-C1-3]\nAppliesTo.1=ALL";
    run.platform.fileFake.files["p.ini"] = before;
    fillMegaRaid(run.add(12, 2));
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.file(), before + header("1", "Kestrix-C1") + "[Policy.AUTO-Kestrix-C1-2]\n\n" +
                              megaRaidBody + header("2", "Kestrix-C1") +
                              "[Policy.AUTO-Kestrix-C1-4]\n\n" + megaRaidBody);
    EXPECT_EQ(run.output(), std::string(checkingLine) + generatingLine);
}

TEST(PolicyGeneratorTest, AllControllersOfAFullListGetTheirPolicy) {
    Generation run;
    for (int i = 0; i < 36; ++i) {
        fillMegaRaid(run.add(12, 2));
    }
    ASSERT_TRUE(run.run());
    PolicyReading reading;
    ASSERT_TRUE(reading.read(run.file())) << reading.output();
    ASSERT_EQ(reading.reader.policies()->count(), 36U);
    EXPECT_EQ(reading.policy(35).name, "Policy.AUTO-Kestrix-C1-36");
}

TEST(PolicyGeneratorTest, BlanksInTheTypeNameBecomeUnderscoresInTheNameAlone) {
    Generation run;
    RAIDController& controller = run.add(1, 99);
    controller.setSize(1, 0, 1000);
    controller.captured()->addArray(makeArray({{1, 0}}));
    ASSERT_TRUE(run.run());
    EXPECT_NE(run.file().find("[Policy.AUTO-Kestrix_controller-1]\n\n"
                              "AppliesTo.1 = t:Kestrix controller,d:1\n"),
              std::string::npos)
        << run.file();
    EXPECT_NE(run.file().find("; * Controller type:          Kestrix controller\n"),
              std::string::npos);
}

TEST(PolicyGeneratorTest, WithAnInventoryFileTheMachineTextsAreEmpty) {
    Generation run;
    run.application.settings.fake = true;
    run.application.settings.captureParameters = "m,s";
    fillMegaRaid(run.add(12, 2));
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.file().rfind(header("1", "Kestrix-C1", "", ""), 0), 0U) << run.file();
    EXPECT_NE(run.file().find("AppliesTo.1 = m:,s:\n"), std::string::npos);
    EXPECT_EQ(run.output(), std::string(checkingLine) + generatingLine);
}

struct ParameterCase {
    const char* parameters;
    const char* appliesTo;
};

TEST(PolicyGeneratorTest, ParametersThatAreWritten) {
    const ParameterCase cases[] = {
        {"", "t:Kestrix-C1,d:6"},
        {"ALL", "ALL"},
        {"all,x", "ALL"},
        {"t,All,d", "t:Kestrix-C1,ALL"},
        {"m", "m:8840-4AU"},
        {" M , S ", "m:8840-4AU,s:KQ1234"},
        {"c,o,t,d", "c:1,o:3,t:Kestrix-C1,d:6"},
        {"d\t,\nd", "d:6,d:6"},
    };
    for (const ParameterCase& c : cases) {
        Generation run;
        run.application.settings.captureParameters = c.parameters;
        fillMegaRaid(run.add(12, 2));
        ASSERT_TRUE(run.run()) << c.parameters;
        EXPECT_NE(
            run.file().find("]\n\nAppliesTo.1 = " + std::string(c.appliesTo) + "\n\nStripeSize"),
            std::string::npos)
            << run.file();
    }
}

TEST(PolicyGeneratorTest, ParametersThatAreRefused) {
    for (const char* parameters : {"m,x", "t,", ",t", " ", "td", "t,,d", "m:", "ALLE"}) {
        Generation run;
        run.platform.fileFake.files["p.ini"] = "; mine\n";
        run.application.settings.captureParameters = parameters;
        fillMegaRaid(run.add(12, 2));
        EXPECT_FALSE(run.run()) << parameters;
        EXPECT_EQ(run.output(),
                  std::string(checkingLine) + noPoliciesLine + generatingLine +
                      errorBlock(std::string("Improper syntax for the following parameter:  ") +
                                 parameters));
        EXPECT_EQ(run.file(), "; mine\n");
        EXPECT_FALSE(run.platform.fileFake.exists(temporaryFile));
    }
}

TEST(PolicyGeneratorTest, NoLogicalDriveAndNoHotSpare) {
    Generation run;
    RAIDController& controller = run.add(12, 2);
    controller.setSize(1, 5, 1000);
    controller.captured()->addArray(makeArray({{1, 5}}));
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.file(), header("1", "Kestrix-C1") + "[Policy.AUTO-Kestrix-C1-1]\n\n"
                                                      "AppliesTo.1 = t:Kestrix-C1,d:1\n\n"
                                                      "ReadAhead = ADAPTIVE\n\n"
                                                      "Array_Mode = CUSTOM\n"
                                                      "Array.A = 1\n\n"
                                                      "Logical_Mode = CUSTOM\n\n");
}

TEST(PolicyGeneratorTest, AFaultyPoliciesFileIsLeftUntouched) {
    Generation run;
    run.platform.fileFake.files["p.ini"] = "[Policy.A]\n";
    fillMegaRaid(run.add(12, 2));
    EXPECT_FALSE(run.run());
    EXPECT_FALSE(run.wrote);
    EXPECT_EQ(run.output(),
              checkingLine + errorBlock("Policy.A -- Each policy must have an AppliesTo.1"));
    EXPECT_EQ(run.file(), "[Policy.A]\n");
    EXPECT_EQ(run.platform.fileFake.opened, std::vector<std::string>{"r p.ini"});
}

TEST(PolicyGeneratorTest, TracesNameTheExits) {
    Generation run;
    run.application.settings.fake = true;
    run.application.printer().setVerbosity(level::traces);
    ASSERT_TRUE(run.run());
    EXPECT_EQ(run.output(), "Entering PolicyGenerator::generatePolicies\n" +
                                std::string(checkingLine) +
                                "Entering PolicyReader::read\n"
                                "Entering PolicyReader::scan\n"
                                "Exiting PolicyReader::scan(1), returning true\n"
                                "Exiting PolicyReader::read(4), returning true\n" +
                                generatingLine +
                                "Exiting PolicyGenerator::generatePolicies(3), returning true\n");
}

TEST(PolicyGeneratorTest, TracesNameTheExitsOfFailingRuns) {
    const auto lastLine = [](Generation& run) {
        run.application.printer().setVerbosity(level::traces);
        EXPECT_FALSE(run.run());
        const std::string output = run.output();
        return output.substr(output.rfind('\n', output.size() - 2) + 1);
    };
    Generation faultyFile;
    faultyFile.platform.fileFake.files["p.ini"] = "x\n";
    EXPECT_EQ(lastLine(faultyFile),
              "Exiting PolicyGenerator::generatePolicies(1), returning false\n");

    Generation noTempSpace;
    noTempSpace.platform.fileFake.refused = {std::string("w+ ") + temporaryFile};
    EXPECT_EQ(lastLine(noTempSpace),
              "Exiting PolicyGenerator::generatePolicies(2), returning false\n");

    Generation badParameters;
    badParameters.application.settings.captureParameters = "x";
    fillMegaRaid(badParameters.add(12, 2));
    EXPECT_EQ(lastLine(badParameters),
              "Exiting PolicyGenerator::generatePolicies(3), returning false\n");
}

} // namespace
} // namespace zolex
