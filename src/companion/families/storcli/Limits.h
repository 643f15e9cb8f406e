#pragma once

#include "companion/families/Family.h"

#include <string>

/// What STORCLI controllers can make: what their listings say, and where they say nothing, what the
/// utility is known for.
namespace zolex::companion::storcli {

[[nodiscard]] FamilyLimits limits(const Facts& facts);
[[nodiscard]] std::string whyNotUsable(const DriveFacts& drive);

} // namespace zolex::companion::storcli
