#pragma once

#include "platform/win32/Handle.h"

#include <string>
#include <windows.h>

namespace zolex::companion::system_execution {

/// A file of this name, no link followed; null, and the last error, when it is not had. No child
/// inherits it.
[[nodiscard]] inline win32::Handle openFile(const std::string& name, DWORD access, DWORD sharing,
                                            DWORD creation) {
    HANDLE const file = CreateFileA(name.c_str(), access, sharing, nullptr, creation,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    return win32::Handle(file == INVALID_HANDLE_VALUE ? nullptr : file);
}

inline constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

} // namespace zolex::companion::system_execution
