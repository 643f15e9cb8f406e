#ifdef _WIN32

#include "platform/win32/ChildRunner.h"

#include "platform/NamedEvent.h"
#include "support/OpenHandles.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <iterator>
#include <limits>
#include <string>
#include <utility>
#include <vector>
#include <windows.h>

// What only Windows has; ChildRunnerTest.cpp has what every system has.

namespace zolex {
namespace {

using std::chrono::milliseconds;
using test::countHandles;
using test::NamedEvent;
using test::newEventName;
using test::openHandles;
using test::TemporaryDirectory;

const std::string child = "\"" ZOLEX_TEST_CHILD "\" ";

ChildResult run(const std::string& arguments, bool capture = true,
                milliseconds limit = std::chrono::minutes(5), std::size_t most = mostChildOutput) {
    return win32::runChild(child + arguments, capture, limit, most);
}

/// Milliseconds, for tests whose child has to begin within the limit: the next one is tried when it
/// has not.
constexpr std::array<DWORD, 5> growingLimits = {100, 400, 1600, 6400, 25600};

/// Makes a file the standard input of this process, as long as it lives.
class FileAsInput {
  public:
    explicit FileAsInput(const char* name)
        : stream_(_dup(0)), handle_(GetStdHandle(STD_INPUT_HANDLE)) {
        const int file = _open(name, _O_RDONLY | _O_BINARY);
        EXPECT_EQ(_dup2(file, 0), 0);
        _close(file);
        auto* const input = reinterpret_cast<HANDLE>(_get_osfhandle(0));
        EXPECT_NE(SetStdHandle(STD_INPUT_HANDLE, input), 0);
        EXPECT_NE(SetHandleInformation(input, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT), 0);
    }
    FileAsInput(const FileAsInput&) = delete;
    FileAsInput& operator=(const FileAsInput&) = delete;
    ~FileAsInput() {
        if (stream_ >= 0) {
            _dup2(stream_, 0);
            _close(stream_);
            handle_ = reinterpret_cast<HANDLE>(_get_osfhandle(0));
        } else {
            _close(0);
        }
        SetStdHandle(STD_INPUT_HANDLE, handle_);
    }

