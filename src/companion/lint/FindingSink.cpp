#include "companion/lint/FindingSink.h"

#include "companion/lint/Rules.h"

namespace zolex::companion {

Finding& FindingSink::add(std::string_view rule, const TextPlace& start, const TextPlace& end,
                          std::string summary, std::vector<std::string> help) {
    Finding& finding = findings_.emplace_back();
    finding.code = rule;
    if (const Rule* row = findRule(rule)) {
        finding.severity = row->severity;
        finding.refusedBy = row->refusedBy;
    }
    finding.summary = std::move(summary);
    finding.help = std::move(help);
    finding.file = file_;
    finding.start = start;
    finding.end = end;
    return finding;
}

Finding& FindingSink::add(std::string_view rule, const DocumentPolicy& policy, std::string summary,
                          std::vector<std::string> help) {
    return add(rule, policy.header, policy.name.end, std::move(summary), std::move(help));
}

Finding& FindingSink::addToFile(std::string_view rule, std::string summary,
                                std::vector<std::string> help) {
    const TextPlace begin{1, 1, 0};
    return add(rule, begin, begin, std::move(summary), std::move(help));
}

void pointTo(Finding& finding, const Piece& other, std::string what) {
    finding.otherStart = other.start;
    finding.otherEnd = other.end;
    finding.other = std::move(what);
}

} // namespace zolex::companion
