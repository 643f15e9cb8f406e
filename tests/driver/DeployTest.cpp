#include "support/ModeRun.h"
#include "support/Scan.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zolex {
namespace {

class DeployTest : public testing::Test, protected test::ModeRun {
  protected:
    void SetUp() override {
        platform.fileFake.files["p.ini"] = "[Policy.x]\n"
                                           "AppliesTo.1 = ALL\n"
                                           "Array_Defaults = 0%:0\n"
                                           "Array_Mode = CUSTOM\n"
                                           "Array.A = 1,2\n"
                                           "Logical_Mode = CUSTOM\n"
                                           "Logical.1 = A:FILL:1:OFF\n";
    }
    bool shows(const std::string& text) const { return output.find(text) != std::string::npos; }
};

constexpr const char* raid1 =
    "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ 32:0,32:1 ]   WT   ADRA   -strpsz 64  -a0";

const std::string beforeDeploy = "Started ZOLEX.\n"
                                 "Found 1 supported RAID controllers.\n"
                                 "..........\n"
                                 "Capturing configurations from supported controllers ...\n"
                                 "Capture Command=UTIL.BAT MEGACLI -pdList -a0 \n\n"
                                 "Executing:UTIL.BAT MEGACLI -pdList -a0 \n\n"
                                 "Capture Command=UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
                                 "Executing:UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
                                 "Reading configuration parameters from supported controllers ...\n"
                                 "\tController 1:  LSI-MegaRAID-8480\n"
                                 "Gathering hard disk information completed \n";

TEST_F(DeployTest, AWholeRunAtLevelThree) {
    addMegaRaid();
    platform.fileFake.files["p.ini"] += "Hotspares = 3\n";
    EXPECT_EQ(0, run({"/f:p.ini"}));
    EXPECT_EQ(beforeDeploy +
                  "Checking policies file syntax: p.ini ...\n"
                  "Interpreting policies and determining configurations ...\n"
                  "Configuring RAID controllers ...\n"
                  "        Controller 1:  LSI-MegaRAID-8480 ...\n"
                  "Deploy Command=" +
                  raid1 + "\nExecuting:" + raid1 +
                  "\n"
                  "Deploy Command=UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0\n"
                  "Executing:UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:2 ] -a0\n"
                  "All configuration commands succeeded.\n"
                  "\nZOLEX completed with RC=0 \n",
              output);
    EXPECT_EQ(10, platform.pauses);
}

TEST_F(DeployTest, TracesOfAWholeRun) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/f:p.ini", "/v:9"}));
    EXPECT_TRUE(shows("Entering ZOLEX::deployConfiguration\n..........\n"
                      "Entering ZOLEX::captureConfiguration\n"));
    EXPECT_TRUE(shows("Configuring RAID controllers ...\n"
                      "Creating MEGAWinCommands\n"
                      "\tGenerating commands for controller 1: LSI-MegaRAID-8480 ...\n"
                      "        Controller 1:  LSI-MegaRAID-8480 ...\n"
                      "Entering MEGAWinCommands::doArraysAndLogicalDrives\n"));
    EXPECT_TRUE(shows(std::string("Executing:") + raid1 +
                      "\nEntering ZOLEX::checkForErrors, controllerNum=1, RC=0, Mode=2\n"
                      "Exiting ZOLEX::checkForErrors, returning true\n"));
    EXPECT_TRUE(output.ends_with("All configuration commands succeeded.\n"
                                 "Exiting ZOLEX::deployConfiguration(5)\n"
                                 "\nZOLEX completed with RC=0 \nExiting ZOLEX::main(8)\n"))
        << output;
}

TEST_F(DeployTest, OnSomeMachinesTypeTenControllersAreOrderedByBus) {
    struct Row {
        const char* machineType;
        int firstBus;
    };
    const Row rows[] = {{"X5944Y", 3}, {"5941", 3}, {"8837", 9}, {"594", 9}, {"", 9}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.machineType);
        test::ModeRun one;
        one.hardware = std::string("Machine_Type=") + row.machineType + "\n";
        one.addDevice(0x1000, 0x0050);
        one.addDevice(0x1000, 0x0062);
        one.respond = [](const std::string& command) {
            return test::FakePlatform::ended(
                0, test::cfggenBusListing(command == "UTIL.BAT CFGGEN 0 DISPLAY \n" ? 9 : 3));
        };
        ZOLEX application(one.platform);
        application.settings.defaults = true;
        ControllerList controllers;
        ASSERT_TRUE(test::scan(controllers, application));
        EXPECT_EQ(0, static_cast<int>(application.deployConfiguration(controllers).code));
        EXPECT_EQ(row.firstBus, controllers.controller(0)->busNumber());
    }
}

