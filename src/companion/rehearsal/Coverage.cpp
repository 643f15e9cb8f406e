#include "companion/rehearsal/Coverage.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zolex::companion {

namespace {

/// Keywords of which a plan tells where they count; those that end in "." begin the keyword.
constexpr std::array<std::string_view, 9> tracedKeywords = {
    "Array.",    "Hotspares", "Logical.", "Logical_Defaults", "StripeSize",
    "ReadAhead", "Drives.",   "Spares",   "Level.",
};

bool isTraced(std::string_view keyword) {
    return std::any_of(tracedKeywords.begin(), tracedKeywords.end(), [&](std::string_view each) {
        return each.ends_with('.') ? keyword.size() > each.size() &&
                                         text::equalsNoCase(keyword.substr(0, each.size()), each)
                                   : text::equalsNoCase(keyword, each);
    });
}

template <typename Set>
void addAll(Set& all, const Set& more) {
    all.insert(more.begin(), more.end());
}

} // namespace

std::string_view unusedKindWord(UnusedPiece::Kind kind) {
    switch (kind) {
    case UnusedPiece::Kind::policy:
        return "policy";
    case UnusedPiece::Kind::entry:
        return "entry";
    case UnusedPiece::Kind::specifier:
        return "specifier";
    case UnusedPiece::Kind::keyword:
        break;
    }
    return "keyword";
}

void PolicyCoverage::add(const MachinePlan& plan) {
    for (const ControllerPlanning& planning : plan.controllers) {
        add(planning);
    }
}

void PolicyCoverage::add(const ControllerPlanning& planning) {
    for (const PolicyMatch& policy : planning.considered) {
        if (!policy.matched) {
            passed_.insert(policy.line);
            continue;
        }
        asked_.insert(policy.line);
        if (*policy.matched) {
            used_.insert(policy.line);
        }
        for (const EntryMatch& entry : policy.entries) {
            if (entry.matched) {
                entries_.insert(entry.line);
            }
            for (const SpecifierMatch& specifier : entry.specifiers) {
                bool& holds = specifiers_[{entry.line, specifier.specifier}];
                holds = holds || specifier.holds;
            }
        }
    }
    if (!planning.configuration && planning.policyLine > 0) {
        unclear_.insert(planning.policyLine);
    }
    const auto use = [this](const PlanReason& reason) {
        if (reason.line > 0) {
            keywords_.insert(reason.line);
        }
    };
    for (const PlannedArray& array : planning.arrays) {
        for (const PlannedDrive& drive : array.drives) {
            use(drive.reason);
        }
    }
    for (const PlannedVolume& volume : planning.volumes) {
        for (const auto& [attribute, reason] : volume.reasons) {
            use(reason);
        }
    }
    for (const PlannedSpare& spare : planning.spares) {
        use(spare.reason);
    }
    for (const Binding& binding : planning.bindings) {
        keywords_.insert(binding.line);
    }
}

void PolicyCoverage::add(const PolicyCoverage& other) {
    addAll(asked_, other.asked_);
    addAll(passed_, other.passed_);
    addAll(used_, other.used_);
    addAll(unclear_, other.unclear_);
    addAll(entries_, other.entries_);
    addAll(keywords_, other.keywords_);
    for (const auto& [specifier, holds] : other.specifiers_) {
        bool& own = specifiers_[specifier];
        own = own || holds;
    }
}

std::vector<UnusedPiece> PolicyCoverage::unused(const PolicyDocument& document) const {
    std::vector<UnusedPiece> all;
    for (const PolicyView& view : viewPolicies(document)) {
        const std::string name = view.name();
        const std::int32_t line = view.policy->header.line;
        if (!used_.contains(line)) {
            UnusedPiece& piece = all.emplace_back();
            piece.policy = name;
            piece.line = line;
            const bool isPassed = !asked_.empty() && !asked_.contains(line);
            piece.because = isPassed ? "an earlier policy fits" : "";
            addEntries(view, name, all);
            continue;
        }
        addEntries(view, name, all);
        if (!unclear_.contains(line)) {
            addKeywords(*view.policy, name, all);
        }
    }
    return all;
}

void PolicyCoverage::addEntries(const PolicyView& view, const std::string& name,
                                std::vector<UnusedPiece>& all) const {
    const bool isPolicyUsed = used_.contains(view.policy->header.line);
    const char* const because =
        passed_.contains(view.policy->header.line) ? "where no earlier policy fits" : "";
    for (const EntryView& entry : view.entries) {
        const std::int32_t line = entry.entry->keyword.start.line;
        if (entries_.contains(line)) {
            continue;
        }
        bool isAnyMissing = false;
        std::vector<UnusedPiece> specifiers;
        for (const SpecifierView& specifier : entry.specifiers) {
            const auto at = specifiers_.find({line, specifier.whole.text});
            if (at != specifiers_.end() && !at->second) {
                isAnyMissing = true;
                specifiers.push_back({UnusedPiece::Kind::specifier, name, entry.entry->keyword.text,
                                      specifier.whole.text, line, because});
            }
        }
        if (isPolicyUsed) {
            const bool isAsked =
                std::any_of(specifiers_.begin(), specifiers_.end(),
                            [line](const auto& each) { return each.first.first == line; });
            all.push_back({UnusedPiece::Kind::entry, name, entry.entry->keyword.text, "", line,
                           isAsked && !isAnyMissing ? "no controller has all of it" : ""});
        }
        all.insert(all.end(), specifiers.begin(), specifiers.end());
    }
}

void PolicyCoverage::addKeywords(const DocumentPolicy& policy, const std::string& name,
                                 std::vector<UnusedPiece>& all) const {
    for (const DocumentEntry& entry : policy.entries) {
        const bool isUsed = keywords_.contains(entry.keyword.start.line);
        if (!isUsed && isTraced(entry.keyword.text) &&
            policy.effective(entry.keyword.text) == &entry) {
            all.push_back({UnusedPiece::Kind::keyword, name, entry.keyword.text, "",
                           entry.keyword.start.line, ""});
        }
    }
}

} // namespace zolex::companion
