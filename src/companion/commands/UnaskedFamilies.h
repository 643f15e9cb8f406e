#pragma once

#include "companion/commands/Context.h"
#include "companion/findings/Finding.h"
#include "companion/planning/Plan.h"

#include <optional>
#include <string>

/// Families of controllers that are asked only where the options name them ("--family md").
namespace zolex::companion {

/// Of policies that are for controllers of such a family ("t:MD") without the option: a warning
/// with its place, and `command` with the option as its help. Nothing of others.
[[nodiscard]] std::optional<Finding> familyNotAsked(const Context& context, const std::string& file,
                                                    const std::string& text,
                                                    const std::string& command);

/// The same of a plan, as the text of an error; empty where all of its families are asked.
[[nodiscard]] std::string whyPlanNotSeen(const Context& context, const MachinePlan& plan);

/// Of a family that this system cannot have, a text of an error; empty where all can be asked.
[[nodiscard]] std::string whyFamilyNotHere(const Context& context);

/// "no supported RAID controller was found", with what may be meant. Always
/// exit_code::notPossible.
int failWithoutController(Context& context, const std::optional<Finding>& notAsked);

/// A warning with its help on standard error.
void tellNotAsked(Context& context, const Finding& finding);

} // namespace zolex::companion
