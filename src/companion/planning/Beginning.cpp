#include "companion/planning/Beginning.h"

#include "companion/planning/PlanFaults.h"

#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

bool beginPlanning(const ControllerSnapshot& detail, bool isCaptured, bool hasPolicies,
                   Refusals& refusals, ControllerPlanning& planning) {
    if (!isCaptured) {
        std::vector<Finding> findings = detail.findings;
        for (Finding& finding : findings) {
            finding.refusedBy = RefusedBy::plan; // why there can be none
        }
        findings.push_back(
            planFault(problem::notCaptured,
                      "controller " + std::to_string(detail.number) + " could not be captured",
                      {"zolexctl doctor"}));
        refusals.sort(std::move(findings), planning);
        refusePlanning(planning);
        return false;
    }
    planning.before = capturedLayout(detail.facts);
    if (!hasPolicies) {
        planning.because = "the policies are at fault";
    }
    return hasPolicies;
}

void refusePlanning(ControllerPlanning& planning) {
    planning.disposition = Disposition::refused;
    planning.steps.clear();
    planning.losses.clear();
}

} // namespace zolex::companion
