#include "companion/execution/SystemExecutionFixture.h"
#include "companion/execution/SystemParts.h"
#include "companion/text/OutputFile.h"

#include <filesystem>

// What every system has; SystemPosixTest.cpp has what only that has.

namespace zolex::companion {
namespace {

using std::chrono::milliseconds;
using SystemExecutionTest = test::SystemExecutionTest;

/// Whether a process that was interrupted has this exit code. Emulators of Windows end it with 0.
bool isOfInterruption(std::uint32_t code) {
#ifdef _WIN32
    constexpr std::uint32_t controlC = 0xC000013A;
    return code == controlC || code == 0;
#else
    return code == 128U + SIGTERM;
#endif
}

TEST_F(SystemExecutionTest, StartsACommandLineAsZolexWritesIt) {
    const ChildResult result = run("text a error b text \"c d\" exit 7");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 7U);
    EXPECT_EQ(result.output, "abc d");
}

TEST_F(SystemExecutionTest, AProgramThatIsNotThereIsNotStarted) {
    utilities.named["WORKER"] = "no-such-program";
    EXPECT_EQ(system->start("UTIL.BAT WORKER text a", "out"), nullptr);
    EXPECT_EQ(lastSystemError(), "there is no such file or folder");
    EXPECT_EQ(system->start("UTIL.BAT NEITHER text a", "out"), nullptr);
    EXPECT_EQ(lastSystemError(), "there is no such file or folder");
    EXPECT_EQ(system->start("", "out"), nullptr);
    EXPECT_FALSE(std::filesystem::exists("out"));
}

TEST_F(SystemExecutionTest, WithoutAFileForTheOutputNothingIsStarted) {
    std::filesystem::create_directory("folder");
    EXPECT_EQ(system->start("UTIL.BAT WORKER text a", "folder"), nullptr);
    EXPECT_EQ(system->start("UTIL.BAT WORKER text a", "no-folder/out"), nullptr);
    EXPECT_EQ(lastSystemError(), "there is no such file or folder");
}

TEST_F(SystemExecutionTest, TheOutputGoesToANewFile) {
    directory.write("out", "a text that was there, and is longer");
    const auto child = system->start("UTIL.BAT WORKER text new", "out");
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(endOf(*child).output, "new");
    EXPECT_EQ(read("out"), "new");
}

TEST_F(SystemExecutionTest, ACommandLineThatLeavesFilesRunsInAFolderOfItsOwn) {
    utilities.named["STORCLI"] = ZOLEX_TEST_WORKER;
    for (const char* const time : {"first", "again"}) {
        const auto child = system->start("STORCLI make storcli.log text a exit 3 J", "out");
        ASSERT_NE(child, nullptr) << time;
        const ChildResult result = endOf(*child);
        EXPECT_EQ(result.exitCode, 3U);
        EXPECT_EQ(result.output, "a");
        EXPECT_FALSE(std::filesystem::exists("storcli.log"));
        EXPECT_TRUE(std::filesystem::exists("out.folder/storcli.log"));
    }
    system->removeFolder("out");
    EXPECT_FALSE(std::filesystem::exists("out.folder"));
    EXPECT_EQ(read("out"), "a");
    system->removeFolder("out"); // none is there
    const auto other = system->start("STORCLI make own.log text b exit 0 J nolog", "out");
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(endOf(*other).output, "b");
    EXPECT_TRUE(std::filesystem::exists("own.log")) << "it was to leave none";
    EXPECT_FALSE(std::filesystem::exists("out.folder"));
}

TEST_F(SystemExecutionTest, WithoutAFolderOfItsOwnNothingIsStarted) {
    utilities.named["STORCLI"] = ZOLEX_TEST_WORKER;
    directory.write("out.folder", "somebody else's");
    EXPECT_EQ(system->start("STORCLI text a J", "out"), nullptr);
    EXPECT_EQ(system->start("STORCLI text a J", "no-folder/out"), nullptr);
    EXPECT_EQ(read("out.folder"), "somebody else's");
    utilities.named["STORCLI"] = "no-such-program";
    EXPECT_EQ(system->start("STORCLI text a J", "other"), nullptr);
    EXPECT_EQ(lastSystemError(), "there is no such file or folder");
    EXPECT_FALSE(std::filesystem::exists("other.folder"));
}

TEST_F(SystemExecutionTest, AnOutputThatAnotherChildStillWritesIsLeftToIt) {
    const auto first = system->start("UTIL.BAT WORKER text first until go text more", "out");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(outputWith(*first, "first"), "first");
    const auto second = system->start("UTIL.BAT WORKER text second", "out");
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(endOf(*second).output, "second");
    directory.write("go", "");
    EXPECT_EQ(endOf(*first).output, "firstmore");
    EXPECT_EQ(read("out"), "second");
}

TEST_F(SystemExecutionTest, TheInputIsEmpty) {
#ifdef _WIN32
    directory.write("UTIL.BAT", "@set /p line=\r\n@echo read-%line%-%1\r\n");
#else
    directory.write("UTIL.BAT", "read line\necho read-$line-$1\n");
#endif
    utilities.wrapper = "./UTIL.BAT";
    const auto child = system->start("UTIL.BAT MEGACLI -AdpAllInfo", "out");
    ASSERT_NE(child, nullptr);
    const std::string output = endOf(*child).output;
    EXPECT_EQ(output.substr(0, output.find_last_not_of("\r\n") + 1), "read--MEGACLI");
}

TEST_F(SystemExecutionTest, AWaitGivesUpAtItsLimitAndTheChildGoesOn) {
    const auto child = started("text a until go text b exit 3");
    EXPECT_FALSE(child->wait(milliseconds(50)).has_value());
    EXPECT_FALSE(child->wait(milliseconds(0)).has_value());
    EXPECT_TRUE(system->isRunning(child->identity()));
    directory.write("go", "");
    const ChildResult result = endOf(*child);
    EXPECT_EQ(result.exitCode, 3U);
    EXPECT_EQ(result.output, "ab");
    EXPECT_FALSE(system->isRunning(child->identity()));
    EXPECT_EQ(endOf(*child).exitCode, 3U) << "asked once more";
}

TEST_F(SystemExecutionTest, TellsWhatAChildHasWrittenSoFar) {
    const auto child = started("text first stay");
    EXPECT_EQ(outputWith(*child, "first"), "first");
    EXPECT_EQ(child->outputSoFar(2), "fi");
    kill(child->identity());
    EXPECT_EQ(endOf(*child).exitCode, 137U);
}

TEST_F(SystemExecutionTest, AnOutputAboveTheBoundIsCut) {
    const std::size_t written = mostChildOutput + 100'000;
    const auto child = started("text begin bytes " + std::to_string(written) + " exit 4");
    const ChildResult result = endOf(*child);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 4U);
    EXPECT_EQ(result.output.size(), mostChildOutput);
    EXPECT_TRUE(result.output.starts_with("beginxxx"));
    EXPECT_EQ(std::filesystem::file_size("file-1"), written + 5);
}

