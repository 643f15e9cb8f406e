#ifdef _WIN32

#include "platform/win32/ChildRunner.h"

#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <windows.h>

// What only Windows has; ChildRunnerTest.cpp has what every system has.

namespace zolex {
namespace {

using std::chrono::milliseconds;
using test::TemporaryDirectory;

const std::string child = "\"" ZOLEX_TEST_CHILD "\" ";

ChildResult run(const std::string& arguments, bool capture = true,
                milliseconds limit = std::chrono::minutes(5)) {
    return win32::runChild(child + arguments, capture, limit);
}

/// Open handles of this process that `isCounted` takes, given the handle and its flags. The handles
/// are looked for one by one: an emulator need not keep count of them.
template <typename Predicate>
int countHandles(Predicate isCounted) {
    constexpr std::uintptr_t highest = 16384;
    int count = 0;
    for (std::uintptr_t value = 4; value < highest; value += 4) {
        DWORD flags = 0;
        auto* const handle = reinterpret_cast<HANDLE>(value);
        if (GetHandleInformation(handle, &flags) != 0 && isCounted(handle, flags)) {
            ++count;
        }
    }
    return count;
}

int openHandles() {
    return countHandles([](HANDLE, DWORD) { return true; });
}

/// Pipes of this process that every child inherits: its own standard streams can be such.
int inheritablePipes() {
    return countHandles([](HANDLE handle, DWORD flags) {
        return (flags & HANDLE_FLAG_INHERIT) != 0 && GetFileType(handle) == FILE_TYPE_PIPE;
    });
}

TEST(WindowsChildRunner, ExitCodesKeepTheir32Bits) {
    for (const std::uint32_t code : {0U, 1U, 3U, 255U, 256U, 259U, 70000U, 0x7FFFFFFFU, 0x80000000U,
                                     0xC0000005U, 0xFFFFFFFFU}) {
        const ChildResult result = run("exit " + std::to_string(code));
        EXPECT_EQ(result.outcome, ChildOutcome::ended) << code;
        EXPECT_EQ(result.exitCode, code);
    }
}

TEST(WindowsChildRunner, ABatchFileEndsWithTheCodeOfItsLastCommand) {
    const TemporaryDirectory directory;
    directory.write("UTIL.BAT", "@\"" ZOLEX_TEST_CHILD "\" text %1 error %2 exit %3\r\n");
    const ChildResult result = win32::runChild("UTIL.BAT out err 70000", true, milliseconds(60000));
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 70000U);
    EXPECT_EQ(result.output, "outerr");
}

TEST(WindowsChildRunner, AProgramIsFoundWithoutItsSuffix) {
    const TemporaryDirectory directory;
    std::filesystem::copy_file(ZOLEX_TEST_CHILD, "fakeraid.exe");
    const ChildResult result = win32::runChild("fakeraid text x exit 4", true, milliseconds(60000));
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 4U);
    EXPECT_EQ(result.output, "x");
}

TEST(WindowsChildRunner, OnlyTheWriteEndIsInherited) {
    // Standard output and standard error are one handle.
    EXPECT_EQ(run("pipes").output, std::to_string(inheritablePipes() + 1));
}

TEST(WindowsChildRunner, LineEndsOfTheOutputStay) {
    EXPECT_EQ(run("text a lines 2 error b").output, "a0\r\n1\r\nb");
}

TEST(WindowsChildRunner, ManyLinesKeepTheirOrder) {
    std::string wanted;
    long lines = 0;
    for (; wanted.size() < 5'000'000; ++lines) {
        wanted += std::to_string(lines) + "\r\n";
    }
    const ChildResult result = run("lines " + std::to_string(lines) + " exit 9");
    EXPECT_EQ(result.exitCode, 9U);
    EXPECT_TRUE(result.output == wanted);
}

TEST(WindowsChildRunner, AProgramLeftBehindWithThePipeIsNotWaitedFor) {
    const ULONGLONG start = GetTickCount64();
    const ChildResult result = run("text before leave 20000 text after exit 6");
    EXPECT_LT(GetTickCount64() - start, 15000U);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 6U);
    EXPECT_EQ(result.output, "beforeafter");
}

TEST(WindowsChildRunner, AChildThatOutlastsTheLimitIsLeftRunning) {
    const TemporaryDirectory directory;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result = run("text x sleep 20000", true, milliseconds(50));
    EXPECT_LT(GetTickCount64() - start, 15000U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_EQ(result.output, "");
}

TEST(WindowsChildRunner, NoHandleStaysBehind) {
    run("exit 0"); // whatever a first child makes the system open
    const int before = openHandles();
    EXPECT_GT(before, 0);
    for (int i = 0; i < 5; ++i) {
        run("text x exit 1");
        run("text x exit 1", false);
        win32::runChild("zolex-no-such-program", true, milliseconds(1000));
    }
    EXPECT_EQ(openHandles(), before);
}

TEST(WindowsChildRunner, AnAbandonedRunKeepsItsHandles) {
    run("exit 0");
    const int before = openHandles();
    run("sleep 2000", true, milliseconds(20));
    // The process, its thread and both ends of the pipe: the child can go on writing.
    EXPECT_EQ(openHandles(), before + 4);
}

} // namespace
} // namespace zolex

#endif
