// The second program, as it is shipped, over the virtual server.

#include "VirtualServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace zolex::e2e {
namespace {

using Words = std::vector<std::string>;

constexpr std::array<const char*, 12> sampleServers{
    "single", "enclosures", "two-controllers", "later",       "configured", "arcconf",
    "hrconf", "qtcsend",    "cfggen",          "cfggen-scsi", "hyperwin",   "mixed"};

/// The lines that hold neither a time nor a duration nor how the program was called.
std::string withoutTimes(const std::string& text) {
    std::string result;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const bool hasTime = line.find("\"made_at\"") != std::string::npos ||
                             line.find("duration_ms") != std::string::npos ||
                             line.find("</td><td>exit code ") != std::string::npos ||
                             line.find(" logical drives, read ") != std::string::npos ||
                             line.find("; Written by") != std::string::npos;
        result += hasTime ? "" : line + "\n";
    }
    const std::size_t argv = result.find("\"argv\"");
    if (argv != std::string::npos) {
        result.erase(argv, result.find(']', argv) - argv);
    }
    return result;
}

std::size_t longestLine(const std::string& text) {
    std::size_t longest = 0;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
    }
    return longest;
}

class CompanionTest : public testing::Test {
  protected:
    void layOut(const std::string& sample) {
        ASSERT_EQ(server.simulator({"init", ".", "--sample", sample}).exitCode, 0);
    }

    /// Runs the program: as it is shipped, or with pauses that take no time where it would pause.
    ProgramRun zolexctl(const Words& arguments) {
        const bool pauses = server.read("server.json").find("\"CFGGEN\"") != std::string::npos;
        return server.start(pauses ? ZOLEXCTL_UNPAUSED_PROGRAM : ZOLEXCTL_PROGRAM, arguments);
    }

    VirtualServer server;
};

TEST_F(CompanionTest, ShowsEverySampleInEveryFormatAndChangesNothing) {
    for (const char* const sample : sampleServers) {
        SCOPED_TRACE(sample);
        layOut(sample);
        const std::string state = server.read("state.json");
        for (const auto& [format, start] :
             std::vector<std::pair<std::string, std::string>>{{"text", "Machine "},
                                                              {"json", "{\n  \"format\": \"zolex-"
                                                                       "machine\",\n"},
                                                              {"svg", "<?xml "},
                                                              {"html", "<!DOCTYPE html>\n"},
                                                              {"policies", "; Written by "}}) {
            SCOPED_TRACE(format);
            const ProgramRun run = zolexctl({"show", "--format", format});
            // A server without arrays gives no policy, which is told.
            const int code = run.error.find("[ZC119]") == std::string::npos ? 0 : 1;
            EXPECT_EQ(run.exitCode, code) << run.error;
            EXPECT_EQ(run.output.substr(0, start.size()), start);
            EXPECT_TRUE(run.error.empty() || format == "policies") << run.error;
            const ProgramRun written = zolexctl({"show", "--format", format, "-o", "out.file"});
            EXPECT_EQ(written.exitCode, code) << written.error;
            EXPECT_EQ(written.output, "");
            EXPECT_TRUE(withoutTimes(server.read("out.file")) == withoutTimes(run.output));
        }
        EXPECT_EQ(server.read("state.json"), state);
    }
}

TEST_F(CompanionTest, WhatWasRecordedShowsWhatTheServerShowed) {
    for (const char* const sample : sampleServers) {
        SCOPED_TRACE(sample);
        layOut(sample);
        const ProgramRun recorded = zolexctl({"record", "-o", "server.zrec"});
        EXPECT_EQ(recorded.exitCode, 0) << recorded.error;
        for (const Words& asked :
             {Words{"show"}, Words{"show", "--as", "json"}, Words{"show", "--as", "policies"},
              Words{"show", "--as", "svg"}}) {
            const ProgramRun live = zolexctl(asked);
            Words again = asked;
            again.insert(again.end(), {"--recording", "server.zrec"});
            const ProgramRun replayed = zolexctl(again);
            EXPECT_EQ(replayed.exitCode, live.exitCode) << replayed.error;
            EXPECT_EQ(withoutTimes(replayed.output), withoutTimes(live.output));
            Words behind{"replay", "server.zrec", "--"};
            behind.insert(behind.end(), asked.begin(), asked.end());
            EXPECT_EQ(withoutTimes(zolexctl(behind).output), withoutTimes(live.output));
        }
        // The other program, whose output is compared as it is.
        const ProgramRun live = server.zolex({"/c:t,d", "/f:captured.ini"});
        const std::string policies = server.read("captured.ini");
        std::filesystem::remove(server.folder() / "captured.ini");
        const ProgramRun replayed =
            zolexctl({"replay", "server.zrec", "--", "zolex", "/c:t,d", "/f:captured.ini"});
        EXPECT_EQ(replayed.exitCode, live.exitCode);
        EXPECT_EQ(replayed.output, live.output);
        EXPECT_EQ(withoutComments(server.read("captured.ini")), withoutComments(policies));
        std::filesystem::remove(server.folder() / "captured.ini");
    }
}

