#pragma once

#include "companion/planning/Plan.h"
#include "companion/planning/Strategy.h"
#include "model/RAIDController.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// The steps that make what is missing.
struct Creation {
    std::vector<PlanStep> steps;
    std::vector<std::string> oldDifferences; ///< one for each line that differs from zolex's
    std::vector<Finding> faults;             ///< lines that cannot be made
};

/// The lines of zolex for what is missing, array by array and then the spares; lines of its own
/// where those would leave something out or name another drive. `byZolex` is the layout that zolex
/// plans: the same but for equal drives that have changed places.
[[nodiscard]] Creation makeCreation(const RAIDController& record,
                                    const ControllerPlanning& planning, const StepChoice& choice,
                                    const RAIDConfiguration& byZolex);

} // namespace zolex::companion
