#include "companion/machine/ProgramStart.h"

#include "platform/CommandLineSplit.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <vector>

namespace zolex::companion {
namespace {

using Arguments = std::vector<std::string>;

TEST(ProgramStart, ArgumentsComeBackAsTheyWere) {
    const Arguments rows[] = {
        {"/opt/MegaCli64", "-pdList", "-a0"},
        {"/opt/raid tools/MegaCli64", "-pdList", "-a0"},
        {"a\tb", "", "x y", "[32:0,32:1]", "$HOME", "`id`", "a'b", "*", ";", "a\\b"},
        {"/x", "a\nb"},
    };
    for (const Arguments& row : rows) {
        const auto line = commandLineOf(row, Splitting::plain);
        ASSERT_TRUE(line);
        EXPECT_EQ(splitCommandLine(*line), row) << *line;
    }
}

TEST(ProgramStart, WhatNoCommandLineTellsIsRefused) {
    EXPECT_FALSE(commandLineOf(Arguments{}, Splitting::plain));
    EXPECT_FALSE(commandLineOf(Arguments{""}, Splitting::plain));
    EXPECT_FALSE(commandLineOf(Arguments{"/x", "a\"b"}, Splitting::plain));
    EXPECT_FALSE(commandLineOf(Arguments{"/x\"y", "a"}, Splitting::plain));
    EXPECT_FALSE(commandLineOf(Arguments{"/x", std::string("a\0b", 3)}, Splitting::plain));
    EXPECT_FALSE(commandLineOf(Arguments{"C:\\x\"y.exe"}, Splitting::windows));
}

TEST(ProgramStart, QuotesForProgramsOfWindowsDoubleBackslashesBeforeQuotesOnly) {
    struct Row {
        Arguments arguments;
        const char* line;
    };
    const Row rows[] = {
        {{"C:\\raid\\MegaCli64.exe", "-pdList", "-a0"}, "C:\\raid\\MegaCli64.exe -pdList -a0"},
        {{"C:\\Program Files\\M.exe", "a b"}, "\"C:\\Program Files\\M.exe\" \"a b\""},
        {{"m.exe", ""}, "m.exe \"\""},
        {{"m.exe", "C:\\a b\\"}, "m.exe \"C:\\a b\\\\\""},
        {{"m.exe", "a\\b"}, "m.exe a\\b"},
        {{"m.exe", "say \"hi\""}, "m.exe \"say \\\"hi\\\"\""},
        {{"m.exe", "\\\""}, "m.exe \"\\\\\\\"\""},
        {{"m.exe", "a&b", "%PATH%", "^"}, "m.exe a&b %PATH% ^"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(commandLineOf(row.arguments, Splitting::windows), row.line);
    }
}

TEST(ProgramStart, BatchFilesGetNothingThatTheirInterpreterWouldTakeAsItsOwn) {
    EXPECT_EQ(commandLineOf(Arguments{"X:\\tools\\UTIL.BAT", "MEGACLI", "-pdList", "-a0"},
                            Splitting::windows),
              "X:\\tools\\UTIL.BAT MEGACLI -pdList -a0");
    EXPECT_EQ(commandLineOf(Arguments{"X:\\my tools\\util.bat", "MEGACLI", "[32:0,32:1]"},
                            Splitting::windows),
              "\"X:\\my tools\\util.bat\" MEGACLI \"[32:0,32:1]\"");
    for (const char* const text :
         {"a&b", "a|b", "a<b", "a>b", "a^b", "a%b", "a\"b", "a!b", "a\nb", "a\rb"}) {
        for (const char* const program : {"UTIL.BAT", "util.cmd", "x.Bat"}) {
            EXPECT_FALSE(commandLineOf(Arguments{program, text}, Splitting::windows)) << text;
        }
        EXPECT_FALSE(
            commandLineOf(Arguments{std::string("X:\\") + text + "\\UTIL.BAT"}, Splitting::windows))
            << text;
    }
}

TEST(ProgramStart, WhatIsRefusedIsNotStarted) {
    zolex::test::FakePlatform platform;
    const Arguments bad = {"/x", "a\"b"};
    EXPECT_EQ(runProgram(platform, bad, true, std::chrono::seconds(1), Splitting::plain).outcome,
              ChildOutcome::notStarted);
    EXPECT_TRUE(platform.children.empty());
    const Arguments good = {"/a b", "c"};
    EXPECT_EQ(runProgram(platform, good, true, std::chrono::seconds(1), Splitting::plain).outcome,
              ChildOutcome::ended);
    EXPECT_EQ(platform.children, Arguments{"\"/a b\" c"});
}

} // namespace
} // namespace zolex::companion
