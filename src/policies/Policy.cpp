#include "policies/Policy.h"

#include "foundation/Text.h"

#include <algorithm>
#include <utility>

namespace zolex {

namespace {

bool holds(const CString& wanted, const CString& actual) {
    return wanted.isEmpty() || text::equalsNoCase(wanted, actual);
}

bool holds(std::int32_t wanted, std::int32_t actual) {
    return wanted <= 0 || wanted == actual;
}

} // namespace

bool AppliesTo::givesNothing() const {
    return machineType.isEmpty() && serialNumber.isEmpty() && controllerType.isEmpty() &&
           controllerNumber <= 0 && scanOrder <= 0 && numberOfDrives <= 0;
}

bool AppliesTo::matches(const MatchValues& values) const {
    if (!all && givesNothing()) {
        return false;
    }
    return holds(machineType, values.machineType) && holds(serialNumber, values.serialNumber) &&
           holds(controllerType, values.controllerType) &&
           holds(controllerNumber, values.controllerNumber) && holds(scanOrder, values.scanOrder) &&
           holds(numberOfDrives, values.numberOfDrives);
}

bool Policy::isGenerated() const {
    const std::string_view prefix = generatedPolicyPrefix;
    return customArrays && text::equalsNoCase(name.view().substr(0, prefix.size()), prefix);
}

bool PolicyList::add(Policy policy) {
    if (policies_.size() >= maxPolicies) {
        return false;
    }
    policies_.push_back(std::move(policy));
    return true;
}

const Policy* PolicyList::find(const MatchValues& values) const {
    const auto matching = [&values](const Policy& policy) {
        return std::any_of(policy.appliesTo.begin(), policy.appliesTo.end(),
                           [&values](const AppliesTo& entry) { return entry.matches(values); });
    };
    const auto found = std::find_if(policies_.begin(), policies_.end(), matching);
    return found == policies_.end() ? nullptr : &*found;
}

PolicyList makeDefaultPolicyList() {
    AppliesTo entry;
    entry.controllerNumber = -1;
    entry.scanOrder = -1;
    entry.numberOfDrives = -1;
    entry.all = true;

    Policy policy;
    policy.name = defaultPolicyName;
    policy.appliesTo.push_back(std::move(entry));

    PolicyList list;
    list.add(std::move(policy));
    return list;
}

} // namespace zolex
