#pragma once

#include "companion/planning/Plan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex::companion {

/// Plans the factory defaults of the captured controllers, or of those with these numbers: by
/// zolex's own reset lines, whatever stands goes. A controller on which nothing stands is `already`
/// there; one that could not be captured is refused. `command` is what is typed to ask for it. It
/// is not rehearsed yet, and has no id.
[[nodiscard]] MachinePlan planReset(const Snapshot& snapshot,
                                    const std::vector<std::int32_t>& controllers,
                                    const std::string& command);

} // namespace zolex::companion
