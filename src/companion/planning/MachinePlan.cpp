#include "companion/planning/Plan.h"

#include <algorithm>
#include <iterator>

namespace zolex::companion {

namespace {

bool hasError(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::error; });
}

} // namespace

bool MachinePlan::isApplicable() const {
    return !controllers.empty() && !hasError(policiesFindings) && !hasError(diagnostics) &&
           std::none_of(controllers.begin(), controllers.end(), [](const ControllerPlanning& each) {
               return each.disposition == Disposition::refused;
           });
}

bool MachinePlan::changesSomething() const {
    return !steps().empty();
}

std::vector<Loss> MachinePlan::losses() const {
    std::vector<Loss> all;
    if (isApplicable()) {
        for (const ControllerPlanning& controller : controllers) {
            all.insert(all.end(), controller.losses.begin(), controller.losses.end());
        }
    }
    return all;
}

std::uint64_t MachinePlan::lostBytes() const {
    std::uint64_t bytes = 0;
    for (const Loss& loss : losses()) {
        bytes += loss.capacityBytes;
    }
    return bytes;
}

std::vector<PlanStep> MachinePlan::steps() const {
    std::vector<PlanStep> all;
    if (isApplicable()) {
        for (const ControllerPlanning& controller : controllers) {
            all.insert(all.end(), controller.steps.begin(), controller.steps.end());
        }
    }
    return all;
}

} // namespace zolex::companion
