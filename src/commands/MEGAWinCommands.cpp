#include "commands/MEGAWinCommands.h"

#include "model/RAIDController.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex {

namespace {

enum class DriveList { none, plain, spans };

/// RAID level code, the option that creates a logical drive of that level, and how its drives are
/// listed. A level that is not here has the option "ERROR" and no drives.
struct CommandRow {
    std::int32_t raidLevel;
    const char* option;
    DriveList drives;
};

// clang-format off
constexpr std::array<CommandRow, 7> commandRows = {{
    {raid_level::raid0,  " -CfgLdAdd R0 ",    DriveList::plain},
    {raid_level::raid1,  " -CfgLdAdd R1 ",    DriveList::plain},
    {raid_level::raid5,  " -CfgLdAdd R5 ",    DriveList::plain},
    {raid_level::raid6,  " -CfgLdAdd R6 ",    DriveList::plain},
    {raid_level::raid10, " -CfgSpanAdd R10 ", DriveList::spans},
    {raid_level::raid50, " -CfgSpanAdd R50 ", DriveList::spans},
    {raid_level::raid60, " -CfgSpanAdd R60 ", DriveList::spans},
}};
// clang-format on
constexpr CommandRow noCommand = {raid_level::none, "ERROR", DriveList::none};

const CommandRow& determineCommand(Report& report, std::int32_t raidLevel) {
    report.tracef("Entering MEGAWinCommands::determineCommand, raidLevel=%d\n", raidLevel);
    const auto row = std::find_if(commandRows.begin(), commandRows.end(),
                                  [&](const auto& each) { return each.raidLevel == raidLevel; });
    return row != commandRows.end() ? *row : noCommand;
}

const char* writeCacheOption(std::int32_t code) {
    return code == write_cache::off ? " WT " : code == write_cache::on ? " WB " : "";
}

const char* readAheadOption(std::int32_t code) {
    switch (code) {
    case read_ahead::adaptive:
        return " ADRA ";
    case read_ahead::on:
        return " RA ";
    case read_ahead::off:
        return " NORA ";
    default:
        return "";
    }
}

/// A blank follows the stripe size of a plain list only. Sizes above 128 KB are not written.
void appendStripeSize(DriveList drives, std::int32_t code, CString& line) {
    if (drives == DriveList::none || code < stripe::kb8 || code > stripe::kb128) {
        return;
    }
    line.append(formatText(" -strpsz %s", stripeSizeWord(code)));
    if (drives == DriveList::plain) {
        line.append(" ");
    }
}

// Exits of the arrays' lines.
constexpr int exitSpans = 3;
constexpr int exitHotspares = 4;
// Exit of the hot spares' line.
constexpr int exitNoPosition = 1;

} // namespace

bool MEGAWinCommands::makeLines() {
    return doArraysAndLogicalDrives();
}

const CommandGenerator::Traces& MEGAWinCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering MEGAWinCommands::doArraysAndLogicalDrives\n",
        "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting MEGAWinCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

const CommandGenerator::Traces& MEGAWinCommands::hotspareTraces() const {
    static constexpr Traces traces = {
        "Entering MEGAWinCommands::doHotspareDrives\n",
        "Exiting MEGAWinCommands::doHotspareDrives, returning true\n",
        "Exiting MEGAWinCommands::doHotspareDrives, returning false(",
    };
    return traces;
}

CommandGenerator::Exit MEGAWinCommands::makeArrays() {
    if (const Exit exit = ArrayCommands::makeArrays(); exit != done) {
        return exit;
    }
    if (!doHotspareDrives()) {
        Fault fault = faultOf(FaultKind::hotspareOutsidePositions);
        if (const Hotspare* misplaced = misplacedHotspare(); misplaced != nullptr) {
            fault.place.channel = misplaced->channelNumber;
            fault.place.id = misplaced->id;
        }
        fail(fault);
        return exitHotspares;
    }
    return done;
}

