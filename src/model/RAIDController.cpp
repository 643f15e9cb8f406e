#include "model/RAIDController.h"

#include <utility>

namespace zolex {

RAIDController::Drive* RAIDController::at(std::int32_t channel, std::int32_t id) {
    return const_cast<Drive*>(std::as_const(*this).at(channel, id));
}

const RAIDController::Drive* RAIDController::at(std::int32_t channel, std::int32_t id) const {
    if (!isPosition(channel, id)) {
        return nullptr;
    }
    return &drives_[static_cast<std::size_t>(channel)][static_cast<std::size_t>(id)];
}

bool RAIDController::setType(std::int32_t type) {
    type_ = type;
    return true;
}

bool RAIDController::setSubtype(std::int32_t subtype) {
    subtype_ = subtype;
    return true;
}

bool RAIDController::setScanOrder(std::int32_t scanOrder) {
    if (scanOrder < 1 || scanOrder > maxScanOrder) {
        return false;
    }
    scanOrder_ = scanOrder;
    return true;
}

bool RAIDController::setPciFunction(std::int32_t function) {
    pciFunction_ = function;
    return true;
}

bool RAIDController::setSlotNumber(std::int32_t slot) {
    slotNumber_ = slot;
    return true;
}

bool RAIDController::setBusNumber(std::int32_t bus) {
    busNumber_ = bus;
    return true;
}

bool RAIDController::setPciLocation(CString location) {
    pciLocation_ = std::move(location);
    return true;
}

bool RAIDController::setBiosVersion(CString version) {
    biosVersion_ = std::move(version);
    return true;
}

bool RAIDController::setFirmwareVersion(CString version) {
    firmwareVersion_ = std::move(version);
    return true;
}

bool RAIDController::setDriverVersion(CString version) {
    driverVersion_ = std::move(version);
    return true;
}

bool RAIDController::setSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb) {
    Drive* drive = at(channel, id);
    if (drive != nullptr) {
        drive->sizeMb = sizeMb;
    }
    return drive != nullptr;
}

bool RAIDController::setSizeAndTarget(std::int32_t channel, std::int32_t id, std::int32_t sizeMb,
                                      std::int32_t targetId) {
    Drive* drive = at(channel, id);
    if (drive != nullptr) {
        drive->sizeMb = sizeMb;
        drive->targetId = targetId;
    }
    return drive != nullptr;
}

bool RAIDController::addDrive(std::int32_t channel, std::int32_t id, std::int32_t sizeMb,
                              const CString& type) {
    Drive* drive = at(channel, id);
    if (drive == nullptr) {
        return false;
    }
    drive->sizeMb = sizeMb;
    if (!type.isEmpty()) {
        drive->type = type;
    }
    return true;
}

bool RAIDController::addDrive(std::int32_t channel, std::int32_t id, std::int32_t sizeMb,
                              const CString& type, std::int32_t targetId) {
    return addDrive(channel, id, sizeMb, type) && setSizeAndTarget(channel, id, sizeMb, targetId);
}

bool RAIDController::setDriveRecord(std::int32_t channel, std::int32_t id, RaidDisk disk) {
    Drive* drive = at(channel, id);
    if (drive != nullptr) {
        drive->record = std::move(disk);
    }
    return drive != nullptr;
}

bool RAIDController::setUsed(std::int32_t channel, std::int32_t id, bool used) {
    Drive* drive = at(channel, id);
    if (drive != nullptr) {
        drive->used = used;
        drive->member = drive->member && used;
    }
    return drive != nullptr;
}

bool RAIDController::setMember(std::int32_t channel, std::int32_t id) {
    Drive* drive = at(channel, id);
    if (drive != nullptr) {
        drive->member = true;
    }
    return drive != nullptr;
}

bool RAIDController::setCaptured(std::optional<RAIDConfiguration> layout) {
    captured_ = std::move(layout);
    return true;
}

bool RAIDController::clearChannelReassignment() {
    channelReassignment_ = false;
    return true;
}

void RAIDController::swapIdentity(RAIDController& other) {
    std::swap(subtype_, other.subtype_);
    std::swap(pciLocation_, other.pciLocation_);
}

void RAIDController::forgetReadings() {
    drives_ = {};
    captured_.reset();
    channelReassignment_ = true;
}

std::int32_t RAIDController::size(std::int32_t channel, std::int32_t id) const {
    const Drive* drive = at(channel, id);
    return drive == nullptr ? noDrive : drive->sizeMb;
}

std::int32_t RAIDController::targetId(std::int32_t channel, std::int32_t id) const {
    const Drive* drive = at(channel, id);
    return drive == nullptr ? -1 : drive->targetId;
}

bool RAIDController::isUsed(std::int32_t channel, std::int32_t id) const {
    const Drive* drive = at(channel, id);
    return drive != nullptr && (drive->used || drive->member);
}

bool RAIDController::usable(DrivePosition position) const {
    const Drive* drive = at(position.channel, position.id);
    return drive != nullptr && !drive->used;
}

const std::optional<CString>& RAIDController::driveType(std::int32_t channel,
                                                        std::int32_t id) const {
    static const std::optional<CString> absent;
    const Drive* drive = at(channel, id);
    return drive == nullptr ? absent : drive->type;
}

const RaidDisk& RAIDController::driveRecord(std::int32_t channel, std::int32_t id) const {
    static const RaidDisk absent;
    const Drive* drive = at(channel, id);
    return drive == nullptr ? absent : drive->record;
}

std::int32_t RAIDController::numberOfDrives() const {
    std::int32_t n = 0;
    forEachDrive([&n](std::int32_t, std::int32_t) { ++n; });
    return n;
}

} // namespace zolex
