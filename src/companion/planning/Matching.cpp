#include "companion/planning/Matching.h"

#include "companion/binding/FamilyTypes.h"
#include "companion/planning/PlanFaults.h"
#include "engine/Planning.h"
#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

MatchValues valuesOf(const Machine& machine, std::int32_t number, const RAIDController& record) {
    MatchValues values;
    values.machineType = machine.machineType;
    values.serialNumber = machine.serialNumber;
    values.controllerType = modelNameOf(record);
    values.controllerNumber = number;
    values.scanOrder = record.scanOrder();
    values.numberOfDrives = record.numberOfDrives();
    return values;
}

std::string actualOf(const MatchValues& values, char letter) {
    switch (letter) {
    case 'm':
        return values.machineType.c_str();
    case 's':
        return values.serialNumber.c_str();
    case 't':
        return values.controllerType.c_str();
    case 'c':
        return std::to_string(values.controllerNumber);
    case 'o':
        return std::to_string(values.scanOrder);
    case 'd':
        return std::to_string(values.numberOfDrives);
    default:
        return {};
    }
}

/// Whether a later specifier of the same letter counts instead.
bool isReplaced(const EntryView& entry, const SpecifierView& specifier) {
    return std::any_of(entry.specifiers.begin(), entry.specifiers.end(),
                       [&](const SpecifierView& each) {
                           return each.letter == specifier.letter &&
                                  specifier.whole.start.byte < each.whole.start.byte;
                       });
}

/// The values that an entry is held against: where its type is one for controllers of a family and
/// holds, the controller is of that type.
MatchValues valuesFor(const EntryView& entry, const ControllerMatch& controller) {
    MatchValues values = controller.values;
    const CString& type = entry.given.controllerType;
    const bool holds = !controller.family.empty() && !type.isEmpty() &&
                       familyTypeHolds(type.view(), controller.family,
                                       controller.values.controllerType.view(), controller.pciIds);
    if (holds) {
        values.controllerType = type;
    }
    return values;
}

/// The specifiers that count, each held against the controller, which is of `model`.
std::vector<SpecifierMatch> matchSpecifiers(const EntryView& entry, const MatchValues& values,
                                            const CString& model) {
    std::vector<SpecifierMatch> matches;
    const bool isIdle = !entry.given.all && entry.given.givesNothing();
    for (const SpecifierView& specifier : entry.specifiers) {
        if (isReplaced(entry, specifier)) {
            continue;
        }
        SpecifierMatch match;
        match.specifier = specifier.whole.text;
        const std::string actual = actualOf(values, specifier.letter);
        match.actual = specifier.letter == 't' ? std::string(model.view()) : actual;
        const std::string& wanted = specifier.value.text;
        const bool isText =
            specifier.letter == 'm' || specifier.letter == 's' || specifier.letter == 't';
        match.holds = !isIdle && (wanted.empty() || specifier.letter == '*' ||
                                  (isText ? text::equalsNoCase(wanted, actual)
                                          : text::leadingInt(wanted) == text::leadingInt(actual)));
        matches.push_back(std::move(match));
    }
    return matches;
}

/// Whether the entry would match if the names of the machine that are not known were those that it
/// asks for.
bool mightMatch(const EntryView& entry, MatchValues values) {
    if (values.machineType.isEmpty()) {
        values.machineType = entry.given.machineType;
    }
    if (values.serialNumber.isEmpty()) {
        values.serialNumber = entry.given.serialNumber;
    }
    return entry.given.matches(values);
}

Finding unknownName(const PolicyView& policy, const EntryView& entry, const MatchValues& values,
                    const std::string& file) {
    const bool isType = values.machineType.isEmpty() && !entry.given.machineType.isEmpty();
    const std::string option = isType ? "--machine-type " : "--serial ";
    const std::string wanted =
        isType ? entry.given.machineType.c_str() : entry.given.serialNumber.c_str();
    Finding finding =
        planFault(problem::machineNotKnown,
                  policy.name() + " asks for " + (isType ? "m:" : "s:") + wanted + ", and the " +
                      (isType ? "machine type" : "serial number") + " is not known",
                  {"if it is this machine: zolexctl plan " + file + " " + option + wanted});
    finding.file = file;
    finding.start = entry.entry->value.start;
    finding.end = entry.entry->value.end;
    return finding;
}

