#include "controllers/Application.h"
#include "engine/Planning.h"
#include "engine/RAIDConfigCreator.h"
#include "model/RAIDController.h"

#include <array>
#include <cmath>
#include <limits>

namespace zolex {

namespace {

constexpr std::size_t noLimit = std::numeric_limits<std::size_t>::max();

/// The numbers of drives that a RAID level takes. Columns: level; type (anyCode: every other);
/// least and most drives; whether the number must be even. The first row that fits level and type
/// counts; a level without a row takes no number.
struct DriveCountRule {
    std::int32_t raidLevel;
    std::int32_t type;
    std::size_t least;
    std::size_t most;
    bool even;
};
// clang-format off
constexpr std::array<DriveCountRule, 14> driveCountRules{{
    {raid_level::raid0,   controller_type::hrconf3, 2, noLimit, false},
    {raid_level::raid0,   controller_type::hrconf4, 1, 4,       false},
    {raid_level::raid0,   controller_type::lsiSas,  1, 10,      false},
    {raid_level::raid0,   anyCode,                  1, noLimit, false},
    {raid_level::raid1,   anyCode,                  2, 2,       false},
    {raid_level::raid1E,  anyCode,                  3, noLimit, false},
    {raid_level::raid5,   anyCode,                  3, noLimit, false},
    {raid_level::raid5E,  anyCode,                  4, noLimit, false},
    {raid_level::raid5EE, anyCode,                  4, noLimit, false},
    {raid_level::raid6,   anyCode,                  4, noLimit, false},
    {raid_level::raid10,  anyCode,                  4, noLimit, false},
    {raid_level::raid50,  anyCode,                  6, noLimit, true},
    {raid_level::raid60,  anyCode,                  8, noLimit, true},
    {raid_level::volume,  anyCode,                  1, noLimit, false},
}};
// clang-format on

bool takesDrives(std::int32_t raidLevel, std::int32_t type, std::size_t drives) {
    for (const DriveCountRule& rule : driveCountRules) {
        if (rule.raidLevel == raidLevel && (rule.type == anyCode || rule.type == type)) {
            return drives >= rule.least && drives <= rule.most && (!rule.even || drives % 2 == 0);
        }
    }
    return false;
}

bool isPercentage(std::int32_t sizeMb) {
    return sizeMb < 0 && sizeMb >= -100;
}

/// Whole MB, kept within the range of a size.
std::int32_t storedMb(double mb) {
    constexpr double largest = std::numeric_limits<std::int32_t>::max();
    return mb >= largest ? std::numeric_limits<std::int32_t>::max()
           : mb > 0.0    ? static_cast<std::int32_t>(mb)
                         : 0;
}

} // namespace

bool RAIDConfigCreator::doLogicalDrives() {
    printer().trace("Entering RAIDConfigCreator::doLogicalDrives\n");
    const bool done =
        policy_->customLogicalDrives ? doCUSTOMLogicalDrives() : doAUTOLogicalDrives();
    printer().tracef("Exiting RAIDConfigCreator::doLogicalDrives, returnValue=%s\n",
                     resultWord(done));
    return done;
}

bool RAIDConfigCreator::doAUTOLogicalDrives() {
    printer().trace("Entering RAIDConfigCreator::doAUTOLogicalDrives\n");
    bool done = true;
    for (std::size_t i = 0; done && i < plan_->arrays().size(); ++i) {
        const LogicalDrive drive = automaticLogicalDrive(i);
        done = isRAIDLevelOK(drive, *plan_) && addLogicalDrive(drive);
    }
    printer().tracef("Exiting RAIDConfigCreator::doAUTOLogicalDrives, returning %s\n",
                     resultWord(done));
    return done;
}

LogicalDrive RAIDConfigCreator::automaticLogicalDrive(std::size_t arrayIndex) const {
    const RaidArray& array = plan_->arrays()[arrayIndex];
    LogicalDrive drive;
    drive.arrayIndex = static_cast<std::int32_t>(arrayIndex);
    drive.sizeMb = defaultLogicalDriveSize(array);
    drive.raidLevel = defaultRAIDLevel(array);
    drive.writeCache = defaultWriteCache(array);
    if (!policy_->logicalDefaults) {
        return drive;
    }
    const LogicalSpecification& defaults = *policy_->logicalDefaults;
    if (defaults.raidLevel != raid_level::notGiven) {
        drive.raidLevel = defaults.raidLevel;
    }
    drive.sizeMb = plannedSize(defaults.sizeMb, drive.raidLevel, arrayIndex);
    if (defaults.writeCache != write_cache::notGiven) {
        drive.writeCache = defaults.writeCache;
    }
    return drive;
}

bool RAIDConfigCreator::doCUSTOMLogicalDrives() {
    printer().trace("Entering RAIDConfigCreator::doCUSTOMLogicalDrives\n");
    for (const LogicalSpecification& entry : policy_->logicalDrives) {
        const auto arrayIndex = static_cast<std::size_t>(entry.arrayIndex);
        if (arrayIndex >= plan_->arrays().size()) {
            printer().errorBlockf("%s -- Invalid array letter specified:  %c\n", policyName(),
                                  arrayLetter(arrayIndex));
            printer().trace(
                "Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning false(1)\n");
            return false;
        }
        LogicalDrive drive;
        drive.arrayIndex = entry.arrayIndex;
        drive.raidLevel = entry.raidLevel != raid_level::notGiven
                              ? entry.raidLevel
                              : defaultRAIDLevel(plan_->arrays()[arrayIndex]);
        drive.writeCache = entry.writeCache;
        if (!supportsRAIDLevel(drive.raidLevel)) {
            printer().errorBlockf("Error in %s -- %s does not support the RAID level specified.\n",
                                  policyName(), modelName().c_str());
            printer().trace(
                "Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning false(2)\n");
            return false;
        }
        drive.sizeMb = plannedSize(entry.sizeMb, drive.raidLevel, arrayIndex);
        if (!isRAIDLevelOK(drive, *plan_)) {
            printer().trace(
                "Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning false(3)\n");
            return false;
        }
        if (!addLogicalDrive(drive)) {
            printer().trace(
                "Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning false(4)\n");
            return false;
        }
    }
    printer().trace("Exiting RAIDConfigCreator::doCUSTOMLogicalDrives, returning true\n");
    return true;
}

bool RAIDConfigCreator::addLogicalDrive(const LogicalDrive& drive) {
    if (plan_->addLogicalDrive(drive)) {
        return true;
    }
    printer().errorBlockf("Error in %s -- %s does not support more than 8 logical drives.\n",
                          policyName(), modelName().c_str());
    application_.returnCode = planning_code::drivesDoNotFit;
    return false;
}

std::int32_t RAIDConfigCreator::plannedSize(std::int32_t sizeMb, std::int32_t raidLevel,
                                            std::size_t arrayIndex) const {
    // A size this close to what is left takes all that is left.
    constexpr double closeMb = 139.0;

    const RaidArray& array = plan_->arrays()[arrayIndex];
    if (sizeMb == sizeFill) {
        return sizeFill;
    }
    const double fraction = usableFraction(raidLevel, array.driveCount());
    double size = sizeMb;
    if (isPercentage(sizeMb)) {
        const double exact = fraction * static_cast<double>(array.capacityMb) * -sizeMb / 100.0;
        size = std::trunc(std::floor(exact + 0.5) + 0.0001);
    }
    const double difference = remainingMb(fraction, arrayIndex) - size;
    return std::abs(difference) <= closeMb ? sizeFill : storedMb(size);
}

double RAIDConfigCreator::remainingMb(double fraction, std::size_t arrayIndex) const {
    const RaidArray& array = plan_->arrays()[arrayIndex];
    auto rawMb = static_cast<double>(array.capacityMb);
    for (const LogicalDrive& planned : plan_->logicalDrives()) {
        if (static_cast<std::size_t>(planned.arrayIndex) != arrayIndex) {
            continue;
        }
        if (planned.sizeMb == sizeFill) {
            return 0.0;
        }
        rawMb -= planned.sizeMb /
                 static_cast<double>(usableFraction(planned.raidLevel, array.driveCount()));
    }
    return fraction * rawMb;
}

bool RAIDConfigCreator::isRAIDLevelOK(const LogicalDrive& drive,
                                      const RAIDConfiguration& configuration) {
    printer().trace("Entering RAIDConfigCreator::isRAIDLevelOK\n");
    const auto arrayIndex = static_cast<std::size_t>(drive.arrayIndex);
    const std::size_t drives = configuration.arrays()[arrayIndex].driveCount();
    printer().tracef("Number of drives=%d, RAID level=%d, Controller type=%d\n",
                     static_cast<int>(drives), drive.raidLevel, controller_->type());
    if (takesDrives(drive.raidLevel, controller_->type(), drives)) {
        printer().trace("Exiting RAIDConfigCreator::isRAIDLevelOK, returning true\n");
        return true;
    }
    printer().errorBlockf("Could not use %s to configure %s controller.\nThe number of drives in "
                          "the Array.%c cannot accommodate the RAID level specified.\n",
                          policyName(), modelName().c_str(), arrayLetter(arrayIndex));
    application_.returnCode = planning_code::drivesDoNotFit;
    printer().print("Not enough same size drives to accommodate requested configuration\n",
                    level::shortage);
    printer().trace("Exiting RAIDConfigCreator::isRAIDLevelOK, returning false\n");
    return false;
}

std::int32_t RAIDConfigCreator::getArrayRAIDLevel(std::size_t arrayIndex) {
    printer().trace("Entering RAIDConfigCreator::getArrayRAIDLevel\n");
    std::int32_t found = raid_level::none;
    if (policy_->customLogicalDrives) {
        for (const LogicalSpecification& entry : policy_->logicalDrives) {
            if (static_cast<std::size_t>(entry.arrayIndex) == arrayIndex) {
                found = entry.raidLevel;
                break;
            }
        }
    }
    printer().tracef("Exiting RAIDConfigCreator::getArrayRAIDLevel, returning %d\n", found);
    return found;
}

} // namespace zolex
