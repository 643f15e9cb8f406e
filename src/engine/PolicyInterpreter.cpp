#include "engine/PolicyInterpreter.h"

#include "engine/PlanController.h"
#include "engine/Planning.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"
#include "show/Dumps.h"

#include <utility>

namespace zolex {

PolicyInterpreter::Result PolicyInterpreter::createConfigurations(const ControllerList& controllers,
                                                                  const MachineSource& machine) {
    Result result;
    report_.trace("Entering PolicyInterpreter::createConfigurations\n");
    const std::optional<Machine> known = getMachineInformation(machine);
    if (!known) {
        result.fault.emplace().kind = FaultKind::planMachineUnknown;
        report_.fault(*result.fault);
        report_.trace("Exiting PolicyInterpreter::createConfigurations(1)\n");
        return result;
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const RAIDController& controller = *controllers.controller(i);
        result.noDrives = result.noDrives || controller.numberOfDrives() == 0;
        result.plans.push_back(planController(controller, static_cast<std::int32_t>(i + 1),
                                              policies_, *known, {.reasons = options_.reasons},
                                              report_));
        const ControllerPlan& plan = result.plans.back();
        switch (plan.outcome) {
        case Outcome::noPolicy:
            reportNoPolicy(controller, plan);
            result.noPolicyFound = options_.reportUnmatched;
            break;
        case Outcome::tooFewDrives:
        case Outcome::planned:
            reportPlan(controller, plan);
            break;
        case Outcome::refused:
            result.fault = plan.fault;
            report_.trace(plan.fault->kind == FaultKind::planControllerTypeUnknown
                              ? "Exiting PolicyInterpreter::createConfigurations(2)\n"
                              : "Exiting PolicyInterpreter::createConfigurations(3)\n");
            return result;
        }
    }
    report_.trace("Exiting PolicyInterpreter::createConfigurations(4)\n");
    return result;
}

std::optional<Machine> PolicyInterpreter::getMachineInformation(const MachineSource& source) {
    std::optional<Machine> machine = source ? source() : std::nullopt;
    if (machine) {
        report_.notef(level::detail, "Machine type = %s, serial number = %s\n",
                      machine->machineType.c_str(), machine->serialNumber.c_str());
    }
    return machine;
}

void PolicyInterpreter::reportPlan(const RAIDController& controller, const ControllerPlan& plan) {
    const CString model = modelNameOf(controller);
    if (!plan.layout) {
        report_.trace("Configuration is NULL\n");
        report_.notef(level::progress, "\tSkipped %s controller -- Not enough drives available.\n",
                      model.c_str());
        return;
    }
    report_.trace("Configuration is NOT NULL\n");
    report_.notef(level::detail, "\t%s, controller %d using policy:  %s\n", model.c_str(),
                  plan.number, plan.policy.c_str());
    if (report_.shows(level::detail)) {
        report_.trace("Dumping controller information.\n");
        report_.note(level::ungated, show::dumpText(*plan.layout));
    }
}

void PolicyInterpreter::reportNoPolicy(const RAIDController& controller,
                                       const ControllerPlan& plan) {
    const CString model = modelNameOf(controller);
    if (options_.reportUnmatched) {
        report_.notef(level::progress, "\tNo policy match found for %s, controller %d.\n",
                      model.c_str(), plan.number);
    } else {
        report_.notef(level::detail, "\t%s, controller %d using policy:  %s\n", model.c_str(),
                      plan.number, "No policy found.");
    }
}

} // namespace zolex