bool isOfPolicy(const PlanPolicies& policies, std::size_t policy, const Finding& finding) {
    const std::vector<EntryView>& entries = policies.views[policy].entries;
    return std::any_of(entries.begin(), entries.end(), [&finding](const EntryView& entry) {
        return entry.entry->value.start == finding.start;
    });
}

/// Holds one policy against the controller.
struct PolicyJudge {
    const ControllerMatch& controller;
    MatchedPolicy& result;
    const PlanPolicies& policies;

    PolicyMatch judge(const PolicyView& policy) {
        PolicyMatch match;
        match.name = policy.name();
        match.line = policies.fileLine(policy.policy->header.line);
        match.matched = false;
        for (const EntryView& entry : policy.entries) {
            EntryMatch row;
            const MatchValues values = valuesFor(entry, controller);
            row.keyword = entry.entry->keyword.text;
            row.line = policies.fileLine(entry.entry->keyword.start.line);
            const bool isNamed = !entry.given.controllerType.isEmpty() && !policies.isDefault;
            const bool mayMatch = isNamed || !controller.needsName;
            row.matched = mayMatch && entry.given.matches(values);
            row.specifiers = matchSpecifiers(entry, values, controller.values.controllerType);
            const bool isOpen = mayMatch && !row.matched && mightMatch(entry, values);
            if (isOpen && !result.unknown) {
                result.unknown = unknownName(policy, entry, values, policies.document.file);
            }
            if (row.matched && !*match.matched) {
                match.matched = true;
                result.matchedBy = policies.isDefault ? std::string() : row.keyword;
            }
            match.entries.push_back(std::move(row));
        }
        return match;
    }
};

} // namespace

MatchedPolicy matchPolicies(const PlanPolicies& policies, const Machine& machine,
                            std::int32_t number, const RAIDController& record) {
    return matchPolicies(policies, {valuesOf(machine, number, record), {}, {}, false});
}

MatchedPolicy matchPolicies(const PlanPolicies& policies, const ControllerMatch& controller) {
    MatchedPolicy result;
    PolicyJudge judge{controller, result, policies};
    for (std::size_t i = 0; i < policies.views.size(); ++i) {
        const PolicyView& policy = policies.views[i];
        if (result.index) {
            PolicyMatch notAsked;
            notAsked.name = policy.name();
            notAsked.line = policies.fileLine(policy.policy->header.line);
            result.considered.push_back(std::move(notAsked));
            continue;
        }
        result.considered.push_back(judge.judge(policy));
        const bool isOfIt = result.unknown && isOfPolicy(policies, i, *result.unknown);
        if (*result.considered.back().matched) {
            result.index = i;
            result.unknown = isOfIt ? std::nullopt : result.unknown;
        }
    }
    return result;
}

std::string whyUnmatched(const std::vector<PolicyMatch>& considered) {
    constexpr std::size_t most = 3;
    std::string text = "no policy fits";
    std::size_t told = 0;
    std::size_t more = 0;
    for (const PolicyMatch& policy : considered) {
        for (const EntryMatch& entry : policy.entries) {
            const auto first = std::find_if(entry.specifiers.begin(), entry.specifiers.end(),
                                            [](const SpecifierMatch& each) { return !each.holds; });
            if (first == entry.specifiers.end()) {
                continue;
            }
            if (told == most) {
                ++more;
                continue;
            }
            text += (told == 0 ? ": " : "; ") + policy.name + " asks for " + first->specifier +
                    ", and it is " + (first->actual.empty() ? "not known" : first->actual);
            ++told;
        }
    }
    return more == 0 ? text : text + "; " + std::to_string(more) + " more entries do not fit";
}

} // namespace zolex::companion
