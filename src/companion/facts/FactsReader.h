#pragma once

#include "companion/facts/Facts.h"

#include <cstdint>
#include <span>
#include <string>

namespace zolex::companion {

/// Reads what the utility of a controller type (1 to 12) printed: the listings of its capture with
/// the layout, in the order of the commands. Never fails: what is not understood is counted or told
/// in `broken`. Linear in the size of the listings.
[[nodiscard]] Facts readFacts(std::int32_t controllerType, std::span<const std::string> listings);

} // namespace zolex::companion
