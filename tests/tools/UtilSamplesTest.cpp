// The samples of UTIL.BAT, run as the program runs them, over programs that show their arguments.

#include "platform/CommandLineSplit.h"
#include "platform/Platform.h"

#include "support/TemporaryDirectory.h"
#include "tools/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace zolex {
namespace {

using test::setVariable;

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr const char* suffix = ".exe";
const std::vector<std::string> samples = {"util-windows"};
/// Separates the folders of PATH.
constexpr const char* separator = ";";
#else
constexpr const char* suffix = "";
const std::vector<std::string> samples = {"util-sh", "util-linux"};
constexpr const char* separator = ":";
#endif

/// The text of a sample as it is shipped: with the line ends of the system.
std::string shipped(const std::string& sample) {
    std::ifstream file(std::string(ZOLEX_SAMPLES) + "/" + sample + "/UTIL.BAT", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    std::string result;
    for (const char c : text) {
#ifdef _WIN32
        result += c == '\n' ? "\r\n" : std::string(1, c);
#else
        result += c;
#endif
    }
    return result;
}

/// A folder with the sample, and programs of the given names that show their arguments. While it
/// lives it is the current directory and PATH begins with the folder of the programs.
class Place {
  public:
    Place(const std::string& sample, const std::vector<std::string>& programs,
          const std::string& folder)
        : path_(std::getenv("PATH")) {
        directory_.write("UTIL.BAT", shipped(sample), true);
        fs::create_directories(folder);
        for (const std::string& name : programs) {
            fs::copy_file(ZOLEX_TEST_ECHO, fs::path(folder) / (name + suffix));
        }
        setVariable("PATH", fs::absolute(folder).string() + separator + path_);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() { setVariable("PATH", path_); }

  private:
    std::string path_;
    test::TemporaryDirectory directory_;
};

ChildResult run(const std::string& command) {
    return makeSystemPlatform()->runChild(command, true, std::chrono::minutes(1));
}

/// What the programs show of these options.
std::string shown(const std::string& options) {
    std::string text;
    for (const std::string& argument : splitCommandLine(options)) {
        text += "<" + argument + ">";
    }
#ifdef _WIN32
    // Blanks before the first option are those before the second word of the whole.
    return text + "\r\n " + options.substr(options.find_first_not_of(' ')) + "\r\n";
#else
    return text + "\n";
#endif
}

std::string drives(const std::string& name, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i > 0 ? "," : "") + name + ":" + std::to_string(i);
    }
    return text;
}

std::string pairs(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += " 3 " + std::to_string(i + 100);
    }
    return text;
}

// A utility, the program that plays it, and lines as the program makes them: short ones, and the
// longest, of 32 drives.
struct Row {
    const char* utility;
    const char* program;
    std::vector<std::string> lines;
};

std::vector<Row> rows() {
    return {
        {"MEGACLI",
         "MegaCli64",
         {"-pdList -a0", " -CfgLdAdd R1   [ 32:0,32:1 ]   WB   ADRA   -strpsz 64  -a0",
          "-PDHSP { -Set } -PhysDrv[ 32:7 ] -a0", " -CfgLdAdd R5   [ :0,:1 ]  { -sz1024 } -a12",
          " -CfgSpanAdd R10  -Array0[ " + drives("65535", 16) + " ] -Array1[ " +
              drives("65534", 16) + " ]  WB   ADRA   -strpsz 1024  -a31"}},
        {"ARCCONF",
         "arcconf",
         {"GETCONFIG 1 AL", "CREATE 1 LOGICALDRIVE Stripesize 256 Name A1 Method QUICK MAX 5" +
                                pairs(32) + " NOPROMPT"}},
        {"HRCONF",
         "hrconf",
         {"SETCONFIG 1 DEFAULT NOPROMPT",
          "CREATE 1 LOGICALDRIVE Init_Priority HIGH MAX SIMPLE VOLUME" + pairs(32) + " NOPROMPT"}},
        {"QTCSEND",
         "qtcsend",
         {"GETCONFIG 1 AL", "CREATE 1 LOGICALDRIVE NEWARRAY MAX 5" + pairs(32) + " NOPROMPT"}},
        {"CFGGEN", "cfggen", {"0 DISPLAY", "0 CREATE IME MAX " + drives("4", 32) + " NOPROMPT"}},
        {"CFGGEN1.02.02",
         "cfggen1.02.02",
         {"0 DISPLAY", "0 CREATE IM MAX " + drives("1", 32) + " qsync NOPROMPT"}},
        {"HYPERWIN", "hyperwin", {"/L /D00 ", "/AS64 /! /S", "/Ea"}},
    };
}

