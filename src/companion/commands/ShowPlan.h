#pragma once

#include "companion/commands/Context.h"

#include <string>

namespace zolex::companion {

/// Shows a plan that was kept in a file. The exit code.
int showPlan(Context& context, const std::string& file);

} // namespace zolex::companion
