#pragma once

#include "companion/families/Family.h"
#include "companion/planning/Plan.h"

namespace zolex::companion {

/// makeSteps for a controller of a family: each logical drive and spare that goes has a step of its
/// own, whatever the wish.
void makeFamilySteps(const Family& family, StrategyWish wish, ControllerPlanning& planning);

/// The steps that take all off a controller of a family, foreign layouts too.
void makeFamilyReset(const Family& family, ControllerPlanning& planning);

/// Why a logical drive is not taken away, whatever was agreed to: nobody can agree to the loss of
/// what is not known. Empty: nothing keeps it.
[[nodiscard]] std::string whyNotLost(const Family& family, const LogicalDriveFacts& volume);

} // namespace zolex::companion
