#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Snapshot.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// The layout of a controller that zolex does not know as a policy for zolexctl.
struct FamilyPolicy {
    std::string text; ///< of its section; empty: it has no layout that a policy can say
    std::vector<Finding> findings;
};

/// With `exact`, sizes in MB also where a logical drive fills its array. With `namesNumber` the
/// policy is for the controller of this number alone.
[[nodiscard]] FamilyPolicy familyPolicy(const ControllerSnapshot& details, bool exact,
                                        bool namesNumber);

} // namespace zolex::companion
