#pragma once

#include "companion/findings/Finding.h"
#include "companion/planning/Plan.h"
#include "foundation/Fault.h"
#include "model/TypeTraits.h"

#include <optional>
#include <string>
#include <vector>

/// What is wrong with a command line that was made, or that cannot be made.
namespace zolex::companion {

/// The finding of a fault of the core's generators.
[[nodiscard]] Finding lineFault(const Fault& fault);

/// The finding of a line in which a word stands for what the utility has no command for.
[[nodiscard]] std::optional<Finding> unmadeLine(const PlanStep& step, const PlannedVolume& volume);

/// Whether the line names exactly these drives, in this order; of a RAID 10, 50 or 60 those that
/// fill no span may be left out.
[[nodiscard]] bool namesItsDrives(Dialect dialect, const PlanStep& step,
                                  const std::vector<std::string>& drives);
[[nodiscard]] Finding misnamed(const PlanStep& step, const std::vector<std::string>& drives);

} // namespace zolex::companion
