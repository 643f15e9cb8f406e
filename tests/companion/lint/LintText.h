#pragma once

#include "companion/lint/Lint.h"
#include "companion/lint/PolicyDocument.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// One finding: "3:12 error utility ZX301: summary", then ", see 3:9 first here", then a line
/// "  help: ..." each.
inline std::string textOf(const Finding& finding) {
    static constexpr const char* severities[] = {"note", "warning", "error"};
    static constexpr const char* refusals[] = {"", " zolex", " plan", " utility"};
    const auto place = [](const TextPlace& at) {
        return std::to_string(at.line) + ":" + std::to_string(at.column);
    };
    std::string text = place(finding.start) + " " +
                       severities[static_cast<std::size_t>(finding.severity)] +
                       refusals[static_cast<std::size_t>(finding.refusedBy)] + " " + finding.code +
                       ": " + finding.summary;
    if (finding.otherStart.line > 0) {
        text += ", see " + place(finding.otherStart) + " " + finding.other;
    }
    text += "\n";
    if (!finding.detail.empty()) {
        text += "  detail: " + finding.detail + "\n";
    }
    for (const std::string& help : finding.help) {
        text += "  help: " + help + "\n";
    }
    return text;
}

inline std::string textOf(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += textOf(finding);
    }
    return text;
}

/// The findings of these rules, in the order of the file.
inline std::string lintText(std::string_view policies, std::vector<std::string> select,
                            std::vector<std::string> ignore = {}) {
    return textOf(lint(scanPolicies("p.ini", std::string(policies)),
                       LintSelection{std::move(select), std::move(ignore)}));
}

/// All errors, warnings and notes but those of style.
inline std::string lintText(std::string_view policies) {
    return lintText(policies, {}, {"ZX9"});
}

} // namespace zolex::companion
