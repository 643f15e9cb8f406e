#ifdef _WIN32

#include "Programs.h"

#include <mutex>
#include <process.h>
#include <windows.h>

namespace zolex::e2e {

namespace {

/// A path of the build machine as this system names it: an emulator shows that machine's files as
/// drive Z.
std::string systemPath(const std::string& path) {
    return path.starts_with("/") ? "Z:" + path : path;
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        result += c == '"' ? "\\\"" : std::string(1, c);
    }
    return result + "\"";
}

/// An open file that children inherit.
class InheritedFile {
  public:
    InheritedFile(const std::filesystem::path& path, DWORD access, DWORD creation) {
        SECURITY_ATTRIBUTES inheritable{};
        inheritable.nLength = sizeof inheritable;
        inheritable.bInheritHandle = TRUE;
        handle_ = CreateFileA(path.string().c_str(), access, FILE_SHARE_READ, &inheritable,
                              creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    InheritedFile(const InheritedFile&) = delete;
    InheritedFile& operator=(const InheritedFile&) = delete;
    ~InheritedFile() { CloseHandle(handle_); }
    [[nodiscard]] HANDLE get() const { return handle_; }

  private:
    HANDLE handle_;
};

/// Starts the command line; false when it cannot be started. Tests start programs in several
/// threads, and the environment is that of the process.
bool startWith(const ProgramStart& start, std::string& command, STARTUPINFOA& startup,
               PROCESS_INFORMATION& process) {
    static std::mutex environment;
    const std::lock_guard<std::mutex> alone(environment);
    for (const auto& [name, value] : start.environment) {
        SetEnvironmentVariableA(name.c_str(), value.c_str());
    }
    const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        start.folder.string().c_str(), &startup, &process);
    for (const auto& [name, value] : start.environment) {
        SetEnvironmentVariableA(name.c_str(), nullptr);
    }
    return started != 0;
}

} // namespace

int runProgram(const ProgramStart& start) {
    const InheritedFile input(start.input, GENERIC_READ, OPEN_EXISTING);
    const InheritedFile output(start.output, GENERIC_WRITE, CREATE_ALWAYS);
    const InheritedFile error(start.error, GENERIC_WRITE, CREATE_ALWAYS);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.get();
    startup.hStdOutput = output.get();
    startup.hStdError = error.get();
    HANDLE* const streams[] = {&startup.hStdInput, &startup.hStdOutput, &startup.hStdError};
    for (const char stream : start.closed) {
        *streams[stream - '0'] = nullptr;
    }
    std::string command = quoted(systemPath(start.program));
    for (const std::string& argument : start.arguments) {
        command += " " + quoted(argument);
    }
    PROCESS_INFORMATION process{};
    if (!startWith(start, command, startup, process)) {
        return -1;
    }
    DWORD exitCode = static_cast<DWORD>(-1);
    WaitForSingleObject(process.hProcess, INFINITE);
    GetExitCodeProcess(process.hProcess, &exitCode);
    CloseHandle(process.hProcess);
    CloseHandle(process.hThread);
    return static_cast<int>(exitCode);
}

int processId() {
    return _getpid();
}

LockedFile::LockedFile(const std::filesystem::path& path) {
    constexpr DWORD high = 0x40000000; // behind the end of any file
    HANDLE const file = CreateFileA(path.string().c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    file_ = reinterpret_cast<std::intptr_t>(file);
    locked_ = file != INVALID_HANDLE_VALUE && LockFile(file, 0, high, 1, 0) != 0;
}

LockedFile::~LockedFile() {
    CloseHandle(reinterpret_cast<HANDLE>(file_));
}

} // namespace zolex::e2e

#endif