TEST_F(SystemExecutionTest, AChildOutlivesAKilledParentAndItsOutputIsWhole) {
    const auto parent = started("heed start \"lines 5 1 until go lines 20 1\" out stay");
    const std::string told = outputWith(*parent, "\n");
    ProcessIdentity child;
    ASSERT_TRUE(told.starts_with("child ")) << told;
    child.pid = std::strtoull(told.c_str() + 6, nullptr, 10);
    child.startedAt = told.substr(told.rfind(' ') + 1);
    child.startedAt.pop_back(); // the line's end
    kill(parent->identity());
    endOf(*parent);
    EXPECT_TRUE(system->isRunning(child)) << told;
    directory.write("go", "");
    for (int i = 0; i < 600 && system->isRunning(child); ++i) {
        system->sleep(milliseconds(100));
    }
    EXPECT_FALSE(system->isRunning(child));
    std::string all = "1\n2\n3\n4\n5\n";
    for (int line = 1; line <= 20; ++line) {
        all += std::to_string(line) + "\n";
    }
    EXPECT_EQ(read("out"), all);
}

TEST_F(SystemExecutionTest, TheFirstInterruptionEndsASleepAndNothingElse) {
    const ChildResult result = run("heed ending temporary interrupted interrupt-in 50 "
                                   "sleep 60000 interrupted sleep 20 exit 6");
    EXPECT_EQ(result.output, "none\nslept early\nasked\nslept\n");
    EXPECT_EQ(result.exitCode, 6U);
}

