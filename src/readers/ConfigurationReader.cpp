#include "readers/ConfigurationReader.h"

#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "model/ControllerCatalogue.h"
#include "model/RAIDController.h"

#include <utility>

namespace zolex {

std::string_view ConfigurationReader::skipTo(std::string_view wanted) {
    std::string_view line = nextLine();
    while (line != wanted && line != endOfOutput) {
        line = nextLine();
    }
    return line;
}

void ConfigurationReader::beginController(RAIDController& controller) {
    controller_ = &controller;
    reportedLimits_ = 0;
    traces_ = report_.shows(level::traces);
}

bool ConfigurationReader::addArray(RAIDConfiguration& configuration, RaidArray array) {
    return keeps(configuration.addArray(std::move(array)), Limit::arrays,
                 FaultKind::listingTooManyArrays);
}

bool ConfigurationReader::addLogicalDrive(RAIDConfiguration& configuration, LogicalDrive drive) {
    return keeps(configuration.addLogicalDrive(std::move(drive)), Limit::logicalDrives,
                 FaultKind::listingTooManyLogicalDrives);
}

bool ConfigurationReader::addHotspare(RAIDConfiguration& configuration, Hotspare hotspare) {
    return keeps(configuration.addHotspare(hotspare), Limit::hotspares,
                 FaultKind::listingTooManyHotspares);
}

bool ConfigurationReader::addMember(RaidArray& array, DrivePosition position) {
    return keeps(array.addDrive(position), Limit::members, FaultKind::listingTooManyMembers);
}

bool ConfigurationReader::addMemberNumber(RaidArray& array, std::int32_t driveNumber) {
    return keeps(array.addDriveNumber(driveNumber), Limit::members,
                 FaultKind::listingTooManyMembers);
}

bool ConfigurationReader::keeps(bool added, Limit limit, FaultKind kind) {
    const auto bit = static_cast<unsigned>(limit);
    if (!added && (reportedLimits_ & bit) == 0) {
        reportedLimits_ |= bit;
        fail(kind);
    }
    return added;
}

bool ConfigurationReader::checkPosition(std::int32_t channel, std::int32_t id) {
    if (RAIDController::isPosition(channel, id)) {
        return true;
    }
    Fault fault = faultOf(FaultKind::listingPositionInvalid);
    fault.place.channel = channel;
    fault.place.id = id;
    report_.fault(fault);
    return false;
}

bool ConfigurationReader::checkSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb) {
    if (sizeMb >= RAIDController::noDrive) {
        return true;
    }
    Fault fault = faultOf(FaultKind::listingSizeInvalid);
    fault.place.channel = channel;
    fault.place.id = id;
    fault.number = sizeMb;
    report_.fault(fault);
    return false;
}

CString ConfigurationReader::modelName() const {
    return ControllerCatalogue::getControllerName(controller_->type(), controller_->subtype());
}

Fault ConfigurationReader::faultOf(FaultKind kind) const {
    return {.kind = kind, .place = {.model = modelName(), .controller = detail_.number}};
}

void ConfigurationReader::fail(FaultKind kind) const {
    report_.fault(faultOf(kind));
}

} // namespace zolex
