#include "companion/planning/PlanFaults.h"

#include "companion/text/TypedWord.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::array<std::string_view, 5> misreadings = {
    problem::notAListing, problem::listingRefused, problem::otherModel, problem::otherPciFunction,
    problem::sameSerial};

} // namespace

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
    return policiesFile.empty()        ? "--default"
           : policiesFile == "<stdin>" ? "-"
                                       : typedWord(policiesFile);
}

void namePolicies(std::vector<Finding>& findings, const std::string& policiesFile) {
    for (Finding& finding : findings) {
        nameInHelp(finding, "POLICIES", policiesArgument(policiesFile));
    }
}

bool isMisread(const Finding& finding) {
    return finding.severity == Severity::error &&
           std::find(misreadings.begin(), misreadings.end(), finding.code) != misreadings.end();
}

void refuseMisread(std::vector<Finding>& findings) {
    for (Finding& finding : findings) {
        finding.refusedBy = isMisread(finding) ? RefusedBy::plan : finding.refusedBy;
    }
}

} // namespace zolex::companion
