#pragma once

#include "companion/planning/Plan.h"

namespace zolex::companion {

/// What zolex would run for the same end, and what would be otherwise. The controllers are planned,
/// with their steps; the record of each is in the snapshot.
[[nodiscard]] OldCommand oldCommandOf(const Snapshot& snapshot, const PlanRequest& request,
                                      const MachinePlan& plan);

/// Whether zolex would configure controllers that the plan is not for.
[[nodiscard]] bool reachesOtherControllers(const OldCommand& old);

} // namespace zolex::companion
