#include "qtcsend/Listing.h"

#include "frontend/BlockListing.h"
#include "frontend/Words.h"
#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::qtcsend {
namespace {

constexpr std::size_t colon = 43; ///< column of the ":"
constexpr std::size_t membersPerLine = 8;

std::string line(std::size_t indent, std::string_view key, std::string_view value) {
    return keyLine(indent, key, colon, value);
}

/// Channels are numbered from 1 without gaps.
int channelsOf(const Controller& controller) {
    int channels = 1;
    for (const Drive& drive : controller.drives) {
        channels = std::max(channels, drive.location.enclosure.value_or(0));
    }
    return channels;
}

std::size_t drivesThat(const Controller& controller, LogicalDriveState state) {
    return static_cast<std::size_t>(std::count_if(
        controller.logicalDrives.begin(), controller.logicalDrives.end(),
        [&](const LogicalDrive& drive) { return controller.stateOf(drive) == state; }));
}

std::string readAheadText(ReadPolicy policy) {
    switch (policy) {
    case ReadPolicy::adaptive:
        return "Adaptive";
    case ReadPolicy::ahead:
        return "Enabled";
    case ReadPolicy::none:
        break;
    }
    return "Disabled";
}

std::string initiators(const Controller& controller) {
    std::vector<std::string> places;
    for (int channel = 1; channel <= channelsOf(controller); ++channel) {
        places.push_back(formatted("%d/%d", channel, controller.identity.block.initiatorId));
    }
    return join(places, " ");
}

std::string controllerBlock(const Controller& controller) {
    const ControllerIdentity& identity = controller.identity;
    const auto defunct =
        std::count_if(controller.drives.begin(), controller.drives.end(),
                      [](const Drive& drive) { return drive.status == DriveStatus::failed; });
    const int channels = channelsOf(controller);
    constexpr int placesPerChannel = 15;
    return blockTitle("Controller information") + line(3, "Controller type", identity.model) +
           line(3, "BIOS version", identity.bios) + line(3, "Firmware version", identity.firmware) +
           line(3, "Channel description", formatted("%d parallel SCSI", channels)) +
           line(3, "Initiator IDs (Channel/SCSI ID)", initiators(controller)) +
           line(3, "Maximum physical devices", std::to_string(placesPerChannel * channels)) +
           line(3, "Defunct disk drive count", std::to_string(defunct)) +
           line(3, "Logical drives/Offline/Critical",
                formatted("%zu/%zu/%zu", controller.logicalDrives.size(),
                          drivesThat(controller, LogicalDriveState::offline),
                          drivesThat(controller, LogicalDriveState::degraded))) +
           line(3, "Slot", slotText(identity)) +
           line(3, "Controller name", identity.block.controllerName) +
           line(3, "Rebuild rate", identity.block.rebuildPriority) +
           line(3, "Readahead cache setting", readAheadText(identity.defaultReadPolicy)) +
           line(3, "Stripe-unit size", formatted("%d KB", identity.defaultStripeKb)) +
           line(3, "Battery backup", "Not installed");
}

std::string logicalDrive(const Controller& controller, std::size_t number) {
    const LogicalDrive& drive = controller.logicalDrives[number];
    const std::size_t members = controller.arrays[drive.array].spans.front().size();
    const bool writeBack = drive.writePolicy == WritePolicy::writeBack;
    const bool isStriped =
        drive.level != RaidLevel::raid1 || controller.identity.showsMirrorStripe.value_or(true);
    return formatted("   Logical drive number %zu\n", number + 1) +
           line(6, "Status of logical drive", logicalDriveStateText(controller, drive)) +
           line(6, "RAID level", levelWord(drive.level)) +
           line(6, "Size (in MB)", std::to_string(drive.sizeMb)) +
           line(6, "Write cache status", writeBack ? "Write back (WB)" : "Write through (WT)") +
           line(6, "Number of chunks", std::to_string(members)) +
           (isStriped ? line(6, "Stripe-unit size", formatted("%d KB", drive.stripeKb)) : "") +
           line(6, "Part of array", arrayName(drive.array));
}

/// The members of an array, continued on further lines below each other.
std::string arrayLines(const Controller& controller, std::size_t array) {
    const std::vector<DriveLocation>& members = controller.arrays[array].spans.front();
    std::string text;
    for (std::size_t first = 0; first < members.size(); first += membersPerLine) {
        std::vector<std::string> places;
        for (std::size_t i = first; i < std::min(first + membersPerLine, members.size()); ++i) {
            places.push_back(formatted("%d,%d", members[i].enclosure.value_or(0), members[i].slot));
        }
        text += first == 0 ? line(3, "Array " + arrayName(array), join(places, " "))
                           : std::string(colon + 2, ' ') + join(places, " ") + "\n";
    }
    return text;
}

std::string driveBlock(const Drive& drive) {
    return formatted("      Target on SCSI ID %d\n         Device is a Hard disk\n",
                     drive.location.slot) +
           line(9, "SCSI ID", std::to_string(drive.location.slot)) +
           line(9, "State", driveStateText(drive.status)) +
           line(9, "Size (in MB)/(in sectors)", sizesText(drive)) +
           line(9, "Serial No", drive.serial) +
           line(9, "Device ID", formatted("%-8s%s", drive.vendor.c_str(), drive.model.c_str()));
}

std::string channelLines(const Controller& controller, int channel) {
    std::string text = formatted("   Channel #%d:\n      Initiator at SCSI ID %d\n", channel,
                                 controller.identity.block.initiatorId);
    for (const Drive& drive : controller.drives) {
        if (drive.location.enclosure == channel) {
            text += driveBlock(drive);
        }
    }
    return text;
}

} // namespace

std::string arrayName(std::size_t array) {
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    return std::string(1, letters[array % letters.size()]);
}

std::string listing(const Controller& controller) {
    std::string text = controllerBlock(controller) + blockTitle("Logical drive information");
    for (std::size_t number = 0; number < controller.logicalDrives.size(); ++number) {
        text += logicalDrive(controller, number);
    }
    for (std::size_t array = 0; array < controller.arrays.size(); ++array) {
        text += arrayLines(controller, array);
    }
    text += blockTitle("Physical device information");
    for (int channel = 1; channel <= channelsOf(controller); ++channel) {
        text += channelLines(controller, channel);
    }
    return text;
}

} // namespace zolex_sim::qtcsend
