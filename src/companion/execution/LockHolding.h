#pragma once

#include "companion/execution/ExecutionSystem.h"
#include "companion/execution/LockText.h"

#include <optional>

namespace zolex::companion::system_execution {

/// Puts who holds a lock into the answer. False where that is not known yet: whoever has it writes
/// its text a moment later, so that without one, or with that of a process that is gone, it is to
/// be asked once more.
[[nodiscard]] bool tellHolder(std::optional<LockHolder> holder, LockAnswer& answer);

/// Puts who had the lock before and is gone into the answer. The child that it left and that still
/// runs stays noted by whoever has the lock now; nothing: there is none.
[[nodiscard]] std::optional<ProcessIdentity> takeOver(LockHolder before, LockAnswer& answer);

/// Whether the text has to stay when the lock is let go, so that whoever comes next knows of a
/// child that runs. As long as that is not known, it has to.
[[nodiscard]] bool leavesChild(const LockHolder& holder) noexcept;

} // namespace zolex::companion::system_execution
