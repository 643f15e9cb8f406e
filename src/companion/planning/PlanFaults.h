#pragma once

#include "companion/findings/Finding.h"
#include "companion/machine/ProblemCodes.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// A fault that no plan can be made with, whatever is accepted. The code is one of the table.
[[nodiscard]] Finding planFault(std::string_view id, std::string summary,
                                std::vector<std::string> help);
/// A warning of a plan.
[[nodiscard]] Finding planWarning(std::string_view id, std::string summary,
                                  std::vector<std::string> help);

} // namespace zolex::companion
