#pragma once

#include "platform/Tool.h"

#include <memory>

namespace zolex {

class Application;

/// What the program asks of the machine beside its controllers.
class ZOLEXSupport {
  public:
    /// Makes the runner of one query; null when it cannot be made.
    using ToolMaker = std::unique_ptr<Tool> (*)(Application& application);

    /// Asks the hardware detector, "hwdetect.exe /i", for the machine type and the serial number
    /// and stores them in the application object; a field whose key it does not print keeps its
    /// value. False, with a message, when it cannot be run or ends with another code than 0.
    static bool gatherHardwareInfo(Application& application);
    /// The same with a runner from elsewhere.
    static bool gatherHardwareInfo(Application& application, ToolMaker makeTool);
};

} // namespace zolex
