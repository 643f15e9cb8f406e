#pragma once

#include "companion/execution/ExecutionSystem.h"

#include <sys/types.h>

namespace zolex::companion::system_execution {

/// Its start is left empty where the system does not tell it.
[[nodiscard]] ProcessIdentity identityOf(pid_t pid);

} // namespace zolex::companion::system_execution
