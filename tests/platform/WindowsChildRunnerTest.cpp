#ifdef _WIN32

#include "platform/win32/ChildRunner.h"

#include "support/OpenHandles.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <string>
#include <utility>
#include <windows.h>

// What only Windows has; ChildRunnerTest.cpp has what every system has.

namespace zolex {
namespace {

using std::chrono::milliseconds;
using test::countHandles;
using test::openHandles;
using test::TemporaryDirectory;

const std::string child = "\"" ZOLEX_TEST_CHILD "\" ";

ChildResult run(const std::string& arguments, bool capture = true,
                milliseconds limit = std::chrono::minutes(5), std::size_t most = mostChildOutput) {
    return win32::runChild(child + arguments, capture, limit, most);
}

/// A name that no event has or had: a child that has not quite ended keeps its event.
std::string newName() {
    static int count = 0;
    return "zolex-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
}

/// An event that children find by its name.
class Event {
  public:
    explicit Event(std::string name = newName())
        : name_(std::move(name)), event_(CreateEventA(nullptr, TRUE, FALSE, name_.c_str())) {
        EXPECT_NE(event_, nullptr);
    }
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;
    ~Event() { CloseHandle(event_); }

    [[nodiscard]] const std::string& name() const { return name_; }
    void set() const { EXPECT_NE(SetEvent(event_), 0); }
    [[nodiscard]] bool isSetWithin(milliseconds time) const {
        return WaitForSingleObject(event_, static_cast<DWORD>(time.count())) == WAIT_OBJECT_0;
    }

  private:
    std::string name_;
    HANDLE event_;
};

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
    const std::string name = newName();
    const Event here(name + "-here"); // the program left behind has the pipe
    const Event end(name + "-end");
    const ULONGLONG start = GetTickCount64();
    const ChildResult result = run("text before leave " + name + " text after exit 6");
    EXPECT_LT(GetTickCount64() - start, 15000U);
    EXPECT_TRUE(here.isSetWithin(milliseconds(0)));
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 6U);
    EXPECT_EQ(result.output, "beforeafter");
    end.set();
}

TEST(WindowsChildRunner, AChildThatOutlastsTheLimitIsLeftRunning) {
    const Event end;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result =
        run("until " + end.name() + " text x sleep 60000", true, milliseconds(50));
    EXPECT_GE(GetTickCount64() - start, 30U);
    EXPECT_LT(GetTickCount64() - start, 15000U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_EQ(result.output, "");
    end.set();
}

TEST(WindowsChildRunner, AChildLeftRunningCanGoOnWriting) {
    const Event written;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result =
        run("sleep 500 text x signal " + written.name(), true, milliseconds(50));
    EXPECT_GE(GetTickCount64() - start, 30U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_TRUE(written.isSetWithin(milliseconds(15000)));
}

TEST(WindowsChildRunner, AChildThatNeverStopsWritingIsGivenUpAtTheLimit) {
    const Event end;
    const ULONGLONG start = GetTickCount64();
    const ChildResult result = run("until " + end.name() + " forever", true, milliseconds(100));
    EXPECT_GE(GetTickCount64() - start, 80U);
    EXPECT_LT(GetTickCount64() - start, 15000U);
    EXPECT_EQ(result.outcome, ChildOutcome::stillRunning);
    EXPECT_EQ(result.output, "");
    end.set();
}

TEST(WindowsChildRunner, WhatStandsInThePipeAtTheEndIsTakenUpBeyondTheBound) {
    const std::string line(4999, 'x');
    const ChildResult result =
        run("text " + line + " text y exit 5", true, std::chrono::minutes(5), 1000);
    EXPECT_EQ(result.outcome, ChildOutcome::ended);
    EXPECT_EQ(result.exitCode, 5U);
    EXPECT_EQ(result.output, line + "y");
}

TEST(WindowsChildRunner, AChildThatWritesFarBeyondTheBoundStalls) {
    // Without a bound both have ended in a part of this time, as ManyLinesKeepTheirOrder shows.
    // Symptom: a single write larger than the bound was taken up whole.
    for (const std::string writes : {"lines 640000", "bytes 5000000"}) {
        const Event end;
        const Event written;
        const ChildResult result =
            run("until " + end.name() + " " + writes + " signal " + written.name(), true,
                milliseconds(1500), 1000);
        EXPECT_EQ(result.outcome, ChildOutcome::stillRunning) << writes;
        EXPECT_EQ(result.output, "");
        EXPECT_FALSE(written.isSetWithin(milliseconds(0))) << writes;
        end.set();
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
    const int before = openHandles();
    run("sleep 2000", true, milliseconds(20));
    // The process, its thread and both ends of the pipe: the child can go on writing.
    EXPECT_EQ(openHandles(), before + 4);
}

} // namespace
} // namespace zolex

#endif