  private:
    int stream_;
    HANDLE handle_;
};

/// "outgoing incoming" sizes of the buffers of a pipe asked for with `hint`.
std::string pipeSize(DWORD hint) {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    EXPECT_NE(CreatePipe(&reading, &writing, nullptr, hint), 0);
    DWORD outgoing = 0;
    DWORD incoming = 0;
    EXPECT_NE(GetNamedPipeInfo(writing, nullptr, &outgoing, &incoming, nullptr), 0);
    CloseHandle(reading);
    CloseHandle(writing);
    return std::to_string(outgoing) + " " + std::to_string(incoming);
}

/// The ends of pipes that this process has.
std::vector<HANDLE> pipeEnds() {
    std::vector<HANDLE> ends;
    countHandles([&ends](HANDLE handle, DWORD) {
        const bool isPipe = GetFileType(handle) == FILE_TYPE_PIPE;
        if (isPipe) {
            ends.push_back(handle);
        }
        return isPipe;
    });
    return ends;
}

bool isInherited(HANDLE handle) {
    DWORD flags = 0;
    return GetHandleInformation(handle, &flags) != 0 && (flags & HANDLE_FLAG_INHERIT) != 0;
}

/// Both ends of a pipe; null when there is none.
struct Ends {
    HANDLE read = nullptr;
    HANDLE write = nullptr;
};

/// The pipe that is in `after` and not in `before`, of which children inherit the end to write to.
Ends addedPipe(const std::vector<HANDLE>& before, const std::vector<HANDLE>& after) {
    std::vector<HANDLE> handles;
    std::set_difference(after.begin(), after.end(), before.begin(), before.end(),
                        std::back_inserter(handles));
    if (handles.size() != 2 || isInherited(handles[0]) == isInherited(handles[1])) {
        return {};
    }
    return isInherited(handles[0]) ? Ends{handles[1], handles[0]} : Ends{handles[0], handles[1]};
}

/// The bytes that "lines `count`" writes.
std::size_t sizeOfLines(long count) {
    std::size_t size = 0;
    for (long line = 0; line < count; ++line) {
        size += std::to_string(line).size() + 2;
    }
    return size;
}

/// The number of bytes until nobody can write any more. Closes the handle.
std::size_t readToEnd(HANDLE readEnd) {
    std::size_t bytes = 0;
    std::array<char, 16384> buffer{};
    DWORD taken = 0;
    while (ReadFile(readEnd, buffer.data(), static_cast<DWORD>(buffer.size()), &taken, nullptr) !=
           0) {
        bytes += taken;
    }
    CloseHandle(readEnd);
    return bytes;
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

TEST(WindowsChildRunner, OutputAndErrorsAreOneStreamThatTheChildIsTold) {
    EXPECT_EQ(run("startup").output, "1 1");
}

TEST(WindowsChildRunner, ThePipeIsMadeForAWholeListing) {
    ASSERT_NE(pipeSize(100'000), pipeSize(0));
    EXPECT_EQ(run("pipe-size").output, pipeSize(100'000));
}

TEST(WindowsChildRunner, AChildHasTheEnvironmentAndTheCurrentDirectory) {
    const TemporaryDirectory directory;
    SetEnvironmentVariableA("ZOLEX_TEST_VARIABLE", "a b;c");
    EXPECT_EQ(run("variable ZOLEX_TEST_VARIABLE").output, "a b;c");
    SetEnvironmentVariableA("ZOLEX_TEST_VARIABLE", nullptr);
    EXPECT_EQ(run("variable ZOLEX_TEST_VARIABLE").output, "(none)");
    EXPECT_EQ(run("folder").output, std::filesystem::current_path().string());
}

TEST(WindowsChildRunner, AChildHasNoInputThoughThisProcessHasOne) {
    const TemporaryDirectory directory;
    directory.write("secret", "secret\n");
    const FileAsInput input("secret");
    ASSERT_EQ(GetFileType(GetStdHandle(STD_INPUT_HANDLE)), DWORD{FILE_TYPE_DISK});
    EXPECT_EQ(run("input").output, "none");
    EXPECT_EQ(win32::runChild("cmd /c \"more & echo done\"", true, milliseconds(60000))
                  .output.find("secret"),
              std::string::npos);
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
    const std::string name = newEventName();
    const NamedEvent here(name + "-here"); // the program left behind has the pipe
    const NamedEvent end(name + "-end");
    const ULONGLONG start = GetTickCount64();
    const ChildResult result = run("text before leave " + name + " text after exit 6");
    EXPECT_LT(GetTickCount64() - start, 45000U);
    EXPECT_TRUE(here.isSetWithin(milliseconds(0)));
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 6U);
    EXPECT_EQ(result.output, "beforeafter");
    end.set();
}

TEST(WindowsChildRunner, AChildThatOutlastsTheLimitIsLeftRunning) {
    const NamedEvent end;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result =
        run("until " + end.name() + " text x sleep 60000", true, milliseconds(50));
    EXPECT_GE(GetTickCount64() - start, 30U);
    EXPECT_LT(GetTickCount64() - start, 30000U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_EQ(result.output, "");
    end.set();
}

TEST(WindowsChildRunner, AChildLeftRunningCanGoOnWriting) {
    const NamedEvent limitHasPassed;
    const NamedEvent written;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result =
        run("await " + limitHasPassed.name() + " text x signal " + written.name(), true,
            milliseconds(50));
    EXPECT_GE(GetTickCount64() - start, 30U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_FALSE(written.isSetWithin(milliseconds(0)));
    limitHasPassed.set();
    EXPECT_TRUE(written.isSetWithin(milliseconds(30000)));
}

TEST(WindowsChildRunner, AChildThatNeverStopsWritingIsGivenUpAtTheLimit) {
    constexpr std::size_t noBound = std::numeric_limits<std::size_t>::max();
    // Within the first limit the child of a slow machine has not begun to write.
    bool writes = false;
    for (const DWORD limit : growingLimits) {
        const NamedEvent end;
        const NamedEvent begun;
        const ULONGLONG start = GetTickCount64();
        const ChildResult result =
            run("until " + end.name() + " text x signal " + begun.name() + " forever", true,
                milliseconds(limit), noBound);
        writes = begun.isSetWithin(milliseconds(0));
        end.set();
        EXPECT_GE(GetTickCount64() - start, limit - 20);
        EXPECT_LT(GetTickCount64() - start, limit + 30000);
        EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
        EXPECT_EQ(result.output, "");
        if (writes) {
            break;
        }
    }
    EXPECT_TRUE(writes);
}

TEST(WindowsChildRunner, WhatStandsInThePipeAtTheEndIsTakenUpBeyondTheBound) {
    const std::string line(4999, 'x');
    const ChildResult result =
        run("text " + line + " text y exit 5", true, std::chrono::minutes(5), 1000);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 5U);
    EXPECT_EQ(result.output, line + "y");
}

// Symptom: a single write larger than the bound was taken up whole.
TEST(WindowsChildRunner, AChildThatWritesFarBeyondTheBoundStalls) {
    const std::string lines = "lines 60000";
    const std::string bytes = "bytes 500000";
    for (const auto& [writes, size] : {std::pair{lines, sizeOfLines(60'000)}, {bytes, 500'000}}) {
        std::size_t takenUp = 0;
        // Within the first limit the child of a slow machine has not begun to write.
        for (const DWORD limit : growingLimits) {
            const NamedEvent end;
            const NamedEvent written;
            const auto before = pipeEnds();
            const ChildResult result =
                run("until " + end.name() + " " + writes + " signal " + written.name(), true,
                    milliseconds(limit), 1000);
            ASSERT_EQ(result.outcome, ChildOutcome::stillRunning) << writes;
            EXPECT_EQ(result.output, "");
            EXPECT_FALSE(written.isSetWithin(milliseconds(0))) << writes;
            // All the rest of the output comes out of the end that was left open.
            const Ends pipe = addedPipe(before, pipeEnds());
            ASSERT_NE(pipe.read, nullptr);
            CloseHandle(pipe.write);
            takenUp = size - readToEnd(pipe.read);
            EXPECT_TRUE(written.isSetWithin(milliseconds(0))) << writes;
            end.set();
            if (takenUp != 0) {
                break;
            }
        }
        EXPECT_EQ(takenUp, 1000U) << writes;
    }
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
    const NamedEvent end;
    const int before = openHandles();
    run("until " + end.name() + " sleep 60000", true, milliseconds(20));
    // The process, its thread and both ends of the pipe: the child can go on writing.
    EXPECT_EQ(openHandles(), before + 4);
    end.set();
}

} // namespace
} // namespace zolex

#endif