TEST(UtilSamples, EveryParameterArrivesUnchangedAndTheExitCodeComesBack) {
    for (const std::string& sample : samples) {
        std::vector<std::string> programs;
        for (const Row& row : rows()) {
            programs.emplace_back(row.program);
        }
        // Beside the sample, where each of them looks or PATH leads.
        const Place place(sample, programs, ".");
        int exitCode = 0;
        for (const Row& row : rows()) {
            for (const std::string& line : row.lines) {
                const std::string options =
                    line + " code=" + std::to_string(exitCode) + " a,b;c=d 'e' \"f  g\" *";
                const ChildResult result =
                    run(std::string("UTIL.BAT ") + row.utility + " " + options);
                EXPECT_EQ(result.outcome, ChildOutcome::ended) << sample;
                EXPECT_EQ(result.exitCode, static_cast<std::uint32_t>(exitCode)) << sample;
                EXPECT_EQ(result.output, shown(options)) << sample << " " << row.utility;
                exitCode = (exitCode + 37) % 256;
            }
        }
    }
}

TEST(UtilSamples, TheProgramsAreFoundAlongPathToo) {
#ifdef _WIN32
    const std::string sample = "util-windows";
    const std::vector<std::string> names = {"MegaCli64", "MegaCli"};
#else
    const std::string sample = "util-linux";
    const std::vector<std::string> names = {"MegaCli64", "MegaCli", "megacli", "MEGACLI"};
#endif
    for (const std::string& name : names) {
        const Place place(sample, {name}, "my tools (x86)");
        const ChildResult result = run("UTIL.BAT MEGACLI -a,b code=49");
        EXPECT_EQ(result.exitCode, 49U) << name;
        EXPECT_EQ(result.output, shown("-a,b code=49")) << name;
    }
}

TEST(UtilSamples, AFolderBeforeItsNameIsHeeded) {
    for (const std::string& sample : samples) {
        const Place place(sample, {"MegaCli64"}, "tools");
        fs::rename("UTIL.BAT", "tools/UTIL.BAT");
#ifdef _WIN32
        const ChildResult result = run("tools\\UTIL.BAT MEGACLI 1,2 code=3");
#else
        const ChildResult result = run("tools/UTIL.BAT MEGACLI 1,2 code=3");
#endif
        EXPECT_EQ(result.exitCode, 3U) << sample;
        EXPECT_EQ(result.output, shown("1,2 code=3")) << sample;
    }
}

TEST(UtilSamples, WhatCannotBeRunIsToldWithACodeThatNoUtilityMeansWell) {
    for (const std::string& sample : samples) {
        const Place place(sample, {"MegaCli64"}, ".");
        const ChildResult missing = run("UTIL.BAT ARCCONF GETCONFIG 1 AL");
        EXPECT_EQ(missing.exitCode, 127U) << sample;
        EXPECT_EQ(missing.output.find("UTIL.BAT: ARCCONF: "), 0U) << missing.output;
        for (const char* command : {"UTIL.BAT CFGGEN2 0 DISPLAY", "UTIL.BAT"}) {
            const ChildResult unknown = run(command);
            EXPECT_EQ(unknown.exitCode, 127U) << sample;
            EXPECT_EQ(unknown.output.find("UTIL.BAT: unknown utility: "), 0U) << unknown.output;
        }
    }
}

} // namespace
} // namespace zolex
