#pragma once

#include "companion/execution/ExecutionSystem.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace zolex::companion {

/// Bytes of the text in a lock's file. It has always this length, so that a later text needs no
/// more room on the disk and covers the one before in one write.
inline constexpr std::size_t lockTextSize = 512;
using LockText = std::array<char, lockTextSize>;

/// Who holds a lock, and the child that was noted last.
struct LockHolder {
    ProcessIdentity process;
    ProcessIdentity child; ///< {}: none
    friend bool operator==(const LockHolder&, const LockHolder&) = default;
};

/// For people and for lockHolderOf. A start time that is longer than any is left out. Needs no
/// memory.
[[nodiscard]] LockText lockTextOf(const LockHolder& holder) noexcept;
/// Whether a file with this front can be a lock that is made, or was made and not written whole;
/// else it is somebody's file.
[[nodiscard]] bool mayBeLockText(std::string_view front);
/// Nothing of a text that was not written whole.
[[nodiscard]] std::optional<LockHolder> lockHolderOf(std::string_view text);

} // namespace zolex::companion
