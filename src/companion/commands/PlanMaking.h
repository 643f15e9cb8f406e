#pragma once

#include "companion/commands/Commands.h"
#include "companion/findings/Finding.h"
#include "companion/machine/Utilities.h"
#include "companion/planning/Plan.h"
#include "companion/text/TypedWord.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

/// Makes the plan of the machine that the options name.
class PlanMaker {
  public:
    PlanMaker(Context& context, const PlanOptions& options)
        : context_(context), options_(options) {}

    /// Reads the policies. False after a message; then `faults` has it.
    [[nodiscard]] bool readPolicies();
    /// What was typed, where it was another command than "zolexctl plan".
    void nameCommand(std::string command) { askedCommand_ = std::move(command); }
    /// Captures the machine, plans it and rehearses the plan. Nothing, after a message, without any
    /// controller. NoSuchController is passed on.
    [[nodiscard]] std::optional<MachinePlan> make(Platform& machine, const Utilities& utilities);

    [[nodiscard]] const PlanRequest& request() const { return request_; }
    /// Why there is no plan.
    [[nodiscard]] std::vector<Finding> faults() const;
    /// RFC 3339; empty before a plan was made.
    [[nodiscard]] const std::string& madeAt() const { return madeAt_; }
    /// How long reading the machine took; nothing of a recording.
    [[nodiscard]] std::optional<std::chrono::milliseconds> captureTime() const {
        return captureTime_;
    }

  private:
    Context& context_;
    const PlanOptions& options_;
    PlanRequest request_;
    std::string askedCommand_;
    std::optional<Finding> fault_; ///< of the policies file
    std::string madeAt_;
    std::optional<std::chrono::milliseconds> captureTime_;
};

/// What was typed, but for what is let pass and for how the plan is written: it makes the same
/// plan.
[[nodiscard]] std::string planCommandOf(const Context& context, const PlanOptions& options);

/// The options of a machine as they are typed: " --controller 2 --serial X".
[[nodiscard]] std::string machineArguments(const MachineOptions& machine);

} // namespace zolex::companion
