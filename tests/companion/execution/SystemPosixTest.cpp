#ifndef _WIN32

#include "companion/execution/SystemExecutionFixture.h"
#include "companion/execution/SystemParts.h"
#include "companion/text/OutputFile.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// What only these systems have; SystemExecutionTest.cpp has what every system has.

namespace zolex::companion {
namespace {

using std::chrono::milliseconds;
using SystemPosix = test::SystemExecutionTest;

constexpr std::array<int, 3> endingSignals{SIGTERM, SIGINT, SIGHUP};

std::string textOf(int number) {
    return std::to_string(number);
}

/// The mode of a file without following a link; 0 without a file.
mode_t modeOf(const std::string& name) {
    struct stat status = {};
    return ::lstat(name.c_str(), &status) == 0 ? status.st_mode : 0;
}

void send(const ProcessIdentity& process, int signal) {
    ASSERT_EQ(::kill(static_cast<pid_t>(process.pid), signal), 0);
}

/// Runs the body in a copy of this process; its answer, or 128 plus the signal that ended it.
int inACopy(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(body());
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

/// No file may be longer in this process.
void limitFiles(rlim_t size) {
    const rlimit limit{size, size};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

/// A line of /proc/PID/status.
std::uint64_t signalsOf(const std::string& status, const std::string& which) {
    const std::size_t place = status.find(which + ":\t");
    EXPECT_NE(place, std::string::npos) << status;
    return std::strtoull(status.c_str() + place + which.size() + 2, nullptr, 16);
}

TEST_F(SystemPosix, AScriptNeedsNoFirstLineAndNoPermission) {
    directory.write("UTIL.BAT", "echo $0 $# $1 $2\nexit 38\n");
    utilities.wrapper = "./UTIL.BAT";
    const auto child = system->start("UTIL.BAT MEGACLI \"-AdpAllInfo -a0\"", "out");
    ASSERT_NE(child, nullptr);
    const ChildResult result = endOf(*child);
    EXPECT_EQ(result.exitCode, 38U);
    EXPECT_EQ(result.output, "./UTIL.BAT 2 MEGACLI -AdpAllInfo -a0\n");
}

TEST_F(SystemPosix, ASignalGives128AndItsNumber) {
    const auto child = system->start("UTIL.BAT SH -c \"echo x; kill -9 $$\"", "out");
    ASSERT_NE(child, nullptr);
    const ChildResult result = endOf(*child);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 137U);
    EXPECT_EQ(result.output, "x\n");
}

TEST_F(SystemPosix, AChildHasAGroupAndASessionOfItsOwn) {
    const auto child = started("stay");
    const auto pid = static_cast<pid_t>(child->identity().pid);
    EXPECT_EQ(::getpgid(pid), pid);
    EXPECT_EQ(::getsid(pid), pid);
    kill(child->identity());
}

TEST_F(SystemPosix, SignalsOfAChildAreAtDefaultAndNotBlocked) {
    // Ignored and blocked here, and heeded by this process besides.
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGUSR1, &ignored, &before), 0);
    sigset_t blocked;
    sigset_t mask;
    ::sigemptyset(&blocked);
    ::sigaddset(&blocked, SIGUSR2);
    ::sigaddset(&blocked, SIGTERM);
    ASSERT_EQ(::sigprocmask(SIG_BLOCK, &blocked, &mask), 0);
    const auto child = system->start("UTIL.BAT SH -c \"exec cat /proc/self/status\"", "out");
    ASSERT_EQ(::sigprocmask(SIG_SETMASK, &mask, nullptr), 0);
    ASSERT_EQ(::sigaction(SIGUSR1, &before, nullptr), 0);
    ASSERT_NE(child, nullptr);
    const std::string status = endOf(*child).output;
    constexpr std::uint64_t ofTheLibrary = 0x180000000; // 32 and 33 are for threads
    EXPECT_EQ(signalsOf(status, "SigBlk"), 0U);
    EXPECT_EQ(signalsOf(status, "SigIgn") & ~ofTheLibrary, 0U);
    EXPECT_EQ(signalsOf(status, "SigCgt"), 0U);
}

TEST_F(SystemPosix, AChildInheritsNoFileOfARun) {
    const auto journal = system->makeDurable("journal");
    const auto answer = system->lock("L");
    const auto child = system->start(
        "UTIL.BAT SH -c \"ls -l /proc/self/fd | grep -v /proc | grep -c ' -> '\"", "out");
    ASSERT_NE(child, nullptr);
    // What this process inherited itself without the mark, beside the three streams, goes on.
    int inherited = 0;
    for (int descriptor = 3; descriptor < 256; ++descriptor) {
        const int flags = ::fcntl(descriptor, F_GETFD);
        inherited += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
    }
    EXPECT_EQ(endOf(*child).output, textOf(3 + inherited) + "\n");
}

TEST_F(SystemPosix, TheOutputFollowsNoLinkAndIsForTheOwnerAlone) {
    directory.write("target", "kept");
    ASSERT_EQ(::symlink("target", "out"), 0);
    const auto child = system->start("UTIL.BAT WORKER text new", "out");
    ASSERT_NE(child, nullptr);
    endOf(*child);
    EXPECT_EQ(read("target"), "kept");
    EXPECT_EQ(read("out"), "new");
    EXPECT_EQ(modeOf("out"), mode_t{S_IFREG | 0600});
    // What is no file stays what it is.
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    EXPECT_EQ(system->start("UTIL.BAT WORKER text new", "pipe"), nullptr);
    EXPECT_TRUE(S_ISFIFO(modeOf("pipe")));
}

TEST_F(SystemPosix, AChildThatSomebodyElseAskedForItsExitCodeEndsAllTheSame) {
    const auto child = started("exit 5");
    int status = 0;
    const auto pid = static_cast<pid_t>(child->identity().pid);
    ASSERT_EQ(::waitpid(pid, &status, 0), pid);
    EXPECT_EQ(endOf(*child).outcome, ChildOutcome::stillRunning) << "the exit code is not known";
}

TEST_F(SystemPosix, ExitCodesAreKnownWhereTheSignalOfChildrenIsIgnored) {
    system.reset();
    struct sigaction ignored = {};
    ignored.sa_handler = SIG_IGN;
    struct sigaction before = {};
    ASSERT_EQ(::sigaction(SIGCHLD, &ignored, &before), 0);
    system = makeSystemExecution(*platform, utilities);
    EXPECT_EQ(run("exit 5").exitCode, 5U);
    system.reset();
    struct sigaction after = {};
    ASSERT_EQ(::sigaction(SIGCHLD, &before, &after), 0);
    EXPECT_EQ(after.sa_handler, SIG_IGN);
}

TEST_F(SystemPosix, EachSignalIsNotedOnceAndThenEndsTheProcess) {
    for (const int first : endingSignals) {
        for (const int second : endingSignals) {
            if (first == SIGHUP && second == SIGHUP) {
                continue;
            }
            const auto worker = started("heed text ready sleep 60000 text 2 sleep 60000");
            outputWith(*worker, "ready");
            send(worker->identity(), first);
            EXPECT_EQ(outputWith(*worker, "2"), "readyslept early\n2") << first;
            send(worker->identity(), second);
            EXPECT_EQ(endOf(*worker).exitCode, 128U + static_cast<unsigned>(second)) << first;
        }
    }
}

TEST_F(SystemPosix, TheEndOfATerminalIsToldTwiceAndMeantOnce) {
    // By the shell and by the system.
    const ChildResult result = run("heed signal 1 signal 1 interrupted sleep 20 exit 3");
    EXPECT_EQ(result.output, "asked\nslept\n");
    EXPECT_EQ(result.exitCode, 3U);
    EXPECT_EQ(run("heed signal 1 signal 1 signal 15 text x").exitCode, 143U);
}

TEST_F(SystemPosix, ASignalThatWasIgnoredStaysSo) {
    directory.write("script", "trap '' HUP INT\nexec " ZOLEX_TEST_WORKER
                              " heed signal 1 signal 2 signal 1 interrupted text x exit 3\n");
    const auto child = system->start("UTIL.BAT SH script", "out");
    ASSERT_NE(child, nullptr);
    const ChildResult result = endOf(*child);
    EXPECT_EQ(result.output, "none\nx");
    EXPECT_EQ(result.exitCode, 3U);
}

TEST_F(SystemPosix, ALineIsAwaitedUntilItIsThereOrTheUserInterrupts) {
    const auto answerWith = [this](const std::function<void(int inputEnd)>& beforehand) {
        return inACopy([this, &beforehand] {
            std::array<int, 2> ends{};
            if (::pipe(ends.data()) != 0 || ::dup2(ends[0], STDIN_FILENO) < 0) {
                return 99;
            }
            ::alarm(20);
            beforehand(ends[1]);
            return system->awaitLine() ? 1 : 0;
        });
    };
    EXPECT_EQ(answerWith([](int input) { EXPECT_EQ(::write(input, "\n", 1), 1); }), 1);
    // A moment before the wait: a read that began now would never end.
    EXPECT_EQ(answerWith([](int) { ::raise(SIGINT); }), 0);
    EXPECT_EQ(answerWith([](int input) {
                  EXPECT_EQ(::write(input, "\n", 1), 1);
                  ::raise(SIGTERM);
              }),
              0);
    // While it waits.
    EXPECT_EQ(answerWith([](int) {
                  const pid_t self = ::getpid();
                  if (::fork() == 0) {
                      ::usleep(50'000);
                      ::kill(self, SIGINT);
                      ::_exit(0);
                  }
              }),
              0);
}

TEST_F(SystemPosix, TheHandlersThatWereThereAreGivenBack) {
    system.reset();
    std::array<struct sigaction, endingSignals.size()> before{};
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        ASSERT_EQ(::sigaction(endingSignals[i], nullptr, &before[i]), 0);
    }
    system = makeSystemExecution(*platform, utilities);
    struct sigaction action = {};
    ASSERT_EQ(::sigaction(SIGINT, nullptr, &action), 0);
    EXPECT_NE(action.sa_handler, before[1].sa_handler);
    system.reset();
    for (std::size_t i = 0; i < endingSignals.size(); ++i) {
        ASSERT_EQ(::sigaction(endingSignals[i], nullptr, &action), 0);
        EXPECT_EQ(action.sa_handler, before[i].sa_handler);
        EXPECT_EQ(action.sa_flags & ~SA_RESTART, before[i].sa_flags & ~SA_RESTART);
    }
}

TEST_F(SystemPosix, AZombieDoesNotRun) {
    // A child of the worker that it never asks for its exit code.
    const auto worker = started("heed start \"exit 0\" out stay");
    const std::string told = outputWith(*worker, "\n");
    const ProcessIdentity zombie{std::strtoull(told.c_str() + 6, nullptr, 10), {}};
    for (int i = 0; i < 3000 && system->isRunning(zombie); ++i) {
        system->sleep(milliseconds(10));
    }
    EXPECT_EQ(::kill(static_cast<pid_t>(zombie.pid), 0), 0) << "it is still there";
    EXPECT_FALSE(system->isRunning(zombie));
    kill(worker->identity());
}

TEST_F(SystemPosix, ALockFollowsNoLinkAndTakesNothingButAFile) {
    directory.write("target", "");
    ASSERT_EQ(::symlink("target", "link"), 0);
    EXPECT_EQ(run("lock link").output, "fault: it is a symbolic link\n");
    ASSERT_EQ(::symlink("nowhere", "dangling"), 0);
    EXPECT_EQ(run("lock dangling").output, "fault: it is a symbolic link\n");
    EXPECT_FALSE(std::filesystem::exists("nowhere"));
    ASSERT_EQ(::mkfifo("pipe", 0600), 0);
    EXPECT_EQ(run("lock pipe").output, "fault: it is no file\n");
    ASSERT_EQ(::link("target", "other"), 0);
    EXPECT_EQ(run("lock other").output, "fault: it has other names, too\n");
    EXPECT_EQ(read("target"), "");
}

TEST_F(SystemPosix, InAFolderOfEverybodyAFileOfAnotherUserIsNoLock) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root gives files away";
    }
    constexpr uid_t somebody = 1;
    ASSERT_EQ(::mkdir("common", 0777), 0);
    ASSERT_EQ(::chmod("common", 01777), 0);
    directory.write("common/L", "");
    ASSERT_EQ(::chown("common/L", somebody, somebody), 0);
    EXPECT_EQ(run("lock common/L").output, "fault: it belongs to another user\n");
    EXPECT_EQ(read("common/L"), "");
    ASSERT_EQ(::chmod("common", 0755), 0);
    EXPECT_EQ(run("lock common/L").output, "locked\n") << "it was made for us";
}

