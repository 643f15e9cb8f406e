#pragma once

#include "companion/rewriting/WantedLayout.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace zolex::companion {

/// How one policy is written.
struct PolicyWriting {
    std::string name;      ///< of the section, without brackets
    std::string appliesTo; ///< the value of AppliesTo.1
    bool exact = false;
};

/// The section that makes the layout, from its header to the empty line behind it. What no policy
/// can say is told in `findings` and left out.
[[nodiscard]] std::string writePolicy(const WantedLayout& layout, const PolicyWriting& writing,
                                      std::vector<Finding>& findings);

/// "keyword = value" and the end of the line.
[[nodiscard]] std::string policyEntry(const std::string& keyword, const std::string& value);

/// The most arrays of a policy: "A" to "H".
inline constexpr std::size_t mostPolicyArrays = 8;

/// The text as comment lines of at most 78 columns, the first with `first` behind the ";".
[[nodiscard]] std::string commentLines(std::string_view first, std::string_view text);

/// Whether the layout's strip size can stand in a policy for this controller.
[[nodiscard]] bool takesStripSize(const RAIDController& controller, std::int32_t stripeSize);

} // namespace zolex::companion
