#include "support/FaultPlatform.h"
#include "support/ModeRun.h"

#include "commands/CommandSource.h"
#include "foundation/Console.h"
#include "policies/PolicyGenerator.h"
#include "policies/PolicyReader.h"
#include "readers/DiskInformation.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

namespace zolex {
namespace {

class MainTest : public testing::Test, protected test::ModeRun {};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST_F(MainTest, WithoutArgumentsTheUsageIsShownAndTheRunSucceeds) {
    EXPECT_EQ(0, run({}));
    EXPECT_TRUE(output.starts_with("ZOLEX Version 2.20"));
    EXPECT_TRUE(output.ends_with("/?       -- Print ZOLEX usage.\n"));
    EXPECT_TRUE(platform.children.empty());
}

TEST_F(MainTest, HelpShowsTheUsageWhateverElseIsGiven) {
    EXPECT_EQ(0, run({"/?", "/v:0", "/r", "/c"}));
    EXPECT_TRUE(output.starts_with("ZOLEX Version 2.20"));
    EXPECT_FALSE(contains(output, "ERROR"));
}

TEST_F(MainTest, ACommandLineFaultIsExitCode4) {
    EXPECT_EQ(4, run({"/zzz"}));
    EXPECT_EQ("\n#### ERROR\n\tUnknown parameter.\n\n", output);
}

TEST_F(MainTest, CombinationsThatAreRefused) {
    struct Row {
        std::vector<std::string> arguments;
        const char* text;
    };
    constexpr const char* required = "Required parameter missing:  ";
    constexpr const char* together = "The following parameters cannot be used in combination:  ";
    const std::vector<std::pair<Row, const char*>> rows = {
        {{{"/c"}, "/f:"}, required},
        {{{"/y"}, "/f:"}, required},
        {{{"/e1", "/a"}, "/f:"}, required},
        {{{"/c", "/fake"}, "/f:"}, required},
        {{{"/r", "/c"}, "/r /c"}, together},
        {{{"/r", "/c", "/f:x"}, "/r /c"}, together},
        {{{"/r", "/c:t"}, "/r /c"}, together},
        {{{"/r", "/c", "/d"}, "/r /c"}, together},
        {{{"/r", "/r:1", "/c", "/f:x"}, "/r /c"}, together},
        {{{"/c:t", "/d"}, "/c /d"}, together},
        {{{"/r", "/r:1", "/f:x", "/d"}, "/r: /d"}, together},
        {{{"/r", "/r:1", "/e1", "/a"}, "/r /r:"}, together},
        {{{"/r:1", "/d"}, "/r: /d"}, together},
        {{{"/r:1", "/d", "/c"}, "/r: /d"}, together},
        {{{"/r", "/r:1", "/d"}, "/r: /d"}, together},
        {{{"/c", "/d"}, "/c /d"}, together},
        {{{"/c", "/d", "/f:x"}, "/c /d"}, together},
        {{{"/r", "/r:1"}, "/r /r:"}, together},
        {{{"/r", "/r:1", "/f:x"}, "/r /r:"}, together},
        {{{"/f:x", "/d"}, "/f: /d"}, together},
        {{{"/f:x", "/d", "/e1", "/a"}, "/f: /d"}, together},
        {{{"/d", "/e1", "/a"}, "/e1 or /e3 with /a"}, together},
        {{{"/d", "/e3", "/a"}, "/e1 or /e3 with /a"}, together},
        {{{"/r:1", "/e3", "/a"}, "/e1 or /e3 with /a"}, together},
        {{{"/r", "/e1", "/a"}, "/e1 or /e3 with /a"}, together},
    };
    for (const auto& [row, heading] : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        platform.consoleFake.takeOutput();
        EXPECT_EQ(4, run(row.arguments));
        EXPECT_EQ(std::string("\n#### ERROR\n\t") + heading + row.text + "\n\n", output);
        EXPECT_TRUE(platform.children.empty());
    }
}

TEST_F(MainTest, CombinationsThatAreAllowedReachTheControllers) {
    const std::vector<std::vector<std::string>> rows = {
        {"/f:x"},
        {"/d"},
        {"/c", "/f:x"},
        {"/r", "/y"},
        {"/r:1", "/y"},
        {"/r", "/d"},
        {"/r", "/f:x", "/y"},
        {"/r:1", "/f:x"},
        {"/r:", "/c", "/f:x"},
        {"/r:1", "/c"},
        {"/d", "/a"},
        {"/d", "/e1"},
        {"/d", "/e2", "/a", "/noexecuteall"},
    };
    for (const auto& arguments : rows) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        platform.consoleFake.takeOutput();
        const bool e2 = std::find(arguments.begin(), arguments.end(), "/e2") != arguments.end();
        EXPECT_EQ(e2 ? 2 : 0, run(arguments));
        EXPECT_EQ("Started ZOLEX.\nNo supported RAID controllers found.\n", output);
    }
}

TEST_F(MainTest, DetectionCheck) {
    EXPECT_EQ(2, run({"/e2", "/v:5"}));
    EXPECT_EQ("No supported RAID controllers found.\n", output);
    platform.consoleFake.takeOutput();
    addMegaRaid();
    EXPECT_EQ(0, run({"/e2", "/v:0"}));
    EXPECT_EQ("Found 1 supported RAID controllers.\n", output);
}

TEST_F(MainTest, DetectionCheckLooksAtTheHardwareOnly) {
    platform.fileFake.files["contlist.ini"] = "[System]\nTotal_Number_Of_Controllers=1\n"
                                              "[RAIDController.1]\nModel=Kestrix-C1\n";
    EXPECT_EQ(2, run({"/e2", "/fake", "/c", "/y"}));
    EXPECT_EQ("No supported RAID controllers found.\n", output);
    EXPECT_TRUE(platform.fileFake.opened.empty());
    EXPECT_EQ(std::vector<std::string>{"hwdetect.exe /i"}, platform.children);
}

TEST_F(MainTest, DetectionCheckPrintsNoDetails) {
    platform.fileFake.files["c.ini"] = "[Controller.0]\nType=12\n[Controller.1]\nType=10\n";
    EXPECT_EQ(0, run({"/e2", "/v:5", "/controllers:c.ini"}));
    EXPECT_EQ("Found 2 supported RAID controllers.\n", output);
}

TEST_F(MainTest, DetectionCheckAfterTracesIsBackAtLevelThree) {
    EXPECT_EQ(2, run({"/e2", "/v:9"}));
    EXPECT_EQ("Entering ZOLEX::main\nNo supported RAID controllers found.\n", output);
}

TEST_F(MainTest, NoControllers) {
    EXPECT_EQ(0, run({"/d"}));
    EXPECT_EQ("Started ZOLEX.\nNo supported RAID controllers found.\n", output);
    platform.consoleFake.takeOutput();
    EXPECT_EQ(2, run({"/d", "/e2"}));
    EXPECT_EQ("Started ZOLEX.\nNo supported RAID controllers found.\n", output);
}

TEST_F(MainTest, NoControllersTraced) {
    EXPECT_EQ(2, run({"/d", "/e2", "/v:9"}));
    EXPECT_EQ("Entering ZOLEX::main\n"
              "Started ZOLEX.\n"
              "Calling controllers.initialize\n"
              "Entering ControllerList::initialize\n"
              "Total number of PCI devices=0\n"
              "Entering ControllerList::setControllerScanOrders\n"
              "Exiting ControllerList::setControllerScanOrders\n"
              "Exiting ControllerList::initialize\n"
              "Return from controllers.initialize, number of controllers = 0\n"
              "No supported RAID controllers found.\n"
              "Exiting ZOLEX::main(1)\n",
              output);
    platform.consoleFake.takeOutput();
    EXPECT_EQ(0, run({"/d", "/v:9"}));
    EXPECT_TRUE(output.ends_with("Exiting ZOLEX::main(2)\n"));
}

TEST_F(MainTest, TheStartLineIsNotPrintedAtStepTwoAndThree) {
    for (const char* step : {"/step2", "/step3"}) {
        platform.consoleFake.takeOutput();
        EXPECT_EQ(0, run({"/d", step}));
        EXPECT_EQ("No supported RAID controllers found.\n", output);
    }
}

TEST_F(MainTest, TheOutputScriptHasADefaultName) {
    ZOLEX application(platform);
    EXPECT_EQ(0, run(application, {"/d"}));
    EXPECT_EQ(CString("ZOLEXOUT.BAT"), application.settings.outputScript);
    EXPECT_EQ(1, application.settings.step);
    EXPECT_EQ(CString("zolex"), application.settings.programPath);
    ZOLEX other(platform);
    EXPECT_EQ(0, run(other, {"/d", "/o:mine.bat"}));
    EXPECT_EQ(CString("mine.bat"), other.settings.outputScript);
}

TEST_F(MainTest, TheOutputScriptIsNotWritten) {
    addMegaRaid();
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"/d"}, {"/d", "/o:mine.bat", "/a"}, {"/r", "/y", "/o:m.bat"}}) {
        EXPECT_EQ(0, run(arguments));
    }
    EXPECT_TRUE(platform.fileFake.opened.empty());
}

