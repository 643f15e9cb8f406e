// Every request for memory fails once in every mode of a run: the string class ends the process
// with exit code 1, everything else ends the run with exit code 10, and both say so.

#include "foundation/AllocationFaults.h"

#include "faults/FaultRun.h"
#include "foundation/StandardError.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>

// Keeps what a process has run for the measurement of coverage, where there is one.
extern "C" [[gnu::weak]] void __gcov_dump(); // NOLINT(bugprone-reserved-identifier)
#endif

namespace zolex::test {
namespace {

class AllocationFaults : public testing::TestWithParam<std::size_t> {
  protected:
    const Scenario& scenario = scenarios()[GetParam()];
    const Outcome whole = FaultRun(scenario, {}).run();
};

/// What the program says when memory for something else than a string is short.
void expectTold(const Outcome& got) {
    if (holds(got.error, memoryReport("IniFile.AddLine()"))) {
        // The file is then known in part only.
        const bool inventory =
            holds(got.output, "\n#### ERROR\n\tCould not read inventory file:  contlist.ini\n\n");
        const bool definition = holds(
            got.output, "\n#### ERROR\n\tCould not read controller-definition file:  def.ini\n\n");
        EXPECT_TRUE(inventory || definition) << got.output;
        EXPECT_TRUE(got.exitCode == 10 || got.exitCode == 8 || got.exitCode == 5) << got.exitCode;
        return;
    }
    if (holds(got.output, "Could not read a config file for the following controller:  ")) {
        EXPECT_EQ(8, got.exitCode); // there was no reader for it
        return;
    }
    EXPECT_EQ(10, got.exitCode);
    EXPECT_TRUE(holds(got.error, "\n\nMemory Allocation Error\n\nNot enough memory is available "
                                 "for this application.\n\n"))
        << got.error;
    EXPECT_TRUE(holds(got.error, "\n\nZOLEX::")) << got.error;
}

TEST_P(AllocationFaults, AnExceptionIsExitCode10AndHarmsNothing) {
    ASSERT_EQ(0, whole.exitCode);
    for (std::size_t n = 1;; ++n) {
        SCOPED_TRACE(std::string(scenario.name) + ", request " + std::to_string(n));
        FaultRun run(scenario, {});
        testing::internal::CaptureStderr();
        failAllocation(Allocation::throwing, n);
        Outcome got = run.run();
        const bool struck = allocationsAsked(Allocation::throwing) >= n;
        failAllocation(Allocation::throwing, 0);
        got.error += testing::internal::GetCapturedStderr();
        expectNoHarm(scenario, whole, got);
        EXPECT_EQ(0, got.openFiles);
        EXPECT_EQ(0, got.openKeys);
        if (!struck) {
            EXPECT_EQ(0, got.exitCode);
            EXPECT_GT(n, 20U);
            break;
        }
        if (got.exitCode != 0) { // the runtime's own helpers do without
            expectTold(got);
        }
        if (testing::Test::HasFailure()) {
            FAIL() << got.exitCode << got.output << got.error;
        }
    }
}

#ifndef _WIN32

// The string class ends the process, so each of these runs has one of its own.

void writeAll(int descriptor, const std::string& bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const ssize_t n = ::write(descriptor, bytes.data() + at, bytes.size() - at);
        if (n <= 0) {
            std::abort();
        }
        at += static_cast<std::size_t>(n);
    }
}

std::string readAll(int descriptor) {
    std::string bytes;
    char buffer[4096];
    for (ssize_t n = ::read(descriptor, buffer, sizeof buffer); n > 0;
         n = ::read(descriptor, buffer, sizeof buffer)) {
        bytes.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(descriptor);
    return bytes;
}

/// Takes the next text that was packed.
std::string unpack(std::string_view& bytes) {
    const std::size_t end = bytes.find(':');
    const std::size_t size = std::stoul(std::string(bytes.substr(0, end)));
    const std::string text(bytes.substr(end + 1, size));
    bytes.remove_prefix(end + 1 + size);
    return text;
}

std::string pack(const std::string& text) {
    return std::to_string(text.size()) + ":" + text;
}

/// What the end of the process has to tell, and where.
struct LastWords {
    FaultRun* run;
    int results;
};

void sayLastWords(int exitCode, void* argument) {
    const UncountedAllocations uncounted;
    const auto* words = static_cast<LastWords*>(argument);
    const Outcome outcome = words->run->outcome(exitCode);
    std::string packed = pack(outcome.output) + pack(outcome.error) + pack(outcome.policies) +
                         pack(outcome.hasPolicies ? "1" : "") +
                         pack(outcome.hasTempFile ? "1" : "") +
                         pack(std::to_string(allocationsAsked(Allocation::nothrow)));
    for (const std::string& child : outcome.children) {
        packed += pack(child);
    }
    writeAll(words->results, packed);
    if (&__gcov_dump != nullptr) {
        __gcov_dump();
    }
    ::_exit(exitCode); // the rest of this process is the test's
}

[[noreturn]] void runInChild(const Scenario& scenario, std::size_t n, int results, int error) {
    ::dup2(error, STDERR_FILENO);
    FaultRun run(scenario, {});
    LastWords words{&run, results};
    ::on_exit(sayLastWords, &words);
    failAllocation(Allocation::nothrow, n);
    run.runMain();
}

struct Death {
    Outcome outcome;
    std::string standardError;
    std::size_t requests = 0;
};

Death runShortOfMemory(const Scenario& scenario, std::size_t n) {
    int results[2];
    int error[2];
    if (::pipe(results) != 0 || ::pipe(error) != 0) {
        std::abort();
    }
    const pid_t child = ::fork();
    if (child == 0) {
        runInChild(scenario, n, results[1], error[1]);
    }
    ::close(results[1]);
    ::close(error[1]);
    const std::string packed = readAll(results[0]);
    Death death;
    death.standardError = readAll(error[0]);
    int status = 0;
    EXPECT_EQ(child, ::waitpid(child, &status, 0));
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    death.outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    EXPECT_FALSE(packed.empty());
    if (packed.empty()) {
        return death;
    }
    std::string_view rest = packed;
    death.outcome.output = unpack(rest);
    death.outcome.error = unpack(rest);
    death.outcome.policies = unpack(rest);
    death.outcome.hasPolicies = !unpack(rest).empty();
    death.outcome.hasTempFile = !unpack(rest).empty();
    death.requests = std::stoul(unpack(rest));
    death.outcome.error += death.standardError;
    while (!rest.empty()) {
        death.outcome.children.push_back(unpack(rest));
    }
    return death;
}

// The sanitizers make each of these processes slow.
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t step = 13;
#else
constexpr std::size_t step = 1;
#endif

TEST_P(AllocationFaults, WithoutMemoryForAStringAPosixProcessEndsWithExitCode1) {
    std::size_t ends = 0;
    for (std::size_t n = 1;; n += step) {
        SCOPED_TRACE(std::string(scenario.name) + ", request " + std::to_string(n));
        const Death death = runShortOfMemory(scenario, n);
        const Outcome& got = death.outcome;
        if (got.exitCode == 1) {
            EXPECT_EQ(memoryReport("CString::CreateCharString"), death.standardError);
            ++ends;
        } else {
            EXPECT_EQ("", death.standardError);
        }
        expectNoHarm(scenario, whole, got);
        if (death.requests < n) {
            EXPECT_EQ(0, got.exitCode);
            break;
        }
        if (got.exitCode != 1 && got.exitCode != 0) { // a worker of a mode
            expectTold(got);
        }
        if (testing::Test::HasFailure()) {
            FAIL() << got.exitCode << got.output << got.error;
        }
    }
    EXPECT_GT(ends, 200 / step);
}

#endif

INSTANTIATE_TEST_SUITE_P(Mode, AllocationFaults,
                         testing::Range(std::size_t{0}, scenarios().size()));

} // namespace
} // namespace zolex::test
