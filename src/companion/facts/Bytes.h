#pragma once

#include <cstdint>

/// Sizes are told and planned in bytes; policies and most utilities count larger units.
namespace zolex::companion {

inline constexpr std::uint64_t bytesOfKb = std::uint64_t{1} << 10U;
inline constexpr std::uint64_t bytesOfMb = std::uint64_t{1} << 20U;

} // namespace zolex::companion
