#pragma once

#include "companion/commands/Context.h"

#include <string>

namespace zolex::companion {

/// Whether the file begins as the document of a plan does; false for one that cannot be read.
[[nodiscard]] bool isPlanFile(Platform& platform, const std::string& file);

/// Shows a plan that was kept in a file. The exit code.
int showPlan(Context& context, const std::string& file);

} // namespace zolex::companion
