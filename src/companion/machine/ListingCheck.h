#pragma once

#include "companion/machine/Snapshot.h"

#include <string>
#include <string_view>

namespace zolex {
class RAIDController;
}

namespace zolex::companion {

/// The first lines that say something, in printable characters, at most three.
[[nodiscard]] std::string firstLines(std::string_view output);

/// Tells listings that are empty or hold an error in the place of a listing, although their utility
/// ended with an accepted exit code. A controller of which nothing at all is told has failed.
void judgeListings(const RAIDController& controller, ControllerSnapshot& snapshot);

} // namespace zolex::companion
