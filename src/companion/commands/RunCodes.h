#pragma once

#include "companion/execution/RunCodes.h"
#include "companion/machine/ProblemCodes.h"

#include <span>
#include <string_view>

namespace zolex::companion {

/// What runs that change a machine can tell, in the order of the ids.
[[nodiscard]] std::span<const ProblemCode> runCodes();
/// Null when there is none of this id; letter case is ignored.
[[nodiscard]] const ProblemCode* findRunCode(std::string_view id);

} // namespace zolex::companion