TEST_F(MainTest, TheUsageIsShownAtLevelFive) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{}, {"/?"}, {"/?", "/v:0"}, {"/?", "/v:9"}}) {
        ZOLEX application(platform);
        platform.consoleFake.takeOutput();
        EXPECT_EQ(0, run(application, arguments));
        EXPECT_EQ(level::detail, application.printer().verbosity());
        EXPECT_TRUE(output.starts_with("ZOLEX Version 2.20  "));
    }
}

TEST_F(MainTest, ControllersAreListedAtLevelFive) {
    addMegaRaid();
    addDevice(0x1000, 0x0060, ZOLEX_MAKER_PCI_VENDOR_ID, 0x0364);
    EXPECT_EQ(0, run({"/r:7", "/y", "/v:5"}));
    EXPECT_TRUE(output.starts_with("Started ZOLEX.\n"
                                   "Found 2 supported RAID controllers.\n"
                                   "\tController 1:  LSI-MegaRAID-8480\n"
                                   "\tController 2:  Kestrix-C1\n"))
        << output;
}

TEST_F(MainTest, AFailedInitialisationIsExitCode10) {
    EXPECT_EQ(10, run({"/fake", "/d"}));
    EXPECT_EQ("Started ZOLEX.\n\n#### ERROR\n\tNo Controllers Found in Inventory File\n\n", output);
    EXPECT_EQ(std::vector<std::string>{"r contlist.ini"}, platform.fileFake.opened);
}

