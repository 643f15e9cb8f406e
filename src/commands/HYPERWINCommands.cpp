#include "commands/HYPERWINCommands.h"

#include "model/RAIDController.h"

#include <utility>

namespace zolex {

namespace {

constexpr int exitNotOneLogicalDrive = 3;
constexpr int exitSize = 4;
constexpr int exitMirrorHotspare = 5;
constexpr int exitSecondHotspare = 6;

} // namespace

bool HYPERWINCommands::makeLines() {
    return doArraysAndLogicalDrives();
}

const CommandGenerator::Traces& HYPERWINCommands::arrayTraces() const {
    static constexpr Traces traces = {
        "Entering HYPERWINCommands::doArraysAndLogicalDrives\n",
        "Exiting HYPERWINCommands::doArraysAndLogicalDrives, returning true\n",
        "Exiting HYPERWINCommands::doArraysAndLogicalDrives, returning false(",
    };
    return traces;
}

CommandGenerator::Exit HYPERWINCommands::makeArrays() {
    if (const Exit exit = checkPlan(); exit != done) {
        return exit;
    }
    const LogicalDrive& logical = logicalDriveAt(0);
    if (const Exit exit = checkHotspares(logical); exit != done) {
        return exit;
    }
    addCommand(createLine(logical));
    if (logical.writeCache != write_cache::notGiven) {
        CString line = formatText("%s /O", prefix());
        line.append(logical.writeCache == write_cache::off ? "WR" : "W");
        addCommand(std::move(line));
    }
    return done;
}

CommandGenerator::Exit HYPERWINCommands::checkPlan() {
    const std::vector<LogicalDrive>& drives = configuration().logicalDrives();
    if (configuration().arrays().empty()) {
        fail(faultOf(FaultKind::layoutWithoutArray));
        return exitNoArray;
    }
    if (drives.empty()) {
        fail(faultOf(FaultKind::arrayWithoutLogicalDrive, 0));
        return exitNoLogicalDrive;
    }
    if (drives.size() > 1 || drives.front().arrayIndex != 0) {
        fail(faultOf(FaultKind::oneLogicalDriveOnly, 0));
        return exitNotOneLogicalDrive;
    }
    if (drives.front().sizeMb != sizeFill) {
        Fault fault = faultOf(FaultKind::fillOnly, 0);
        fault.number = drives.front().sizeMb;
        fail(fault);
        return exitSize;
    }
    return done;
}

CommandGenerator::Exit HYPERWINCommands::checkHotspares(const LogicalDrive& logical) {
    const std::size_t hotspares = configuration().hotspares().size();
    if (logical.raidLevel == raid_level::raid1 && hotspares > 0) {
        fail(faultOf(FaultKind::hotspareBesideMirror));
        return exitMirrorHotspare;
    }
    if (logical.raidLevel == raid_level::raid0 && hotspares > 1) {
        Fault fault = faultOf(FaultKind::oneHotspareOnly);
        fault.number = static_cast<std::int32_t>(hotspares);
        fail(fault);
        return exitSecondHotspare;
    }
    return done;
}

CString HYPERWINCommands::createLine(const LogicalDrive& logical) const {
    CString line = formatText("%s /A", prefix());
    if (logical.raidLevel == raid_level::raid1) {
        line.append("M ");
    } else if (logical.raidLevel == raid_level::raid0) {
        line.append(formatText("S%s ", stripeSizeWord(configuration().stripeSize)));
        if (!configuration().hotspares().empty()) {
            line.append("/! ");
        }
    }
    line.append(" /S ");
    return line;
}

} // namespace zolex
