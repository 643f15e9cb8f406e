#include "platform/win32/ProcessStart.h"

#include "foundation/EndingFiles.h"

#include <cstdio>
#include <windows.h>

namespace zolex::win32 {

namespace {

void removeFile(const char* name, EndingFile::Goes goes) {
    if (goes == EndingFile::Goes::always) {
        DeleteFileA(name);
    }
}

/// Called in a thread of its own while the run goes on.
BOOL WINAPI endByConsole(DWORD /*event*/) {
    EndingFile::forEach(removeFile);
    return FALSE; // the next handler is the system's, which ends the process
}

/// A handle that is none, or is one that this process did not inherit.
bool isClosed(DWORD stream) {
    HANDLE const handle = GetStdHandle(stream);
    return handle == nullptr || handle == INVALID_HANDLE_VALUE ||
           (GetFileType(handle) == FILE_TYPE_UNKNOWN && GetLastError() != NO_ERROR);
}

/// Where there are no devices the stream stays closed; the runtime gives its number to no file.
bool openWhenClosed(DWORD number, std::FILE* stream, const char* mode) {
    return !isClosed(number) || std::freopen("NUL", mode, stream) != nullptr;
}

} // namespace

void prepareProcess() {
    openWhenClosed(STD_INPUT_HANDLE, stdin, "r");
    openWhenClosed(STD_OUTPUT_HANDLE, stdout, "w");
    openWhenClosed(STD_ERROR_HANDLE, stderr, "w");
    SetConsoleCtrlHandler(endByConsole, FALSE); // entered once
    SetConsoleCtrlHandler(endByConsole, TRUE);
}

} // namespace zolex::win32
