#pragma once

#include "companion/planning/Plan.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// A plan that is carried out at once, in short: its steps, what is warned of, how it was rehearsed
/// and what it destroys.
[[nodiscard]] std::string planBrief(const MachinePlan& plan, const TextStyle& style);

} // namespace zolex::companion
