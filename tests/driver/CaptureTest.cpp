#include "commands/CommandSource.h"
#include "driver/CommandRun.h"
#include "support/FakePlatform.h"
#include "support/ModeRun.h"
#include "support/Scan.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex {
namespace {

/// The capture step over controllers that a definition file or the PCI bus gives.
class CaptureTest : public testing::Test, protected test::ModeRun {
  protected:
    void SetUp() override { application.printer().setVerbosity(level::progress); }

    unsigned capture() {
        EXPECT_TRUE(test::scan(controllers, application));
        platform.consoleFake.takeOutput();
        return static_cast<unsigned>(application.captureConfiguration(controllers));
    }

    ZOLEX application{platform};
    ControllerList controllers;
};

constexpr const char* captureStart = "Capturing configurations from supported controllers ...\n";
constexpr const char* pdListLine = "Capture Command=UTIL.BAT MEGACLI -pdList -a0 \n\n";

TEST_F(CaptureTest, AWholeCaptureAtLevelThree) {
    addMegaRaid();
    EXPECT_EQ(0U, capture());
    EXPECT_EQ(std::string(captureStart) + pdListLine +
                  "Executing:UTIL.BAT MEGACLI -pdList -a0 \n\n"
                  "Capture Command=UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
                  "Executing:UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
                  "Reading configuration parameters from supported controllers ...\n"
                  "\tController 1:  LSI-MegaRAID-8480\n"
                  "Gathering hard disk information completed \n",
              output);
    EXPECT_EQ(4, controllers.controller(0)->numberOfDrives());
}

TEST_F(CaptureTest, TracesNameTheNumberOfCommands) {
    addMegaRaid();
    application.printer().setVerbosity(level::traces);
    application.settings.capture = true;
    EXPECT_EQ(0U, capture());
    EXPECT_TRUE(output.starts_with(
        std::string("Entering ZOLEX::captureConfiguration\n") + captureStart +
        "Number of commmands required for controller 1 = 3\n"
        "Entering GetConfigFiles::getCommand, controller type=12, num=1, comandNum=0\n"
        "Capture Command="))
        << output;
    EXPECT_NE(std::string::npos,
              output.find("Entering ZOLEX::checkForErrors, controllerNum=1, RC=0, Mode=1\n"
                          "Exiting ZOLEX::checkForErrors, returning true\n"));
    EXPECT_TRUE(output.ends_with("Exiting ZOLEX::captureConfiguration\n"));
}

TEST_F(CaptureTest, UnderTheseFlagsTheTestDoubleRunsInsteadOfTheUtility) {
    bool Settings::*const flags[] = {&Settings::noExecuteAll, &Settings::noExecuteCapture};
    for (bool Settings::*flag : flags) {
        test::ModeRun run;
        run.addMegaRaid();
        ZOLEX tested(run.platform);
        tested.printer().setVerbosity(level::progress);
        tested.settings.*flag = true;
        ControllerList list;
        ASSERT_TRUE(test::scan(list, tested));
        EXPECT_EQ(0, static_cast<int>(tested.captureConfiguration(list)));
        EXPECT_NE(std::string::npos,
                  run.output.find(std::string(pdListLine) +
                                  "FakeRAID Command=fakeraid 1 LSI-MegaRAID-8480\n"
                                  "Executing:fakeraid 1 LSI-MegaRAID-8480\n"));
        EXPECT_EQ((std::vector<std::string>{"fakeraid 1 LSI-MegaRAID-8480",
                                            "fakeraid 1 LSI-MegaRAID-8480"}),
                  run.commands());
    }
}

TEST_F(CaptureTest, ControllersOfAnInventoryFileAreShownWithRemAndCapturedWithTheTestDouble) {
    platform.fileFake.files["contlist.ini"] =
        "[System]\nTotal_Number_Of_Controllers=1\n[RAIDController.1]\nModel=LSI-MegaRAID-8480\n"
        "[RAIDController.1.Physical]\nTotal_Number_Of_Physicals=1\n"
        "Channel.1=1\nID.1=0\nSize.1=69376\n";
    EXPECT_EQ(0, run({"/c", "/f:p.ini", "/fake"}));
    EXPECT_NE(std::string::npos,
              output.find("Capture Command=REM * UTIL.BAT MEGACLI -LdPdInfo -a0 \n\n"
                          "FakeRAID Command=fakeraid 1 LSI-MegaRAID-8480\n"
                          "Executing:fakeraid 1 LSI-MegaRAID-8480\n"));
    EXPECT_EQ(std::vector<std::string>(3, "fakeraid 1 LSI-MegaRAID-8480"), platform.children);
}

TEST_F(CaptureTest, ACommandThatCannotRunOrDoesNotEndIsExitCode8) {
    for (const ChildOutcome outcome : {ChildOutcome::notStarted, ChildOutcome::stillRunning,
                                       ChildOutcome::noPipe, ChildOutcome::notClosed}) {
        test::ModeRun run;
        run.addMegaRaid();
        run.platform.results = {test::FakePlatform::ended(0, run.hardware), {outcome, 0, ""}};
        ZOLEX tested(run.platform);
        tested.printer().setVerbosity(level::progress);
        ControllerList list;
        ASSERT_TRUE(test::scan(list, tested));
        EXPECT_EQ(8, static_cast<int>(tested.captureConfiguration(list)));
        EXPECT_TRUE(run.output.ends_with(
            "     Error gathering information from controller LSI-MegaRAID-8480.\n"))
            << run.output;
        EXPECT_EQ(outcome == ChildOutcome::stillRunning,
                  run.output.find("\n### Process UTIL.BAT MEGACLI -pdList -a0 \n has failed to "
                                  "execute within the five minute limit.\nProcess cancelled.\n") !=
                      std::string::npos);
        EXPECT_EQ(outcome == ChildOutcome::noPipe,
                  run.output.find("CreatePipe Faield:Tool::Tool()\n") != std::string::npos);
    }
}

TEST_F(CaptureTest, AnExitCodeThatIsNotAcceptedShowsTheOutput) {
    addMegaRaid();
    const std::string longLine(250, 'x');
    platform.results = {test::FakePlatform::ended(0, hardware),
                        test::FakePlatform::ended(3, "first\r\n" + longLine + "\nno line end")};
    EXPECT_EQ(8U, capture());
    EXPECT_TRUE(
        output.ends_with("### ERROR\n"
                         "     Error gathering information from controller LSI-MegaRAID-8480.\n"
                         "     Received error return code 3 from the UTIL.BAT MEGACLI command.\n"
                         "Capture Command Standard Output:\nfirst\r\n" +
                         longLine + "\nno line end"))
        << output;
}

TEST_F(CaptureTest, AcceptedExitCodesByType) {
    struct Row {
        int type;
        std::uint32_t exitCode;
        bool accepted;
    };
    const std::vector<Row> rows = {
        {12, 0, true},    {12, 49, true},         {12, 2, false}, {5, 2, true},
        {5, 0, true},     {5, 49, false},         {10, 2, false}, {10, 0, true},
        {1, 1, false},    {99, 0, true},          {99, 2, false}, {12, 0xFFFFFFFF, false},
        {12, 256, false}, {1, 0xC0000005, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.type << ' ' << row.exitCode);
        RAIDController controller;
        controller.setType(row.type);
        EXPECT_EQ(row.accepted,
                  checkForErrors(application, controller, 1, row.exitCode, Mode::capture));
    }
}

TEST_F(CaptureTest, FailuresAreToldByMode) {
    RAIDController controller;
    controller.setType(controller_type::megaRaid);
    controller.setSubtype(1);
    const std::pair<Mode, const char*> rows[] = {
        {Mode::restore, "     Error restoring controller LSI-MegaRAID-8480 to factory-default "
                        "settings.\n"},
        {Mode::capture, "     Error gathering information from controller LSI-MegaRAID-8480.\n"},
        {Mode::deploy, "     Error deploying configuration to controller LSI-MegaRAID-8480.\n"},
    };
    for (const auto& [mode, text] : rows) {
        platform.consoleFake.takeOutput();
        EXPECT_FALSE(checkForErrors(application, controller, 2, 300, mode));
        EXPECT_EQ(std::string("### ERROR\n") + text +
                      "     Received error return code 300 from the UTIL.BAT MEGACLI command.\n",
                  output);
    }
    platform.consoleFake.takeOutput();
    application.printer().setVerbosity(level::always);
    EXPECT_FALSE(checkForErrors(application, controller, 2, 300, Mode::deploy));
    EXPECT_EQ("", output);
}

TEST_F(CaptureTest, AReaderThatFailsIsExitCode8) {
    addDevice(0x9005, 0x808F); // an HRCONF controller
    respond = [](const std::string&) {
        return test::FakePlatform::ended(0, "Logical drive information\n"
                                            "Logical drive number 1\nRAID level : 4\n");
    };
    application.settings.capture = true;
    EXPECT_EQ(8U, capture());
    EXPECT_NE(std::string::npos,
              output.find("Format error in config file for the following controller:  "
                          "Kestrix-A10"));
}

TEST_F(CaptureTest, TypeTenPausesFifteenSecondsBeforeEachCommand) {
    addDevice(0x1000, 0x0050);
    EXPECT_EQ(0U, capture());
    EXPECT_EQ(15, platform.pauses);
    EXPECT_NE(std::string::npos, output.find("Executing:UTIL.BAT CFGGEN 0 DISPLAY \n\n"
                                             "...............\n"));
}

TEST_F(CaptureTest, ASecondCaptureOfARunStartsAfresh) {
    addMegaRaid();
    addMegaRaid();
    EXPECT_EQ(0U, capture());
    driveList = test::megaCliDrives(2);
    EXPECT_EQ(0, static_cast<int>(application.captureConfiguration(controllers)));
    EXPECT_EQ(2, controllers.controller(0)->numberOfDrives());
    EXPECT_EQ(2, controllers.controller(1)->numberOfDrives());
}

TEST_F(CaptureTest, DebugDumpsTheList) {
    addMegaRaid();
    application.settings.debug = true;
    EXPECT_EQ(0U, capture());
    EXPECT_NE(std::string::npos, output.find("**** Dumping RAIDController at address "));
}

TEST_F(CaptureTest, TheChildLimitIsTheRunners) {
    addMegaRaid();
    EXPECT_EQ(0U, capture());
    EXPECT_EQ(std::chrono::milliseconds(300000), platform.limits.back());
    application.childLimit = std::chrono::milliseconds(7);
    EXPECT_EQ(0, static_cast<int>(application.captureConfiguration(controllers)));
    EXPECT_EQ(std::chrono::milliseconds(7), platform.limits.back());
}

/// A run whose sources of command lines are looked at.
class OpenSources : public ZOLEX {
  public:
    using ZOLEX::makeCaptureSource;
    using ZOLEX::makeRestoreSource;
    using ZOLEX::ZOLEX;
};

class SourcesOfARun : public testing::Test {
  protected:
    void SetUp() override {
        controller.setType(controller_type::megaRaid);
        controller.setScanOrder(1);
    }

