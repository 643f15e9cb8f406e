#include "companion/text/OutputFile.h"

#include <windows.h>

namespace zolex::companion {

namespace {

/// The system's own text, without its full stop and line end.
std::string systemText(DWORD error) {
    constexpr DWORD size = 512;
    std::string text(size, '\0');
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, error, 0, text.data(), size, nullptr);
    text.resize(length);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == '.')) {
        text.pop_back();
    }
    return text.empty() ? "error " + std::to_string(error) : text;
}

} // namespace

std::string lastSystemError() {
    const DWORD error = GetLastError();
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
        return "there is no such file or folder";
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return "it is not allowed";
    case ERROR_WRITE_PROTECT:
        return "the device is read-only";
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return "no space is left on the device";
    case ERROR_BROKEN_PIPE:
    case ERROR_NO_DATA:
        return "nobody reads it any more";
    default:
        return systemText(error);
    }
}

namespace output_file {

Standing standing(const std::string& name) {
    WIN32_FIND_DATAA found = {};
    // The attributes of a link are its own here; those of a device name are none.
    const DWORD attributes = GetFileAttributesA(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        HANDLE const handle = CreateFileA(name.c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr,
                                          OPEN_EXISTING, 0, nullptr);
        if (handle == INVALID_HANDLE_VALUE) {
            return Standing::nothing;
        }
        const bool isDevice = GetFileType(handle) != FILE_TYPE_DISK;
        CloseHandle(handle);
        return isDevice ? Standing::device : Standing::file;
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        return Standing::folder;
    }
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
        HANDLE const handle = FindFirstFileA(name.c_str(), &found);
        if (handle != INVALID_HANDLE_VALUE) {
            FindClose(handle);
        }
        if (handle != INVALID_HANDLE_VALUE && found.dwReserved0 == IO_REPARSE_TAG_SYMLINK) {
            return Standing::link;
        }
    }
    if ((attributes & FILE_ATTRIBUTE_DEVICE) != 0) {
        return Standing::device;
    }
    return (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? Standing::protectedFile : Standing::file;
}

bool areOne(const std::string& one, const std::string& other) {
    const auto wholeName = [](const std::string& name) {
        std::string whole(MAX_PATH, '\0');
        const DWORD length =
            GetFullPathNameA(name.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr);
        const bool isWhole = length > 0 && length < whole.size();
        whole.resize(isWhole ? length : 0);
        return isWhole ? whole : name;
    };
    return lstrcmpiA(wholeName(one).c_str(), wholeName(other).c_str()) == 0;
}

bool moveOver(const std::string& from, const std::string& to) {
    return MoveFileExA(from.c_str(), to.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
}

unsigned long processNumber() {
    return GetCurrentProcessId();
}

} // namespace output_file

} // namespace zolex::companion
