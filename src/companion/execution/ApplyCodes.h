#pragma once

namespace zolex::companion::apply_code {

inline constexpr int done = 0;
inline constexpr int notPossible = 2; ///< it could not be told whether; nothing was changed
inline constexpr int refused = 3;     ///< nothing was changed
inline constexpr int stopped = 4;     ///< something was changed, or may have been
inline constexpr int different = 5;   ///< what stands is not what was planned

} // namespace zolex::companion::apply_code
