#pragma once

#include "companion/commands/GuardPlan.h"
#include "companion/machine/Snapshot.h"
#include "platform/Platform.h"

#include <vector>

namespace zolex::companion {

/// Runs zolex itself, in this process, with the words that it would get, on a virtual copy of the
/// captured machine; what it prints goes nowhere. Tells where it would fail, or would end otherwise
/// than `plan` expects. What cannot be copied is a warning. `machine` is asked only what reads.
[[nodiscard]] std::vector<Finding> tryRun(Platform& machine, const Snapshot& snapshot,
                                          const GuardedRun& run, const GuardPlan& plan,
                                          const GuardTerms& terms);

/// What stands, behind a run of zolex that ended with 0, otherwise than `plan` expects.
[[nodiscard]] std::vector<Finding> compareEnds(const Snapshot& now, const GuardPlan& plan);

} // namespace zolex::companion
