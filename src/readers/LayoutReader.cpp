#include "readers/LayoutReader.h"

#include "model/RAIDController.h"

#include <utility>

namespace zolex {

void LayoutReader::beginListing(RAIDController& controller, Listings listings) {
    beginController(controller);
    setListing(listings, 0);
    configuration_.reset();
    if (detail().layout) {
        configuration_.emplace();
    }
    drive_ = {};
    driveOpen_ = false;
}

void LayoutReader::keepConfiguration() {
    if (configuration_ && !configuration_->arrays().empty()) {
        controller().setCaptured(std::move(configuration_));
    }
    configuration_.reset();
}

void LayoutReader::beginLogicalDrive() {
    finishLogicalDrive();
    drive_ = {};
    driveOpen_ = true;
}

void LayoutReader::finishLogicalDrive() {
    if (std::exchange(driveOpen_, false)) {
        addLogicalDrive(*configuration_, drive_);
    }
}

void LayoutReader::addMembers(RaidArray& array, const std::vector<DrivePosition>& members) {
    for (const DrivePosition& member : members) {
        if (checkPosition(member.channel, member.id)) {
            addMember(array, member);
        }
    }
}

void LayoutReader::addArrayOfDrive(RaidArray array) {
    const auto index = static_cast<std::int32_t>(configuration_->arrays().size());
    if (addArray(*configuration_, std::move(array))) {
        drive_.arrayIndex = index;
    }
}

} // namespace zolex
