#pragma once

#include "companion/planning/Plan.h"
#include "companion/planning/Refusals.h"

namespace zolex::companion {

/// What the plan of every controller begins with: what stands on it. False where there can be no
/// plan, as it was not captured or the policies cannot be read; then `planning` says so.
[[nodiscard]] bool beginPlanning(const ControllerSnapshot& detail, bool isCaptured,
                                 bool hasPolicies, Refusals& refusals,
                                 ControllerPlanning& planning);

/// Makes a refusal of it: nothing is done.
void refusePlanning(ControllerPlanning& planning);

} // namespace zolex::companion
