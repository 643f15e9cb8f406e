#include "commands/LANYARDCommands.h"

#include "model/Codes.h"
#include "model/RAIDController.h"

#include <utility>

namespace zolex {

const CommandGenerator::Traces& LANYARDCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering LANYARDCommands::doArraysAndLogicalDrives\n",
        "Exiting LANYARDCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting LANYARDCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& LANYARDCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering LANYARDCommands::doHotspareDrives\n",
        "Exiting LANYARDCommands::doHotspareDrives, returning true\n",
        "Exiting LANYARDCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

CommandGenerator::Exit LANYARDCommands::makeArray(std::size_t array, std::size_t drive) {
    CString line = formatText("%s BUILD %d RAID%s %s", prefix(), controller().scanOrder(),
                              raidLevelWord(logicalDriveAt(drive).raidLevel),
                              stripeSizeWord(configuration().stripeSize));
    for (const DrivePosition& position : arrayAt(array).drives()) {
        line.append(formatText(" %d,%d", position.channel, position.id));
    }
    addCommand(std::move(line));
    return done;
}

CString LANYARDCommands::hotspareText(const Hotspare& hotspare) const {
    return formatText("%s SPARE %d %d,%d", prefix(), controller().scanOrder(),
                      hotspare.channelNumber, hotspare.id);
}

} // namespace zolex
