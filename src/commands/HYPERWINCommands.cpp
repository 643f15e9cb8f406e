#include "commands/HYPERWINCommands.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

namespace zolex {

namespace {

constexpr int exitNotOneLogicalDrive = 3;
constexpr int exitSize = 4;
constexpr int exitMirrorHotspare = 5;
constexpr int exitSecondHotspare = 6;

} // namespace

bool HYPERWINCommands::generate() {
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

std::int32_t HYPERWINCommands::defaultStripeSize() const {
    return stripe::kb64;
}

CommandGenerator::Exit HYPERWINCommands::makeArrays() {
    if (const Exit exit = checkPlan(); exit != done) {
        return exit;
    }
    replaceStripeSize();
    const LogicalDrive& logical = logicalDriveAt(0);
    if (const Exit exit = checkHotspares(logical); exit != done) {
        return exit;
    }
    addCommand(createLine(logical));
    if (logical.writeCache != write_cache::notGiven) {
        CString line = formatText("%s /O", prefix());
        line.append(logical.writeCache == write_cache::off ? "WR" : "W");
        addCommand(line);
    }
    return done;
}

CommandGenerator::Exit HYPERWINCommands::checkPlan() {
    const std::vector<LogicalDrive>& drives = configuration().logicalDrives();
    if (configuration().arrays().empty()) {
        reportNoArray();
        return exitNoArray;
    }
    if (drives.empty()) {
        reportNoLogicalDrive();
        return exitNoLogicalDrive;
    }
    if (drives.size() > 1 || drives.front().arrayIndex != 0) {
        reportOneLogicalDriveOnly();
        return exitNotOneLogicalDrive;
    }
    if (drives.front().sizeMb != sizeFill) {
        printer().errorBlockf("Error in %s:  You may only specify FILL or 100%% for 'size' on %s "
                              "controllers.\n",
                              configuration().policyName.c_str(), modelName().c_str());
        return exitSize;
    }
    return done;
}

CommandGenerator::Exit HYPERWINCommands::checkHotspares(const LogicalDrive& logical) {
    const std::size_t hotspares = configuration().hotspares().size();
    if (logical.raidLevel == raid_level::raid1 && hotspares > 0) {
        printer().errorBlockf("Error in %s:  Hot-spare drives are not supported with mirroring on "
                              "%s controllers.\n",
                              configuration().policyName.c_str(), modelName().c_str());
        return exitMirrorHotspare;
    }
    if (logical.raidLevel == raid_level::raid0 && hotspares > 1) {
        printer().errorBlockf(
            "Error in %s:  You may only create one hot-spare drive on %s controllers.\n",
            configuration().policyName.c_str(), modelName().c_str());
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
