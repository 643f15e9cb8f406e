#include "companion/execution/AttachedProgram.h"

#include "companion/machine/ProgramStart.h"

#include <array>
#include <windows.h>

namespace zolex::companion {

namespace {

/// The console sends its events to the program, too, which shares it.
BOOL WINAPI leaveToProgram(DWORD /*event*/) {
    return TRUE;
}

class LeftEvents {
  public:
    LeftEvents() { SetConsoleCtrlHandler(leaveToProgram, TRUE); }
    LeftEvents(const LeftEvents&) = delete;
    LeftEvents& operator=(const LeftEvents&) = delete;
    ~LeftEvents() { SetConsoleCtrlHandler(leaveToProgram, FALSE); }
};

/// A standard stream of this process, for the program to take over.
HANDLE inherited(DWORD which) {
    const HANDLE stream = GetStdHandle(which);
    if (stream != nullptr && stream != INVALID_HANDLE_VALUE) {
        SetHandleInformation(stream, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    }
    return stream;
}

} // namespace

std::optional<std::uint32_t> runAttached(const std::string& path,
                                         const std::vector<std::string>& arguments) {
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::optional<std::string> line = commandLineOf(words, Splitting::windows);
    if (!line) {
        return std::nullopt;
    }
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = inherited(STD_INPUT_HANDLE);
    startup.hStdOutput = inherited(STD_OUTPUT_HANDLE);
    startup.hStdError = inherited(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started{};
    const LeftEvents left;
    if (CreateProcessA(path.c_str(), line->data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &started) == 0) {
        return std::nullopt;
    }
    CloseHandle(started.hThread);
    DWORD exitCode = 0;
    const bool hasEnded = WaitForSingleObject(started.hProcess, INFINITE) == WAIT_OBJECT_0 &&
                          GetExitCodeProcess(started.hProcess, &exitCode) != 0;
    CloseHandle(started.hProcess);
    return hasEnded ? std::optional<std::uint32_t>(exitCode) : std::nullopt;
}

} // namespace zolex::companion
