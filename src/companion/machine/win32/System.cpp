#include "companion/machine/System.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <windows.h>

namespace zolex::companion::system {

std::string ownFolder() {
    std::array<char, 32768> buffer{}; // longest path
    const DWORD length =
        GetModuleFileNameA(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    if (length == 0 || length >= buffer.size()) {
        return {};
    }
    const std::string path(buffer.data(), length);
    return path.substr(0, path.find_last_of("\\/") + 1);
}

std::vector<std::string> searchPath() {
    const char* const path = std::getenv("PATH");
    std::string_view rest = path == nullptr ? "" : path;
    std::vector<std::string> folders;
    while (!rest.empty()) {
        const std::size_t end = rest.find(';');
        std::string_view folder = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (folder.size() >= 2 && folder.front() == '"' && folder.back() == '"') {
            folder = folder.substr(1, folder.size() - 2);
        }
        if (!folder.empty()) {
            folders.emplace_back(folder);
        }
    }
    return folders;
}

TemporaryFolder temporaryFolder() {
    std::array<char, 32768> buffer{};
    const DWORD length = GetTempPathA(static_cast<DWORD>(buffer.size()), buffer.data());
    TemporaryFolder folder;
    if (length == 0 || length >= buffer.size()) {
        return folder;
    }
    folder.name.assign(buffer.data(), length);
    // A folder that is opened with the right to add files, and then nothing is added.
    const HANDLE opened = CreateFileA(folder.name.c_str(), FILE_ADD_FILE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    folder.isWritable = opened != INVALID_HANDLE_VALUE;
    if (folder.isWritable) {
        CloseHandle(opened);
    }
    ULARGE_INTEGER bytes{};
    if (GetDiskFreeSpaceExA(folder.name.c_str(), &bytes, nullptr, nullptr) != 0) {
        folder.freeBytes = bytes.QuadPart;
    }
    return folder;
}

EmptyFolder::EmptyFolder() {
    const std::string start =
        temporaryFolder().name + "zolexctl-" + std::to_string(GetCurrentProcessId()) + "-";
    constexpr int mostAttempts = 100;
    for (int i = 0; i < mostAttempts && name_.empty(); ++i) {
        const std::string name = start + std::to_string(i);
        if (CreateDirectoryA(name.c_str(), nullptr) != 0) {
            name_ = name;
        } else if (GetLastError() != ERROR_ALREADY_EXISTS) {
            return;
        }
    }
}

EmptyFolder::~EmptyFolder() {
    if (!name_.empty()) {
        removeFolder(name_);
    }
}

bool makeFolder(const std::string& name) {
    return CreateDirectoryA(name.c_str(), nullptr) != 0;
}

void removeFolder(const std::string& name) {
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesA(name.c_str());
    const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES &&
                          (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
                          (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
    if (!isFolder) {
        SetLastError(error);
        return;
    }
    WIN32_FIND_DATAA found{};
    const HANDLE search = FindFirstFileA((name + "\\*").c_str(), &found);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            DeleteFileA((name + "\\" + static_cast<const char*>(found.cFileName)).c_str());
        } while (FindNextFileA(search, &found) != 0);
        FindClose(search);
    }
    // The system lets go of a folder some time after the end of a program that ran in it.
    for (int attempt = 0; attempt < 40 && RemoveDirectoryA(name.c_str()) == 0 &&
                          GetLastError() == ERROR_SHARING_VIOLATION;
         ++attempt) {
        Sleep(50);
    }
    SetLastError(error);
}

std::string absolutePath(const std::string& path) {
    std::array<char, 32768> buffer{};
    const DWORD length =
        GetFullPathNameA(path.c_str(), static_cast<DWORD>(buffer.size()), buffer.data(), nullptr);
    return length == 0 || length >= buffer.size() ? path : std::string(buffer.data(), length);
}

std::optional<std::uint32_t> codePage() {
    const UINT page = GetConsoleOutputCP();
    return page == 0 ? std::nullopt : std::optional<std::uint32_t>(page);
}

std::chrono::milliseconds elapsed() {
    return std::chrono::milliseconds(static_cast<long long>(GetTickCount64()));
}

} // namespace zolex::companion::system
