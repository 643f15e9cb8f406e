#pragma once

#include "companion/families/Family.h"

#include <cstdint>
#include <span>
#include <string_view>

/// What a changing command of STORCLI came to.
namespace zolex::companion::storcli {

/// The cache keeps data of a logical drive that is not there.
inline constexpr std::int32_t cachePinned = 84;

/// An error that a command of ours can end in.
struct ErrorRow {
    std::int32_t code = 0;
    std::string_view text; ///< where the utility has no words for its code
    std::string_view help; ///< what to do; empty: no more than the text
};

/// In the order of their codes.
[[nodiscard]] std::span<const ErrorRow> errorRows();
/// Null for a code that no command of ours can end in.
[[nodiscard]] const ErrorRow* findError(std::int32_t code);

/// Done is what ended with 0, and whose output says so throughout: every status of a command, and
/// every row of details.
[[nodiscard]] FamilyVerdict judge(std::string_view commandLine, std::uint32_t exitCode,
                                  std::string_view output);

} // namespace zolex::companion::storcli
