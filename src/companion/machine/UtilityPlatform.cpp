#include "companion/machine/UtilityPlatform.h"

#include "companion/families/Family.h"
#include "companion/machine/CarryOut.h"
#include "companion/machine/Firmware.h"
#include "companion/machine/ProgramStart.h"
#include "companion/machine/System.h"

namespace zolex::companion {

ChildResult UtilityPlatform::runChild(std::string_view commandLine, bool capture,
                                      std::chrono::milliseconds limit) {
    if (const auto carried = carriedOut(system_, utilities_, commandLine, limit)) {
        return *carried;
    }
    std::vector<std::string> arguments = utilities_.argumentsOf(commandLine);
    if (arguments.empty()) {
        return {};
    }
    const Family* const family = findFamily(commandLine);
    if (family == nullptr || !family->leavesFiles(commandLine)) {
        return runProgram(system_, arguments, capture, limit);
    }
    const system::EmptyFolder folder;
    if (folder.name().empty()) {
        return {};
    }
    arguments.front() = system::absolutePath(arguments.front());
    const auto line = commandLineOf(arguments, systemSplitting());
    return line ? system_.runChildIn(folder.name(), *line, capture, limit) : ChildResult();
}

FirmwareNames UtilityPlatform::firmware() {
    return askFirmware();
}

} // namespace zolex::companion