TEST_F(MainTest, AFailedInitialisationOfTheDetectionCheckIsExitCode10) {
    platform.fileFake.files["c.ini"] = "[Controller.0]\nType=12\n";
    test::FaultPlatform faulty(platform, {test::Operation::read, 1});
    const char* arguments[] = {"zolex", "/e2", "/controllers:c.ini"};
    EXPECT_EQ(10, ZOLEX::run(3, arguments, faulty));
    EXPECT_EQ("\n#### ERROR\n\tCould not read controller-definition file:  c.ini\n\n", output);
}

TEST_F(MainTest, RestoreAloneEndsAfterTheRestore) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(contains(output, "Calling restoreDefaults\nEntering restoreDefaults\n"));
    EXPECT_TRUE(output.ends_with("Exiting restoreDefaults(8)\n"
                                 "Return from restoreDefaults\n"
                                 "\nZOLEX completed with RC=0 \n"
                                 "Exiting ZOLEX::main(3)\n"));
}

TEST_F(MainTest, AFailedRestoreEndsWithoutASummary) {
    addMegaRaid();
    respond = [](const std::string&) { return test::FakePlatform::ended(3); };
    EXPECT_EQ(7, run({"/r", "/y"}));
    EXPECT_FALSE(contains(output, "RC="));
    platform.consoleFake.takeOutput();
    EXPECT_EQ(7, run({"/r", "/y", "/d"}));
    EXPECT_FALSE(contains(output, "RC="));
    EXPECT_EQ(0, platform.pauses);
}

TEST_F(MainTest, RestoreThenDeploy) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r", "/y", "/d"}));
    EXPECT_EQ(
        (std::vector<std::string>{
            "UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
            "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT", "UTIL.BAT MEGACLI -pdList -a0 \n",
            "UTIL.BAT MEGACLI -adpallinfo -a0 \n",
            "UTIL.BAT MEGACLI  -CfgLdAdd R5   [ 32:0,32:1,32:2 ]   WB   ADRA   -strpsz 64  -a0",
            "UTIL.BAT MEGACLI -PDHSP { -Set } -PhysDrv[ 32:3 ] -a0"}),
        commands());
    EXPECT_TRUE(output.ends_with("All configuration commands succeeded.\n"
                                 "\nZOLEX completed with RC=0 \n"))
        << output;
}

TEST_F(MainTest, TheExitCodeOfRestoreThenDeployIsThatOfDeploy) {
    addMegaRaid();
    addMegaRaid();
    platform.fileFake.files["p.ini"] = "[Policy.x]\nAppliesTo.1 = c:2\n";
    EXPECT_EQ(1, run({"/r:2", "/y", "/f:p.ini", "/e1"}));
    const std::vector<std::string> started = commands();
    ASSERT_LT(2U, started.size());
    EXPECT_EQ("UTIL.BAT MEGACLI -CFGCLR -A1 -SILENT", started[0]);
    EXPECT_EQ("UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A1 -SILENT", started[1]);
    EXPECT_TRUE(contains(output, "Restore-default settings complete.\n"
                                 "\nZOLEX completed with RC=0 \n.........."));
    EXPECT_TRUE(output.ends_with("\nZOLEX failed with RC=1 \n")) << output;
}

