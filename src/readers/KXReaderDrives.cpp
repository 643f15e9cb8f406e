#include "readers/KXReader.h"

#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/TypeTraits.h"
#include "readers/KeyFilter.h"
#include "readers/ListingValues.h"
#include "readers/StateTranslation.h"
#include "show/Dumps.h"

#include <algorithm>
#include <array>
#include <utility>

namespace zolex {

namespace {

/// The keys of the lines between drives.
enum PlaceKey : std::size_t { channelHeading, initiatorAtId, initiatorAtScsiId, driveHeading };
constexpr std::array<std::string_view, 4> placeKeys = {"Channel #", "Initiator at ID",
                                                       "Initiator at SCSI ID", "Target on"};

const KeyFilter& placeFilter() {
    static const KeyFilter filter(placeKeys);
    return filter;
}

CString utilityOf(std::int32_t type) {
    return traitsOf(type).utilityCommand;
}

/// The keys of a drive's lines.
enum DeviceKey : std::size_t {
    deviceKind,
    state,
    size,
    driveType,
    serialNumber,
    deviceId,
    enclosure,
    slot,
    scsiId,
    targetId,
};
constexpr std::array<std::string_view, 10> deviceKeys = {
    "Device is", "State",     "Size", "Drive Type", "Serial No",
    "Device ID", "Enclosure", "Slot", "SCSI ID",    "Target ID"};

const KeyFilter& deviceFilter() {
    static const KeyFilter filter(deviceKeys);
    return filter;
}

bool endsDrives(std::string_view line) {
    return line == endOfOutput || line.empty();
}

/// Where the drive stands that its utility numbers so; none when there is no such drive.
std::optional<DrivePosition> findTarget(const RAIDController& controller, std::int32_t number) {
    for (std::int32_t channel = 0; channel < RAIDController::channels; ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            if (controller.size(channel, id) != RAIDController::noDrive &&
                controller.targetId(channel, id) == number) {
                return DrivePosition{channel, id};
            }
        }
    }
    return std::nullopt;
}

} // namespace

bool KXReader::getDrives() {
    report().trace("Entering KXReader::getDrives\n");
    const KeyFilter& filter = placeFilter();
    std::int32_t channel = 0;
    for (std::string_view line = lines().nextLine(); !endsDrives(line); line = lines().nextLine()) {
        const KeyedLine keyed(line, filter);
        if (keyed.holds(channelHeading) ||
            (isCfggen_ && (keyed.holds(initiatorAtId) || keyed.holds(initiatorAtScsiId)))) {
            ++channel;
        } else if (keyed.holds(driveHeading) && !addDevice(channel)) {
            report().trace("Exiting KXReader::getDrives, returning false\n");
            return false;
        }
    }
    report().trace("Exiting KXReader::getDrives, returning true\n");
    return true;
}

bool KXReader::addDevice(std::int32_t channel) {
    report().trace("Entering KXReader::addDevice\n");
    if (traces()) {
        report().tracef("currentCommand=%s, LSI_SAS_command=%s\n",
                        utilityOf(controller().type()).c_str(),
                        utilityOf(controller_type::lsiSas).c_str());
    }
    const DeviceKey ending = isCfggen_ ? driveType : deviceId;
    const KeyFilter& filter = deviceFilter();
    Device device;
    for (std::string_view line = lines().nextLine(); !endsDrives(line); line = lines().nextLine()) {
        const KeyedLine keyed(line, filter);
        if (keyed.holdsNone()) {
            continue;
        }
        readDeviceLine(keyed, channel, device);
        if (keyed.holds(ending)) {
            break;
        }
    }
    if (const Exit exit = storeDevice(device); exit != success) {
        report().tracef("Exiting KXReader::addDevice, returning false(%d)\n", exit);
        return false;
    }
    report().trace("Exiting KXReader::addDevice, returning true\n");
    return true;
}

void KXReader::readDeviceLine(const KeyedLine& keyed, std::int32_t channel, Device& device) {
    const std::string_view line = keyed.text();
    if (keyed.holds(deviceKind)) {
        const std::string_view kindKey = deviceKeys[deviceKind];
        const std::size_t kind = line.find(kindKey);
        device = {};
        if (text::contains(line.substr(kind + kindKey.size()), "Hard disk")) {
            device.disk.emplace().channelNumber = placesBySlot_ ? -1 : channel;
        }
        return;
    }
    if (!device.disk) {
        return;
    }
    RaidDisk& disk = *device.disk;
    if (readDriveLocation(keyed, disk)) {
        return;
    }
    const std::string_view value = valueBetweenColons(line);
    if (keyed.holds(state)) {
        readDeviceState(value, device);
    } else if (keyed.holds(size)) {
        disk.sizeMb = text::leadingInt(value);
    } else if (keyed.holds(driveType)) {
        device.type = value;
    } else if (keyed.holds(serialNumber)) {
        disk.serialNumber = value;
        device.controllersOwn = device.controllersOwn || text::contains(value, "LSIInternalUse");
    }
}

