#pragma once

#include "companion/planning/Plan.h"
#include "companion/planning/Strategy.h"
#include "model/RAIDController.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// The steps that remove, and what they destroy.
struct Removal {
    std::vector<PlanStep> steps;
    std::vector<Loss> losses;
    /// zolex's own reset lines that are not among the steps, and why.
    std::vector<std::string> oldDifferences;
};

/// The steps that make room: zolex's own reset lines where the controller is cleared as a whole,
/// else the spares and then the logical drives that go, from the last to the first.
[[nodiscard]] Removal makeRemoval(const RAIDController& record, const ControllerPlanning& planning,
                                  const StepChoice& choice);

/// The lines by which zolex returns a controller to factory defaults.
[[nodiscard]] std::vector<std::string> resetLines(const RAIDController& record,
                                                  std::int32_t number);

/// A step of this command line, with what it depends on besides the line.
[[nodiscard]] PlanStep stepOf(const RAIDController& record, const ControllerPlanning& planning,
                              const char* action, std::string command);

} // namespace zolex::companion
