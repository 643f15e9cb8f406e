#pragma once

#include "companion/planning/Plan.h"
#include "companion/text/Terminal.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>

namespace zolex::companion {

/// What the text of a plan is told besides the plan.
struct PlanTextTerms {
    bool verbose = false;
    /// The usual time of a utility's commands, by the utility's name ("MEGACLI"). Without one for
    /// any utility of the plan there is no column of it.
    std::map<std::string, std::chrono::milliseconds> usualTimes;
    std::optional<std::chrono::milliseconds> captureTime; ///< how long reading the machine took
    std::string writtenTo; ///< file that is no plan to be carried out: a picture or a text
    std::string savedTo;   ///< file of the plan; empty: not saved
};

/// What `plan` writes on a terminal.
[[nodiscard]] std::string planText(const MachinePlan& plan, const TextStyle& style,
                                   const PlanTextTerms& terms = {});

} // namespace zolex::companion
