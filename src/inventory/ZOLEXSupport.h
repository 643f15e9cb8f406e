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
    /// The command line that asks the hardware detector.
    static constexpr const char* detectorCommand = "hwdetect.exe /i";

    /// Asks the hardware detector for the machine type and the serial number; a text whose key it
    /// does not print is empty. Nothing, after a report, when it cannot be run or ends with another
    /// code than 0. `runner` may be null, which is reported too.
    [[nodiscard]] static std::optional<Machine> gatherHardwareInfo(std::unique_ptr<Tool> runner,
                                                                   Report& report);
};

} // namespace zolex
