#ifndef _WIN32

#include "platform/posix/ChildRunner.h"

#include "platform/ChildOutput.h"

#include "platform/WrittenProcess.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <limits>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace zolex {
namespace {

using posix::Notice;
using std::chrono::milliseconds;
using test::TemporaryDirectory;
using test::writtenProcess;

/// For tests whose child has to begin within the limit: the next one is tried when it has not.
constexpr std::array<milliseconds, 5> growingLimits = {milliseconds(100), milliseconds(400),
                                                       milliseconds(1600), milliseconds(6400),
                                                       milliseconds(25600)};

/// Number of descriptors that this process has open.
std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return std::distance(begin(all), end(all));
}

std::vector<int> openPipes() {
    std::vector<int> pipes;
    for (int descriptor = 0; descriptor < 1024; ++descriptor) {
        struct stat status = {};
        if (::fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode)) {
            pipes.push_back(descriptor);
        }
    }
    return pipes;
}

/// The one that is in `after` and not in `before`; -1 when there is no such or more of them.
int added(const std::vector<int>& before, const std::vector<int>& after) {
    std::vector<int> descriptors;
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                        std::back_inserter(descriptors));
    return descriptors.size() == 1 ? descriptors.front() : -1;
}

/// The number of bytes until nobody can write any more. Closes the descriptor.
std::size_t readToEnd(int descriptor) {
    std::size_t bytes = 0;
    std::array<char, 65536> buffer{};
    for (;;) {
        const ssize_t taken = ::read(descriptor, buffer.data(), buffer.size());
        if (taken <= 0) {
            break;
        }
        bytes += static_cast<std::size_t>(taken);
    }
    ::close(descriptor);
    return bytes;
}

/// What "seq 1 700000" prints: five megabytes.
std::string manyLines() {
    std::string lines;
    for (int i = 1; i <= 700000; ++i) {
        lines += std::to_string(i) + '\n';
    }
    return lines;
}

/// Every test, for both ways in which the end of a child is noticed.
class PosixChildRunner : public ::testing::TestWithParam<Notice> {
  protected:
    ChildResult run(const std::string& commandLine, milliseconds limit = std::chrono::minutes(5),
                    std::size_t most = mostChildOutput) {
        const auto start = std::chrono::steady_clock::now();
        ChildResult result = posix::runChild(commandLine, true, limit, GetParam(), most);
        taken = std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - start);
        return result;
    }

    /// The wait status of a child that was left running, when it has ended.
    static int statusOf(pid_t child) {
        int status = -1;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        return status;
    }

    TemporaryDirectory directory;
    milliseconds taken{0};
};

INSTANTIATE_TEST_SUITE_P(Notices, PosixChildRunner,
                         ::testing::Values(Notice::byDescriptor, Notice::bySlices),
                         [](const auto& test) {
                             return test.param == Notice::byDescriptor ? "Descriptor" : "Slices";
                         });

TEST_P(PosixChildRunner, ExitCodesFrom0To255) {
    for (const unsigned code : {0U, 1U, 3U, 127U, 128U, 255U}) {
        const ChildResult result = run("/bin/sh -c \"exit " + std::to_string(code) + "\"");
        EXPECT_EQ(result.outcome, ChildOutcome::ended);
        EXPECT_EQ(result.exitCode, code);
    }
}

TEST_P(PosixChildRunner, ASignalGives128AndItsNumber) {
    EXPECT_EQ(run("/bin/sh -c \"echo x; kill -9 $$\"").exitCode, 137U);
    EXPECT_EQ(run("/bin/sh -c \"kill -TERM $$\"").exitCode, 143U);
    const ChildResult result = run("/bin/sh -c \"echo before; kill -9 $$\"");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.output, "before\n");
}

TEST_P(PosixChildRunner, AChildThatOutlastsTheLimitIsLeftRunning) {
    const ChildResult result =
        run("/bin/sh -c \"echo $$ > pid; exec sleep 60\"", milliseconds(100));
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.output, "");
    EXPECT_GE(taken, milliseconds(100));
    EXPECT_LT(taken, milliseconds(30000));
    const pid_t child = writtenProcess();
    ASSERT_GT(child, 0);
    EXPECT_EQ(::waitpid(child, nullptr, WNOHANG), 0) << "it still runs";
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    EXPECT_EQ(WTERMSIG(statusOf(child)), SIGKILL);
}

