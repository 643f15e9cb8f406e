#pragma once

#include "engine/Reason.h"
#include "policies/Policy.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace zolex {

/// Why an AppliesTo entry matches or not: kind, and the first specifier that does not hold with its
/// value and the controller's. It matches exactly when AppliesTo::matches says so.
[[nodiscard]] Reason explainMatch(const AppliesTo& entry, const MatchValues& values);

/// Index of the first policy that matches. With `reasons` one is added for each entry that was
/// looked at.
[[nodiscard]] std::optional<std::size_t>
findPolicy(const PolicyList& policies, const MatchValues& values, std::vector<Reason>* reasons);

} // namespace zolex
