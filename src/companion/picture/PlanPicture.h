#pragma once

#include "companion/planning/Diff.h"
#include "companion/planning/Plan.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Pictures and pages of a plan: every enclosure twice, as it is now and, below, as it is planned,
/// with what is lost in red and what is new in green. Pages have no script and need no other file.
namespace zolex::companion {

[[nodiscard]] std::string planSvg(const MachinePlan& plan);
/// The picture of one controller (its index in MachinePlan::controllers), as an element of a page;
/// `prefix` tells its ids from those of other plans on the page.
[[nodiscard]] std::string planControllerSvg(const MachinePlan& plan, std::size_t index,
                                            bool withLegend, const std::string& prefix = {});
/// `madeAt` as it is to be shown; `savedTo` is the file of the plan, if it stands in one.
[[nodiscard]] std::string planHtml(const MachinePlan& plan, std::string_view madeAt,
                                   const std::string& savedTo = {});

/// What stands, and what is wanted. `snapshot` is the machine that was compared: its drives.
[[nodiscard]] std::string diffSvg(const MachineDiff& diff, const Snapshot& snapshot);
/// The picture of one compared controller, as an element of a page; `index` makes its ids unique.
[[nodiscard]] std::string diffControllerSvg(const ControllerDiff& diff,
                                            const ControllerSnapshot& controller, std::size_t index,
                                            bool withLegend);
[[nodiscard]] std::string diffHtml(const MachineDiff& diff, const Snapshot& snapshot,
                                   std::string_view madeAt);

} // namespace zolex::companion
