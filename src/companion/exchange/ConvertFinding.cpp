#include "companion/exchange/ConvertFinding.h"

#include "companion/lint/Rules.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

Finding convertFinding(std::string_view rule, std::string summary, std::vector<std::string> help) {
    const Rule& row = *findRule(rule);
    Finding finding;
    finding.code = row.id;
    finding.severity = row.severity;
    finding.refusedBy = row.refusedBy;
    finding.summary = std::move(summary);
    finding.help = std::move(help);
    return finding;
}

bool hasError(const std::vector<Finding>& findings) {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::error; });
}

} // namespace zolex::companion
