#include "companion/lint/Entries.h"
#include "companion/lint/Keywords.h"
#include "companion/lint/Levels.h"
#include "companion/lint/MemberLine.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/RuleGroups.h"
#include "foundation/Text.h"
#include "model/Codes.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

namespace {

void checkMemberLines(const PolicyView& policy, FindingSink& sink) {
    const Verdict verdict =
        judgeKinds(policy, [](const Kind& kind) { return listsMembersInOneLine(kind.type); });
    if (!verdict.severity()) {
        return;
    }
    for (const DriveListView& array : policy.countingArrays()) {
        std::vector<DrivePosition> drives;
        for (const DriveView& drive : array.drives) {
            if (drive.number == 0) {
                drives.push_back(drive.position);
            }
        }
        const std::size_t read = membersRead(drives);
        if (read < drives.size()) {
            const EntryView& entry = *verdict.faulty().front();
            const std::string utility =
                utilityOf(kindsOf(entry.given.controllerType.view()).front().type);
            sink.add("ZX602", array.drives[read].piece,
                     utility + " lists " + countOf(drives.size(), "drive") + " in a line of " +
                         std::to_string(memberLine(drives).size()) + " bytes, and 198 are read",
                     {"a capture names wrong drives from " + driveWords(array.drives[read]) + " on",
                      "make two arrays of it"});
        }
    }
}

/// MegaRAID controllers take none of these, and the policy may be used for one. Where t: is given,
/// the model's own sizes are asked.
void checkStripeSize(const PolicyView& policy, FindingSink& sink) {
    if (!policy.stripeSize || policy.entries.empty()) {
        return;
    }
    const bool namesModels =
        std::any_of(policy.entries.begin(), policy.entries.end(), [](const EntryView& entry) {
            return !entry.isReadable || !entry.given.controllerType.isEmpty();
        });
    const std::int32_t code = policy.stripeSize->code;
    const ConfigDefaults* const mega = rulesFor(controller_type::megaRaid, subtypeNotSet);
    if (namesModels || mega->stripeSizes.contains(code)) {
        return;
    }
    const Kind kind{controller_type::megaRaid, subtypeNotSet, mega};
    sink.add("ZX604", policy.stripeSize->entry->value,
             "a strip size of " + policy.stripeSize->entry->value.text +
                 " KB is refused on MegaRAID controllers",
             {"no plan can be made for one; they take " + stripeWords(kind),
              placeOf(policy.entries.front()) + " does not say which models it is for"});
}

} // namespace

void checkLimitRules(const PolicyView& policy, FindingSink& sink) {
    checkMemberLines(policy, sink);
    checkStripeSize(policy, sink);
}

void checkGroup6(const PolicyDocument& document, FindingSink& sink) {
    for (const PolicyView& policy : viewPolicies(document)) {
        if (!policy.policy->isQuiet) {
            checkLimitRules(policy, sink);
        }
    }
}

} // namespace zolex::companion