TEST_P(PosixChildRunner, AChildLeftRunningCanGoOnWriting) {
    // Symptom: a child that wrote after the limit was ended by SIGPIPE, its output having been
    // closed.
    ASSERT_EQ(::mkfifo("go", 0600), 0);
    const ChildResult result =
        run("/bin/sh -c \"echo $$ > pid; read x < go; echo more || exit 9; echo more; exit 77\"",
            milliseconds(100));
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    const pid_t child = writtenProcess();
    ASSERT_GT(child, 0);
    directory.write("go", "go on\n");
    const int status = statusOf(child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 77);
}

TEST_P(PosixChildRunner, AChildThatNeverStopsWritingIsGivenUpAtTheLimit) {
    constexpr std::size_t noBound = std::numeric_limits<std::size_t>::max();
    // Within the first limit the child of a slow machine has not begun to write. It ends by itself
    // when it has used half a minute of the processor.
    bool writes = false;
    for (const milliseconds limit : growingLimits) {
        std::filesystem::remove("pid");
        const ChildResult result = run("/bin/sh -c \"ulimit -t 30; echo x; echo $$ > pid; "
                                       "while :; do echo x; done\"",
                                       limit, noBound);
        writes = std::filesystem::exists("pid");
        ASSERT_EQ(result.outcome, ChildOutcome::stillRunning);
        EXPECT_EQ(result.output, "");
        EXPECT_GE(taken, limit);
        EXPECT_LT(taken, limit + milliseconds(30000));
        const pid_t child = writtenProcess();
        ASSERT_GT(child, 0);
        ASSERT_EQ(::kill(child, SIGKILL), 0);
        EXPECT_EQ(WTERMSIG(statusOf(child)), SIGKILL);
        if (writes) {
            break;
        }
    }
    EXPECT_TRUE(writes);
}

TEST_P(PosixChildRunner, WhatStandsInThePipeAtTheEndIsTakenUpBeyondTheBound) {
    directory.write("text", std::string(5000, 'x'));
    const ChildResult result =
        run("/bin/sh -c \"cat text; exit 5\"", std::chrono::minutes(5), 1000);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 5U);
    EXPECT_EQ(result.output, std::string(5000, 'x'));
}

TEST_P(PosixChildRunner, AnOutputHoldsLittleBeyondItsText) {
    const std::size_t size = (std::size_t{4} << 20U) + 1; // doubling holds almost twice as much
    const ChildResult result = run("head -c " + std::to_string(size) + " /dev/zero");
    EXPECT_EQ(result.output.size(), size);
    EXPECT_LE(result.output.capacity(), size + mostUnusedOutput);
}

