#pragma once

#include "driver/CommandRun.h"
#include "driver/ExitCode.h"
#include "inventory/ControllerList.h"

#include <cstdint>

namespace zolex {

class CommandSource;
class ZOLEX;

/// The capture: dumps every controller by its utility and reads the dumps into the model.
class Capture {
  public:
    /// `captured`: whether an earlier capture of the run has read controllers; becomes true once
    /// this one begins to.
    Capture(ZOLEX& application, bool& captured) : application_(application), captured_(captured) {}

    /// `success`, `captureFailed` or `resources`.
    ExitCode run(ControllerList& controllers);

  private:
    bool captureController(CommandRun& commands, CommandSource& source, RAIDController& controller,
                           std::int32_t number);
    bool captureCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                        CString command);

    ZOLEX& application_;
    bool& captured_;
};

} // namespace zolex
