#include "conf/Listing.h"

#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::conf {
namespace {

const char* stateText(DriveStatus status, const Wording& wording) {
    switch (status) {
    case DriveStatus::online:
        return "Online";
    case DriveStatus::rebuild:
        return "Rebuilding";
    case DriveStatus::hotspare:
        return wording.hotSpare;
    case DriveStatus::dedicated:
        return "Dedicated Hot-Spare";
    case DriveStatus::failed:
    case DriveStatus::bad:
        return wording.failed;
    case DriveStatus::foreign:
    case DriveStatus::jbod:
        return "Partitioned";
    case DriveStatus::missing: // is not listed
    case DriveStatus::good:
        break;
    }
    return "Ready";
}

std::string placeLine(const DriveLocation& location, const Wording& wording) {
    const int channel = location.enclosure.value_or(0);
    std::string place = formatted("%d,%d", channel, location.slot);
    if (*wording.placeMark != '\0') {
        place += formatted("(%d:0)", location.slot);
    }
    return line(9, std::string("Reported Channel,Device") + wording.placeMark, place);
}

/// Where the drive sits, and the device that watches over its enclosure.
std::string bayLines(const Controller& controller, const Drive& drive) {
    const int enclosure = drive.bay.enclosure.value_or(0);
    const ControllerIdentity& identity = controller.identity;
    const bool direct = identity.generation == Generation::newest && !identity.conf.expander;
    std::string text = line(9, "Reported Location",
                            formatted(direct ? "Connector %d, Device %d" : "Enclosure %d, Slot %d",
                                      enclosure, drive.bay.slot));
    if (direct) {
        return text;
    }
    const std::vector<EnclosureDevice>& devices = controller.identity.conf.enclosureDevices;
    const auto found =
        std::find_if(devices.begin(), devices.end(),
                     [enclosure](const EnclosureDevice& device) { return device.id == enclosure; });
    if (found != devices.end()) {
        text +=
            line(9, "Reported ESD",
                 formatted("%d,%d", found->location.enclosure.value_or(0), found->location.slot));
    }
    return text;
}

std::string driveBlock(const Controller& controller, const Drive& drive, const Wording& wording,
                       bool bays) {
    const std::int64_t sizeMb = drive.nonCoercedSectors / sectorsPerMb;
    return "         Device is a Hard drive\n" +
           line(9, "State", stateText(drive.status, wording)) + line(9, "Supported", "Yes") +
           line(9, "Transfer Speed", drive.transferSpeed) + placeLine(drive.location, wording) +
           (bays ? bayLines(controller, drive) : "") + line(9, "Vendor", drive.vendor) +
           line(9, "Model", drive.model) + line(9, "Firmware", drive.revision) +
           line(9, "Serial number", drive.serial) +
           (wording.settings ? line(9, "Block Size", "512 Bytes") : "") +
           line(9, "Size", formatted("%lld MB", static_cast<long long>(sizeMb))) +
           line(9, "Write Cache", "Disabled (write-through)") + line(9, "FRU", "None") +
           (wording.settings ? line(9, "Power State", "Full rpm") : "") +
           line(9, "PFA", drive.predictiveFailures > 0 ? "Yes" : "No") +
           (bays && drive.medium == Medium::solidState ? line(9, "SSD", "Yes") : "");
}

std::string enclosureBlock(const EnclosureDevice& device, const Wording& wording) {
    return "         Device is an Enclosure services device\n" +
           placeLine(device.location, wording) +
           line(9, "Enclosure ID", static_cast<std::size_t>(device.id)) +
           line(9, "Type", device.type) + line(9, "Vendor", device.vendor) +
           line(9, "Model", device.model) + line(9, "Firmware", device.revision) +
           "         Status of Enclosure services device\n" +
           line(12, "Temperature", device.temperature);
}

} // namespace

std::string deviceSection(const Controller& controller, const char* title, const Wording& wording,
                          bool bays) {
    std::string text = sectionHeading(title);
    std::size_t number = 0;
    for (const Drive& drive : controller.drives) {
        if (drive.status != DriveStatus::missing) {
            text += formatted("      Device #%zu\n", number++);
            text += driveBlock(controller, drive, wording, bays);
        }
    }
    for (const EnclosureDevice& device : controller.identity.conf.enclosureDevices) {
        text += formatted("      Device #%zu\n", number++);
        text += enclosureBlock(device, wording);
    }
    return text;
}

} // namespace zolex_sim::conf
