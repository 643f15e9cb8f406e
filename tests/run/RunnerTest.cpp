#include "run/Runner.h"

#include "foundation/Report.h"
#include "model/Codes.h"
#include "support/FakePlatform.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace zolex {
namespace {

/// Keeps what happens, in order: the command lines, "." for a second, "|" for the end of a pause.
class KeptEvents : public RunEvents {
  public:
    void starting(const CString& commandLine) override { text += commandLine.c_str(); }
    void secondPassed() override { text += "."; }
    void pauseEnded() override { text += "|"; }

    std::string text;
};

class RunnerTest : public testing::Test {
  protected:
    test::FakePlatform platform;
    SilentReport report;
    KeptEvents events;
    Runner runner{std::make_unique<Tool>(platform, report), platform, events};
};

TEST_F(RunnerTest, TellsThatACommandStartsBeforeItRuns) {
    platform.respond = [this](const std::string& line) {
        EXPECT_EQ(events.text, line);
        return test::FakePlatform::ended(3, "done\n");
    };
    EXPECT_TRUE(runner.run(controller_type::megaRaid, "UTIL.BAT MEGACLI -x"));
    EXPECT_EQ(runner.exitCode(), 3U);
    EXPECT_EQ(runner.output()->nextPiece(198), "done\n");
    EXPECT_EQ(platform.pauses, 0);
}

TEST_F(RunnerTest, PausesBeforeACommandOfCfggen) {
    platform.respond = [this](const std::string&) {
        EXPECT_EQ(platform.pauses, 15);
        return test::FakePlatform::ended(0);
    };
    EXPECT_TRUE(runner.run(controller_type::lsiSas, "x"));
    EXPECT_EQ(events.text, "x...............|");
}

TEST_F(RunnerTest, RunsTheSameCommandAgainWithoutAPause) {
    EXPECT_TRUE(runner.run(controller_type::arcconf7, "a"));
    EXPECT_TRUE(runner.runAgain());
    EXPECT_EQ(events.text, "aa");
    EXPECT_EQ(platform.children, (std::vector<std::string>{"a", "a"}));
}

TEST_F(RunnerTest, ACommandThatDoesNotEndIsNoSuccess) {
    platform.results.push_back({ChildOutcome::stillRunning, 0, ""});
    EXPECT_FALSE(runner.run(controller_type::megaRaid, "x"));
}

TEST(AcceptedExitCodes, AreThoseOfTheUtility) {
    EXPECT_TRUE(isAccepted(controller_type::megaRaid, 0));
    EXPECT_TRUE(isAccepted(controller_type::megaRaid, 49));
    EXPECT_FALSE(isAccepted(controller_type::megaRaid, 2));
    EXPECT_TRUE(isAccepted(controller_type::lsiScsi, 2));
    EXPECT_FALSE(isAccepted(controller_type::lsiSas, 2));
    EXPECT_FALSE(isAccepted(controller_type::lsiSas, 0xFFFFFFFF));
    EXPECT_TRUE(isAccepted(99, 0));
    EXPECT_FALSE(isAccepted(99, 1));
}

} // namespace
} // namespace zolex
