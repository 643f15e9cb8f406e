#include "support/ModeRun.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zolex {
namespace {

class RestoreTest : public testing::Test, protected test::ModeRun {
  protected:
    bool shows(const std::string& text) const { return output.find(text) != std::string::npos; }
};

constexpr const char* prompt =
    "\nZOLEX will restore all RAID controllers to factory-default settings.\n"
    "Are you sure you want to continue [Y/N]? \n";

TEST_F(RestoreTest, AWholeRestoreAtLevelThree) {
    addMegaRaid();
    platform.consoleFake.answers = "Y\n";
    EXPECT_EQ(0, run({"/r"}));
    EXPECT_EQ(std::string("Started ZOLEX.\n"
                          "Found 1 supported RAID controllers.\n"
                          "Restore-default settings complete.\n") +
                  prompt +
                  "Restoring all controllers to factory-default settings ...\n"
                  "Restore Command=UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                  "Executing:UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                  "Restore Command=UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT\n"
                  "Executing:UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT\n"
                  "Restore-default settings complete.\n"
                  "\nZOLEX completed with RC=0 \n",
              output);
}

TEST_F(RestoreTest, TracesOfAWholeRestore) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(shows("Calling restoreDefaults\n"
                      "Entering restoreDefaults\n"
                      "Restore-default settings complete.\n"
                      "Restoring all controllers to factory-default settings ...\n"
                      "Restore Command=UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                      "Executing:UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                      "Restore Command Standard Output:\n"
                      "Entering ZOLEX::checkForErrors, controllerNum=1, RC=0, Mode=0\n"
                      "Exiting ZOLEX::checkForErrors, returning true\n"
                      "Restore Command=UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT\n"
                      "Executing:UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT\n"
                      "Restore Command Standard Output:\n"
                      "Entering ZOLEX::checkForErrors, controllerNum=1, RC=0, Mode=0\n"
                      "Exiting ZOLEX::checkForErrors, returning true\n"
                      "Restore-default settings complete.\n"
                      "Exiting restoreDefaults(8)\n"
                      "Return from restoreDefaults\n"
                      "\nZOLEX completed with RC=0 \n"
                      "Exiting ZOLEX::main(3)\n"))
        << output;
}

TEST_F(RestoreTest, Answers) {
    const std::pair<const char*, bool> rows[] = {{"Y", true},   {"y", true},  {"yes", true},
                                                 {"n", false},  {"N", false}, {"", false},
                                                 {" y", false}, {"\n", false}};
    for (const auto& [answer, accepted] : rows) {
        SCOPED_TRACE(answer);
        test::ModeRun one;
        one.addMegaRaid();
        one.platform.consoleFake.answers = answer;
        EXPECT_EQ(0, one.run({"/r", "/v:9"}));
        EXPECT_EQ(accepted ? 2U : 0U, one.commands().size());
        EXPECT_EQ(!accepted,
                  one.output.find("Exiting restoreDefaults(2)\nReturn from restoreDefaults\n") !=
                      std::string::npos);
        EXPECT_LE(one.platform.consoleFake.charactersRead, 1U);
    }
}

TEST_F(RestoreTest, ThePromptIsShownAtLevelZero) {
    addMegaRaid();
    EXPECT_EQ(0, run({"/r", "/v:0"}));
    EXPECT_EQ(prompt, output);
}

TEST_F(RestoreTest, WithoutPromptNothingIsRead) {
    addMegaRaid();
    platform.consoleFake.answers = "n";
    EXPECT_EQ(0, run({"/r", "/y"}));
    EXPECT_EQ(0U, platform.consoleFake.charactersRead);
    EXPECT_FALSE(shows("Are you sure"));
    EXPECT_EQ(2U, commands().size());
}

TEST_F(RestoreTest, ANumberChoosesOneController) {
    addMegaRaid();
    addMegaRaid();
    addMegaRaid();
    const std::pair<const char*, std::size_t> rows[] = {{"/r:2", 2},   {"/r:4", 0},  {"/r:0", 0},
                                                        {"/r:abc", 0}, {"/r:-2", 0}, {"/r:-1", 6}};
    for (const auto& [argument, count] : rows) {
        SCOPED_TRACE(argument);
        platform.children.clear();
        EXPECT_EQ(0, run({argument, "/y"}));
        EXPECT_EQ(count, commands().size());
    }
    platform.children.clear();
    EXPECT_EQ(0, run({"/r:2", "/y"}));
    EXPECT_EQ((std::vector<std::string>{"UTIL.BAT MEGACLI -CFGCLR -A1 -SILENT",
                                        "UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A1 -SILENT"}),
              commands());
}

