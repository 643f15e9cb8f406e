#include "conf/Listing.h"

#include "frontend/BlockListing.h"
#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::conf {
namespace {

constexpr std::size_t colonColumn = 44;
constexpr std::size_t sectionRulerLength = 70;
constexpr std::size_t blockRulerLength = 56;
constexpr std::size_t blockIndent = 3;

std::size_t drivesThat(const Controller& controller, DriveStatus status) {
    return static_cast<std::size_t>(
        std::count_if(controller.drives.begin(), controller.drives.end(),
                      [status](const Drive& drive) { return drive.status == status; }));
}

std::size_t logicalDrivesThat(const Controller& controller, LogicalDriveState state) {
    return static_cast<std::size_t>(std::count_if(
        controller.logicalDrives.begin(), controller.logicalDrives.end(),
        [&](const LogicalDrive& drive) { return controller.stateOf(drive) == state; }));
}

} // namespace

std::string line(std::size_t indent, const std::string& key, const std::string& value) {
    return keyLine(indent, key, colonColumn, value);
}

std::string line(std::size_t indent, const std::string& key, std::size_t value) {
    return line(indent, key, std::to_string(value));
}

std::string sectionHeading(const std::string& title) {
    const std::string ruler = std::string(sectionRulerLength, '-') + "\n";
    return ruler + title + "\n" + ruler;
}

std::string blockRuler() {
    return std::string(blockIndent, ' ') + std::string(blockRulerLength, '-') + "\n";
}

std::string blockHeading(const std::string& title) {
    return blockRuler() + std::string(blockIndent, ' ') + title + "\n" + blockRuler();
}

std::string controllerLines(const Controller& controller, const Wording& wording) {
    const ControllerIdentity& identity = controller.identity;
    const ConfIdentity& conf = identity.conf;
    std::string text =
        line(3, "Controller Status", conf.status) + line(3, "Channel description", conf.channels) +
        line(3, "Controller Model", identity.productName) +
        line(3, "Controller Serial Number", identity.serialNumber) +
        line(3, "Physical Slot", static_cast<std::size_t>(conf.physicalSlot)) +
        line(3, "Installed memory", conf.memory) + line(3, "Copyback", conf.copyback) +
        line(3, "Data scrubbing", conf.dataScrubbing);
    if (!conf.failover.empty()) {
        text += line(3, "Automatic Failover", conf.failover);
    }
    const std::size_t defunct =
        drivesThat(controller, DriveStatus::failed) + drivesThat(controller, DriveStatus::bad);
    return text + line(3, "Defunct disk drive count", defunct) +
           line(3, formatted("Logical %ss/Offline/Critical", wording.drive),
                formatted("%zu/%zu/%zu", controller.logicalDrives.size(),
                          logicalDrivesThat(controller, LogicalDriveState::offline),
                          logicalDrivesThat(controller, LogicalDriveState::degraded)));
}

} // namespace zolex_sim::conf