TEST_P(PosixChildRunner, AnOutputOfMoreThan32MiBIsGivenUpAtTheLimit) {
    const std::string most = std::to_string(mostChildOutput);
    const ChildResult whole = run("head -c " + most + " /dev/zero");
    EXPECT_EQ(whole.outcome, ChildOutcome::ended);
    EXPECT_EQ(whole.output.size(), std::size_t{32} << 20U);
    // The last bytes stand in the pipe, so that the child ends.
    const milliseconds limit{1500};
    const ChildResult more =
        run("head -c " + std::to_string(mostChildOutput + 1) + " /dev/zero", limit);
    EXPECT_EQ(more.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(more.output, "");
    EXPECT_GE(taken, limit);
}

// Symptom: what the program ignores a utility ignored too.
TEST_P(PosixChildRunner, TheSignalsThatTheProgramIgnoresHaveTheirEffectInTheChild) {
    const auto platform = makeSystemPlatform();
    EXPECT_EQ(run("/bin/sh -c \"kill -PIPE $$\"").exitCode, 128U + SIGPIPE);
    EXPECT_EQ(run("/bin/sh -c \"kill -XFSZ $$\"").exitCode, 128U + SIGXFSZ);
    struct sigaction action = {};
    ASSERT_EQ(0, ::sigaction(SIGPIPE, nullptr, &action));
    EXPECT_EQ(SIG_IGN, action.sa_handler);
}

TEST_P(PosixChildRunner, AChildThatWritesFarBeyondTheBoundStalls) {
    std::size_t takenUp = 0;
    // Within the first limit the child of a slow machine has not begun to write.
    for (const milliseconds limit : growingLimits) {
        std::filesystem::remove("pid");
        const auto pipes = openPipes();
        const ChildResult result =
            run("/bin/sh -c \"echo $$ > pid; seq 1 700000; echo > written\"", limit, 1000);
        ASSERT_EQ(result.outcome, ChildOutcome::stillRunning);
        EXPECT_EQ(result.output, "");
        EXPECT_FALSE(std::filesystem::exists("written"));
        // All the rest of the output comes out of the end that was left open.
        const int readEnd = added(pipes, openPipes());
        ASSERT_GE(readEnd, 0);
        takenUp = manyLines().size() - readToEnd(readEnd);
        EXPECT_TRUE(std::filesystem::exists("written"));
        EXPECT_EQ(statusOf(writtenProcess()), 0);
        std::filesystem::remove("written");
        if (takenUp != 0) {
            break;
        }
    }
    EXPECT_EQ(takenUp, 1000U);
}

TEST_P(PosixChildRunner, AProgramLeftBehindIsNotWaitedFor) {
    // The sleeping program holds the child's output.
    const ChildResult result =
        run("/bin/sh -c \"echo first; sleep 60 & echo $! > pid; echo last; exit 4\"");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 4U);
    EXPECT_EQ(result.output, "first\nlast\n");
    EXPECT_LT(taken, milliseconds(30000));
    ASSERT_GT(writtenProcess(), 0);
    EXPECT_EQ(::kill(writtenProcess(), SIGKILL), 0);
}

TEST_P(PosixChildRunner, AChildThatClosesItsOutputIsWaitedFor) {
    const ChildResult result = run("/bin/sh -c \"echo x; exec >&- 2>&-; sleep 0.1; exit 6\"");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 6U);
    EXPECT_EQ(result.output, "x\n");
}

/// Time of the processor that this process has used.
std::chrono::microseconds processorTime() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

TEST_P(PosixChildRunner, TheEndOfASilentChildIsNoticedSoonAndWithoutBusyWaiting) {
    constexpr milliseconds length(1200);
    milliseconds best = milliseconds::max();
    // A busy machine may start one child late, but not each of them.
    for (int i = 0; i < 5 && best >= length + milliseconds(400); ++i) {
        const auto before = processorTime();
        EXPECT_EQ(run("/bin/sh -c \"exec >&- 2>&-; exec sleep 1.2\"").outcome, ChildOutcome::ended);
        EXPECT_LT(processorTime() - before, milliseconds(300));
        EXPECT_GE(taken, length);
        best = std::min(best, taken);
    }
    EXPECT_LT(best, length + milliseconds(400));
}

TEST_P(PosixChildRunner, FiveMegabytesKeepTheirOrder) {
    const ChildResult result = run("seq 1 700000");
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_TRUE(result.output == manyLines());
}

TEST_P(PosixChildRunner, BytesOfTheOutputStay) {
    const ChildResult result = run("printf 'a\\r\\nb\\000\\377c'");
    EXPECT_EQ(result.output, std::string("'a\r\nb\0\xFF"
                                         "c'",
                                         9));
}

TEST_P(PosixChildRunner, QuotesGroupArguments) {
    directory.write("show", "#!/bin/sh\nfor a in \"$@\"; do echo \"[$a]\"; done\n", true);
    EXPECT_EQ(run("show a \"b c\" d\"e\tf\"g \"\"  h").output, "[a]\n[b c]\n[de\tfg]\n[]\n[h]\n");
    EXPECT_EQ(run("\"./show\" x").output, "[x]\n");
    EXPECT_EQ(run("show back\\slash").output, "[back\\slash]\n");
}

TEST_P(PosixChildRunner, AScriptWithoutAFirstLineOfItsOwnIsRunByTheShell) {
    directory.write("script", "echo \"$0 $# $2\"\r\n", true);
    directory.write("empty", "", true);
    directory.write("sub/script", "echo \"$0\"\nexit 9\n", true);
    EXPECT_EQ(run("script a \"b c\"").output, "./script 2 b c\r\n");
    EXPECT_EQ(run("empty").outcome, ChildOutcome::ended);
    EXPECT_EQ(run("empty").exitCode, 0U);
    EXPECT_EQ(run("sub/script").output, "sub/script\n");
    EXPECT_EQ(run("sub/script").exitCode, 9U);
}