TEST_F(SystemPosix, ALockIsForTheOwnerAlone) {
    const LockAnswer answer = system->lock("L");
    ASSERT_NE(answer.lock, nullptr);
    EXPECT_EQ(modeOf("L"), mode_t{S_IFREG | 0600});
}

TEST_F(SystemPosix, ALockThatCannotBeWrittenIsToldAndLeavesNothing) {
    EXPECT_EQ(inACopy([this] {
                  limitFiles(100);
                  const LockAnswer answer = system->lock("L");
                  return answer.lock == nullptr && !answer.fault.empty() && answer.holder.pid == 0
                             ? 7
                             : 1;
              }),
              7);
    EXPECT_FALSE(std::filesystem::exists("L"));
}

TEST_F(SystemPosix, AFileThatCannotGrowKeepsItsWholeLines) {
    EXPECT_EQ(inACopy([this] {
                  limitFiles(10);
                  const auto file = system->makeDurable("journal");
                  const bool isRight = file != nullptr && file->append("12345\n") &&
                                       !file->append("67890\n") && errno == EFBIG &&
                                       file->append("end\n") && !file->append("x");
                  return isRight ? 7 : 1;
              }),
              7);
    EXPECT_EQ(read("journal"), "12345\nend\n");
}

TEST_F(SystemPosix, ADurableFileFollowsNoLink) {
    directory.write("target", "kept");
    ASSERT_EQ(::symlink("target", "link"), 0);
    ASSERT_EQ(::symlink("nowhere", "dangling"), 0);
    EXPECT_EQ(system->makeDurable("link"), nullptr);
    EXPECT_EQ(system->makeDurable("dangling"), nullptr);
    EXPECT_EQ(system->reopenDurable("link", 0), nullptr);
    EXPECT_EQ(system->reopenDurable("/dev/full", 0), nullptr);
    EXPECT_EQ(read("target"), "kept");
    EXPECT_FALSE(std::filesystem::exists("nowhere"));
}

