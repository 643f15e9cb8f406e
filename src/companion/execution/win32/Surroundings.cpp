#include "companion/execution/SystemParts.h"
#include "foundation/Text.h"

#include <array>
#include <windows.h>

namespace zolex::companion::system_execution {

std::string userName() {
    constexpr DWORD longestName = 257; // with its end
    std::array<wchar_t, longestName> name{};
    DWORD length = longestName;
    if (GetUserNameW(name.data(), &length) == 0 || length < 2) {
        return "?";
    }
    std::array<char, longestName * 3> bytes{};
    const int written =
        WideCharToMultiByte(CP_UTF8, 0, name.data(), static_cast<int>(length - 1), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    return written > 0 ? std::string(bytes.data(), static_cast<std::size_t>(written)) : "?";
}

bool isLostAtRestart(const std::string& file) {
    // A system that runs from memory has this key; its system's drive is then the memory.
    HKEY key = nullptr;
    if (RegOpenKeyA(HKEY_LOCAL_MACHINE, "SYSTEM\\CurrentControlSet\\Control\\MiniNT", &key) !=
        ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(key);
    std::array<char, 32768> path{}; // longest path
    std::array<char, MAX_PATH> windows{};
    const DWORD length =
        GetFullPathNameA(file.c_str(), static_cast<DWORD>(path.size()), path.data(), nullptr);
    const DWORD folder = GetWindowsDirectoryA(windows.data(), static_cast<DWORD>(windows.size()));
    return length >= 2 && length < path.size() && folder >= 2 && folder < windows.size() &&
           path[1] == ':' && text::upper(path[0]) == text::upper(windows[0]);
}

} // namespace zolex::companion::system_execution
