#pragma once

#include "companion/planning/PlanPolicies.h"
#include "model/RAIDController.h"
#include "policies/Policy.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Which policy is a controller's.
struct MatchedPolicy {
    std::optional<std::size_t> index; ///< of the policies; nothing without one
    std::string matchedBy;            ///< "AppliesTo.1"; empty for the built-in policy
    std::vector<PolicyMatch> considered;
    /// A policy asks for a name of the machine that is not known.
    std::optional<Finding> unknown;
};

/// What the entries of policies are held against.
struct ControllerMatch {
    MatchValues values;
    /// Of a controller that zolex does not know; empty: it knows it.
    std::string family;
    std::string pciIds;
    bool needsName = false; ///< only entries with t: count
};

/// Holds the policies against a controller, one after another.
[[nodiscard]] MatchedPolicy matchPolicies(const PlanPolicies& policies,
                                          const ControllerMatch& controller);
[[nodiscard]] MatchedPolicy matchPolicies(const PlanPolicies& policies, const Machine& machine,
                                          std::int32_t number, const RAIDController& record);

/// Why no policy is used: "no policy fits: Policy.web asks for d:8, and it is 7; ...".
[[nodiscard]] std::string whyUnmatched(const std::vector<PolicyMatch>& considered);

} // namespace zolex::companion
