#pragma once

#include "companion/planning/Diff.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// What `diff` writes on a terminal. `verbose` adds what could not be compared.
[[nodiscard]] std::string diffText(const MachineDiff& diff, const TextStyle& style, bool verbose);

} // namespace zolex::companion
