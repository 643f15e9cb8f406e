#pragma once

#include "companion/rewriting/WantedLayout.h"
#include "engine/ControllerPlan.h"

#include <vector>

namespace zolex::companion {

/// What of the layout the plan would not make again; nothing when all of it. The plan's command
/// lines are made and looked at too.
[[nodiscard]] std::vector<Finding> comparePlan(const WantedLayout& layout,
                                               const ControllerPlan& plan);

/// What of the layout no policy makes again, whatever it says: how its logical drives are called,
/// built of spans, or hurt.
[[nodiscard]] std::vector<Finding> unsayable(const WantedLayout& layout);

/// The text that zolex has for a fault, in one line.
[[nodiscard]] std::string faultLine(const Fault& fault);

} // namespace zolex::companion