TEST_F(DeployTest, DefaultsUseTheBuiltInPolicy) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/d", "/v:5"}));
    EXPECT_TRUE(shows("Gathering hard disk information completed \n"
                      "Using default policy for all RAID controllers.\n"
                      "Interpreting policies and determining configurations ...\n"));
    EXPECT_TRUE(shows("\tLSI-MegaRAID-8480, controller 1 using policy:  Policy.default\n"));
    EXPECT_TRUE(shows("\tGenerating commands for controller 1: LSI-MegaRAID-8480 ...\n"
                      "        Controller 1:  LSI-MegaRAID-8480 ...\n"));
    platform.consoleFake.takeOutput();
    EXPECT_EQ(0, run({"/d"}));
    EXPECT_TRUE(shows("Using default policy for all RAID controllers.\n"));
    EXPECT_FALSE(shows("Generating commands"));
}

TEST_F(DeployTest, TheOutputOfCommandsIsShownWhenVerbose) {
    addMegaRaid();
    respond = [](const std::string&) {
        return test::FakePlatform::ended(0, "Adapter 0: Created VD 0\r\n100%");
    };
    EXPECT_EQ(0, run({"/f:p.ini", "/v:5"}));
    EXPECT_TRUE(shows(std::string("Executing:") + raid1 + "\nAdapter 0: Created VD 0\r\n100%" +
                      "All configuration commands succeeded.\n"));
    platform.consoleFake.takeOutput();
    EXPECT_EQ(0, run({"/f:p.ini"}));
    EXPECT_FALSE(shows("Created"));
}

TEST_F(DeployTest, ThePathPrefixStandsBeforeEachUtilityCommand) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/f:p.ini", "/p:C:\\tools"}));
    EXPECT_EQ((std::vector<std::string>{"C:\\tools\\UTIL.BAT MEGACLI -pdList -a0 \n",
                                        "C:\\tools\\UTIL.BAT MEGACLI -adpallinfo -a0 \n",
                                        std::string("C:\\tools\\") + raid1}),
              commands());
}

TEST_F(DeployTest, NoExecuteShowsTheCommandsAndRunsNone) {
    addMegaRaid();
    for (const char* flag : {"/noexecutedeploy", "/noexecuteall"}) {
        platform.children.clear();
        platform.consoleFake.takeOutput();
        respond = [](const std::string&) {
            return test::FakePlatform::ended(0, test::megaCliDrives(4));
        };
        EXPECT_EQ(0, run({"/f:p.ini", flag}));
        for (const std::string& command : commands()) {
            EXPECT_EQ(std::string::npos, command.find("-Cfg"));
        }
        if (std::string(flag) == "/noexecutedeploy") {
            EXPECT_TRUE(shows(std::string("Deploy Command=") + raid1 +
                              "\nAll configuration commands succeeded.\n"));
        }
    }
}

TEST_F(DeployTest, ErrorFlagsAreReadAfterTheCommands) {
    addMegaRaid();
    platform.fileFake.files["p.ini"] = "[Policy.x]\nAppliesTo.1 = c:7\n";
    EXPECT_EQ(1, run({"/f:p.ini", "/e1"}));
    EXPECT_TRUE(shows("\tNo policy match found for LSI-MegaRAID-8480, controller 1.\n"));
    EXPECT_TRUE(output.ends_with("\tSkipped LSI-MegaRAID-8480 controller.\n"
                                 "\nZOLEX failed with RC=1 \n"));
    EXPECT_EQ(0, run({"/f:p.ini"}));

    driveList = test::megaCliDrives(0);
    platform.consoleFake.takeOutput();
    EXPECT_EQ(3, run({"/d", "/e3"}));
    EXPECT_TRUE(shows("\tSkipped LSI-MegaRAID-8480 controller -- Not enough drives available.\n"));
    EXPECT_TRUE(output.ends_with("\nZOLEX failed with RC=3 \n"));
    EXPECT_EQ(0, run({"/d"}));
    // Neither flag asks for what did not happen.
    EXPECT_EQ(0, run({"/d", "/e1"}));
    // No policy goes before no drives.
    EXPECT_EQ(1, run({"/f:p.ini", "/e1", "/e3"}));
}

TEST_F(DeployTest, NoExecuteDeployStillAnswersToTheErrorFlags) {
    addMegaRaid();
    addMegaRaid();
    platform.fileFake.files["p.ini"] += "[Policy.none]\nAppliesTo.1 = c:9\n";
    platform.fileFake.files["p.ini"].replace(platform.fileFake.files["p.ini"].find("ALL"), 3,
                                             "c:1");
    EXPECT_EQ(1, run({"/f:p.ini", "/e1", "/noexecutedeploy"}));
    EXPECT_TRUE(shows(std::string("Deploy Command=") + raid1 + "\n"));
}

