#include "companion/planning/Refusals.h"

#include "companion/planning/PlanFaults.h"
#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

bool hasErrors(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::error; });
}

bool Refusals::isAcceptable(const Finding& finding) {
    return finding.refusedBy == RefusedBy::nobody || finding.refusedBy == RefusedBy::utility;
}

bool Refusals::isAccepted(const Finding& finding) const {
    return isAcceptable(finding) &&
           std::any_of(request_.accept.begin(), request_.accept.end(),
                       [&](const std::string& id) { return text::equalsNoCase(id, finding.code); });
}

bool Refusals::letPass(Finding& finding) {
    if (finding.severity != Severity::error) {
        return true;
    }
    if (!isAccepted(finding)) {
        addHelp(finding);
        return false;
    }
    finding.severity = Severity::warning;
    finding.detail = finding.detail.empty() ? "accepted" : finding.detail + "; accepted";
    accepted_.push_back(finding.code);
    return true;
}

void Refusals::addHelp(Finding& finding) const {
    std::vector<std::string> accept = request_.accept;
    accept.push_back(finding.code);
    const std::string line = isAcceptable(finding)
                                 ? "to let it pass: " + planCommand(request_, accept)
                                 : "for more: zolexctl explain " + finding.code;
    if (std::find(finding.help.begin(), finding.help.end(), line) == finding.help.end()) {
        finding.help.push_back(line);
    }
}

void Refusals::sort(std::vector<Finding> found, ControllerPlanning& planning) {
    for (Finding& finding : found) {
        (letPass(finding) ? planning.warnings : planning.diagnostics).push_back(std::move(finding));
    }
}

void Refusals::sortAgain(ControllerPlanning& planning) {
    std::vector<Finding> found = std::exchange(planning.diagnostics, {});
    sort(std::move(found), planning);
}

void Refusals::accept(std::vector<Finding>& findings) {
    for (Finding& finding : findings) {
        static_cast<void>(letPass(finding));
    }
}

std::vector<std::string> Refusals::accepted() const {
    std::vector<std::string> ids = accepted_;
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

} // namespace zolex::companion
