#pragma once

#include "model/Machine.h"
#include "platform/Tool.h"

#include <memory>
#include <optional>

namespace zolex {

class Report;

/// What the program asks of the machine beside its controllers.
class ZOLEXSupport {
  public:
    /// Asks the hardware detector, "hwdetect.exe /i", for the machine type and the serial number; a
    /// text whose key it does not print is empty. Nothing, after a report, when it cannot be run or
    /// ends with another code than 0. `runner` may be null, which is reported too.
    [[nodiscard]] static std::optional<Machine> gatherHardwareInfo(std::unique_ptr<Tool> runner,
                                                                   Report& report);
};

} // namespace zolex
