#include "companion/planning/PlanPolicies.h"

#include "companion/binding/FamilyTypes.h"
#include "companion/lint/Lint.h"
#include "companion/machine/Sha256.h"
#include "companion/planning/PlanFaults.h"
#include "companion/rewriting/PlanComparison.h"
#include "foundation/Report.h"
#include "policies/PolicyFile.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

/// The built-in policy, as it would be written.
constexpr std::string_view builtIn = "[Policy.default]\nAppliesTo.1 = ALL\n";

/// Whether it is of the file as a whole: of its shape, its values, or which policies can be used.
/// What else is to be said of a policy is said of the controllers that it is used for.
bool isOfFile(const Finding& finding) {
    const bool isRefused =
        finding.severity == Severity::error && finding.refusedBy == RefusedBy::zolex;
    return isRefused || finding.code.compare(0, 3, "ZX0") == 0 ||
           finding.code.compare(0, 3, "ZX1") == 0 || finding.code.compare(0, 3, "ZX2") == 0;
}

bool isRefused(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(), [](const Finding& finding) {
        return finding.severity == Severity::error && finding.refusedBy == RefusedBy::zolex;
    });
}

/// Null when zolex refuses the text; then `fault` says why.
std::unique_ptr<PlanPolicies> readText(std::string file, std::string text,
                                       std::optional<Fault>& fault) {
    SilentReport silent;
    PolicyOptions options;
    options.file = CString(file);
    PolicyFile read =
        readPolicies(withoutFamilyTypes(text), ControllerCatalogue(), options, silent);
    auto policies = std::make_unique<PlanPolicies>();
    policies->document = scanPolicies(std::move(file), std::move(text));
    const bool isSame =
        read.policies && read.policies->count() == policies->document.policies.size();
    if (!isSame) {
        fault = read.faults.empty() ? std::nullopt : std::optional(read.faults.front());
        return nullptr;
    }
    policies->views = viewPolicies(policies->document);
    policies->list = std::move(*read.policies);
    return policies;
}

} // namespace

std::int32_t PlanPolicies::fileLine(std::int32_t line) const {
    if (isDefault || line < 1) {
        return 0;
    }
    const auto index = static_cast<std::size_t>(line) - 1;
    return lineOf.empty() ? line : index < lineOf.size() ? lineOf[index] : 0;
}

std::int32_t PlanPolicies::lineOfEntry(std::size_t policy, std::string_view keyword) const {
    const DocumentEntry* const entry =
        policy < document.policies.size() ? document.policies[policy].effective(keyword) : nullptr;
    return entry == nullptr ? 0 : fileLine(entry->keyword.start.line);
}

void PlanPolicies::place(std::vector<Finding>& findings) const {
    for (Finding& finding : findings) {
        if (isDefault) {
            finding.start = finding.end = finding.otherStart = finding.otherEnd = TextPlace();
            finding.file.clear();
            finding.other.clear();
        } else if (written) {
            written->move(finding);
        }
    }
}

PoliciesReading readPlanPolicies(const PlanRequest& request) {
    PoliciesReading reading;
    std::optional<Fault> fault;
    if (request.classDefaults) {
        reading.policies = readText("", std::string(builtIn), fault);
        reading.policies->list = makeDefaultPolicyList();
        reading.policies->isDefault = true;
        return reading;
    }
    reading.hash = sha256(request.policiesText);
    reading.findings = lint(scanPolicies(request.policiesFile, request.policiesText), {});
    std::erase_if(reading.findings, [](const Finding& finding) { return !isOfFile(finding); });
    if (isRefused(reading.findings)) {
        return reading;
    }
    const bool hasKinds = hasKindEntries(request.policiesText);
    reading.policies =
        readText(request.policiesFile,
                 hasKinds ? withoutKindEntries(request.policiesText) : request.policiesText, fault);
    if (!reading.policies) {
        Finding finding = planFault(problem::policiesRefused,
                                    fault ? faultLine(*fault) : "the policies cannot be read",
                                    {"zolexctl check " + request.policiesFile});
        finding.refusedBy = RefusedBy::zolex;
        finding.file = request.policiesFile;
        finding.start = {1, 1, 0};
        finding.end = finding.start;
        reading.findings.push_back(std::move(finding));
    }
    return reading;
}

std::unique_ptr<PlanPolicies> readBoundPolicies(const PlanRequest& request,
                                                const BoundPolicies& bound) {
    std::optional<Fault> fault;
    std::unique_ptr<PlanPolicies> policies = readText(request.policiesFile, bound.text, fault);
    if (policies) {
        policies->written.emplace(request.policiesText, bound);
        policies->uncovered = bound.uncovered;
        policies->lineOf = bound.lineOf;
    }
    return policies;
}

} // namespace zolex::companion