TEST_F(RestoreTest, NoExecuteRunsNothingAndCountsAsReset) {
    addMegaRaid();
    for (const char* flag : {"/noexecutereset", "/noexecuteall"}) {
        platform.children.clear();
        platform.consoleFake.takeOutput();
        EXPECT_EQ(0, run({"/r", "/y", flag}));
        EXPECT_TRUE(commands().empty());
        EXPECT_TRUE(shows("Restore Command=UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                          "Restore Command=UTIL.BAT MEGACLI -CFGFOREIGN -CLEAR -A0 -SILENT\n"
                          "Restore-default settings complete.\n"));
    }
}

TEST_F(RestoreTest, TheTestDoubleRunsUnderFake) {
    platform.fileFake.files["contlist.ini"] =
        "[System]\nTotal_Number_Of_Controllers=1\n[RAIDController.1]\nModel=Kestrix-C1\n";
    EXPECT_EQ(0, run({"/r", "/y", "/fake"}));
    EXPECT_TRUE(shows("Restore Command=REM * UTIL.BAT MEGACLI -CFGCLR -A0 -SILENT\n"
                      "FakeRAID Command=fakeraid 0 Kestrix-C1\n"
                      "Executing:fakeraid 0 Kestrix-C1\n"));
    EXPECT_EQ(std::vector<std::string>(2, "fakeraid 0 Kestrix-C1"), platform.children);
}

