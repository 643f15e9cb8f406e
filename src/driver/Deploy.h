#pragma once

#include "driver/CommandList.h"
#include "driver/CommandRun.h"
#include "driver/ExitCode.h"
#include "engine/PolicyInterpreter.h"
#include "inventory/ControllerList.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace zolex {

class ZOLEX;

/// The deployment: captures, plans and configures every controller.
class Deploy {
  public:
    explicit Deploy(ZOLEX& application) : application_(application) {}

    /// `success`, `noPolicy`, `noDrives`, `policies`, `resources`, `commandFailed`, or the result
    /// of the capture that it begins with.
    ModeResult run(ControllerList& controllers);
    /// The plans of the run, to be taken once.
    [[nodiscard]] PolicyInterpreter::Result takePlanning() { return std::move(planning_); }

  private:
    ExitCode plan(ControllerList& controllers);
    ExitCode configureControllers(CommandRun& commands, ControllerList& controllers);
    /// `nextCommand`: the first command of the list that has not been run.
    ExitCode configureController(CommandRun& commands, RAIDController& controller,
                                 const ControllerPlan& plan, std::size_t& nextCommand);
    /// Adds the commands of a layout to the list.
    ExitCode generateCommands(const RAIDController& controller, std::int32_t number,
                              const RAIDConfiguration& layout);
    bool deployCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                       CString command);

    ZOLEX& application_;
    PolicyInterpreter::Result planning_;
    CommandList commands_; ///< the commands of the run
};

} // namespace zolex
