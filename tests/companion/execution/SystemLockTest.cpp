#include "companion/execution/LockText.h"
#include "companion/execution/SystemExecutionFixture.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace zolex::companion {
namespace {

using std::chrono::milliseconds;

std::string textOf(const LockHolder& holder) {
    const LockText text = lockTextOf(holder);
    return {text.data(), text.size()};
}

std::string numberOf(const ProcessIdentity& process) {
    return std::to_string(process.pid);
}

TEST(LockText, IsReadBack) {
    for (const LockHolder& holder :
         {LockHolder{}, LockHolder{{4711, "31337@b1946ac9"}, {}},
          LockHolder{{18446744073709551615U, std::string(100, 'x')}, {1, "2"}}}) {
        EXPECT_EQ(lockHolderOf(textOf(holder)), holder);
    }
    const std::string text = textOf({{4711, "1@a"}, {4712, "2@a"}});
    EXPECT_EQ(text.size(), lockTextSize);
    EXPECT_EQ(text.substr(0, text.find("\n\n") + 1), "zolexctl is at work on this machine\n"
                                                     "pid 4711 1@a\nchild 4712 2@a\nend\n");
}

TEST(LockText, AStartThatNoSystemTellsIsLeftOut) {
    for (const std::string& start :
         {std::string(101, 'x'), std::string("a b"), std::string("a\n")}) {
        const LockHolder want{{4711, {}}, {}};
        EXPECT_EQ(lockHolderOf(textOf({{4711, start}, {}})), want);
    }
}

TEST(LockText, OfATornTextNothingIsRead) {
    const std::string text = textOf({{4711, "1@a"}, {4712, "2@a"}});
    const std::size_t whole = text.find("\n\n") + 1;
    for (std::size_t size = 0; size < whole; ++size) {
        EXPECT_EQ(lockHolderOf(text.substr(0, size)), std::nullopt) << size;
        EXPECT_TRUE(mayBeLockText(text.substr(0, size)));
    }
    EXPECT_NE(lockHolderOf(text.substr(0, whole)), std::nullopt);
    EXPECT_TRUE(mayBeLockText(std::string(lockTextSize, '\0')));
    EXPECT_FALSE(mayBeLockText("[Policy.Web]"));
    EXPECT_FALSE(mayBeLockText("zolexctl is at rest"));
}

/// Where files can be locked, and where they cannot.
class SystemLock : public test::SystemExecutionTest, public ::testing::WithParamInterface<bool> {
  protected:
    [[nodiscard]] static std::string before() { return GetParam() ? "" : "without-locks "; }
    std::unique_ptr<StartedChild> start(const std::string& words) {
        return started(before() + words);
    }
    std::string outputOf(const std::string& words) { return run(before() + words).output; }
};

std::string nameOfSystem(const ::testing::TestParamInfo<bool>& test) {
    return test.param ? "OfSystem" : "PosixWithout";
}

#ifdef _WIN32
// A file that is open is locked on every file system there.
INSTANTIATE_TEST_SUITE_P(Locks, SystemLock, ::testing::Values(true), nameOfSystem);
#else
INSTANTIATE_TEST_SUITE_P(Locks, SystemLock, ::testing::Values(true, false), nameOfSystem);
#endif

TEST_P(SystemLock, IsHeldByOne) {
    const auto holder = start("lock L note 4712 text noted stay");
    ASSERT_EQ(outputWith(*holder, "noted"), "locked\nnoted");
    EXPECT_EQ(outputOf("lock L"), "held by " + numberOf(holder->identity()) + " child 4712\n");
    EXPECT_EQ(outputOf("lock M"), "locked\n") << "another name";
    EXPECT_FALSE(std::filesystem::exists("M"));
    kill(holder->identity());
}

TEST_P(SystemLock, IsGoneWhenItsHolderLetsItGo) {
    EXPECT_EQ(outputOf("lock L unlock lock L"), "locked\nlocked\n");
    EXPECT_FALSE(std::filesystem::exists("L"));
}

TEST_P(SystemLock, OfAHolderThatWasKilledIsTakenOver) {
    const auto holder = start("lock L note 4294967295 text noted stay");
    ASSERT_EQ(outputWith(*holder, "noted"), "locked\nnoted");
    kill(holder->identity());
    endOf(*holder);
    EXPECT_TRUE(std::filesystem::exists("L"));
    EXPECT_EQ(outputOf("lock L unlock lock L"),
              "locked after " + numberOf(holder->identity()) + " child 4294967295\nlocked\n");
    EXPECT_FALSE(std::filesystem::exists("L"));
}

TEST_P(SystemLock, AChildThatOutlivedItsHoldersStaysNoted) {
    const auto child = started("stay");
    const std::string number = numberOf(child->identity());
    auto before = start("lock L note " + number + " text noted stay");
    ASSERT_EQ(outputWith(*before, "noted"), "locked\nnoted");
    for (int i = 0; i < 2; ++i) {
        kill(before->identity());
        endOf(*before);
        const std::string gone = numberOf(before->identity());
        before = start("lock L text taken stay");
        EXPECT_EQ(outputWith(*before, "taken"),
                  "locked after " + gone + " child " + number + "\ntaken");
    }
    kill(before->identity());
    kill(child->identity());
}

TEST_P(SystemLock, StaysWhenItIsLetGoWhileItsChildRuns) {
    const auto child = started("stay");
    const std::string number = numberOf(child->identity());
    const auto before = start("lock L note " + number + " unlock");
    EXPECT_EQ(endOf(*before).output, "locked\n");
    EXPECT_TRUE(std::filesystem::exists("L"));
    const auto next = start("lock L unlock");
    EXPECT_EQ(endOf(*next).output,
              "locked after " + numberOf(before->identity()) + " child " + number + "\n");
    EXPECT_TRUE(std::filesystem::exists("L"));
    kill(child->identity());
    endOf(*child);
    const auto last = start("lock L unlock");
    EXPECT_EQ(endOf(*last).output,
              "locked after " + numberOf(next->identity()) + " child " + number + "\n");
    EXPECT_FALSE(std::filesystem::exists("L"));
}

TEST_P(SystemLock, OfAnEarlierStartOfTheSystemIsTakenOver) {
    // The number is that of a process that runs now.
    const ProcessIdentity own = system->ownProcess();
    directory.write("L", textOf({{own.pid, "1@before"}, {}}));
    EXPECT_EQ(outputOf("lock L"), "locked after " + numberOf(own) + " child 0\n");
}

TEST_P(SystemLock, IsNeverHadByTwo) {
    std::vector<std::unique_ptr<StartedChild>> workers;
    for (int i = 0; i < 4; ++i) {
        workers.push_back(start("contend L 300"));
    }
    for (const auto& worker : workers) {
        EXPECT_EQ(endOf(*worker).output, "done\n");
    }
    EXPECT_FALSE(std::filesystem::exists("L"));
}

TEST_P(SystemLock, AFileOfSomebodyElseIsLeftAsItIs) {
    directory.write("L", "[Policy.Web]\n");
    EXPECT_EQ(outputOf("lock L"), "fault: it is not a lock\n");
    EXPECT_EQ(read("L"), "[Policy.Web]\n");
    std::filesystem::create_directory("folder");
    EXPECT_EQ(outputOf("lock folder"), "fault: it is no file\n");
    EXPECT_EQ(outputOf("lock no-folder/L"), "fault: there is no such file or folder\n");
}

TEST_F(SystemLock, OneThatWasNeverWrittenIsTaken) {
    directory.write("L", "");
    EXPECT_EQ(run("lock L").output, "locked\n");
    directory.write("L", std::string(lockTextSize, '\0'));
    EXPECT_EQ(run("lock L").output, "locked\n");
}

} // namespace
} // namespace zolex::companion
