#include "companion/lint/Parity.h"

#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/RuleGroups.h"
#include "companion/text/Diagnostics.h"
#include "policies/PolicyFile.h"
#include "show/FaultTexts.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace zolex::companion::test {

namespace {

/// What zolex says first; nothing when it takes the file.
std::optional<Fault> firstFault(const std::string& text) {
    SilentReport silent;
    PolicyOptions options;
    options.file = "p.ini";
    const PolicyFile file = readPolicies(text, ControllerCatalogue(), options, silent);
    return file.faults.empty() ? std::nullopt : std::optional(file.faults.front());
}

bool isOfReading(const Finding& finding) {
    return finding.code.starts_with("ZX0") || finding.code.starts_with("ZX1") ||
           finding.code == "ZX203";
}

bool isRefusal(const Finding& finding) {
    return finding.severity == Severity::error && finding.refusedBy == RefusedBy::zolex;
}

/// All findings, those that a comment silences too.
std::vector<Finding> allFindings(const std::string& text) {
    PolicyDocument document = scanPolicies("p.ini", text);
    document.ignored.clear();
    return lint(document, {});
}

} // namespace

std::string disagreement(const std::string& text) {
    const std::optional<Fault> fault = firstFault(text);
    const std::vector<Finding> findings = allFindings(text);
    for (const Finding& finding : findings) {
        if (finding.code == "ZX610") {
            return {}; // zolexctl takes what zolex does not
        }
        // What stands beyond 255 characters can be what nobody wants and zolex takes.
        if (isOfReading(finding) && finding.severity == Severity::error &&
            finding.refusedBy != RefusedBy::zolex && finding.code != "ZX012") {
            return "an error of reading that zolex does not make: " + finding.code;
        }
    }
    if (std::any_of(findings.begin(), findings.end(), isRefusal) != fault.has_value()) {
        return fault ? "zolex refuses it, and no error is found" : "zolex takes it";
    }
    if (!fault || fault->place.line == 0 || findings.front().code == "ZX002") {
        return {};
    }
    const bool isThere =
        std::any_of(findings.begin(), findings.end(), [&fault](const Finding& finding) {
            return isRefusal(finding) && finding.start.line == fault->place.line;
        });
    return isThere ? "" : "no error in line " + std::to_string(fault->place.line);
}

bool isRefused(const std::string& text) {
    return firstFault(text).has_value();
}

std::string zolexSays(const std::string& text) {
    const std::optional<Fault> fault = firstFault(text);
    return fault ? std::string(show::faultTexts(*fault).front().text.view()) : "takes it";
}

std::string linterSays(const std::string& text) {
    return conciseDiagnostics(allFindings(text), {});
}

} // namespace zolex::companion::test
