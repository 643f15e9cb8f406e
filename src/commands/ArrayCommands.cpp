#include "commands/ArrayCommands.h"

#include "model/RAIDController.h"

namespace zolex {

bool ArrayCommands::makeLines() {
    return doArraysAndLogicalDrives() && doHotspareDrives();
}

CommandGenerator::Exit ArrayCommands::makeArrays() {
    if (configuration().arrays().empty()) {
        fail(faultOf(FaultKind::layoutWithoutArray));
        return exitNoArray;
    }
    for (std::size_t array = 0; array < configuration().arrays().size(); ++array) {
        const std::optional<std::size_t> drive = findLogicalDrive(array);
        if (!drive) {
            fail(faultOf(FaultKind::arrayWithoutLogicalDrive, array));
            return exitNoLogicalDrive;
        }
        if (const Exit exit = makeArray(array, *drive); exit != done) {
            return exit;
        }
    }
    return done;
}

bool ArrayCommands::doHotspareDrives() {
    report().trace(hotspareTraces().entering);
    return traceExit(hotspareTraces(), makeHotspares());
}

CommandGenerator::Exit ArrayCommands::makeHotspares() {
    for (const Hotspare& hotspare : configuration().hotspares()) {
        addCommand(hotspareText(hotspare));
    }
    return done;
}

} // namespace zolex
