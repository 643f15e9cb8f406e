#pragma once

#include "companion/layout/Compare.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// Logical drives that serve nobody as they are, though they stand.
struct IdleVolumes {
    std::vector<Difference> differences;
    std::vector<std::string> help; ///< how they are made to serve
    bool isOffline = false;        ///< of one, more drives have left than its level bears
};
/// Of all logical drives of a controller.
[[nodiscard]] IdleVolumes idleVolumes(const std::string& utility, const Facts& facts);
/// Of those that wanted groups have.
[[nodiscard]] IdleVolumes idleVolumes(const std::string& utility, const Facts& facts,
                                      const Comparison& comparison);

/// What to do about an array that is offline, for nobody to lose what can be had back.
[[nodiscard]] std::vector<std::string> offlineHelp();

} // namespace zolex::companion
