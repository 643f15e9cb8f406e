#pragma once

#include "companion/machine/ProblemCodes.h"

#include <span>
#include <string_view>

namespace zolex::companion {

/// What can be wrong with files that zolexctl writes or reads beside policies: captured policies
/// (ZC) and recordings (ZR). In the order of their ids.
[[nodiscard]] std::span<const ProblemCode> fileCodes();
/// Null when there is none of this id; letter case is ignored.
[[nodiscard]] const ProblemCode* findFileCode(std::string_view id);

} // namespace zolex::companion
