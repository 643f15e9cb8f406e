#include "companion/planning/Plan.h"

#include "companion/lint/Lint.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/ControllerPlanner.h"
#include "companion/planning/OldCommand.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/planning/Refusals.h"
#include "companion/planning/Steps.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

std::string planCommand(const PlanRequest& request, const std::vector<std::string>& accept) {
    std::string command = request.command;
    if (command.empty()) {
        command =
            "zolexctl plan " + policiesArgument(request.classDefaults ? "" : request.policiesFile);
    }
    for (const std::string& id : accept) {
        command += (&id == &accept.front() ? " --accept " : ",") + id;
    }
    return command;
}

std::string planCommand(const MachinePlan& plan) {
    if (!plan.command.empty()) {
        return plan.command;
    }
    const bool isReset =
        plan.policiesFile.empty() && std::all_of(plan.controllers.begin(), plan.controllers.end(),
                                                 [](const ControllerPlanning& planning) {
                                                     return planning.after.groups.empty() &&
                                                            planning.after.spares.empty();
                                                 });
    return isReset ? "zolexctl reset" : "zolexctl plan " + policiesArgument(plan.policiesFile);
}

MachinePlan planMachine(const Snapshot& snapshot, const PlanRequest& request) {
    return planMachine(snapshot, request, readPlanPolicies(request));
}

MachinePlan planMachine(const Snapshot& snapshot, const PlanRequest& request,
                        const PoliciesReading& reading) {
    MachinePlan plan;
    plan.machineSource = snapshot.machineSource;
    plan.fingerprint = fingerprintOf(snapshot);
    plan.coreMessages = snapshot.coreMessages;
    if (!request.classDefaults) {
        plan.policiesFile = request.policiesFile;
        plan.policiesHash = reading.hash;
    }
    plan.command = planCommand(request, request.accept);
    Refusals refusals(request);
    plan.diagnostics = snapshot.findings;
    const bool hasFamilies =
        std::any_of(snapshot.details.begin(), snapshot.details.end(), [](const auto& detail) {
            return detail.index == ControllerSnapshot::noRecord;
        });
    if (snapshot.count() == 0 && !hasFamilies) {
        plan.diagnostics.push_back(
            problemFinding(problem::noControllers, "there is no RAID controller in this machine"));
    }
    refuseMisread(plan.diagnostics);
    refusals.accept(plan.diagnostics);

    plan.policiesFindings = reading.findings;
    dropTypesOf(snapshot, scanPolicies(request.policiesFile, request.policiesText),
                plan.policiesFindings);
    refusals.accept(plan.policiesFindings);
    plan.policiesCount = reading.policies ? reading.policies->views.size() : 0;

    ControllerPlanner planner(snapshot, request, reading.policies.get(), refusals,
                              plan.coreMessages);
    for (const ControllerSnapshot& detail : snapshot.details) {
        plan.controllers.push_back(planner.plan(detail));
    }
    plan.accepted = refusals.accepted();
    namePolicies(plan.diagnostics, plan.policiesFile);
    std::int32_t number = 0;
    for (ControllerPlanning& controller : plan.controllers) {
        for (PlanStep& step : controller.steps) {
            step.step = ++number;
        }
        namePolicies(controller.diagnostics, plan.policiesFile);
        namePolicies(controller.warnings, plan.policiesFile);
    }
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    plan.oldCommand = oldCommandOf(snapshot, request, plan);
    return plan;
}

} // namespace zolex::companion
