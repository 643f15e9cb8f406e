#include "model/Configuration.h"

#include <utility>

namespace zolex {

namespace {

template <typename Record>
bool addWithin(std::size_t limit, std::vector<Record>& records, Record record) {
    if (records.size() >= limit) {
        return false;
    }
    records.push_back(std::move(record));
    return true;
}

} // namespace

bool RaidArray::addDrive(DrivePosition position) {
    return addWithin(maxDrives, drives_, position);
}

bool RaidArray::addDriveNumber(std::int32_t number) {
    return addWithin(maxDrives, driveNumbers_, number);
}

bool RAIDConfiguration::addArray(RaidArray array) {
    return addWithin(maxArrays, arrays_, std::move(array));
}

bool RAIDConfiguration::addLogicalDrive(LogicalDrive drive) {
    return addWithin(maxLogicalDrives, logicalDrives_, std::move(drive));
}

bool RAIDConfiguration::addHotspare(Hotspare hotspare) {
    return addWithin(maxHotspares, hotspares_, hotspare);
}

float usableFraction(std::int32_t raidLevel, std::size_t drives) {
    const auto n = static_cast<float>(drives);
    const auto allBut = [n](float redundant) { return n > 0.0F ? (n - redundant) / n : 0.0F; };
    switch (raidLevel) {
    case raid_level::raid1:
    case raid_level::raid1E:
    case raid_level::raid10:
        return 0.5F;
    case raid_level::raid5:
        return allBut(1.0F);
    case raid_level::raid5E:
    case raid_level::raid5EE:
    case raid_level::raid6:
    case raid_level::raid50:
        return allBut(2.0F);
    case raid_level::raid60:
        return allBut(4.0F);
    default:
        return 1.0F;
    }
}

std::int64_t roundedMb(double mb) {
    const double raised = mb + 0.5;
    const auto whole = static_cast<std::int64_t>(raised);
    return raised < 0 && raised == static_cast<double>(whole) ? whole + 1 : whole;
}

} // namespace zolex
