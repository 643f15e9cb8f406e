#include "companion/binding/BoundPolicies.h"
#include "companion/lint/RuleGroups.h"
#include "policies/PolicyLines.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zolex::companion {

namespace {

/// The policy whose lines begin before this one; null before the first.
const DocumentPolicy* policyAt(const PolicyDocument& document, std::int32_t line) {
    const DocumentPolicy* found = nullptr;
    for (const DocumentPolicy& policy : document.policies) {
        if (policy.header.line <= line) {
            found = &policy;
        }
    }
    return found;
}

} // namespace

TextPlace placeInLine(const PolicyDocument& document, std::int32_t line, std::int32_t column) {
    const std::size_t begin = document.lineStarts.at(static_cast<std::size_t>(line) - 1);
    return {line, column, static_cast<std::int64_t>(begin) + column - 1};
}

void checkKindEntries(const PolicyDocument& document, FindingSink& sink) {
    for (const BindingFault& fault : kindEntryFaults(document.text)) {
        const DocumentPolicy* const policy = policyAt(document, fault.line);
        // A line that is too long is told by ZX012.
        if (policy == nullptr || policy->isQuiet ||
            document.line(fault.line).size() > PolicyLines::maxLength) {
            continue;
        }
        sink.add(fault.code, placeInLine(document, fault.line, fault.column),
                 placeInLine(document, fault.line, fault.endColumn), fault.what,
                 fault.help.empty() ? std::vector<std::string>()
                                    : std::vector<std::string>{fault.help});
    }
}

} // namespace zolex::companion