TEST_F(CompanionTest, PoliciesOfAServerMakeItsLayoutsAgain) {
    for (const char* const sample : {"configured", "qtcsend"}) {
        SCOPED_TRACE(sample);
        layOut(sample);
        const ProgramRun written = zolexctl({"show", "--as", "policies", "-o", "before.ini"});
        EXPECT_EQ(written.exitCode, 0) << written.error;
        const ProgramRun checked = zolexctl({"check", "before.ini"});
        EXPECT_EQ(checked.exitCode, 0) << checked.output;
        EXPECT_EQ(server.zolex({"/r", "/y", "/f:before.ini", "/e1", "/e2"}).exitCode, 0);
        EXPECT_EQ(zolexctl({"show", "--as", "policies", "-o", "after.ini"}).exitCode, 0);
        EXPECT_EQ(withoutComments(server.read("after.ini")),
                  withoutComments(server.read("before.ini")));
    }
}

TEST_F(CompanionTest, ChecksPoliciesWithoutAServer) {
    layOut("single");
    server.environment["ZOLEX_PCI_ROOT"] = "no-such-folder";
    const ProgramRun good = zolexctl({"check", "sample-policies.ini", "--ignore", "ZX309"});
    EXPECT_EQ(good.exitCode, 0) << good.output;
    server.write("bad.ini", "[Policy.web]\nAppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n"
                            "Array_Mode = CUSTOM\nArray.A = 1,2\nArray.B = 2,3,4\nHotspares = 8\n");
    const ProgramRun bad = zolexctl({"check", "bad.ini", "--format", "concise"});
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_NE(bad.output.find("bad.ini:5:11: error: drive 2 is in Array.A and in Array.B [ZX302]"),
              std::string::npos)
        << bad.output;
    const ProgramRun missing = zolexctl({"check", "no-such.ini"});
    EXPECT_EQ(missing.exitCode, 2) << missing.output << missing.error;
}

TEST_F(CompanionTest, DoctorTellsAWrapperThatLosesExitCodes) {
    layOut("configured");
    const ProgramRun good = zolexctl({"doctor"});
    EXPECT_EQ(good.exitCode, 0) << good.output << good.error;
#ifdef _WIN32
    server.write("UTIL.BAT", "@echo off\r\n\"%~dp0ZOLEX-SIM.EXE\" util %*\r\nexit /b 0\r\n");
#else
    server.write("UTIL.BAT", "#!/bin/sh\n\"$(dirname \"$0\")/zolex-sim\" util \"$@\"\nexit 0\n");
#endif
    const ProgramRun loses = zolexctl({"doctor"});
    EXPECT_EQ(loses.exitCode, 1) << loses.output << loses.error;
}

