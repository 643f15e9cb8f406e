#include "platform/Tool.h"

#include "driver/Printer.h"
#include "driver/PrinterReport.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

namespace zolex {
namespace {

using test::FakePlatform;

class ToolTest : public ::testing::Test {
  protected:
    /// Runs "UTIL.BAT X 1" against a child with this result.
    bool runWith(ChildResult result) {
        platform.results.push_back(std::move(result));
        tool.setCommand("UTIL.BAT X 1");
        return tool.run(true);
    }

    FakePlatform platform;
    Printer printer{platform.console()};
    PrinterReport report{printer};
    Tool tool{platform, report};
};

TEST_F(ToolTest, CreatingOneStartsNothing) {
    EXPECT_TRUE(platform.children.empty());
    EXPECT_EQ(tool.output(), nullptr);
    EXPECT_EQ(tool.exitCode(), 0U);
}

TEST_F(ToolTest, RunsTheCommandForAtMostFiveMinutes) {
    EXPECT_TRUE(runWith(FakePlatform::ended(0)));
    EXPECT_EQ(platform.children, std::vector<std::string>{"UTIL.BAT X 1"});
    EXPECT_EQ(platform.limits, std::vector{std::chrono::milliseconds(300000)});
    EXPECT_EQ(platform.consoleFake.output, "");
}

TEST_F(ToolTest, TheLimitCanBeShortened) {
    Tool impatient(platform, report, std::chrono::milliseconds(100));
    impatient.run(true);
    EXPECT_EQ(platform.limits, std::vector{std::chrono::milliseconds(100)});
}

TEST_F(ToolTest, KeepsExitCodeAndOutput) {
    EXPECT_TRUE(runWith(FakePlatform::ended(3, "one\ntwo\n")));
    EXPECT_EQ(tool.exitCode(), 3U);
    ASSERT_NE(tool.output(), nullptr);
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), "one\n");

    EXPECT_TRUE(runWith(FakePlatform::ended(0xFFFFFFFF)));
    EXPECT_EQ(tool.exitCode(), 0xFFFFFFFFU);
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), "");
}

TEST_F(ToolTest, AnOutputThatIsNotWantedIsNotKept) {
    platform.results.push_back(FakePlatform::ended(3, "text\n"));
    tool.setCommand("UTIL.BAT X 1");
    EXPECT_TRUE(tool.run(false));
    EXPECT_EQ(tool.exitCode(), 3U);
    ASSERT_NE(tool.output(), nullptr);
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), "");
}

TEST_F(ToolTest, AnOutputOutlivesTheNextRun) {
    runWith(FakePlatform::ended(0, "first"));
    const auto first = tool.output();
    runWith(FakePlatform::ended(0, "second"));
    EXPECT_EQ(first->nextPiece(capturedLineLimit), "first");
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), "second");
}

TEST_F(ToolTest, ReportsWhatFailed) {
    const char* const timeOut =
        "\n### Process UTIL.BAT X 1 has failed to execute within the five minute limit.\n"
        "Process cancelled.\n";
    struct {
        ChildOutcome outcome;
        const char* printed;
    } const rows[] = {
        {ChildOutcome::noPipe, "CreatePipe Faield:Tool::Tool()\n"},
        {ChildOutcome::notStarted, ""},
        {ChildOutcome::stillRunning, timeOut},
        {ChildOutcome::notClosed, ""},
    };
    for (const auto& row : rows) {
        // Ungated: the verbosity is still the unset one.
        EXPECT_FALSE(runWith({row.outcome, 0, {}}));
        EXPECT_EQ(platform.consoleFake.takeOutput(), row.printed);
    }
}

TEST_F(ToolTest, AFailedRunGivesNoOutput) {
    for (const ChildOutcome outcome :
         {ChildOutcome::noPipe, ChildOutcome::notStarted, ChildOutcome::stillRunning}) {
        runWith(FakePlatform::ended(0, "left over"));
        EXPECT_FALSE(runWith({outcome, 0, {}}));
        EXPECT_EQ(tool.output(), nullptr);
    }
}

TEST_F(ToolTest, ACodeIsKeptWhenClosingFails) {
    EXPECT_FALSE(runWith({ChildOutcome::notClosed, 3, "text"}));
    EXPECT_EQ(tool.exitCode(), 3U);
}

TEST_F(ToolTest, APercentSignInTheCommandIsShownAsItIs) {
    platform.results.push_back({ChildOutcome::stillRunning, 0, {}});
    tool.setCommand("UTIL.BAT %s %d");
    EXPECT_FALSE(tool.run(true));
    EXPECT_EQ(platform.consoleFake.output,
              "\n### Process UTIL.BAT %s %d has failed to execute within the five minute limit.\n"
              "Process cancelled.\n");
}

// Real children of this system.

#ifdef _WIN32
constexpr const char* textAndExitWith3 = "cmd /c \"echo text& exit 3\"";
constexpr const char* text = "text\r\n";
#else
constexpr const char* textAndExitWith3 = "/bin/sh -c \"echo text; exit 3\"";
constexpr const char* text = "text\n";
#endif

TEST(ToolOfTheSystem, AnExitCodeIsNoFailure) {
    const auto platform = makeSystemPlatform();
    test::FakeConsole console;
    Printer printer(console);
    PrinterReport report(printer);
    Tool tool(*platform, report);
    tool.setCommand(textAndExitWith3);
    EXPECT_TRUE(tool.run(true));
    EXPECT_EQ(tool.exitCode(), 3U);
    ASSERT_NE(tool.output(), nullptr);
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), text);
    EXPECT_EQ(tool.output()->nextPiece(capturedLineLimit), "");
    EXPECT_EQ(console.output + console.error, "");
}

TEST(ToolOfTheSystem, WhatDoesNotExistFailsWithoutAMessage) {
    const auto platform = makeSystemPlatform();
    test::FakeConsole console;
    Printer printer(console);
    PrinterReport report(printer);
    Tool tool(*platform, report);
    tool.setCommand(textAndExitWith3);
    ASSERT_TRUE(tool.run(true));
    tool.setCommand("zolex-no-such-program.exe /i");
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(tool.run(true));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(tool.output(), nullptr) << "what the earlier run gave is gone";
    EXPECT_EQ(console.output + console.error, "");
}

} // namespace
} // namespace zolex