TEST_F(DeployTest, InvalidPoliciesAreExitCode5) {
    addMegaRaid();
    EXPECT_EQ(5, run({"/f:none.ini"}));
    EXPECT_TRUE(output.ends_with("Checking policies file syntax: none.ini ...\n"
                                 "\n#### ERROR\n\tCould not open policies file:  none.ini\n\n"
                                 "\nZOLEX failed with RC=5 \n"));
}

TEST_F(DeployTest, APlanningFaultIsExitCode5) {
    addMegaRaid();
    platform.fileFake.files["p.ini"] = "[Policy.x]\nAppliesTo.1 = ALL\nHotspares = 9\n";
    EXPECT_EQ(5, run({"/f:p.ini", "/v:9"}));
    EXPECT_TRUE(shows("\tPolicy.x, Hotspares -- The following drive does not exist:  9\n"
                      "\tLSI-MegaRAID-8480 controller.\n"));
    EXPECT_TRUE(output.ends_with("Received an error from interpreter\n"
                                 "\nZOLEX failed with RC=5 \nExiting ZOLEX::main(8)\n"));
}

TEST_F(DeployTest, MissingMachineInformationIsExitCode5) {
    addMegaRaid();
    platform.results = {test::FakePlatform::ended(1)};
    EXPECT_EQ(5, run({"/d"}));
    EXPECT_TRUE(
        shows("\n#### ERROR\n\tCould not detect the system machine type or serial number.\n"));
}

TEST_F(DeployTest, ACaptureFailureEndsTheProcessWithoutASummary) {
    addMegaRaid();
    platform.results = {test::FakePlatform::ended(0, hardware), test::FakePlatform::ended(3)};
    EXPECT_EQ(8, run({"/d"}));
    EXPECT_FALSE(shows("RC="));
}

TEST_F(DeployTest, ACommandThatIsNotAcceptedIsExitCode11) {
    addMegaRaid();
    respond = [](const std::string&) { return test::FakePlatform::ended(2, "why\nthat"); };
    EXPECT_EQ(11, run({"/f:p.ini", "/v:3"}));
    const std::string failure =
        "### ERROR\n"
        "     Error deploying configuration to controller LSI-MegaRAID-8480.\n"
        "     Received error return code 2 from the UTIL.BAT MEGACLI command.\n"
        "Deploy Command Standard Output:\n";
    EXPECT_TRUE(output.ends_with(std::string("Executing:") + raid1 + "\n" + failure +
                                 "why\nthat\nZOLEX failed with RC=11 \n"))
        << output;
    platform.consoleFake.takeOutput();
    EXPECT_EQ(11, run({"/f:p.ini", "/v:9"}));
    EXPECT_TRUE(output.ends_with("Deploy Command Standard Output:\n"
                                 "Exiting ZOLEX::deployConfiguration(4)\n"
                                 "\nZOLEX failed with RC=11 \nExiting ZOLEX::main(8)\n"));
}

TEST_F(DeployTest, ExitCode49IsASuccessOfThisUtility) {
    addMegaRaid();
    respond = [](const std::string&) { return test::FakePlatform::ended(49); };
    EXPECT_EQ(0, run({"/f:p.ini"}));
}

TEST_F(DeployTest, ACommandThatDoesNotEndIsExitCode11) {
    addMegaRaid();
    respond = [](const std::string&) { return ChildResult{ChildOutcome::stillRunning, 0, ""}; };
    EXPECT_EQ(11, run({"/f:p.ini", "/v:9"}));
    EXPECT_TRUE(
        output.ends_with(std::string("\n### Process ") + raid1 +
                         " has failed to execute within the five minute limit.\n"
                         "Process cancelled.\n"
                         "     Error deploying configuration to controller LSI-MegaRAID-8480.\n"
                         "Exiting ZOLEX::deployConfiguration(3)\n"
                         "\nZOLEX failed with RC=11 \nExiting ZOLEX::main(8)\n"))
        << output;
}

TEST_F(DeployTest, AGeneratorThatFailsIsExitCode11) {
    addMegaRaid();
    platform.fileFake.files["p.ini"] = "[Policy.x]\n"
                                       "AppliesTo.1 = ALL\n"
                                       "Array_Mode = CUSTOM\nArray.A = 1,2\nArray.B = 3,4\n"
                                       "Logical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n";
    EXPECT_EQ(11, run({"/f:p.ini", "/v:9"}));
    EXPECT_TRUE(shows("\n#### ERROR\n\tEach array must have at least one logical drive.\n"
                      "Could not configure LSI-MegaRAID-8480, controller 1.\n"));
    EXPECT_TRUE(output.ends_with("An internal error has occurred.\n"
                                 "Exiting ZOLEX::deployConfiguration(2)\n"
                                 "\nZOLEX failed with RC=11 \nExiting ZOLEX::main(8)\n"))
        << output;
}

