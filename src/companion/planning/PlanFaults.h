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

/// How the policies are named to zolexctl plan: "--default" for none, "-" for standard input.
[[nodiscard]] std::string policiesArgument(const std::string& policiesFile);
/// Names them in what helps.
void namePolicies(std::vector<Finding>& findings, const std::string& policiesFile);

/// Whether the listings of a controller, or of the machine, are not its own or are none: what a
/// plan would be made of is not what stands there.
[[nodiscard]] bool isMisread(const Finding& finding);
/// Those of the findings that say so are refused by every plan, whatever is accepted.
void refuseMisread(std::vector<Finding>& findings);

} // namespace zolex::companion
