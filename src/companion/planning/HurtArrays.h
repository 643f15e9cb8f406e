#pragma once

#include "companion/planning/Plan.h"
#include "companion/planning/Strategy.h"

#include <optional>
#include <string>
#include <vector>

/// Arrays of which a member has failed, is missing or is being rebuilt.
namespace zolex::companion {

[[nodiscard]] bool isHurt(const DriveFacts& drive);

/// Why some such array does not stay as it is, to its last logical drive and cache mode, or could
/// change all the same: a spare of it comes or goes, or layouts of other controllers are cleared,
/// of which one may be that of its own member. Empty when they all stay.
[[nodiscard]] std::string whyHurtArraysChange(const ControllerPlanning& planning,
                                              const StepChoice& choice);

/// The error of the first wanted array that is offline: nothing is planned beside it.
[[nodiscard]] std::optional<Finding>
offlineArrayFault(const std::string& utility, const Facts& facts, const Comparison& comparison);

/// The same of one that none of the steps deletes.
[[nodiscard]] std::optional<Finding> offlineArrayFault(const ControllerPlanning& planning);
/// The same of any, where it cannot be told what is wanted.
[[nodiscard]] std::optional<Finding> offlineArrayFault(const Facts& facts);

/// Of each array that stays so, which drive it is.
[[nodiscard]] std::vector<Finding> hurtArrayWarnings(const ControllerPlanning& planning);

} // namespace zolex::companion
