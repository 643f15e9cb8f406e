#include "commands/CFGGENCommands.h"

#include "model/RAIDController.h"
#include "model/TypeTraits.h"

#include <utility>

namespace zolex {

namespace {

const char* translate(std::int32_t level) {
    switch (level) {
    case raid_level::raid0:
        return "IS";
    case raid_level::raid1:
        return "IM";
    case raid_level::raid1E:
        return "IME";
    default:
        return "ERROR";
    }
}

constexpr int exitSecondLogicalDrive = 3;

} // namespace

const CommandGenerator::Traces& CFGGENCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering CFGGENCommands::doArraysAndLogicalDrives\n",
        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting CFGGENCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& CFGGENCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering CFGGENCommands::doHotspareDrives\n",
        "Exiting CFGGENCommands::doHotspareDrives, returning true\n",
        "Exiting CFGGENCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

CommandGenerator::Exit CFGGENCommands::makeArrays() {
    report().tracef("Processing controller type: %d\n", controller().type());
    return ArrayCommands::makeArrays();
}

CommandGenerator::Exit CFGGENCommands::makeArray(std::size_t array, std::size_t drive) {
    const LogicalDrive& logical = logicalDriveAt(drive);
    CString line = formatText("%s %d CREATE ", prefix(), adapter());
    line.append(formatText("%s ", translateRAIDLevelLSI(logical.raidLevel)));
    if (logical.sizeMb == sizeFill) {
        line.append("MAX ");
    } else {
        line.append(formatText("%ld ", static_cast<long>(logical.sizeMb)));
    }
    for (const DrivePosition member : arrayAt(array).drives()) {
        line.append(driveText(member.channel, member.id));
    }
    if (configuration().init != init_choice::build) {
        line.append("qsync ");
    }
    line.append("NOPROMPT");
    addCommand(std::move(line));
    if (findLogicalDrive(array, drive + 1)) {
        fail(faultOf(FaultKind::secondLogicalDrive, array));
        return exitSecondLogicalDrive;
    }
    return done;
}

CommandGenerator::Exit CFGGENCommands::makeHotspares() {
    report().tracef("Processing controller type: %d\n", controller().type());
    return ArrayCommands::makeHotspares();
}

CString CFGGENCommands::hotspareText(const Hotspare& hotspare) const {
    CString line = formatText("%s %d HOTSPARE ", prefix(), adapter());
    line.append(driveText(hotspare.channelNumber, hotspare.id));
    return line;
}

CString CFGGENCommands::driveText(std::int32_t channel, std::int32_t id) const {
    if (traitsOf(controller().type()).drivesByTargetId) {
        return formatText("%d ", controller().targetId(channel, id));
    }
    return formatText("%d:%d ", channel, id);
}

const char* CFGGENCommands::translateRAIDLevelLSI(std::int32_t level) const {
    report().tracef("Entering CFGGENCommands::translateRAIDLevelLSI, level=%d\n", level);
    const char* word = translate(level);
    report().tracef("Exiting CFGGENCommands::translateRAIDLevelLSI, returnValue=%s\n", word);
    return word;
}

} // namespace zolex
