#include "commands/CONFCommands.h"

#include "model/RAIDController.h"

namespace zolex {

namespace {

/// The utilities' channel 0 is the first of the controller, which counts from 1.
std::int32_t utilityChannel(std::int32_t channel) {
    return channel - 1;
}

} // namespace

CommandGenerator::Exit CONFCommands::makeArray(std::size_t array, std::size_t drive) {
    addCommand(createLine(array, drive));
    addCacheCommands(array, logicalDriveAt(drive));
    if (findLogicalDrive(array, drive + 1)) {
        fail(faultOf(secondLogicalDriveFault(), array));
        return exitSecondLogicalDrive;
    }
    return done;
}

CString CONFCommands::createLine(std::size_t array, std::size_t drive) const {
    const LogicalDrive& logical = logicalDriveAt(drive);
    const RaidArray& members = arrayAt(array);
    CString line = formatText("%s CREATE %d LOGICALDRIVE ", prefix(), controller().scanOrder());
    if (logical.raidLevel != raid_level::raid1 && logical.raidLevel != raid_level::volume) {
        line.append(formatText("Stripesize %s ", stripeSizeWord(stripeSize(logical, members))));
    }
    line.append(
        formatText(" Name ARRAY%d_LOGICAL%d ", static_cast<int>(array), static_cast<int>(drive)));
    line.append(initText(logical));
    line.append(sizeText(logical));
    line.append(formatText("%s ", raidLevelWord(logical.raidLevel)));
    for (const DrivePosition member : members.drives()) {
        line.append(formatText("%d %d ", utilityChannel(member.channel), member.id));
    }
    line.append("NOPROMPT ");
    return line;
}

bool CONFCommands::isQuick(const LogicalDrive& logical) const {
    return logical.raidLevel != raid_level::raid0 && logical.raidLevel != raid_level::volume &&
           logical.raidLevel != raid_level::simpleVolume &&
           configuration().init != init_choice::build;
}

CString CONFCommands::hotspareText(const Hotspare& hotspare) const {
    CString line = formatText("%s SETSTATE %d DEVICE %d %d ", prefix(), controller().scanOrder(),
                              utilityChannel(hotspare.channelNumber), hotspare.id);
    line.append(hotspareEnd());
    return line;
}

} // namespace zolex
