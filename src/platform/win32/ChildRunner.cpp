#include "platform/win32/ChildRunner.h"

#include "platform/ChildOutput.h"
#include "platform/win32/Handle.h"

#include <algorithm>
#include <array>
#include <string>
#include <windows.h>

namespace zolex::win32 {

namespace {

constexpr DWORD pipeSizeHint = 100000;

/// The pipe from the child to this process. Only the write end is inherited.
struct Pipe {
    Handle readEnd;
    Handle writeEnd;

    bool open() {
        SECURITY_ATTRIBUTES inheritable{};
        inheritable.nLength = sizeof inheritable;
        inheritable.bInheritHandle = TRUE;
        HANDLE reading = nullptr;
        HANDLE writing = nullptr;
        if (CreatePipe(&reading, &writing, &inheritable, pipeSizeHint) == 0) {
            return false;
        }
        readEnd = Handle(reading);
        writeEnd = Handle(writing);
        SetHandleInformation(reading, HANDLE_FLAG_INHERIT, 0);
        return true;
    }
};

struct Child {
    Handle process;
    Handle thread;

    /// Starts the command line with its output and errors on `output`, or on nothing when that is
    /// null; false when it cannot be started.
    bool start(std::string_view commandLine, HANDLE output, const std::string& folder) {
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        startup.hStdOutput = output;
        startup.hStdError = output;
        startup.dwFlags = STARTF_USESTDHANDLES;
        PROCESS_INFORMATION started{};
        std::string writable(commandLine);
        if (CreateProcessA(nullptr, writable.data(), nullptr, nullptr, TRUE, 0, nullptr,
                           folder.empty() ? nullptr : folder.c_str(), &startup, &started) == 0) {
            return false;
        }
        process = Handle(started.hProcess);
        thread = Handle(started.hThread);
        return true;
    }
};

/// Takes what stands in the pipe now, at most `most` bytes; true when there was something. Whoever
/// still holds the write end is not waited for. The bytes of a write that has not returned yet
/// stand in the pipe too, however many they are.
bool takeUp(HANDLE readEnd, std::size_t most, std::string& output) {
    DWORD waiting = 0;
    if (PeekNamedPipe(readEnd, nullptr, 0, nullptr, &waiting, nullptr) == 0) {
        return false;
    }
    std::size_t left = std::min<std::size_t>(waiting, most);
    bool any = false;
    std::array<char, 16384> buffer; // not filled: each look at the pipe would pay for that
    while (left > 0) {
        DWORD taken = 0;
        const auto wanted = static_cast<DWORD>(std::min(left, buffer.size()));
        if (ReadFile(readEnd, buffer.data(), wanted, &taken, nullptr) == 0 || taken == 0) {
            break;
        }
        output.append(buffer.data(), taken);
        left -= taken;
        any = true;
    }
    return any;
}

DWORD inMilliseconds(std::chrono::milliseconds limit) {
    // The system's count of milliseconds starts anew after 49 days, which the difference of two
    // counts does not see. Windows before 6.0 has no longer one.
    constexpr long long longestLimit = 24LL * 24 * 60 * 60 * 1000;
    return static_cast<DWORD>(std::clamp(limit.count(), 0LL, longestLimit));
}

/// Waits for the process in slices, which are short while output flows, and takes the output up
/// between them, at most `mostTaken` bytes. True when the process ended within the limit.
bool waitForEnd(HANDLE process, HANDLE readEnd, std::chrono::milliseconds limit,
                std::size_t mostTaken, std::string& output) {
    constexpr DWORD longestSlice = 20;
    const DWORD most = inMilliseconds(limit);
    const DWORD start = GetTickCount();
    DWORD slice = 0;
    for (;;) {
        const DWORD passed = std::min(GetTickCount() - start, most);
        const DWORD result = WaitForSingleObject(process, std::min(slice, most - passed));
        if (result != WAIT_TIMEOUT) {
            return result == WAIT_OBJECT_0;
        }
        if (passed == most) {
            return false;
        }
        const bool flows = takeUp(readEnd, mostTaken - output.size(), output);
        slice = flows ? 0 : std::min(slice * 2 + 1, longestSlice);
    }
}

} // namespace

ChildResult runChild(std::string_view commandLine, bool capture, std::chrono::milliseconds limit,
                     std::size_t most, const std::string& folder) {
    Pipe pipe;
    if (!pipe.open()) {
        return {ChildOutcome::noPipe, 0, {}};
    }
    Child child;
    if (!child.start(commandLine, capture ? pipe.writeEnd.get() : nullptr, folder)) {
        return {ChildOutcome::notStarted, 0, {}};
    }
    ChildResult result;
    const DWORD start = GetTickCount();
    if (!waitForEnd(child.process.get(), pipe.readEnd.get(), limit, most, result.output)) {
        // The run is abandoned, not killed: the child goes on, and no handle is closed, so that it
        // can go on writing.
        child.process.release();
        child.thread.release();
        pipe.readEnd.release();
        pipe.writeEnd.release();
        return {ChildOutcome::stillRunning, 0, {}};
    }
    DWORD exitCode = 0;
    constexpr std::uint32_t unknown = 0xFFFFFFFF; // no utility ends with it
    result.exitCode = GetExitCodeProcess(child.process.get(), &exitCode) != 0 ? exitCode : unknown;
    child.process.close();
    child.thread.close();
    result.outcome = pipe.writeEnd.close() ? ChildOutcome::ended : ChildOutcome::notClosed;
    takeUp(pipe.readEnd.get(), result.output.max_size(), result.output);
    if (result.output.size() > mostChildOutput) {
        const DWORD passed = GetTickCount() - start;
        Sleep(inMilliseconds(limit) - std::min(passed, inMilliseconds(limit)));
        return {ChildOutcome::stillRunning, 0, {}};
    }
    giveBackUnused(result.output);
    return result;
}

} // namespace zolex::win32
