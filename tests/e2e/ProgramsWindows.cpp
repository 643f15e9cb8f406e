#ifdef _WIN32

#include "Programs.h"

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
    std::string command = quoted(systemPath(start.program));
    for (const std::string& argument : start.arguments) {
        command += " " + quoted(argument);
    }
    for (const auto& [name, value] : start.environment) {
        SetEnvironmentVariableA(name.c_str(), value.c_str());
    }
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr,
                                        start.folder.string().c_str(), &startup, &process);
    for (const auto& [name, value] : start.environment) {
        SetEnvironmentVariableA(name.c_str(), nullptr);
    }
    if (started == 0) {
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

} // namespace zolex::e2e

#endif
