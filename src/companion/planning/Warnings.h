#pragma once

#include "companion/planning/Plan.h"

#include <vector>

namespace zolex::companion {

/// What is to be said of a planned controller beside the rules: spares that cover nothing,
/// redundancy that is lost, foreign configurations that are cleared, what is not well. It may ask
/// for what the steps lose.
[[nodiscard]] std::vector<Finding> planWarnings(const ControllerPlanning& planning);

/// Why nothing is planned where all stands: "as the policy says, equivalent: the spare is 32:3
/// instead of 32:7".
[[nodiscard]] std::string whyItStands(const Comparison& comparison);

} // namespace zolex::companion
