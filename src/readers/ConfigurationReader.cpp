#include "readers/ConfigurationReader.h"

#include "controllers/Application.h"
#include "model/RAIDController.h"

#include <utility>

namespace zolex {

namespace {

/// Ends a line at its first carriage return or zero byte.
std::string_view cutAtStringEnd(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    return line.substr(0, line.find('\r'));
}

/// The line that a piece of at most `capturedLineLimit` bytes of the output makes.
std::string_view lineOf(std::string_view piece) {
    if (!piece.empty() && piece.back() == '\n') {
        return cutAtStringEnd(piece.substr(0, piece.size() - 1));
    }
    // A full piece is a line of its own; anything shorter is a last line that never ended.
    return piece.size() == capturedLineLimit ? cutAtStringEnd(piece) : endOfOutput;
}

} // namespace

std::string_view ConfigurationReader::nextLine() {
    if (!output_ || ended_) {
        return endOfOutput;
    }
    const std::string_view line = lineOf(output_->nextPiece(capturedLineLimit));
    ended_ = line == endOfOutput;
    return line;
}

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
}

bool ConfigurationReader::addArray(RAIDConfiguration& configuration, RaidArray array) {
    const bool added = configuration.addArray(std::move(array));
    if (!added && isFirst(Limit::arrays)) {
        application_.printer().errorBlockf(
            "Controller %s has more than 16 arrays; the rest is not captured.\n",
            modelName().c_str());
    }
    return added;
}

bool ConfigurationReader::addLogicalDrive(RAIDConfiguration& configuration, LogicalDrive drive) {
    const bool added = configuration.addLogicalDrive(std::move(drive));
    if (!added && isFirst(Limit::logicalDrives)) {
        application_.printer().errorBlockf(
            "Controller %s has more than 8 logical drives; the rest is not captured.\n",
            modelName().c_str());
    }
    return added;
}

bool ConfigurationReader::addHotspare(RAIDConfiguration& configuration, Hotspare hotspare) {
    const bool added = configuration.addHotspare(hotspare);
    if (!added && isFirst(Limit::hotspares)) {
        application_.printer().errorBlockf(
            "Controller %s has more than 8 hot-spare drives; the rest is not captured.\n",
            modelName().c_str());
    }
    return added;
}

bool ConfigurationReader::addMember(RaidArray& array, DrivePosition position) {
    return keepsMember(array.addDrive(position));
}

bool ConfigurationReader::addMemberNumber(RaidArray& array, std::int32_t driveNumber) {
    return keepsMember(array.addDriveNumber(driveNumber));
}

bool ConfigurationReader::keepsMember(bool added) {
    if (!added && isFirst(Limit::members)) {
        application_.printer().errorBlockf(
            "Controller %s has more than 32 drives in an array; the rest is not captured.\n",
            modelName().c_str());
    }
    return added;
}

bool ConfigurationReader::checkPosition(std::int32_t channel, std::int32_t id) {
    if (RAIDController::isPosition(channel, id)) {
        return true;
    }
    application_.printer().errorBlockf(
        "Drive position out of range for controller %s:  channel=%d, id=%d\n", modelName().c_str(),
        channel, id);
    return false;
}

bool ConfigurationReader::checkSize(std::int32_t channel, std::int32_t id, std::int32_t sizeMb) {
    if (sizeMb >= RAIDController::noDrive) {
        return true;
    }
    application_.printer().errorBlockf(
        "Drive size out of range for controller %s:  channel=%d, id=%d, size=%d MB\n",
        modelName().c_str(), channel, id, sizeMb);
    return false;
}

bool ConfigurationReader::isFirst(Limit limit) {
    const auto bit = static_cast<unsigned>(limit);
    const bool first = (reportedLimits_ & bit) == 0;
    reportedLimits_ |= bit;
    return first;
}

CString ConfigurationReader::modelName() const {
    return application_.controllerName(controller_->type(), controller_->subtype());
}

} // namespace zolex
