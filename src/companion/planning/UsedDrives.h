#pragma once

#include "companion/planning/Plan.h"

#include <set>
#include <string>

namespace zolex::companion {

/// The drives that have a job when the plan is carried out; with `keeps` those that do one as well
/// as the planned drives stay at it.
[[nodiscard]] std::set<std::string> usedDrives(const ControllerPlanning& planning, bool keeps);

} // namespace zolex::companion
