#include "companion/lint/Keywords.h"
#include "companion/lint/RuleGroups.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"

namespace zolex::companion {

namespace {

/// ZX610, of every entry: zolex refuses the file, whatever else is wrong with it.
void checkLater(const DocumentEntry& entry, FindingSink& sink) {
    const std::string& keyword = entry.keyword.text;
    if (isLaterKeyword(keyword)) {
        Finding& finding = sink.add("ZX610", entry.keyword,
                                    "zolex refuses this file: it does not know " + keyword);
        finding.severity = Severity::note;
        finding.refusedBy = RefusedBy::zolex;
    }
}

/// ZX603.
void checkEntry(const DocumentEntry& entry, FindingSink& sink) {
    const std::string& keyword = entry.keyword.text;
    if (entry.value.text == "^~") {
        sink.add("ZX603", entry.value, keyword + " has no effect: ^~ counts as no value at all",
                 {"take the line out"});
    }
    if (!keyword::isValid(keyword) || !keyword::isNeverLookedUp(keyword)) {
        return;
    }
    const std::size_t dot = keyword.find('.');
    const std::string name = keyword.substr(0, dot + 1);
    const bool isApplies = text::equalsNoCase(name, keyword::appliesTo);
    const std::int32_t last = isApplies ? keyword::lastAppliesTo : keyword::lastLogical;
    const std::int32_t number = text::wholeNumber(keyword.substr(dot + 1)).value_or(0);
    sink.add("ZX603", entry.keyword, keyword + " has no effect",
             {number > last
                  ? "zolex looks at " + name + "1 to " + name + std::to_string(last)
                  : "zolex looks for " + name + std::to_string(number) + ", without a zero"});
}

} // namespace

void checkUnusedKeywords(const PolicyDocument& document, FindingSink& sink) {
    for (const DocumentPolicy& policy : document.policies) {
        for (const DocumentEntry& entry : policy.entries) {
            checkLater(entry, sink);
            if (!policy.isQuiet) {
                checkEntry(entry, sink);
            }
        }
    }
}

} // namespace zolex::companion