TEST_F(MainTest, AfterADeclinedPromptDeployStillRuns) {
    addMegaRaid();
    platform.consoleFake.answers = "n";
    EXPECT_EQ(0, run({"/r", "/d"}));
    EXPECT_TRUE(contains(output, "[Y/N]? \n\nZOLEX completed with RC=0 \n..........\n"));
    for (const std::string& command : commands()) {
        EXPECT_FALSE(contains(command, "-CFGCLR")) << command;
    }
    EXPECT_TRUE(output.ends_with("All configuration commands succeeded.\n"
                                 "\nZOLEX completed with RC=0 \n"));
}

TEST_F(MainTest, RestoreWithNumberThenCapture) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r:1", "/y", "/c", "/f:p.ini"}));
    EXPECT_EQ((std::vector<std::string>{"UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT",
                                        "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT",
                                        "UTIL.BAT MEGACLI -LdPdInfo -a0 \n",
                                        "UTIL.BAT MEGACLI -pdList -a0 \n",
                                        "UTIL.BAT MEGACLI -adpallinfo -a0 \n"}),
              commands());
    EXPECT_TRUE(output.ends_with("ZOLEX complete.  Note: No policies were created.\n"
                                 "\nZOLEX completed with RC=0 \n"))
        << output;
}

TEST_F(MainTest, RestoreWithNumberAndCaptureFlagWithoutAFileOnlyRestores) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r:1", "/y", "/c"}));
    EXPECT_EQ(2U, commands().size());
}

TEST_F(MainTest, CaptureOfAConfiguredController) {
    addMegaRaid();
    driveList = test::readTestData("megacli-pdlist-early.txt");
    configurationList = test::readTestData("megacli-ldpdinfo-early.txt");
    EXPECT_EQ(0, run({"/c", "/f:p.ini", "/v:9"}));
    EXPECT_TRUE(output.ends_with("ZOLEX complete.  Wrote policies file.\n"
                                 "\nZOLEX completed with RC=0 \n"
                                 "Exiting ZOLEX::main(7)\n"));
    const std::string& written = platform.fileFake.files["p.ini"];
    EXPECT_TRUE(contains(written, "[Policy.AUTO-LSI-MegaRAID-8480-1]\n\n"
                                  "AppliesTo.1 = t:LSI-MegaRAID-8480,d:5\n\n"
                                  "StripeSize = 64\n"
                                  "ReadAhead = ADAPTIVE\n\n"
                                  "Array_Mode = CUSTOM\n"
                                  "Array.A = 1,2,3\n\n"
                                  "Hotspares = 4\n\n"
                                  "Logical_Mode = CUSTOM\n"
                                  "Logical.1 = A:138752:5:ON\n\n"))
        << written;
    EXPECT_FALSE(platform.fileFake.exists("ZOLEXM~~.TMP"));
}

TEST_F(MainTest, DebugDumpsTheControllersAfterACapture) {
    addMegaRaid();
    driveList = test::readTestData("megacli-pdlist-early.txt");
    configurationList = test::readTestData("megacli-ldpdinfo-early.txt");
    EXPECT_EQ(0, run({"/c", "/f:p.ini", "/debug"}));
    const std::string end = output.substr(output.find("RC=0 \n"));
    EXPECT_TRUE(end.starts_with("RC=0 \n**** Dumping RAIDController at address ")) << end;
    // With the configuration that was captured.
    EXPECT_TRUE(contains(end, "#### START Configuration dump ####\n"));
}

TEST_F(MainTest, ACaptureFailureIsExitCode8) {
    addMegaRaid();
    platform.results = {test::FakePlatform::ended(0, hardware), test::FakePlatform::ended(5)};
    EXPECT_EQ(8, run({"/c", "/f:p.ini", "/v:9"}));
    EXPECT_TRUE(output.ends_with("\nZOLEX failed with RC=8 \nExiting ZOLEX::main(4)\n"));
    EXPECT_FALSE(platform.fileFake.exists("p.ini"));
}

TEST_F(MainTest, AGeneratorFailureIsExitCode9) {
    addMegaRaid();
    platform.fileFake.refused = {"w+ ZOLEXM~~.TMP"};
    EXPECT_EQ(9, run({"/c", "/f:p.ini", "/v:9"}));
    EXPECT_TRUE(output.ends_with("\nZOLEX failed with RC=9 \nExiting ZOLEX::main(6)\n")) << output;
}

