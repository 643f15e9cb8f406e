#pragma once

#include "companion/execution/SystemExecution.h"
#include "companion/machine/Utilities.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <csignal>
#endif

namespace zolex::companion::test {

/// Long enough for anything that must happen.
inline constexpr std::chrono::milliseconds aMinute{60'000};

/// A folder of its own, and the system that starts workers in it: see worker/main.cpp.
class SystemExecutionTest : public ::testing::Test {
  protected:
    SystemExecutionTest() {
        utilities.named["WORKER"] = ZOLEX_TEST_WORKER;
        utilities.named["SH"] = "/bin/sh";
        system = makeSystemExecution(*platform, utilities);
    }

    /// A name that no other file of the test has.
    std::string newName() { return "file-" + std::to_string(++names_); }

    std::unique_ptr<StartedChild> started(const std::string& words) {
        auto child = system->start("UTIL.BAT WORKER " + words, newName());
        EXPECT_NE(child, nullptr);
        return child;
    }

    /// Its end, which comes within a minute.
    ChildResult run(const std::string& words) {
        const auto child = started(words);
        return child ? endOf(*child) : ChildResult();
    }

    static ChildResult endOf(StartedChild& child) {
        const auto result = child.wait(aMinute);
        EXPECT_TRUE(result.has_value()) << "it still runs";
        return result.value_or(ChildResult());
    }

    /// What it has written as soon as that holds the text; all of it after a minute.
    static std::string outputWith(StartedChild& child, const std::string& text) {
        const auto end = std::chrono::steady_clock::now() + aMinute;
        for (;;) {
            std::string output = child.outputSoFar(mostChildOutput);
            if (output.find(text) != std::string::npos || std::chrono::steady_clock::now() >= end) {
                return output;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }

    /// Ends it without a chance to do anything more.
    static void kill(const ProcessIdentity& process) {
#ifdef _WIN32
        HANDLE const opened =
            OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, static_cast<DWORD>(process.pid));
        ASSERT_NE(TerminateProcess(opened, 137), 0);
        WaitForSingleObject(opened, INFINITE);
        CloseHandle(opened);
#else
        ASSERT_EQ(::kill(static_cast<pid_t>(process.pid), SIGKILL), 0);
#endif
    }

    static std::string read(const std::string& name) {
        return zolex::test::TemporaryDirectory::read(name);
    }

    zolex::test::TemporaryDirectory directory;
    std::unique_ptr<Platform> platform = makeSystemPlatform();
    Utilities utilities;
    std::unique_ptr<ExecutionSystem> system;

  private:
    int names_ = 0;
};

} // namespace zolex::companion::test