/// A definition file of ARCCONF controllers with 18 drives each.
std::string arcconfControllers(int count) {
    std::string text;
    for (int n = 0; n < count; ++n) {
        text += "[Controller." + std::to_string(n) + "]\nType=7\nSubType=1\n";
        for (int id = 0; id < 18; ++id) {
            text += "C1S" + std::to_string(id) + "=70000\n";
        }
    }
    return text;
}

/// A policy of ten commands for ARCCONF: eight arrays and two hot spares.
std::string tenCommands() {
    std::string policy = "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
                         "Logical_Mode = CUSTOM\nHotspares = 17,18\n";
    for (int i = 0; i < 8; ++i) {
        const auto letter = static_cast<char>('A' + i);
        policy += std::string("Array.") + letter + " = " + std::to_string(2 * i + 1) + "," +
                  std::to_string(2 * i + 2) + "\n";
        policy += "Logical." + std::to_string(i + 1) + " = " + letter + ":FILL:1\n";
    }
    return policy;
}

TEST_F(DeployTest, SixteenCommandsAreRunWhateverTheNumberOfControllers) {
    platform.fileFake.files["c.ini"] = arcconfControllers(3);
    platform.fileFake.files["p.ini"] = tenCommands();
    EXPECT_EQ(0, run({"/f:p.ini", "/controllers:c.ini"}));
    std::vector<const char*> expected(8, "UTIL.BAT ARCCONF CREATE 1 ");
    expected.insert(expected.end(), 2, "UTIL.BAT ARCCONF SETSTATE 1 ");
    expected.insert(expected.end(), 6, "UTIL.BAT ARCCONF CREATE 2 ");
    std::vector<std::string> started = commands();
    ASSERT_EQ(3 + expected.size(), started.size());
    started.erase(started.begin(), started.begin() + 3); // the capture
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_TRUE(started[i].starts_with(expected[i])) << started[i];
    }
    // The rest stays unrun without a word.
    EXPECT_TRUE(output.ends_with("        Controller 3:  Kestrix-B2 ...\n"
                                 "All configuration commands succeeded.\n"
                                 "\nZOLEX completed with RC=0 \n"))
        << output;
}

TEST_F(DeployTest, TheTestDoubleRunsUnderFake) {
    platform.fileFake.files["contlist.ini"] =
        "[System]\nTotal_Number_Of_Controllers=1\nmachType=8837\nserial=KQ1\n"
        "[RAIDController.1]\nModel=LSI-MegaRAID-8480\n[RAIDController.1.Physical]\n"
        "Total_Number_Of_Physicals=2\nChannel.1=1\nID.1=0\nSize.1=69376\n"
        "Channel.2=1\nID.2=1\nSize.2=69376\n";
    EXPECT_EQ(0, run({"/f:p.ini", "/fake"}));
    const std::string line =
        "UTIL.BAT MEGACLI  -CfgLdAdd R1   [ -1:0,-1:1 ]   WT   ADRA   -strpsz 64  -a0";
    EXPECT_TRUE(shows("Deploy Command=" + line +
                      "\nFakeRAID Command=fakeraid 2 LSI-MegaRAID-8480\n"
                      "Executing:fakeraid 2 LSI-MegaRAID-8480\n"))
        << output;
    EXPECT_EQ("fakeraid 2 LSI-MegaRAID-8480", platform.children.back());
}

TEST_F(DeployTest, TypeTenPausesBeforeEachCommand) {
    addDevice(0x1000, 0x0050);
    respond = [](const std::string& command) {
        return test::FakePlatform::ended(0, command.find("DISPLAY") != std::string::npos
                                                ? test::readTestData("cfggen-display.txt")
                                                : std::string());
    };
    platform.fileFake.files["p.ini"] =
        "[Policy.x]\nAppliesTo.1 = ALL\nArray_Mode = CUSTOM\n"
        "Array.A = 1,2\nLogical_Mode = CUSTOM\nLogical.1 = A:FILL:1\n";
    EXPECT_EQ(0, run({"/f:p.ini"}));
    EXPECT_EQ(10 + 15 + 15, platform.pauses);
    EXPECT_EQ("UTIL.BAT CFGGEN 0 CREATE IM MAX 1:0 1:1 qsync NOPROMPT", commands().back());
}

} // namespace
} // namespace zolex