TEST_F(SystemExecutionTest, TheFirstInterruptionRemovesNoFile) {
    directory.write("temporary", "x");
    EXPECT_EQ(run("heed ending temporary interrupt-in 0 sleep 60000 exit 0").output,
              "slept early\n");
    EXPECT_EQ(read("temporary"), "x");
}

TEST_F(SystemExecutionTest, TheSecondInterruptionEndsTheProcessAtOnce) {
    directory.write("temporary", "x");
    const ChildResult result = run("heed ending temporary interrupt-in 0 sleep 60000 "
                                   "interrupt-in 50 text x stay text y");
    EXPECT_EQ(result.output, "slept early\nx");
    EXPECT_TRUE(isOfInterruption(result.exitCode)) << result.exitCode;
    EXPECT_FALSE(std::filesystem::exists("temporary")) << "goes when a signal ends the process";
}

TEST_F(SystemExecutionTest, AnInterruptionBeforeAWaitEndsThatWait) {
    // Between two looks of the caller: the wait knows of it.
    EXPECT_EQ(run("heed interrupt sleep 60000").output, "slept early\n");
    // The caller knows of it: the next wait is a whole one.
    EXPECT_EQ(run("heed interrupt-in 0 sleep 60000 interrupted sleep 30").output,
              "slept early\nasked\nslept\n");
}

TEST_F(SystemExecutionTest, AnInterruptionEndsAWaitForAChildThatGoesOn) {
    const std::string output = run("heed start \"until go text whole exit 9\" out interrupt-in 50 "
                                   "wait 60000 interrupted make go wait 60000")
                                   .output;
    EXPECT_EQ(output.substr(output.find('\n') + 1), "runs\nasked\nended 9\n");
    EXPECT_EQ(read("out"), "whole") << "the interruption did not reach the child";
}

TEST_F(SystemExecutionTest, AnInterruptionEndsTheProcessWhenNobodyHeedsItAnyMore) {
    const ChildResult result = run("heed unheed interrupt-in 0 stay text x");
    EXPECT_TRUE(isOfInterruption(result.exitCode)) << result.exitCode;
    EXPECT_EQ(result.output, "");
}

TEST_F(SystemExecutionTest, TellsProcessesOfOneNumberApart) {
    const ProcessIdentity own = system->ownProcess();
    EXPECT_FALSE(own.startedAt.empty());
    EXPECT_TRUE(system->isRunning(own));
    EXPECT_EQ(own, system->ownProcess());
    ProcessIdentity other = own;
    other.startedAt.front() = other.startedAt.front() == '1' ? '2' : '1';
    EXPECT_FALSE(system->isRunning(other));
    EXPECT_TRUE(system->isRunning({own.pid, {}})) << "its start was not told";
    EXPECT_FALSE(system->isRunning({}));
    EXPECT_FALSE(system->isRunning({0xFFFFFFFFFFFFFFFFU, {}}));
    EXPECT_FALSE(system->isRunning({0xFFFFFFFFU, {}}));
}

TEST_F(SystemExecutionTest, AnotherProcessRunsUntilItEnds) {
    const auto child = started("stay");
    EXPECT_TRUE(system->isRunning(child->identity()));
    kill(child->identity());
    for (int i = 0; i < 1000 && system->isRunning(child->identity()); ++i) {
        system->sleep(milliseconds(10));
    }
    EXPECT_FALSE(system->isRunning(child->identity())) << "nobody has asked for its exit code";
}

TEST_F(SystemExecutionTest, SleepsAsLongAsItIsTold) {
    const milliseconds start = system->elapsed();
    system->sleep(milliseconds(120));
    EXPECT_GE(system->elapsed() - start, milliseconds(100));
    system->sleep(milliseconds(-1));
}

TEST_F(SystemExecutionTest, TellsTheTimeTheUserAndTheFolders) {
    const std::string time = system->timestamp();
    EXPECT_EQ(time.size(), std::string("2026-11-21T21:05:00+01:00").size()) << time;
    EXPECT_FALSE(system->userName().empty());
    const std::string folder = system->commonFolder();
    EXPECT_FALSE(folder.empty());
    EXPECT_EQ(std::string("/\\").find(folder.back()), std::string::npos) << folder;
    EXPECT_FALSE(system->isLostAtRestart("no-such-folder/file"));
}

} // namespace
} // namespace zolex::companion
