#include "companion/execution/LockHolding.h"

#include "companion/execution/SystemParts.h"

#include <exception>
#include <utility>

namespace zolex::companion::system_execution {

bool tellHolder(std::optional<LockHolder> holder, LockAnswer& answer) {
    if (!holder || !isRunning(holder->process)) {
        return false;
    }
    answer = {};
    answer.holder = std::move(holder->process);
    answer.child = std::move(holder->child);
    return true;
}

std::optional<ProcessIdentity> takeOver(LockHolder before, LockAnswer& answer) {
    const bool isChildRunning = isRunning(before.child);
    auto kept = isChildRunning ? std::optional(before.child) : std::nullopt;
    // One that runs has let it go, for a child that runs or as it could not remove the text.
    const bool isGone = !isRunning(before.process);
    if (isGone) {
        answer.holder = std::move(before.process);
    }
    if (isGone || isChildRunning) {
        answer.child = std::move(before.child);
    }
    return kept;
}

bool leavesChild(const LockHolder& holder) noexcept {
    try {
        return holder.child.pid != 0 && isRunning(holder.child);
    } catch (const std::exception&) {
        return true;
    }
}

} // namespace zolex::companion::system_execution