TEST_F(CompanionTest, ExplainsCodes) {
    const ProgramRun rule = zolexctl({"explain", "ZX302"});
    EXPECT_EQ(rule.exitCode, 0) << rule.error;
    EXPECT_NE(rule.output.find("ZX302"), std::string::npos);
    EXPECT_EQ(zolexctl({"explain", "11"}).exitCode, 0);
    const ProgramRun unknown = zolexctl({"explain", "ZX000"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.output, "");
    EXPECT_NE(unknown.error, "");
}

TEST_F(CompanionTest, WhatIsMistypedIsAnErrorWithTheNearestRightWord) {
    const ProgramRun command = zolexctl({"shwo"});
    EXPECT_EQ(command.exitCode, 2);
    EXPECT_EQ(command.output, "");
    EXPECT_EQ(command.error, "error: there is no command \"shwo\"; did you mean show?\n"
                             "  help: zolexctl --help\n");
    const ProgramRun option = zolexctl({"show", "--fromat", "json"});
    EXPECT_EQ(option.exitCode, 2);
    EXPECT_EQ(option.output, "");
    EXPECT_EQ(option.error, "error: there is no option \"--fromat\"; did you mean --format?\n"
                            "  help: zolexctl show --help\n");
}

TEST_F(CompanionTest, HelpGoesWhereItIsAskedFor) {
    const ProgramRun alone = zolexctl({});
    EXPECT_EQ(alone.exitCode, 2);
    EXPECT_EQ(alone.output, "");
    const ProgramRun asked = zolexctl({"--help"});
    EXPECT_EQ(asked.exitCode, 0);
    EXPECT_EQ(asked.error, "");
    EXPECT_EQ(asked.output, alone.error);
    for (const char* const command : {"show", "check", "doctor", "record", "replay", "explain"}) {
        const ProgramRun help = zolexctl({command, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_EQ(help.output.rfind("usage: zolexctl " + std::string(command) + " ", 0), 0U);
    }
    EXPECT_EQ(zolexctl({"--version"}).output, "zolexctl 2.20\n");
}

TEST_F(CompanionTest, ColoursAndWidthAreAsWished) {
    layOut("configured");
    const std::string plain = zolexctl({"show"}).output;
    EXPECT_EQ(plain.find('\033'), std::string::npos);
    EXPECT_LE(longestLine(plain), 80U);
    const std::string coloured = zolexctl({"show", "--color", "always"}).output;
    EXPECT_NE(coloured.find("\033["), std::string::npos);
    server.environment["CLICOLOR_FORCE"] = "1";
    EXPECT_EQ(zolexctl({"show"}).output, coloured);
    server.environment["NO_COLOR"] = "1";
    EXPECT_EQ(zolexctl({"show"}).output, plain);
    EXPECT_EQ(zolexctl({"show", "--color", "always"}).output, coloured);
    EXPECT_LE(longestLine(zolexctl({"show", "--width", "60"}).output), 60U);
    server.environment["COLUMNS"] = "60";
    EXPECT_EQ(zolexctl({"show"}).output, zolexctl({"show", "--width", "60"}).output);
}

TEST_F(CompanionTest, AnOutputFileIsReplacedWholeOrStays) {
    layOut("configured");
    server.write("out.txt", "old");
    const ProgramRun failed = zolexctl({"show", "--controller", "9", "-o", "out.txt"});
    EXPECT_EQ(failed.exitCode, 2);
    EXPECT_EQ(server.read("out.txt"), "old");
    EXPECT_EQ(zolexctl({"show", "-o", "out.txt"}).exitCode, 0);
    EXPECT_EQ(server.read("out.txt"), zolexctl({"show"}).output);
    const ProgramRun nowhere = zolexctl({"show", "-o", "no-such-folder/out.txt"});
    EXPECT_EQ(nowhere.exitCode, 2);
    EXPECT_EQ(nowhere.error, "error: no-such-folder/out.txt: there is no such file or folder\n"
                             "  help: name another file with -o; nothing was written\n");
    const ProgramRun folder = zolexctl({"show", "-o", "pci"});
    EXPECT_EQ(folder.exitCode, 2);
    EXPECT_EQ(folder.error, "error: pci: it is a folder\n"
                            "  help: name another file with -o; nothing was written\n");
}

TEST_F(CompanionTest, AServerWithoutControllersIsShownEmpty) {
    server.environment["ZOLEX_PCI_ROOT"] = server.folder().string();
    const ProgramRun shown = zolexctl({"show"});
    EXPECT_EQ(shown.exitCode, 0);
    EXPECT_NE(shown.error, "");
    EXPECT_EQ(zolexctl({"doctor"}).exitCode, 1);
    EXPECT_EQ(zolexctl({"record", "-o", "server.zrec"}).exitCode, 2);
}

#ifdef __linux__
TEST_F(CompanionTest, PosixAFullDiskLeavesTheOldFile) {
    layOut("configured");
    ASSERT_EQ(zolexctl({"show", "--as", "html"}).exitCode, 0);
    const auto mounts = [this](const char* flags) {
        return server.start("unshare", {flags, "mount", "-t", "tmpfs", "none", "/mnt"}).exitCode ==
               0;
    };
    const std::string flags = mounts("-m") ? "-m" : mounts("-Urm") ? "-Urm" : "";
    if (flags.empty()) {
        GTEST_SKIP() << "this machine lets nobody mount a file system";
    }
    server.write("full.sh", "set -e\n"
                            "mkdir -p disk\n"
                            "mount -t tmpfs -o size=8k none disk\n"
                            "echo old >disk/out.html\n"
                            "code=0\n"
                            "'" ZOLEXCTL_PROGRAM "' show --as html -o disk/out.html || code=$?\n"
                            "cp disk/out.html after.html\n"
                            "ls -A disk >left.txt\n"
                            "exit $code\n");
    const ProgramRun run = server.start("unshare", {flags, "sh", "full.sh"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.error, "error: disk/out.html: no space is left on the device\n"
                         "  help: name another file with -o; nothing was written\n");
    EXPECT_EQ(server.read("after.html"), "old\n");
    EXPECT_EQ(server.read("left.txt"), "out.html\n");
}

TEST_F(CompanionTest, PosixStandardOutputThatTakesNoMoreIsAnError) {
    layOut("configured");
    server.write("bad.ini", "text");
    for (const char* const arguments : {"show", "show --as json", "check sample-policies.ini",
                                        "doctor", "explain 11", "--help"}) {
        server.write("run.sh",
                     "'" ZOLEXCTL_PROGRAM "' " + std::string(arguments) + " >/dev/full\n");
        const ProgramRun run = server.start("sh", {"run.sh"});
        EXPECT_EQ(run.exitCode, 2) << arguments;
        EXPECT_NE(run.error.find("error: standard output could not be written"), std::string::npos)
            << arguments << ": " << run.error;
    }
}
#endif

} // namespace
} // namespace zolex::e2e