TEST_P(PosixChildRunner, AScriptWithAFirstLineChoosesItsInterpreter) {
    directory.write("script", "#!/bin/cat\nno shell reads this: $(exit 3\n", true);
    directory.write("lost", "#!/no/such/interpreter\necho x\n", true);
    EXPECT_EQ(run("script").output, "#!/bin/cat\nno shell reads this: $(exit 3\n");
    EXPECT_EQ(run("lost").outcome, ChildOutcome::notStarted);
}

TEST_P(PosixChildRunner, WhatIsNoProgramIsNotStarted) {
    directory.write("folder/text", "echo x\n");
    for (const char* commandLine : {"folder", "./folder", "folder/none", "."}) {
        EXPECT_EQ(run(commandLine).outcome, ChildOutcome::notStarted) << commandLine;
    }
}

TEST_P(PosixChildRunner, LetterCaseOfAProgramMatters) {
    directory.write("UTIL.BAT", "echo x\n", true);
    EXPECT_EQ(run("UTIL.BAT").output, "x\n");
    EXPECT_EQ(run("util.bat").outcome, ChildOutcome::notStarted);
}

TEST_P(PosixChildRunner, TheDirectoryOfTheExecutableComesFirst) {
    const auto own = std::filesystem::read_symlink("/proc/self/exe").parent_path() /
                     ("zolex-test-program-" + std::to_string(::getpid()));
    const std::string name = own.filename().string();
    directory.write(name, "echo here\n", true);
    EXPECT_EQ(run(name).output, "here\n");
    std::filesystem::copy_file(directory.path() + "/" + name, own);
    directory.write(name, "echo not here\n", true);
    EXPECT_EQ(run(name).output, "here\n");
    std::filesystem::remove(own);
    EXPECT_EQ(run(name).output, "not here\n");
}

TEST_P(PosixChildRunner, TheCurrentDirectoryComesBeforeThePath) {
    EXPECT_EQ(run("echo found").output, "found\n");
    directory.write("echo", "printf 'own\\n'\n", true);
    EXPECT_EQ(run("echo found").output, "own\n");
}

TEST_P(PosixChildRunner, WithoutAPathInTheEnvironmentTheSystemsFoldersAreSearched) {
    const std::string path = std::getenv("PATH");
    ::unsetenv("PATH");
    const ChildResult found = run("echo found");
    const ChildResult none = run("zolex-no-such-program");
    ::setenv("PATH", "", 1);
    const ChildResult hidden = run("echo found");
    ::setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(found.outcome, ChildOutcome::ended);
    EXPECT_EQ(found.output, "found\n");
    EXPECT_EQ(none.outcome, ChildOutcome::notStarted);
    EXPECT_EQ(hidden.outcome, ChildOutcome::notStarted) << "an empty path names no folder";
}

TEST_P(PosixChildRunner, WhatIsNoProgramHidesNothingFurtherAlong) {
    directory.write("echo", "not executable\n");
    directory.write("printf/inside", "a folder\n");
    EXPECT_EQ(run("echo found").output, "found\n");
    EXPECT_EQ(run("printf found").output, "found");
}

TEST_P(PosixChildRunner, ABatchFileNeedsNoPermission) {
    directory.write("PLAIN.BAT", "echo plain $1\n");
    EXPECT_EQ(run("PLAIN.BAT x").output, "plain x\n");
    EXPECT_EQ(run("./PLAIN.BAT x").output, "plain x\n");
    directory.write("named", "#!/bin/cat\n");
    EXPECT_EQ(run("named").outcome, ChildOutcome::notStarted);
}

TEST_P(PosixChildRunner, NoDescriptorAndNoProcessStaysBehind) {
    run("/bin/sh -c \"exit 0\"");
    const auto before = openDescriptors();
    pid_t child = 0;
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(run("/bin/sh -c \"echo $$\"").outcome, ChildOutcome::ended);
        EXPECT_EQ(run("zolex-no-such-program").outcome, ChildOutcome::notStarted);
        child = std::atoi(run("/bin/sh -c \"echo $$\"").output.c_str());
        ASSERT_GT(child, 0);
        errno = 0;
        EXPECT_EQ(::waitpid(child, nullptr, WNOHANG), -1);
        EXPECT_EQ(errno, ECHILD) << "the child was left as a zombie";
    }
    EXPECT_EQ(openDescriptors(), before);
}

