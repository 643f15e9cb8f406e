#pragma once

#include "companion/findings/Finding.h"
#include "platform/Platform.h"

#include <cstddef>
#include <optional>
#include <string>

namespace zolex::companion {

/// Bytes of the largest policies file that is read.
inline constexpr std::size_t mostPoliciesBytes = std::size_t{64} << 20U;

/// What is read of a policies file.
struct PoliciesText {
    std::string name; ///< for texts: "<stdin>" for standard input
    std::string text;
    std::optional<Finding> fault; ///< ZX001
};

/// Reads a file whole, twice where that can be done: one that changes meanwhile cannot be believed.
/// "-" is standard input.
[[nodiscard]] PoliciesText readPoliciesText(Platform& platform, const std::string& file);

} // namespace zolex::companion
