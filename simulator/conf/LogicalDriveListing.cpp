#include "conf/Listing.h"

#include "frontend/Words.h"
#include "model/Text.h"

#include <algorithm>
#include <vector>

namespace zolex_sim::conf {
namespace {

const char* yesOrNo(bool yes) {
    return yes ? "Yes" : "No";
}

/// The members in the order of the array.
std::vector<const Drive*> membersOf(const Controller& controller, const LogicalDrive& drive) {
    std::vector<const Drive*> members;
    for (const std::vector<DriveLocation>& span : controller.arrays[drive.array].spans) {
        for (const DriveLocation& location : span) {
            members.push_back(controller.driveAt(location));
        }
    }
    return members;
}

std::string levelText(const LogicalDrive& drive, std::size_t members, const Wording& wording) {
    if (drive.level == RaidLevel::volume) {
        return members == 1 ? "Simple_volume" : wording.spanned;
    }
    if (drive.level == RaidLevel::raid6) {
        return wording.raid6;
    }
    return std::string(levelWord(drive.level));
}

const char* stateText(LogicalDriveState state, const Wording& wording) {
    switch (state) {
    case LogicalDriveState::optimal:
        return "Okay";
    case LogicalDriveState::partiallyDegraded:
        return "Degraded";
    case LogicalDriveState::degraded:
        return wording.critical;
    case LogicalDriveState::offline:
        break;
    }
    return "Offline";
}

const char* writeCacheText(const LogicalDrive& drive) {
    return drive.writePolicy == WritePolicy::writeBack ? "Enabled (write-back)"
                                                       : "Disabled (write-through)";
}

/// One logical drive on its way into the listing.
struct Block {
    const Controller& controller;
    const LogicalDrive& drive;
    const Wording& wording;
    std::vector<const Drive*> members = membersOf(controller, drive);
};

/// What both forms begin with, from the name to the size.
std::string head(const Block& block, std::size_t number) {
    const LogicalDrive& drive = block.drive;
    return formatted("Logical %s %s %zu\n", block.wording.drive, block.wording.number, number) +
           line(3, formatted("Logical %s name", block.wording.drive), drive.name) +
           line(3, "RAID level", levelText(drive, block.members.size(), block.wording)) +
           line(3,
                formatted("Status of %s %s", block.wording.settings ? "Logical" : "logical",
                          block.wording.drive),
                stateText(block.controller.stateOf(drive), block.wording)) +
           line(3, "Size", formatted("%lld MB", static_cast<long long>(drive.sizeMb)));
}

std::string stripeLine(const Block& block, bool hasMirrorStripe) {
    const LogicalDrive& drive = block.drive;
    const bool isTold = drive.level == RaidLevel::raid1
                            ? block.controller.identity.showsMirrorStripe.value_or(hasMirrorStripe)
                            : drive.level != RaidLevel::volume;
    if (!isTold) {
        return {};
    }
    return line(3, "Stripe-unit size", formatted("%d KB", drive.stripeKb));
}

/// The newest listings tell the size of a whole stripe, too: what it holds of data.
std::string fullStripeLine(const Block& block) {
    const LogicalDrive& drive = block.drive;
    std::int64_t member = block.members.front()->sizeMb;
    for (const Drive* each : block.members) {
        member = std::min(member, each->sizeMb);
    }
    const std::vector<std::vector<DriveLocation>>& spans =
        block.controller.arrays[drive.array].spans;
    const std::int64_t dataDrives = block.controller.capacity(drive.level, spans) / member;
    return line(3, "Full Stripe Size",
                formatted("%lld KB", static_cast<long long>(dataDrives * drive.stripeKb)));
}

std::string readCacheLine(const Block& block) {
    if (!block.controller.identity.conf.showsReadCache) {
        return {};
    }
    const bool off = block.drive.readPolicy == ReadPolicy::none;
    if (block.wording.settings) {
        return line(3, "Read-cache setting", off ? "Disabled" : "Enabled") +
               line(3, "Read-cache status", off ? "Off" : "On");
    }
    return line(3, "Read-cache mode", off ? "Disabled" : "Enabled");
}

/// What the logical drive is set to, and, but in the newest listings, what holds now.
std::string writeCacheLines(const Block& block) {
    const LogicalDrive& drive = block.drive;
    const std::string setting =
        line(3, "Write-cache setting",
             std::string(writeCacheText(drive)) +
                 (drive.batteryProtected ? " when protected by battery" : ""));
    if (block.wording.settings) {
        const bool on = drive.writePolicy == WritePolicy::writeBack && !drive.batteryProtected;
        return setting + line(3, "Write-cache status", on ? "On" : "Off");
    }
    return line(3, "Write-cache mode", writeCacheText(drive)) + setting;
}

bool hasDefunctMember(const Block& block) {
    return std::any_of(block.members.begin(), block.members.end(),
                       [](const Drive* drive) { return drive->status == DriveStatus::failed; });
}

/// Whether a hot spare is large enough for every member.
bool isProtected(const Block& block) {
    std::int64_t needed = 0;
    for (const Drive* member : block.members) {
        needed = std::max(needed, member->sizeMb);
    }
    return std::any_of(block.controller.drives.begin(), block.controller.drives.end(),
                       [needed](const Drive& drive) {
                           return drive.status == DriveStatus::hotspare && drive.sizeMb >= needed;
                       });
}

std::string listBlock(const Block& block, std::size_t place) {
    const LogicalDrive& drive = block.drive;
    std::string drives;
    for (const Drive* member : block.members) {
        drives +=
            formatted("%d,%d ", member->location.enclosure.value_or(0), member->location.slot);
    }
    return head(block, block.controller.numberOf(place) + 1) + stripeLine(block, false) +
           readCacheLine(block) + line(3, "Write-cache mode", writeCacheText(drive)) +
           line(3, "Partitioned", yesOrNo(drive.partitioned)) +
           line(3, "Number of segments", block.members.size()) +
           line(3, "Drive(s) (Channel,Device)", drives) +
           line(3, "Defunct segments", yesOrNo(hasDefunctMember(block)));
}

const char* segmentState(const Drive& drive) {
    switch (drive.status) {
    case DriveStatus::failed:
        return "Defunct";
    case DriveStatus::rebuild:
        return "Rebuilding";
    default:
        return "Present";
    }
}

/// Where a member is, as its segment tells it.
std::string memberPlace(const Block& block, const Drive& drive, std::size_t controllerNumber) {
    const int channel = drive.location.enclosure.value_or(0);
    if (block.controller.identity.conf.expander) {
        return formatted("(Controller:%zu,Enclosure:%d,Slot:%d)", controllerNumber,
                         drive.bay.enclosure.value_or(0), drive.bay.slot);
    }
    return block.wording.namedPlaces ? formatted("(Controller:%zu,Connector:%d,Device:%d)",
                                                 controllerNumber, channel, drive.location.slot)
                                     : formatted("(%d,%d)", channel, drive.location.slot);
}

/// A line of the newest listings for a member; one that is failed is missing there.
std::string deviceLine(const Block& block, std::size_t index) {
    const Drive& drive = *block.members[index];
    const std::string key = formatted("Device %zu", index);
    if (drive.status == DriveStatus::failed || drive.status == DriveStatus::missing) {
        return line(3, key, "Missing");
    }
    const bool expander = block.controller.identity.conf.expander;
    return line(3, key,
                formatted("Present (%lldMB, %s, %s, %s:%d, %s:%d) %s",
                          static_cast<long long>(drive.nonCoercedSectors / sectorsPerMb),
                          drive.interface.c_str(),
                          drive.medium == Medium::solidState ? "SSD" : "HDD",
                          expander ? "Enclosure" : "Connector", drive.bay.enclosure.value_or(0),
                          expander ? "Slot" : "Device", drive.bay.slot, drive.serial.c_str()));
}

std::string segmentLine(const Block& block, std::size_t index, std::size_t controllerNumber) {
    if (block.wording.settings) {
        return deviceLine(block, index);
    }
    const Drive& drive = *block.members[index];
    if (drive.status == DriveStatus::missing) {
        return line(3, formatted("Segment %zu", index), "Missing");
    }
    return line(3, formatted("Segment %zu", index),
                formatted("%s %s %s", segmentState(drive),
                          memberPlace(block, drive, controllerNumber).c_str(),
                          drive.serial.c_str()));
}

std::string segmentBlock(const Block& block, std::size_t place, std::size_t controllerNumber) {
    const LogicalDrive& drive = block.drive;
    const std::string stripe = stripeLine(block, true);
    std::string text =
        head(block, block.controller.numberOf(place)) + stripe +
        (block.wording.settings && !stripe.empty() ? fullStripeLine(block) : "") +
        readCacheLine(block) + writeCacheLines(block) +
        line(3, "Partitioned", yesOrNo(drive.partitioned)) +
        line(3, "Protected by Hot-Spare", yesOrNo(isProtected(block))) +
        line(3, "Bootable", yesOrNo(place == 0)) +
        line(3, "Defunct stripes", yesOrNo(hasDefunctMember(block))) +
        blockHeading(formatted("Logical %s segment information", block.wording.drive));
    for (std::size_t i = 0; i < block.members.size(); ++i) {
        text += segmentLine(block, i, controllerNumber);
    }
    return text + "\n";
}

template <typename BlockText>
std::string eachLogicalDrive(const Controller& controller, const Wording& wording,
                             BlockText blockText) {
    if (controller.logicalDrives.empty()) {
        return formatted("No logical %ss configured\n",
                         wording.settings ? "device" : wording.drive);
    }
    std::string text;
    for (std::size_t i = 0; i < controller.logicalDrives.size(); ++i) {
        text += blockText(Block{controller, controller.logicalDrives[i], wording}, i);
    }
    return text;
}

} // namespace

std::string logicalDrivesWithLists(const Controller& controller, const Wording& wording) {
    return eachLogicalDrive(controller, wording, listBlock);
}

std::string logicalDrivesWithSegments(const Controller& controller, std::size_t number,
                                      const Wording& wording) {
    return eachLogicalDrive(controller, wording, [number](const Block& block, std::size_t place) {
        return segmentBlock(block, place, number);
    });
}

} // namespace zolex_sim::conf
