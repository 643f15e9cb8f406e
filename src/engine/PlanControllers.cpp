// What plans without a word; a program that does not use it is linked without it.
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"

namespace zolex {

ControllerPlan planController(const RAIDController& controller, std::int32_t number,
                              const PolicyList& policies, const Machine& machine, Report& report) {
    return planController(controller, number, policies, machine, PlanOptions(), report);
}

std::vector<ControllerPlan> planControllers(const ControllerList& controllers,
                                            const PolicyList& policies, const Machine& machine,
                                            Report& report) {
    std::vector<ControllerPlan> plans;
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        plans.push_back(planController(*controllers.controller(i), static_cast<std::int32_t>(i + 1),
                                       policies, machine, report));
    }
    return plans;
}

} // namespace zolex
