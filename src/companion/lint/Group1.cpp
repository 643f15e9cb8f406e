#include "companion/lint/RuleGroups.h"
#include "companion/lint/ValueChecks.h"

namespace zolex::companion {

void checkGroup1(const PolicyDocument& document, FindingSink& sink) {
    for (const DocumentPolicy& policy : document.policies) {
        if (!policy.isQuiet) {
            checkWords(policy, sink);
            checkArrayDefaults(policy, sink);
            checkMaxLogicalDriveSize(policy, sink);
            checkDriveLists(policy, sink);
            checkLogicalDrives(policy, sink);
        }
    }
}

} // namespace zolex::companion
