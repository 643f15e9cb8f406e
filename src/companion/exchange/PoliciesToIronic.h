#pragma once

#include "companion/findings/Finding.h"
#include "companion/planning/Plan.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// A RAID configuration for Ironic, made of a plan.
struct IronicDraft {
    std::string text; ///< empty with an error
    /// Errors: why it is not possible. Else what Ironic cannot say, in the order of the policies.
    std::vector<Finding> findings;
    std::size_t logicalDisks = 0;
};

/// Writes the logical drives of all controllers that the plan plans. `policies` is the text of the
/// policies file that the plan was made of, where what is left out is shown.
[[nodiscard]] IronicDraft ironicOf(const MachinePlan& plan, std::string_view policies);

} // namespace zolex::companion