bool KXReader::readDriveLocation(const KeyedLine& keyed, RaidDisk& disk) {
    const bool namesEnclosure = placesBySlot_ && keyed.holds(enclosure);
    const bool namesSlot = placesBySlot_ && keyed.holds(slot);
    if (!namesEnclosure && !namesSlot && !keyed.holds(scsiId) && !keyed.holds(targetId)) {
        return false;
    }
    const std::int32_t number = text::leadingInt(valueBetweenColons(keyed.text()));
    if (namesEnclosure) {
        disk.channelNumber = number;
        report().tracef("Found 'Enclosure', setting channel=%d\n", number);
    } else if (namesSlot) {
        disk.diskNumber = number;
        report().tracef("Found 'Slot', setting ID=%d\n", number);
    } else {
        disk.id = number;
        report().tracef("Found 'SCSI ID' or 'Target ID', setting ID=%d\n", number);
    }
    return true;
}

void KXReader::readDeviceState(std::string_view value, Device& device) {
    // Each of the marks begins with a parenthesis.
    const std::string_view marks = value.substr(std::min(value.find('('), value.size()));
    const bool hotSpare = text::contains(marks, "(HSP)");
    const bool failed = text::contains(marks, "(DDD)");
    device.hotSpare = device.hotSpare || hotSpare;
    device.failed = device.failed || failed;
    device.online = device.online || (!hotSpare && !failed && !text::contains(marks, "(MIS)"));
    device.disk->state = value;
    report().tracef("Found 'State', setting state=%s\n", device.disk->state.c_str());
    device.disk->derivedState = failed && configuration() != nullptr ? badState : goodState;
    report().tracef("Setting derived state=%s\n", device.disk->derivedState.c_str());
}

KXReader::Exit KXReader::storeDevice(Device& device) {
    constexpr Exit noChannel = 1;
    constexpr Exit noId = 2;
    constexpr Exit noSlot = 3;
    const bool present = device.online || device.hotSpare || device.failed;
    if (!device.disk || !present || device.controllersOwn ||
        device.disk->sizeMb == RAIDController::noDrive) {
        return success;
    }
    const RaidDisk& disk = *device.disk;
    if (disk.channelNumber < 0) {
        fail(FaultKind::listingChannelMissing);
        return noChannel;
    }
    if (disk.id < 0) {
        fail(FaultKind::listingIdMissing);
        return noId;
    }
    if (placesBySlot_ && disk.diskNumber < 0) {
        fail(FaultKind::listingSlotMissing);
        return noSlot;
    }
    storeDrive(device);
    return success;
}

void KXReader::storeDrive(Device& device) {
    RaidDisk& disk = *device.disk;
    const std::int32_t channel = disk.channelNumber;
    const std::int32_t targetNumber = disk.id;
    const std::int32_t id = placesBySlot_ ? disk.diskNumber : disk.id;
    if (!checkPosition(disk.channelNumber, id) || !checkSize(disk.channelNumber, id, disk.sizeMb)) {
        return;
    }
    controller().addDrive(disk.channelNumber, id, disk.sizeMb, device.type, disk.id);
    if (device.failed) {
        controller().setUsed(disk.channelNumber, id);
    }
    const bool debug = detail().dumpRecords;
    if (debug) {
        report().note(level::ungated, show::dumpText(disk));
    }
    controller().setDriveRecord(channel, id, std::move(disk));
    if (device.hotSpare && configuration() != nullptr) {
        const Hotspare hotspare = {
            .channelNumber = channel, .id = id, .diskNumber = placesBySlot_ ? targetNumber : -1};
        addHotspare(*configuration(), hotspare);
        if (debug) {
            report().note(level::ungated, show::dumpText(hotspare));
        }
    }
}

void KXReader::locateMembers() {
    for (RaidArray& array : configuration()->arrays()) {
        for (const std::int32_t number : array.driveNumbers()) {
            if (const auto position = findTarget(controller(), number)) {
                addMember(array, *position);
            }
        }
    }
}

} // namespace zolex