CommandGenerator::Exit MEGAWinCommands::makeArray(std::size_t array, std::size_t drive) {
    const RaidArray& members = arrayAt(array);
    const LogicalDrive& logical = logicalDriveAt(drive);
    CString line = formatText("%s ", prefix());
    const CommandRow& command = determineCommand(report(), logical.raidLevel);
    line.append(formatText("%s ", command.option));

    CString list;
    if (command.drives == DriveList::plain) {
        appendDrives(members, 0, members.drives().size(), list);
    } else if (command.drives == DriveList::spans &&
               !appendSpans(command.raidLevel, members, list)) {
        return exitSpans;
    }
    line.append(formatText(" %s ", list.c_str()));

    line.append(formatText("%s ", writeCacheOption(logical.writeCache)));
    line.append(formatText("%s ", readAheadOption(configuration().readAhead)));
    if (logical.sizeMb != sizeFill) {
        line.append(formatText(" { -sz%ld } ", static_cast<long>(logical.sizeMb)));
    }
    appendStripeSize(command.drives, configuration().stripeSize, line);
    line.append(formatText(" -a%d", adapter()));
    report().tracef("Command buffer=%s, length=%d\n", line.c_str(),
                    static_cast<int>(line.length()));
    addCommand(std::move(line));
    return done;
}

bool MEGAWinCommands::appendSpans(std::int32_t raidLevel, const RaidArray& members, CString& list) {
    constexpr std::size_t drivesOfMirror = 2;
    constexpr std::size_t parts = 2;
    const std::size_t drives = members.drives().size();
    std::size_t spans = parts;
    std::size_t drivesPerSpan = drives / parts;
    switch (raidLevel) {
    case raid_level::raid10:
        spans = drives / drivesOfMirror;
        drivesPerSpan = drivesOfMirror;
        break;
    case raid_level::raid50:
    case raid_level::raid60:
        break;
    default: {
        Fault fault = faultOf(FaultKind::levelWithoutSpans);
        fault.number = raidLevel;
        fail(fault);
        return false;
    }
    }
    for (std::size_t span = 0; span < spans; ++span) {
        list.append(formatText(" -Array%d", static_cast<int>(span)));
        appendDrives(members, span * drivesPerSpan, drivesPerSpan, list);
    }
    return true;
}

void MEGAWinCommands::appendDrives(const RaidArray& members, std::size_t first, std::size_t count,
                                   CString& list) const {
    list.append("[ ");
    for (std::size_t i = first; i < first + count; ++i) {
        const DrivePosition drive = members.drives().at(i);
        if (i > first) {
            list.append(",");
        }
        if (controller().channelReassignment()) {
            list.append(formatText("%d", controller().targetId(drive.channel, drive.id)));
        }
        list.append(formatText(":%d", drive.id));
    }
    list.append(" ] ");
}

CommandGenerator::Exit MEGAWinCommands::makeHotspares() {
    if (configuration().hotspares().empty()) {
        return done;
    }
    if (misplacedHotspare() != nullptr) {
        return exitNoPosition;
    }
    CString line = formatText("%s -PDHSP { -Set } -PhysDrv[ ", prefix());
    const char* separator = "";
    for (const Hotspare& hotspare : configuration().hotspares()) {
        line.append(separator);
        line.append(hotspareText(hotspare));
        separator = ",";
    }
    line.append(formatText(" ] -a%d", adapter()));
    addCommand(std::move(line));
    return done;
}

const Hotspare* MEGAWinCommands::misplacedHotspare() const {
    const std::vector<Hotspare>& hotspares = configuration().hotspares();
    const auto found = std::find_if(hotspares.begin(), hotspares.end(), [](const Hotspare& each) {
        return !RAIDController::isPosition(each.channelNumber, each.id);
    });
    return found != hotspares.end() ? &*found : nullptr;
}

CString MEGAWinCommands::hotspareText(const Hotspare& hotspare) const {
    return formatText("%d:%d", controller().targetId(hotspare.channelNumber, hotspare.id),
                      hotspare.id);
}

} // namespace zolex
