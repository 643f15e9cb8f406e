#include "support/ModelCheck.h"

#include "model/RAIDController.h"
#include "policies/Policy.h"
#include "readers/ListingCursor.h"
#include "support/Check.h"

#include <string_view>

namespace zolex::fuzz {

namespace {

constexpr std::size_t longestText = longestListingLine;

bool isWithin(std::int64_t value, std::int64_t lowest, std::int64_t highest) {
    return value >= lowest && value <= highest;
}

/// A text that came from one line of a listing.
void checkText(std::string_view text, std::string_view what) {
    check(text.size() <= longestText, what);
    check(text.find('\n') == std::string_view::npos, what);
}

void checkArray(const RaidArray& array) {
    check(array.drives().size() <= RaidArray::maxDrives, "members of an array");
    check(array.driveNumbers().size() <= RaidArray::maxDrives, "drive numbers of an array");
    for (const DrivePosition& drive : array.drives()) {
        check(RAIDController::isPosition(drive.channel, drive.id), "position of a member");
    }
}

void checkLogicalDrive(const LogicalDrive& drive) {
    check(isWithin(drive.raidLevel, raid_level::none, raid_level::simpleVolume), "RAID level");
    check(isWithin(drive.writeCache, write_cache::off, write_cache::notGiven), "write cache");
    checkText(drive.state, "state of a logical drive");
}

/// Whether the value is within the bounds of its kind.
bool isSize(const DriveSize& size) {
    switch (size.kind) {
    case DriveSize::Kind::mb:
        return size.value > 0;
    case DriveSize::Kind::percent:
        return isWithin(size.value, 1, 100);
    case DriveSize::Kind::rest:
        return size.value == 0;
    }
    return false;
}

} // namespace

void checkConfiguration(const RAIDConfiguration& configuration, std::int32_t controllerType) {
    check(configuration.arrays().size() <= RAIDConfiguration::maxArrays, "arrays");
    check(configuration.logicalDrives().size() <= RAIDConfiguration::maxLogicalDrives,
          "logical drives");
    check(configuration.hotspares().size() <= RAIDConfiguration::maxHotspares, "hot spares");
    check(isWithin(configuration.stripeSize, stripe::kb8, stripe::none), "stripe size");
    check(isWithin(configuration.readAhead, read_ahead::adaptive, read_ahead::off), "read ahead");
    check(isWithin(configuration.rebuildRate, rebuild_rate::high, rebuild_rate::low),
          "rebuild rate");
    for (const RaidArray& array : configuration.arrays()) {
        checkArray(array);
    }
    for (const LogicalDrive& drive : configuration.logicalDrives()) {
        checkLogicalDrive(drive);
    }
    for (const Hotspare& spare : configuration.hotspares()) {
        check(RAIDController::isPosition(spare.channelNumber, spare.id), "position of a hot spare");
        check((controllerType == controller_type::megaRaid) == spare.enclosure.has_value(),
              "enclosure of a hot spare");
    }
}

void checkController(const RAIDController& controller) {
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            const RaidDisk& record = controller.driveRecord(channel, id);
            checkText(record.state, "state of a drive");
            checkText(record.serialNumber, "serial number of a drive");
            checkText(record.reportedLocation, "location of a drive");
        }
    }
    check(isWithin(controller.numberOfDrives(), 0,
                   (RAIDController::channels - RAIDController::firstChannel) * RAIDController::ids),
          "number of drives");
    if (controller.captured() != nullptr) {
        checkConfiguration(*controller.captured(), controller.type());
    }
}

void checkPolicy(const Policy& policy) {
    check(!policy.name.isEmpty(), "name of a policy");
    check(policy.arrays.size() <= Policy::maxArrays, "arrays of a policy");
    check(policy.logicalDrives.size() <= 9, "logical drives of a policy");
    for (const LogicalSpecification& drive : policy.logicalDrives) {
        check(isWithin(drive.arrayIndex, 0, static_cast<std::int64_t>(Policy::maxArrays) - 1),
              "array of a policy's logical drive");
        check(isSize(drive.size), "size of a policy's logical drive");
        check(isWithin(drive.raidLevel, raid_level::raid0, raid_level::notGiven),
              "RAID level of a policy's logical drive");
    }
    for (const RaidArray& array : policy.arrays) {
        check(array.drives().size() <= RaidArray::maxDrives, "members of a policy's array");
        check(array.allRemaining || array.driveCount() > 0, "a policy's array has drives");
    }
}

} // namespace zolex::fuzz