TEST_F(SystemPosix, ABackslashInANameIsASlash) {
    ASSERT_EQ(::mkdir("folder", 0777), 0);
    EXPECT_NE(system->makeDurable("folder\\journal"), nullptr);
    const auto child = system->start("UTIL.BAT WORKER text a", "folder\\out");
    ASSERT_NE(child, nullptr);
    endOf(*child);
    const LockAnswer answer = system->lock("folder\\L");
    for (const std::string name : {"journal", "out", "L"}) {
        EXPECT_TRUE(std::filesystem::exists("folder/" + name)) << name;
    }
    EXPECT_NE(system->reopenDurable("folder\\journal", 0), nullptr);
}

TEST_F(SystemPosix, TheCommonFolderIsTheOneForTemporaryFiles) {
    const char* const before = std::getenv("TMPDIR");
    const std::string kept = before == nullptr ? "" : before;
    ::setenv("TMPDIR", "/somewhere/else//", 1);
    EXPECT_EQ(system->commonFolder(), "/somewhere/else");
    ::setenv("TMPDIR", "", 1);
    EXPECT_EQ(system->commonFolder(), "/tmp");
    ::unsetenv("TMPDIR");
    EXPECT_EQ(system->commonFolder(), "/tmp");
    if (before != nullptr) {
        ::setenv("TMPDIR", kept.c_str(), 1);
    }
}

TEST_F(SystemPosix, AFileInMemoryIsLostAtARestart) {
    if (!std::filesystem::is_directory("/dev/shm")) {
        GTEST_SKIP() << "there is no /dev/shm";
    }
    EXPECT_TRUE(system->isLostAtRestart("/dev/shm/journal"));
    EXPECT_FALSE(system->isLostAtRestart("/proc/journal"));
}

} // namespace
} // namespace zolex::companion

#endif
