#include "companion/planning/ResetPlan.h"

#include "companion/families/Family.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/FamilySteps.h"
#include "companion/planning/HealthyView.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/Refusals.h"
#include "companion/planning/RemovalLines.h"
#include "companion/planning/Steps.h"
#include "companion/planning/Strategy.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

bool isAskedFor(const std::vector<std::int32_t>& controllers, std::int32_t number) {
    return controllers.empty() ||
           std::find(controllers.begin(), controllers.end(), number) != controllers.end();
}

bool isBlank(const Layout& layout) {
    return layout.groups.empty() && layout.spares.empty() && layout.foreignDrives.empty();
}

void refuse(ControllerPlanning& planning, Finding finding) {
    finding.refusedBy = RefusedBy::plan;
    planning.disposition = Disposition::refused;
    planning.because = finding.summary;
    planning.diagnostics.push_back(std::move(finding));
}

void refuseUncaptured(ControllerPlanning& planning) {
    const std::string name = "controller " + std::to_string(planning.controller.number);
    for (const Finding& finding : planning.controller.findings) {
        if (finding.severity == Severity::error) {
            planning.diagnostics.push_back(finding);
            planning.diagnostics.back().refusedBy = RefusedBy::plan;
        }
    }
    refuse(planning,
           planFault(problem::notCaptured, name + " could not be captured", {"zolexctl doctor"}));
}

/// What a listing tells wrongly may be lost without being named.
bool isMisreadOrBroken(const Finding& finding) {
    return isMisread(finding) || finding.code == problem::brokenBlock;
}

void makeResetSteps(const RAIDController& record, ControllerPlanning& planning) {
    StepChoice choice;
    choice.strategy = Strategy::rebuild;
    choice.clearsAll = true;
    choice.clearsForeign = abilitiesOf(record).clearsForeign;
    choice.because = {{"asked", "a reset is asked for", {}, {}}};
    Removal removal = makeRemoval(record, planning, choice);
    planning.disposition = Disposition::planned;
    planning.strategy = choice.strategy;
    planning.strategyBecause = std::move(choice.because);
    planning.losses = std::move(removal.losses);
    planning.steps = std::move(removal.steps);
    if (!choice.clearsForeign) {
        planning.after.foreignDrives = planning.before.foreignDrives;
    }
}

ControllerPlanning planController(const Snapshot& snapshot, const ControllerSnapshot& detail) {
    ControllerPlanning planning;
    planning.controller = withoutListings(detail);
    const RAIDController* const record = snapshot.controllers.controller(detail.index);
    const Family* const family =
        detail.index == ControllerSnapshot::noRecord ? findFamily(detail.utility) : nullptr;
    if (detail.failed || (record == nullptr && family == nullptr)) {
        refuseUncaptured(planning);
        return planning;
    }
    planning.before = capturedLayout(detail.facts);
    for (const Finding& finding : detail.findings) {
        if (isMisreadOrBroken(finding)) {
            refuse(planning, finding);
            planning.diagnostics.back().severity = Severity::error;
        }
    }
    if (planning.disposition == Disposition::refused && !planning.diagnostics.empty()) {
        return planning;
    }
    const bool clearsNothing = planning.before.groups.empty() && planning.before.spares.empty() &&
                               !abilitiesOf(detail.utility).clearsForeign;
    if (isBlank(planning.before) || clearsNothing) {
        planning.disposition = Disposition::already;
        planning.because = "nothing stands on it";
        planning.after = planning.before;
        return planning;
    }
    if (family != nullptr) {
        makeFamilyReset(*family, planning);
        if (hasErrors(planning.diagnostics)) {
            planning.disposition = Disposition::refused;
            planning.because = planning.diagnostics.front().summary;
        }
    } else {
        makeResetSteps(*record, planning);
    }
    return planning;
}

} // namespace

MachinePlan planReset(const Snapshot& snapshot, const std::vector<std::int32_t>& controllers,
                      const std::string& command) {
    MachinePlan plan;
    plan.machineSource = snapshot.machineSource;
    plan.fingerprint = fingerprintOf(snapshot);
    plan.coreMessages = snapshot.coreMessages;
    plan.command = command;
    plan.diagnostics = snapshot.findings;
    refuseMisread(plan.diagnostics);
    std::int32_t number = 0;
    for (const ControllerSnapshot& detail : snapshot.details) {
        if (!isAskedFor(controllers, detail.number)) {
            continue;
        }
        plan.controllers.push_back(planController(snapshot, detail));
        for (PlanStep& step : plan.controllers.back().steps) {
            step.step = ++number;
        }
    }
    plan.consent = consentCode(plan.fingerprint.identity, plan.losses());
    return plan;
}

} // namespace zolex::companion
