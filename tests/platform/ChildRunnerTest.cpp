#include "platform/Platform.h"

#include "platform/NamedEvent.h"
#include "platform/WrittenProcess.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <ctime>
#include <string>
#ifndef _WIN32
#include <csignal>
#include <sys/wait.h>
#endif

// Real children of this system, through its own platform. What only one system has stands in
// PosixChildRunnerTest.cpp and WindowsChildRunnerTest.cpp.

namespace zolex {
namespace {

using std::chrono::milliseconds;
using test::TemporaryDirectory;

#ifdef _WIN32
const std::string lineEnd = "\r\n";
const std::string exitWith3 = "cmd /c exit 3";
const std::string bothStreams = "cmd /c \"echo out&echo err>&2&echo out\"";
const std::string readsInput = "cmd /c \"more & echo done\"";
const std::string typesFile = "cmd /c type big.txt";
const std::string listsScript = "@echo off\r\necho [%1] [%2]\r\nexit /b 5\r\n";
#else
const std::string lineEnd = "\n";
const std::string exitWith3 = "/bin/sh -c \"exit 3\"";
const std::string bothStreams = "/bin/sh -c \"echo out; echo err >&2; echo out\"";
const std::string readsInput = "/bin/sh -c \"cat; echo done\"";
const std::string typesFile = "cat big.txt";
const std::string listsScript = "echo \"[$1] [$2]\"\nexit 5\n";
#endif

/// A child that runs for a minute unless this object goes before. It can be started once.
#ifdef _WIN32
class LastingChild {
  public:
    ~LastingChild() { end_.set(); }
    [[nodiscard]] std::string commandLine() const {
        return "\"" ZOLEX_TEST_CHILD "\" until " + end_.name() + " sleep 60000";
    }

  private:
    test::NamedEvent end_;
};
#else
class LastingChild {
  public:
    ~LastingChild() {
        const pid_t child = test::writtenProcess();
        EXPECT_GT(child, 0);
        if (child > 0 && ::kill(child, SIGKILL) == 0) {
            ::waitpid(child, nullptr, 0);
        }
    }
    [[nodiscard]] static std::string commandLine() {
        return "/bin/sh -c \"echo $$ > pid; exec sleep 60\"";
    }
};
#endif

class ChildRunner : public ::testing::Test {
  protected:
    ChildResult run(const std::string& commandLine, bool capture = true,
                    milliseconds limit = std::chrono::minutes(5)) {
        return platform->runChild(commandLine, capture, limit);
    }

    std::unique_ptr<Platform> platform = makeSystemPlatform();
    TemporaryDirectory directory;
};

TEST_F(ChildRunner, GivesTheExitCode) {
    const ChildResult result = run(exitWith3);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 3U);
    EXPECT_EQ(result.output, "");
}

TEST_F(ChildRunner, WhatDoesNotExistIsNotStarted) {
    for (const char* commandLine :
         {"zolex-no-such-program", "zolex-no-such-program a b", "./zolex-no-such-program",
          "no/such\\program", "", " ", "\"\"", "\"\" a"}) {
        const ChildResult result = run(commandLine);
        EXPECT_EQ(result.outcome, ChildOutcome::notStarted) << commandLine;
        EXPECT_EQ(result.output, "") << commandLine;
    }
}

TEST_F(ChildRunner, JoinsOutputAndErrorsInOrder) {
    const ChildResult result = run(bothStreams);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.output, "out" + lineEnd + "err" + lineEnd + "out" + lineEnd);
}

TEST_F(ChildRunner, DiscardsTheOutputWithoutCapture) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const ChildResult result = run(bothStreams, false);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.output, "");
}

TEST_F(ChildRunner, AChildHasNoInput) {
    const ChildResult result = run(readsInput);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_NE(result.output.find("done"), std::string::npos) << result.output;
}

TEST_F(ChildRunner, FiveMegabytesDoNotStallTheChild) {
    std::string content;
    for (int line = 0; content.size() < 5000000; ++line) {
        content += std::to_string(line) + " of a listing that does not fit in a pipe" + lineEnd;
    }
    directory.write("big.txt", content);
    const ChildResult result = run(typesFile);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_EQ(result.output.size(), content.size());
    EXPECT_TRUE(result.output == content);
}

TEST_F(ChildRunner, StartsABatchFileOfTheCurrentDirectory) {
    directory.write("UTIL.BAT", listsScript, true);
    const ChildResult result = run("UTIL.BAT MEGACLI -pdList ");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 5U);
    EXPECT_EQ(result.output, "[MEGACLI] [-pdList]" + lineEnd);
}

TEST_F(ChildRunner, StartsABatchFileWithAPath) {
    directory.write("tools/UTIL.BAT", listsScript, true);
    EXPECT_EQ(run("tools\\UTIL.BAT a b").output, "[a] [b]" + lineEnd);
    EXPECT_EQ(run(".\\tools\\UTIL.BAT a b").output, "[a] [b]" + lineEnd);
}

TEST_F(ChildRunner, IsLeftAloneAtTheLimit) {
    const LastingChild child;
    const ChildResult result = run(child.commandLine(), true, milliseconds(0));
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_EQ(result.output, "");
}

TEST_F(ChildRunner, RunsManyOneAfterTheOther) {
    for (int i = 0; i < 10; ++i) {
        const ChildResult result = run(exitWith3);
        ASSERT_EQ(result.outcome, ChildOutcome::ended) << i;
        ASSERT_EQ(result.exitCode, 3U) << i;
    }
}

TEST(SystemPlatform, LocalTimeIsTheClocksTime) {
    const auto platform = makeSystemPlatform();
    const std::time_t before = std::time(nullptr);
    const LocalTime time = platform->localTime();
    const std::time_t after = std::time(nullptr);

    std::tm parts{};
    parts.tm_year = time.year - 1900;
    parts.tm_mon = time.month - 1;
    parts.tm_mday = time.day;
    parts.tm_hour = time.hour;
    parts.tm_min = time.minute;
    parts.tm_sec = time.second;
    parts.tm_isdst = -1;
    const std::time_t told = std::mktime(&parts);
    EXPECT_GE(told, before);
    EXPECT_LE(told, after);
}

} // namespace
} // namespace zolex
