#pragma once

#include "companion/findings/Finding.h"

#include <string>
#include <string_view>
#include <vector>

/// What both ways between policies and Ironic have in common; for the files of this folder alone.
namespace zolex::companion {

/// A finding of a rule, with its severity.
[[nodiscard]] Finding convertFinding(std::string_view rule, std::string summary,
                                     std::vector<std::string> help = {});

[[nodiscard]] bool hasError(const std::vector<Finding>& findings);

} // namespace zolex::companion