TEST_P(PosixChildRunner, AChildSeesOnlyItsOwnDescriptors) {
    const ChildResult result = run("/bin/sh -c \"ls /proc/self/fd | wc -l\"");
    // Its three streams and the directory that it lists; this process may hand on its own.
    const auto inherited = [] {
        std::ptrdiff_t count = 0;
        for (int descriptor = 3; descriptor < 1024; ++descriptor) {
            const int flags = ::fcntl(descriptor, F_GETFD);
            count += flags >= 0 && (flags & FD_CLOEXEC) == 0 ? 1 : 0;
        }
        return count;
    }();
    EXPECT_EQ(std::atoi(result.output.c_str()), 4 + inherited);
}

TEST_P(PosixChildRunner, AChildHasNoInputThoughThisProcessHasOne) {
    directory.write("secret", "secret\n");
    const int saved = ::dup(STDIN_FILENO);
    const int file = ::open("secret", O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::dup2(file, STDIN_FILENO), STDIN_FILENO);
    ::close(file);
    const ChildResult result = run("/bin/sh -c \"cat; echo done\"");
    char first = 0;
    EXPECT_EQ(::read(STDIN_FILENO, &first, 1), 1) << "nobody read it";
    EXPECT_EQ(first, 's');
    ::close(STDIN_FILENO);
    if (saved >= 0) {
        ::dup2(saved, STDIN_FILENO);
        ::close(saved);
    }
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.output, "done\n");
}

TEST_P(PosixChildRunner, WorksWithoutAnInputOfItsOwn) {
    // Symptom: in a process started with its input closed, the pipe gets descriptor 0, and the
    // child's own input took its place.
    const int saved = ::dup(STDIN_FILENO);
    ::close(STDIN_FILENO);
    const ChildResult result = run("/bin/sh -c \"cat; echo x; echo y >&2\"");
    if (saved >= 0) {
        ::dup2(saved, STDIN_FILENO);
        ::close(saved);
    }
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.output, "x\ny\n");
}

TEST_P(PosixChildRunner, ExitCodesAreKeptWhereChildSignalsAreIgnored) {
    // Symptom: started by a parent that ignores SIGCHLD, every child counted as not ended.
    const auto before = std::signal(SIGCHLD, SIG_IGN);
    const ChildResult result = run("/bin/sh -c \"exit 3\"");
    EXPECT_EQ(std::signal(SIGCHLD, before), SIG_IGN) << "the disposition is put back";
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 3U);
}

TEST_P(PosixChildRunner, EveryShortageOfDescriptorsHasItsOutcome) {
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
    std::vector<rlim_t> freeOnes;
    for (int descriptor = 0; freeOnes.size() < 5; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            freeOnes.push_back(static_cast<rlim_t>(descriptor));
        }
    }
    const Notice notice = GetParam();
    std::vector<ChildOutcome> outcomes;
    for (std::size_t spare = 0; spare < freeOnes.size(); ++spare) {
        rlimit narrow = before;
        narrow.rlim_cur = freeOnes[spare]; // as many are free below this one
        ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &narrow), 0);
        // Nothing of the fixture is touched here: the sanitizers want a descriptor to look at it.
        const ChildResult result =
            posix::runChild("/bin/sh -c \"exit 3\"", true, std::chrono::minutes(5), notice);
        ::setrlimit(RLIMIT_NOFILE, &before);
        outcomes.push_back(result.outcome);
        EXPECT_EQ(result.exitCode, result.outcome == ChildOutcome::ended ? 3U : 0U) << spare;
    }
    // The pipe takes two; without a third the end of the child is noticed by asking.
    EXPECT_EQ(outcomes,
              (std::vector{ChildOutcome::noPipe, ChildOutcome::noPipe, ChildOutcome::ended,
                           ChildOutcome::ended, ChildOutcome::ended}));
}

} // namespace
} // namespace zolex

#endif