    test::FakePlatform platform;
    OpenSources run{platform};
    RAIDController controller;
};

TEST_F(SourcesOfARun, GiveNoRemarksForAControllerDefinitionFile) {
    run.settings.controllerDefinitionFile = "controllers.txt";
    EXPECT_EQ(run.makeCaptureSource()->getCommand(controller, 1, 0),
              "UTIL.BAT MEGACLI -pdList -a0 \n");
    EXPECT_EQ(run.makeRestoreSource()->getCommand(controller, 1, 0),
              "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT");
}

TEST_F(SourcesOfARun, FollowTheSettings) {
    run.settings.fake = true;
    run.settings.capture = true;
    run.settings.commandPathPrefix = "C:\\RAID\\";
    run.settings.tempDirectory = "T:\\";
    const auto source = run.makeCaptureSource();
    EXPECT_EQ(source->getCommand(controller, 1, 0),
              "REM * C:\\RAID\\UTIL.BAT MEGACLI -LdPdInfo -a0 \n");
    const auto script = platform.fileFake.open("x.bat", "w");
    EXPECT_TRUE(source->writeErrorSection(*script));
    EXPECT_NE(platform.fileFake.files["x.bat"].find("\nT:\\ZLXERR.BAT /error\n"),
              std::string::npos);
}

} // namespace
} // namespace zolex