TEST_F(RestoreTest, OutputIsShownAtLevelNineOnly) {
    addMegaRaid();
    respond = [](const std::string&) { return test::FakePlatform::ended(0, "one\ntwo"); };
    EXPECT_EQ(0, run({"/r", "/y", "/v:5"}));
    EXPECT_FALSE(shows("one"));
    platform.consoleFake.takeOutput();
    EXPECT_EQ(0, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(shows("Restore Command Standard Output:\none\ntwo"));
}

TEST_F(RestoreTest, AnExitCodeThatIsNotAcceptedIsExitCode7) {
    addMegaRaid();
    respond = [](const std::string&) { return test::FakePlatform::ended(9, "why\n"); };
    EXPECT_EQ(7, run({"/r", "/y"}));
    EXPECT_TRUE(output.ends_with(
        "### ERROR\n"
        "     Error restoring controller LSI-MegaRAID-8480 to factory-default settings.\n"
        "     Received error return code 9 from the UTIL.BAT MEGACLI command.\n"
        "Restore Command Standard Output:\nwhy\n"))
        << output;
    platform.consoleFake.takeOutput();
    // When verbose the output was read before the judgement.
    EXPECT_EQ(7, run({"/r", "/y", "/v:5"}));
    EXPECT_TRUE(output.ends_with("Restore Command Standard Output:\n"));
    platform.consoleFake.takeOutput();
    EXPECT_EQ(7, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(output.ends_with("Restore Command Standard Output:\n"
                                 "Exiting restoreDefaults(7)\nReturn from restoreDefaults\n"));
}

TEST_F(RestoreTest, ACommandThatCannotRunIsExitCode7) {
    addMegaRaid();
    respond = [](const std::string&) { return ChildResult{}; };
    EXPECT_EQ(7, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(output.ends_with(
        "     Error restoring controller LSI-MegaRAID-8480 to factory-default settings.\n"
        "Exiting restoreDefaults(5)\nReturn from restoreDefaults\n"))
        << output;
}

TEST_F(RestoreTest, AnUnknownTypeHasNoCommand) {
    platform.fileFake.files["c.ini"] = "[Controller.0]\nType=99\n";
    EXPECT_EQ(7, run({"/r", "/y", "/v:9", "/controllers:c.ini"}));
    EXPECT_TRUE(output.ends_with(
        "     Error restoring controller ERROR-NO-CONTROLLER to factory-default settings.\n"
        "Exiting restoreDefaults(4)\nReturn from restoreDefaults\n"))
        << output;
}

TEST_F(RestoreTest, TypesSevenAndElevenTryTheResetTwice) {
    struct Row {
        std::uint16_t device;
        std::uint16_t subsystemVendor;
        std::uint16_t subsystem;
        std::vector<std::uint32_t> exitCodes; ///< of the resets, in order
        int result;
        std::size_t resets;
    };
    constexpr std::uint16_t maker = ZOLEX_MAKER_PCI_VENDOR_ID;
    const std::vector<Row> rows = {
        {0x0285, maker, 0x034D, {1, 0}, 0, 2},  // type 7
        {0x0285, maker, 0x034D, {1, 2}, 7, 2},  // type 7, fails again
        {0x0285, maker, 0x034D, {0}, 0, 1},     // type 7, accepted at once
        {0x0286, 0, 0, {1, 0}, 0, 2},           // type 11
        {0x0285, 0x9005, 0x0290, {1, 0}, 7, 1}, // type 2 does not retry
    };
    for (const Row& row : rows) {
        test::ModeRun one;
        one.addDevice(0x9005, row.device, row.subsystemVendor, row.subsystem);
        std::size_t next = 0;
        one.respond = [&](const std::string&) {
            return test::FakePlatform::ended(row.exitCodes[next++]);
        };
        EXPECT_EQ(row.result, one.run({"/r", "/y"}));
        EXPECT_EQ(
            std::vector<std::string>(row.resets, "UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT"),
            one.commands());
        const std::string twice = "Executing:UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT\n"
                                  "Executing:UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT\n";
        EXPECT_EQ(row.resets == 2, one.output.find(twice) != std::string::npos);
    }
}

// Symptom: a second try that could not run told of the controller in a line of its own; only the
// first try has one.
TEST_F(RestoreTest, ASecondTryThatCannotRun) {
    addDevice(0x9005, 0x0286);
    int tries = 0;
    respond = [&](const std::string&) {
        return tries++ == 0 ? test::FakePlatform::ended(1) : ChildResult{};
    };
    EXPECT_EQ(7, run({"/r", "/y", "/v:9"}));
    EXPECT_TRUE(output.ends_with("Executing:UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT\n"
                                 "Restore Command Standard Output:\n"
                                 "Executing:UTIL.BAT ARCCONF SETCONFIG 1 DEFAULT NOPROMPT\n"
                                 "Exiting restoreDefaults(6)\nReturn from restoreDefaults\n"))
        << output;
}

TEST_F(RestoreTest, TheOutputOfASecondTryThatFailsIsShownAtEveryLevel) {
    addDevice(0x9005, 0x0286);
    for (const char* verbosity : {"/v:3", "/v:5", "/v:9"}) {
        int tries = 0;
        respond = [&](const std::string&) {
            return test::FakePlatform::ended(1, tries++ == 0 ? "first\n" : "second\n");
        };
        platform.consoleFake.takeOutput();
        EXPECT_EQ(7, run({"/r", "/y", verbosity}));
        EXPECT_TRUE(shows("command.\nRestore Command Standard Output:\nsecond\n")) << output;
        // The first try's output is only traced.
        EXPECT_EQ(std::string(verbosity) == "/v:9", shows("first\n"));
    }
}

TEST_F(RestoreTest, OnTheseMachinesTypeTenControllersAreCapturedAndOrderedByBusFirst) {
    hardware = "Machine_Type=X5944Y\nSerial_Number=1\n";
    addDevice(0x1000, 0x0050);
    addDevice(0x1000, 0x0062);
    respond = [](const std::string& command) {
        if (command == "UTIL.BAT CFGGEN 0 DISPLAY \n") {
            return test::FakePlatform::ended(0, test::cfggenBusListing(9));
        }
        if (command == "UTIL.BAT CFGGEN 1 DISPLAY \n") {
            return test::FakePlatform::ended(0, test::cfggenBusListing(3));
        }
        return test::FakePlatform::ended(0);
    };
    EXPECT_EQ(0, run({"/r", "/y"}));
    EXPECT_EQ((std::vector<std::string>{
                  "UTIL.BAT CFGGEN 0 DISPLAY \n", "UTIL.BAT CFGGEN 1 DISPLAY \n",
                  "UTIL.BAT CFGGEN 1 DELETE NOPROMPT", "UTIL.BAT CFGGEN 0 DELETE NOPROMPT"}),
              commands());
}

TEST_F(RestoreTest, ACaptureThatFailsThereEndsTheProcess) {
    hardware = "Machine_Type=5941\nSerial_Number=1\n";
    addMegaRaid();
    platform.results = {test::FakePlatform::ended(0, hardware), test::FakePlatform::ended(3)};
    EXPECT_EQ(8, run({"/r", "/y", "/d"}));
    EXPECT_EQ(1U, commands().size());
    EXPECT_FALSE(shows("RC="));
}

} // namespace
} // namespace zolex
