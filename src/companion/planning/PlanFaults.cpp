#include "companion/planning/PlanFaults.h"

#include <utility>

namespace zolex::companion {

Finding planFault(std::string_view id, std::string summary, std::vector<std::string> help) {
    Finding finding = problemFinding(id, std::move(summary));
    finding.refusedBy = RefusedBy::plan;
    finding.help = std::move(help);
    return finding;
}

Finding planWarning(std::string_view id, std::string summary, std::vector<std::string> help) {
    Finding finding = problemFinding(id, std::move(summary));
    finding.help = std::move(help);
    return finding;
}

std::string policiesArgument(const std::string& policiesFile) {
    return policiesFile.empty() ? "--default" : policiesFile == "<stdin>" ? "-" : policiesFile;
}

void namePolicies(std::vector<Finding>& findings, const std::string& policiesFile) {
    for (Finding& finding : findings) {
        nameInHelp(finding, "POLICIES", policiesArgument(policiesFile));
    }
}

} // namespace zolex::companion
