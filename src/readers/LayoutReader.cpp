#include "readers/LayoutReader.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

#include <utility>

namespace zolex {

Printer& LayoutReader::printer() const {
    return application().printer();
}

void LayoutReader::beginListing(RAIDController& controller,
                                std::shared_ptr<CapturedOutput> output) {
    beginController(controller);
    setOutput(std::move(output));
    configuration_ =
        application().settings.capture ? std::make_unique<RAIDConfiguration>() : nullptr;
    drive_ = {};
    driveOpen_ = false;
}

void LayoutReader::keepConfiguration() {
    if (configuration_ && !configuration_->arrays().empty()) {
        controller().setConfiguration(std::move(configuration_));
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
