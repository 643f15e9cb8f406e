#pragma once

#include "engine/ControllerPlan.h"
#include "model/Machine.h"
#include "policies/Policy.h"

#include <cstdint>
#include <vector>

namespace zolex {

class ControllerList;
class RAIDController;
class Report;

struct PlanOptions {
    bool reasons = true; ///< whether the plan says why it is so
};

/// Plans controller `number` (from 1) of the machine by the first policy that matches it. Reads
/// only: equal arguments give equal plans. A fault is in the plan and has been reported.
[[nodiscard]] ControllerPlan planController(const RAIDController& controller, std::int32_t number,
                                            const PolicyList& policies, const Machine& machine,
                                            const PlanOptions& options, Report& report);
[[nodiscard]] ControllerPlan planController(const RAIDController& controller, std::int32_t number,
                                            const PolicyList& policies, const Machine& machine,
                                            Report& report);

/// Plans one controller by one policy, whether it matches or not.
[[nodiscard]] ControllerPlan planByPolicy(const RAIDController& controller, std::int32_t number,
                                          const Policy& policy, const PlanOptions& options,
                                          Report& report);

/// Plans all controllers. A refused plan does not end it, so that all faults are known.
[[nodiscard]] std::vector<ControllerPlan> planControllers(const ControllerList& controllers,
                                                          const PolicyList& policies,
                                                          const Machine& machine, Report& report);

} // namespace zolex
