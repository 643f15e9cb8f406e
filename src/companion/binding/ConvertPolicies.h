#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// Policies for zolex, made of policies that tell drives by what they are.
struct ConvertedPolicies {
    std::string text; ///< to be used without errors alone
    /// Errors: why it is not possible. Notes: what the policies for zolex do not say.
    std::vector<Finding> findings;

    [[nodiscard]] bool isPossible() const;
};

struct ConvertRequest {
    std::string file; ///< name of the policies file as it was given
    std::string_view text;
    std::string version; ///< of this program, for the comments
};

/// Writes the policies that the controllers of a machine use, their drives bound: one section for
/// each policy, or one for each controller where one policy is bound to different drives. What is
/// written is read and planned again: the plans must be those of the bound policies. The file has
/// no fault that needs no machine.
[[nodiscard]] ConvertedPolicies convertToPolicies(const Snapshot& snapshot,
                                                  const ConvertRequest& request);

} // namespace zolex::companion
