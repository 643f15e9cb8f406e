#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Snapshot.h"
#include "platform/Platform.h"

#include <string>
#include <vector>

namespace zolex::companion {

struct CapturedPoliciesOptions {
    bool exact = false; ///< sizes in MB also where a logical drive fills its array
    LocalTime time;     ///< of the capture, for the comments
    std::string version;
};

/// The layouts of a machine as policies.
struct CapturedPolicies {
    std::string text; ///< of the file, comments and all
    /// What would not come back if the policies were deployed on this machine after a reset, or is
    /// otherwise to be known; the same stands in the comments. A note is no loss.
    std::vector<Finding> findings;
    bool comesBack = true; ///< no finding but notes
};

/// The value of an AppliesTo entry that means this controller of the machine and no other: its
/// model, where asked for how many drives it has, and its number where others are the same.
[[nodiscard]] std::string appliesToOf(const ControllerList& controllers,
                                      const ControllerSnapshot& details, bool withDrives);

/// Policies that mean the same whatever their sections are called: what a captured policy leaves
/// to its name is written out. They are planned for this machine as it is without its layouts, the
/// command lines are made, and all is held against the layouts.
[[nodiscard]] CapturedPolicies capturedPolicies(const Snapshot& snapshot,
                                                const CapturedPoliciesOptions& options);

} // namespace zolex::companion
