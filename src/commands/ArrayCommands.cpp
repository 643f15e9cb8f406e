#include "commands/ArrayCommands.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

namespace zolex {

bool ArrayCommands::generate() {
    return doArraysAndLogicalDrives() && doHotspareDrives();
}

CommandGenerator::Exit ArrayCommands::makeArrays() {
    if (configuration().arrays().empty()) {
        reportNoArray();
        return exitNoArray;
    }
    replaceStripeSize();
    for (std::size_t array = 0; array < configuration().arrays().size(); ++array) {
        const std::optional<std::size_t> drive = findLogicalDrive(array);
        if (!drive) {
            reportNoLogicalDrive();
            return exitNoLogicalDrive;
        }
        if (const Exit exit = makeArray(array, *drive); exit != done) {
            return exit;
        }
    }
    return done;
}

bool ArrayCommands::doHotspareDrives() {
    printer().trace(hotspareTraces().entering);
    return traceExit(hotspareTraces(), makeHotspares());
}

CommandGenerator::Exit ArrayCommands::makeHotspares() {
    for (const Hotspare& hotspare : configuration().hotspares()) {
        addCommand(hotspareText(hotspare));
    }
    return done;
}

} // namespace zolex
