#pragma once

#include "companion/planning/Plan.h"
#include "model/RAIDController.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// Chooses the strategy and makes the command lines of one controller: removals that leave what
/// already stands, where the utility has them, else a clear of the whole controller; then what is
/// to be created. Where equal drives have changed places, arrays and spares that no list names are
/// planned for those that do the work. It starts from `configuration`, `before`, `after` and
/// `comparison`; it fills strategy, losses, steps (numbered from 1), oldDifferences and, where a
/// line cannot be made or the wish cannot be met, diagnostics.
void makeSteps(const RAIDController& record, StrategyWish wish, ControllerPlanning& planning);

/// The consent code for exactly this machine and these losses: Crockford base32 of the first 40
/// bits of SHA-256 over the identity's hash and the losses, "7Q4K-2M9D". Empty without losses.
[[nodiscard]] std::string consentCode(const std::string& identityHash,
                                      const std::vector<Loss>& losses);

} // namespace zolex::companion
