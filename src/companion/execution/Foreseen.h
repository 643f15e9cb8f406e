#pragma once

#include "companion/execution/Apply.h"

#include <cstddef>
#include <string>

namespace zolex::companion {

/// The hash of the layout that a controller has behind the first `steps` of its own steps; empty:
/// it was not rehearsed.
[[nodiscard]] std::string expectedHash(const ControllerPlanning& planning, std::size_t steps);

} // namespace zolex::companion
