#pragma once

#include "driver/CommandRun.h"
#include "driver/ExitCode.h"
#include "inventory/ControllerList.h"

#include <cstdint>

namespace zolex {

class CommandSource;
class ZOLEX;

/// The restore: returns controllers to factory defaults.
class Restore {
  public:
    explicit Restore(ZOLEX& application) : application_(application) {}

    /// Every controller (`number` -1), or the one numbered `number` from 1: `success`,
    /// `restoreFailed`, `resources`, or the result of a capture. A number that no controller has
    /// restores none, and an operator who declines does so too: both are success.
    ModeResult run(ControllerList& controllers, std::int32_t number);

  private:
    bool confirm();
    bool restoreController(CommandRun& commands, CommandSource& source, RAIDController& controller,
                           std::int32_t number);
    bool restoreCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                        CString command);

    ZOLEX& application_;
};

} // namespace zolex
