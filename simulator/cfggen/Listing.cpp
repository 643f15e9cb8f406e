#include "cfggen/Listing.h"

#include "frontend/BlockListing.h"
#include "frontend/Words.h"
#include "model/Text.h"

#include <cstdint>

namespace zolex_sim::cfggen {
namespace {

constexpr std::size_t colon = 42; ///< column of the ":"

std::string line(std::string_view key, std::string_view value) {
    return keyLine(2, key, colon, value);
}

std::string adapterBlock(const ControllerIdentity& identity, Bus bus) {
    const bool sas = bus == Bus::sas;
    const std::string initiator = std::to_string(identity.block.initiatorId);
    return blockTitle("Controller information") + line("Controller type", identity.productName) +
           line("BIOS version", identity.bios) + line("Firmware version", identity.firmware) +
           line("Channel description", sas ? "1 Serial Attached SCSI" : "1 Parallel SCSI") +
           (sas ? line("Initiator ID", initiator)
                : line("Initiator IDs (Channel/SCSI ID)", "1/" + initiator)) +
           line("Maximum physical devices", sas ? "62" : "15") +
           line("Concurrent commands supported", sas ? "511" : "222") +
           line("Slot", slotText(identity)) + line("Bus", std::to_string(identity.block.bus)) +
           line("Device", std::to_string(identity.pci.device)) +
           line("Function", std::to_string(identity.pci.function)) + line("RAID Support", "Yes");
}

std::string volume(const Controller& controller, std::size_t number, Bus bus) {
    const LogicalDrive& drive = controller.logicalDrives[number];
    std::vector<std::string> members;
    for (const DriveLocation& location : controller.arrays[drive.array].spans.front()) {
        members.push_back(std::to_string(targetId(*controller.driveAt(location), bus)));
    }
    return formatted("IR volume %zu\n", number + 1) + line("Volume ID", std::to_string(number)) +
           line("Status of volume", logicalDriveStateText(controller, drive)) +
           line("RAID level", levelWord(drive.level)) +
           line("Size (in MB)", std::to_string(drive.sizeMb)) +
           line("Physical hard disks (Target ID)", join(members, " "));
}

/// Of drives at a SCSI bus the medium is not told.
std::string typeText(const Drive& drive, Bus bus) {
    return drive.interface + (bus == Bus::sas && drive.medium == Medium::solidState ? "_SSD" : "");
}

std::string driveBlock(const Drive& drive, Bus bus) {
    const std::string id = std::to_string(targetId(drive, bus));
    const std::string place =
        bus == Bus::sas
            ? "Target on ID #" + id + "\n  Device is a Hard disk\n" +
                  line("Enclosure #", std::to_string(drive.location.enclosure.value_or(0))) +
                  line("Slot #", std::to_string(drive.location.slot)) + line("Target ID", id)
            : "Target on SCSI ID #" + id + "\n  Device is a Hard disk\n" + line("SCSI ID", id);
    return place + line("State", driveStateText(drive.status)) +
           line("Size (in MB)/(in sectors)", sizesText(drive)) +
           line("Manufacturer", drive.vendor) + line("Model Number", drive.model) +
           line("Firmware Revision", drive.revision) + line("Serial No", drive.serial) +
           line("Drive Type", typeText(drive, bus));
}

std::string enclosureBlock(const Controller& controller) {
    std::string text;
    for (const EnclosureBox& box : controller.identity.block.enclosures) {
        const auto high = static_cast<unsigned>(box.logicalId >> 32);
        const auto low = static_cast<unsigned>(box.logicalId & 0xFFFFFFFFU);
        text += keyLine(0, "Enclosure#", colon, std::to_string(box.number)) +
                line("Logical ID", formatted("%08x:%08x", high, low)) +
                line("Numslots", std::to_string(box.slots)) + line("StartSlot", "0") +
                line("Start TargetID", "0") + line("Start Bus", "0");
    }
    return blockTitle("Enclosure information") + text;
}

} // namespace

int targetId(const Drive& drive, Bus bus) {
    return bus == Bus::sas ? drive.deviceId : drive.location.slot;
}

std::string listing(const Controller& controller, Bus bus) {
    std::string text = adapterBlock(controller.identity, bus) + blockTitle("IR Volume information");
    for (std::size_t number = 0; number < controller.logicalDrives.size(); ++number) {
        text += volume(controller, number, bus);
    }
    text += blockTitle("Physical device information") +
            formatted(bus == Bus::sas ? "Initiator at ID #%d\n" : "Initiator at SCSI ID #%d\n",
                      controller.identity.block.initiatorId);
    for (const Drive& drive : controller.drives) {
        text += driveBlock(drive, bus);
    }
    return text + (bus == Bus::sas ? enclosureBlock(controller) : "") + std::string(blockSeparator);
}

} // namespace zolex_sim::cfggen
