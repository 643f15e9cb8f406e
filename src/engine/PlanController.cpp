#include "engine/PlanController.h"

#include "engine/ConfigClasses.h"
#include "engine/Planning.h"
#include "engine/PolicyMatch.h"
#include "engine/RAIDConfigCreator.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "model/ControllerCatalogue.h"

#include <utility>

namespace zolex {

namespace {

MatchValues matchValues(const RAIDController& controller, std::int32_t number,
                        const Machine& machine) {
    MatchValues values;
    values.machineType = machine.machineType;
    values.serialNumber = machine.serialNumber;
    values.controllerType = modelNameOf(controller);
    values.controllerNumber = number;
    values.scanOrder = controller.scanOrder();
    values.numberOfDrives = controller.numberOfDrives();
    return values;
}

ControllerPlan refuseType(const RAIDController& controller, std::int32_t number,
                          const Policy& policy, Report& report) {
    Fault fault;
    fault.kind = FaultKind::planControllerTypeUnknown;
    fault.place.section = policy.name;
    fault.place.controller = number;
    fault.number = controller.type();
    report.fault(fault);

    ControllerPlan plan;
    plan.number = number;
    plan.outcome = Outcome::refused;
    plan.policy = policy.name;
    plan.fault = std::move(fault);
    return plan;
}

} // namespace

CString modelNameOf(const RAIDController& controller) {
    static const ControllerCatalogue catalogue;
    return catalogue.getControllerName(controller.type(), controller.subtype());
}

std::int32_t planningCodeOf(FaultKind kind) {
    switch (kind) {
    case FaultKind::planHotspareShortage:
    case FaultKind::planHotspareDriveMissing:
        return planning_code::tooFewForHotspares;
    case FaultKind::planTooManyHotspares:
    case FaultKind::planArrayDriveMissing:
    case FaultKind::planTooManyArrays:
    case FaultKind::planTooManyArrayDrives:
    case FaultKind::planRaidLevelDriveCount:
    case FaultKind::planTooManyLogicalDrives:
        return planning_code::drivesDoNotFit;
    default:
        return planning_code::none;
    }
}

ControllerPlan planByPolicy(const RAIDController& controller, std::int32_t number,
                            const Policy& policy, const PlanOptions& options, Report& report) {
    const ConfigDefaults* const rules = rulesFor(controller.type(), controller.subtype());
    if (rules == nullptr) {
        return refuseType(controller, number, policy, report);
    }
    report.trace(creationTrace(rules->configClass));
    return RAIDConfigCreator(controller, number, *rules, policy, options.reasons, report).plan();
}

ControllerPlan planController(const RAIDController& controller, std::int32_t number,
                              const PolicyList& policies, const Machine& machine,
                              const PlanOptions& options, Report& report) {
    std::vector<Reason> reasons;
    const auto index = findPolicy(policies, matchValues(controller, number, machine),
                                  options.reasons ? &reasons : nullptr);
    ControllerPlan plan;
    plan.number = number;
    if (index) {
        plan = planByPolicy(controller, number, policies.policies()[*index], options, report);
        plan.policyIndex = static_cast<std::int32_t>(*index);
        for (Reason& reason : plan.reasons) {
            reason.policy = plan.policyIndex;
        }
    }
    plan.reasons.insert(plan.reasons.begin(), std::make_move_iterator(reasons.begin()),
                        std::make_move_iterator(reasons.end()));
    return plan;
}

} // namespace zolex