/// A run whose worker of one kind cannot be made.
class WithoutWorker : public ZOLEX {
  public:
    enum class Worker { runner, captureSource, restoreSource, information, reader, generator };
    WithoutWorker(Platform& platform, Worker missing) : ZOLEX(platform), missing_(missing) {}

  protected:
    std::unique_ptr<Tool> makeRunner() override {
        return missing_ == Worker::runner ? nullptr : ZOLEX::makeRunner();
    }
    std::unique_ptr<CommandSource> makeCaptureSource() override {
        return missing_ == Worker::captureSource ? nullptr : ZOLEX::makeCaptureSource();
    }
    std::unique_ptr<CommandSource> makeRestoreSource() override {
        return missing_ == Worker::restoreSource ? nullptr : ZOLEX::makeRestoreSource();
    }
    std::unique_ptr<DiskInformation> makeDiskInformation() override {
        return missing_ == Worker::information ? nullptr : ZOLEX::makeDiskInformation();
    }
    std::unique_ptr<PolicyReader> makePolicyReader() override {
        return missing_ == Worker::reader ? nullptr : ZOLEX::makePolicyReader();
    }
    std::unique_ptr<PolicyGenerator> makePolicyGenerator() override {
        return missing_ == Worker::generator ? nullptr : ZOLEX::makePolicyGenerator();
    }

  private:
    Worker missing_;
};

TEST_F(MainTest, AWorkerThatCannotBeMadeIsExitCode10) {
    using Worker = WithoutWorker::Worker;
    struct Row {
        Worker missing;
        std::vector<std::string> arguments;
        const char* end; ///< of the output
    };
    const std::vector<Row> rows = {
        {Worker::runner,
         {"/c", "/f:p", "/v:9"},
         "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(4)\n"},
        {Worker::captureSource,
         {"/c", "/f:p", "/v:9"},
         "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(4)\n"},
        {Worker::information,
         {"/c", "/f:p", "/v:9"},
         "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(4)\n"},
        {Worker::generator,
         {"/c", "/f:p", "/v:9"},
         "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(5)\n"},
        {Worker::runner,
         {"/r", "/y", "/v:9"},
         "Exiting restoreDefaults(1)\nReturn from restoreDefaults\n"},
        {Worker::restoreSource,
         {"/r", "/y", "/v:9"},
         "Restoring all controllers to factory-default settings ...\n"
         "Exiting restoreDefaults(3)\nReturn from restoreDefaults\n"},
        {Worker::runner, {"/d", "/v:9"}, "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(8)\n"},
        {Worker::reader, {"/d", "/v:9"}, "\nZOLEX failed with RC=10 \nExiting ZOLEX::main(8)\n"},
    };
    addMegaRaid();
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        platform.consoleFake.takeOutput();
        WithoutWorker application(platform, row.missing);
        EXPECT_EQ(10, run(application, row.arguments));
        EXPECT_TRUE(output.ends_with(row.end)) << output;
    }
}

TEST_F(MainTest, AtLevelZeroOnlyErrorsAndUngatedLinesAreShown) {
    addMegaRaid();
    platform.fileFake.files["p.ini"] = "[Policy.x]\n";
    EXPECT_EQ(5, run({"/f:p.ini", "/v:0"}));
    EXPECT_EQ("..........\n"
              "Capture Command=UTIL.BAT MEGACLI -pdList -a0 \n\n"
              "Executing:UTIL.BAT MEGACLI -pdList -a0 \n\n"
              "Capture Command=UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
              "Executing:UTIL.BAT MEGACLI -adpallinfo -a0 \n\n"
              "\n#### ERROR\n\tPolicy.x -- Each policy must have an AppliesTo.1\n",
              output);
}

#if GTEST_HAS_DEATH_TEST
TEST_F(MainTest, MainEndsTheProcessWithTheExitCode) {
    const char* arguments[] = {"zolex", "/zzz"};
    EXPECT_EXIT(ZOLEX::main(2, arguments, platform), testing::ExitedWithCode(4), "");
}

TEST_F(MainTest, MainEndsTheProcessWithExitCode10WhenMemoryRunsOut) {
    /// The system's streams, so that the message is seen.
    class Streaming : public test::FakePlatform {
      public:
        Console& console() override { return streams_; }

      private:
        StandardConsole streams_;
    } streaming;
    streaming.respond = [](const std::string&) -> ChildResult { throw std::bad_alloc(); };
    const char* arguments[] = {"zolex", "/d"};
    EXPECT_EXIT(ZOLEX::main(2, arguments, streaming), testing::ExitedWithCode(10),
                "Not enough memory is available");
}
#endif

} // namespace
} // namespace zolex
