#include "commands/QTCSENDCommands.h"

#include "model/RAIDController.h"

namespace zolex {

const CommandGenerator::Traces& QTCSENDCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering QTCSENDCommands::doArraysAndLogicalDrives\n",
        "Exiting QTCSENDCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting QTCSENDCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& QTCSENDCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering QTCSENDCommands::doHotspareDrives\n",
        "Exiting QTCSENDCommands::doHotspareDrives, returning true\n",
        "Exiting QTCSENDCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

CommandGenerator::Exit QTCSENDCommands::makeArray(std::size_t array, std::size_t drive) {
    addCommand(firstLine(array, logicalDriveAt(drive)));
    for (auto later = findLogicalDrive(array, drive + 1); later;
         later = findLogicalDrive(array, *later + 1)) {
        addCommand(laterLine(array, *later));
    }
    return done;
}

CString QTCSENDCommands::firstLine(std::size_t array, const LogicalDrive& logical) const {
    CString line =
        formatText("%s CREATE %d LOGICALDRIVE NEWARRAY ", prefix(), controller().scanOrder());
    if (logical.sizeMb == sizeFill) {
        line.append("MAX ");
    } else {
        line.append(formatText("%ld ", static_cast<long>(logical.sizeMb)));
    }
    line.append(formatText("%s ", raidLevelWord(logical.raidLevel)));
    for (const DrivePosition member : arrayAt(array).drives()) {
        line.append(formatText("%d %d ", member.channel, member.id));
    }
    line.append("NOPROMPT");
    return line;
}

CString QTCSENDCommands::laterLine(std::size_t array, std::size_t drive) const {
    const LogicalDrive& logical = logicalDriveAt(drive);
    CString line = formatText("%s CREATE %d LOGICALDRIVE %c ", prefix(), controller().scanOrder(),
                              'A' + static_cast<int>(array));
    const std::int64_t size = logical.sizeMb == sizeFill ? spaceLeft(array, drive) : logical.sizeMb;
    line.append(formatText("%lld ", static_cast<long long>(size)));
    line.append(formatText("%s ", raidLevelWord(logical.raidLevel)));
    line.append("NOPROMPT");
    return line;
}

std::int64_t QTCSENDCommands::spaceLeft(std::size_t array, std::size_t drive) const {
    const RaidArray& members = arrayAt(array);
    const auto fraction = [&members](const LogicalDrive& each) {
        return static_cast<double>(usableFraction(each.raidLevel, members.driveCount()));
    };
    auto raw = static_cast<double>(members.capacityMb);
    for (auto other = findLogicalDrive(array); other; other = findLogicalDrive(array, *other + 1)) {
        if (*other == drive) {
            continue;
        }
        const LogicalDrive& logical = logicalDriveAt(*other);
        const double usable = fraction(logical);
        if (logical.sizeMb == sizeFill || usable <= 0.0) {
            return 0;
        }
        raw -= static_cast<double>(logical.sizeMb) / usable;
    }
    const double left = raw * fraction(logicalDriveAt(drive));
    return roundedMb(left);
}

CString QTCSENDCommands::hotspareText(const Hotspare& hotspare) const {
    return formatText("%s SETSTATE %d %d %d HSP", prefix(), controller().scanOrder(),
                      hotspare.channelNumber, hotspare.id);
}

} // namespace zolex
