#pragma once

#include "companion/planning/PlanPolicies.h"
#include "engine/ControllerPlan.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// What the core has planned for a controller, and of what.
struct PlannedCase {
    const RAIDController& record;
    const ControllerSnapshot& detail;
    const PlanPolicies& policies;
    std::size_t policy = 0;     ///< index of the policy
    const ControllerPlan& plan; ///< with a layout
    const std::vector<Binding>& bindings;
};

/// "RAID5", "None" for volumes: as captured volumes tell their levels.
[[nodiscard]] std::string plannedRaidType(std::int32_t level);
/// "2048 MB", "50%", "FILL".
[[nodiscard]] std::string sizeWords(const DriveSize& size);

/// Fills arrays, volumes, spares and settings of the planning, each with its reason.
void fillLayout(const PlannedCase& planned, ControllerPlanning& planning);

} // namespace zolex::companion
