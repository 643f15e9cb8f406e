#pragma once

#include "companion/families/Family.h"
#include "companion/planning/Plan.h"

#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// A planned logical drive as its family is asked for it; `spares` are made with it.
[[nodiscard]] VolumeWish wishFor(const PlannedArray& array, const PlannedVolume& volume,
                                 std::vector<std::string> spares);

/// The captured arrays that the command of a step names, by ids that their utility may give to
/// others later: those that a new dedicated spare is of. Nothing: it names one that does not stand.
[[nodiscard]] std::optional<std::vector<const LayoutGroup*>>
arraysNamedBy(const ControllerPlanning& planning, const PlanStep& step);

/// Whether the command of a step is what the family writes for what the step says that it does:
/// its action, what it creates and what it destroys. `planning` is whole, but for its comparison.
[[nodiscard]] bool isLineOfStep(const Family& family, const ControllerPlanning& planning,
                                const PlanStep& step);

} // namespace zolex::companion
