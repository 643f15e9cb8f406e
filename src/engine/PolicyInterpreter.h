#pragma once

#include "engine/ControllerPlan.h"
#include "foundation/CString.h"
#include "model/Machine.h"
#include "policies/Policy.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace zolex {

class ControllerList;
class RAIDController;
class Report;

/// Plans the controllers of a run one after another, tells about each, and stops at the first plan
/// that is refused. planControllers (engine/PlanController.h) plans all without a word.
class PolicyInterpreter {
  public:
    /// The machine; nothing, after a fault that has been reported or that is the machine's own,
    /// when it cannot be had. It is asked once, at its place among the texts.
    using MachineSource = std::function<std::optional<Machine>()>;

    struct Options {
        bool reportUnmatched = false; ///< a controller without a policy is to be told about
        bool reasons = false;         ///< whether plans say why they are so
    };

    struct Result {
        /// Of each controller that was planned or skipped, in the order of the list; a refused plan
        /// is the last.
        std::vector<ControllerPlan> plans;
        std::optional<Fault> fault; ///< which ended it; it has been reported
        bool noDrives = false;      ///< a controller that was looked at has no drives
        bool noPolicyFound = false; ///< a controller without a policy was told about

        [[nodiscard]] bool done() const { return !fault; }
    };

    PolicyInterpreter(const PolicyList& policies, const Options& options, Report& report)
        : policies_(policies), options_(options), report_(report) {}

    [[nodiscard]] Result createConfigurations(const ControllerList& controllers,
                                              const MachineSource& machine);

  private:
    /// The texts that policies are matched with; nothing when they cannot be had.
    [[nodiscard]] std::optional<Machine> getMachineInformation(const MachineSource& source);
    void reportPlan(const RAIDController& controller, const ControllerPlan& plan);
    void reportNoPolicy(const RAIDController& controller, const ControllerPlan& plan);

    const PolicyList& policies_;
    const Options options_;
    Report& report_;
};

} // namespace zolex
