#include "companion/execution/win32/Processes.h"
#include "companion/execution/SystemParts.h"
#include "platform/win32/Handle.h"

#include <limits>

namespace zolex::companion::system_execution {

ProcessIdentity identityOf(HANDLE process, DWORD number) {
    ProcessIdentity identity;
    identity.pid = number;
    FILETIME created{};
    FILETIME exited{};
    FILETIME kernel{};
    FILETIME user{};
    if (GetProcessTimes(process, &created, &exited, &kernel, &user) != 0) {
        constexpr unsigned wordBits = 32;
        const std::uint64_t time =
            (std::uint64_t{created.dwHighDateTime} << wordBits) | created.dwLowDateTime;
        identity.startedAt = std::to_string(time);
    }
    return identity;
}

ProcessIdentity ownProcess() {
    return identityOf(GetCurrentProcess(), GetCurrentProcessId());
}

bool isRunning(const ProcessIdentity& process) {
    if (process.pid == 0 || process.pid > std::numeric_limits<DWORD>::max()) {
        return false;
    }
    const auto number = static_cast<DWORD>(process.pid);
    const win32::Handle opened(
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, number));
    if (opened.get() == nullptr) {
        return GetLastError() == ERROR_ACCESS_DENIED; // it is there
    }
    const std::string start = identityOf(opened.get(), number).startedAt;
    const bool isOther = !process.startedAt.empty() && !start.empty() && start != process.startedAt;
    // One that has ended is there as long as somebody has it open.
    return !isOther && WaitForSingleObject(opened.get(), 0) != WAIT_OBJECT_0;
}

} // namespace zolex::companion::system_execution
