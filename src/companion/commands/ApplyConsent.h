#pragma once

#include "companion/commands/Context.h"
#include "companion/commands/DestroyWish.h"
#include "companion/execution/Apply.h"

#include <functional>
#include <string>
#include <vector>

namespace zolex::companion {

/// What is said of losses, and by whom.
struct ConsentTerms {
    DestroyWish wish;
    /// What carries the plan out; with " --destroy CODE" behind it, it is agreed to.
    std::string command;
    bool isListed = false; ///< what would be lost was shown already
    /// Empty where certificates of earlier runs tell of each of the losses, else why not.
    std::function<std::string(const std::vector<Loss>& losses)> notOwn;
    /// Waits for a line on the terminal; false when the user interrupts. Empty: reading waits.
    std::function<bool()> awaitLine;
};

/// What the user says to the losses: beforehand, or on the terminal, where he has three tries to
/// type the serial number of the machine, or, where that is not told, the code. What would be lost
/// is written to standard error first, unless it was agreed to.
[[nodiscard]] ConsentAnswer consentTo(Context& context, const MachinePlan& plan,
                                      const std::vector<Loss>& losses, const ConsentTerms& terms);

/// The code that agrees to exactly these losses of the plan. Without losses, where nothing unique
/// tells the machine: the plan's id.
[[nodiscard]] std::string askedCode(const MachinePlan& plan, const std::vector<Loss>& losses);

} // namespace zolex::companion
