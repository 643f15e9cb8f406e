#include "companion/machine/UtilityPlatform.h"

#include "companion/machine/Firmware.h"
#include "companion/machine/ProgramStart.h"

namespace zolex::companion {

ChildResult UtilityPlatform::runChild(std::string_view commandLine, bool capture,
                                      std::chrono::milliseconds limit) {
    const std::vector<std::string> arguments = utilities_.argumentsOf(commandLine);
    return arguments.empty() ? ChildResult() : runProgram(system_, arguments, capture, limit);
}

FirmwareNames UtilityPlatform::firmware() {
    return askFirmware();
}

} // namespace zolex::companion
