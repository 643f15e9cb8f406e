#pragma once

#include "companion/execution/ExecutionSystem.h"

#include <windows.h>

namespace zolex::companion::system_execution {

/// Its start is left empty where the system does not tell it.
[[nodiscard]] ProcessIdentity identityOf(HANDLE process, DWORD number);

} // namespace zolex::companion::system_execution
