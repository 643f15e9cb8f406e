#pragma once

#include <cstdint>
#include <limits>

namespace zolex {

/// Verbosity levels. A message is shown when its level is at most the verbosity.
namespace level {
inline constexpr std::int32_t ungated = std::numeric_limits<std::int32_t>::min(); ///< always shown
inline constexpr std::int32_t unset = -1;
inline constexpr std::int32_t always = 0;
inline constexpr std::int32_t shortage = 1; ///< the planner's "not enough drives" lines
inline constexpr std::int32_t progress = 3;
inline constexpr std::int32_t detail = 5;
inline constexpr std::int32_t traces = 9;
} // namespace level

} // namespace zolex
