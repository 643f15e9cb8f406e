#include "megacli/Listings.h"

#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::megacli {
namespace {

constexpr std::int64_t mbPerGb = 1024;
constexpr std::int64_t mbPerTb = 1024 * mbPerGb;

std::string thousandths(std::int64_t number, const char* unit) {
    return formatted("%lld.%03lld %s", static_cast<long long>(number / 1000),
                     static_cast<long long>(number % 1000), unit);
}

long long asLong(std::int64_t number) {
    return static_cast<long long>(number);
}

std::string enclosureText(const DriveLocation& location) {
    return location.enclosure ? std::to_string(*location.enclosure) : "N/A";
}

const char* firmwareState(const Drive& drive, Generation generation) {
    const bool later = generation == Generation::later;
    switch (drive.status) {
    case DriveStatus::online:
        return later ? "Online, Spun Up" : "Online";
    case DriveStatus::hotspare:
    case DriveStatus::dedicated:
        return later ? "Hotspare, Spun down" : "Hotspare";
    case DriveStatus::rebuild:
        return "Rebuild";
    case DriveStatus::failed:
        return "Failed";
    case DriveStatus::bad:
        return "Unconfigured(bad)";
    case DriveStatus::jbod:
        return "JBOD";
    case DriveStatus::missing: // is not listed
    case DriveStatus::good:
    case DriveStatus::foreign:
        break;
    }
    return later ? "Unconfigured(good), Spun Up" : "Unconfigured(good)";
}

const char* foreignState(const Drive& drive) {
    return drive.status == DriveStatus::foreign ? "Foreign" : "None";
}

const char* spareType(const Drive& drive) {
    return drive.status == DriveStatus::dedicated ? "Type: Dedicated, is revertible\n" : "";
}

const char* mediaType(const Drive& drive) {
    return drive.medium == Medium::solidState ? "Solid State Device" : "Hard Disk Device";
}

std::string inquiryData(const Drive& drive) {
    return formatted("%-8s%-16s%-4s%-20s", drive.vendor.c_str(), drive.model.c_str(),
                     drive.revision.c_str(), drive.serial.c_str());
}

std::string errorCounts(const Drive& drive) {
    return formatted("Sequence Number: 2\n"
                     "Media Error Count: %d\n"
                     "Other Error Count: %d\n"
                     "Predictive Failure Count: %d\n"
                     "Last Predictive Failure Event Seq Number: 0\n"
                     "PD Type: %s\n",
                     drive.mediaErrors, drive.otherErrors, drive.predictiveFailures,
                     drive.interface.c_str());
}

std::string sizeLine(const char* key, std::int64_t sectors, Generation generation) {
    const std::string size = generation == Generation::later
                                 ? driveSizeText(sectors)
                                 : formatted("%lldMB", asLong(sectors / sectorsPerMb));
    return formatted("%s: %s [0x%llx Sectors]\n", key, size.c_str(),
                     static_cast<unsigned long long>(sectors));
}

std::string sizeLines(const Drive& drive, Generation generation) {
    return sizeLine("Raw Size", drive.rawSectors, generation) +
           sizeLine("Non Coerced Size", drive.nonCoercedSectors, generation) +
           sizeLine("Coerced Size", drive.sizeMb * sectorsPerMb, generation);
}

std::string connectionLines(const Drive& drive) {
    return formatted("SAS Address(0): 0x%llx\n"
                     "SAS Address(1): 0x0\n"
                     "Connected Port Number: %d(path0) \n"
                     "Inquiry Data: %s\n",
                     static_cast<unsigned long long>(drive.sasAddress), drive.port,
                     inquiryData(drive).c_str());
}

std::string earlyDriveBlock(const Drive& drive) {
    return formatted("Enclosure Device ID: %s\n"
                     "Slot Number: %d\n"
                     "Device Id: %d\n",
                     enclosureText(drive.location).c_str(), drive.location.slot, drive.deviceId) +
           errorCounts(drive) + sizeLines(drive, Generation::early) +
           formatted("Firmware state: %s\n", firmwareState(drive, Generation::early)) +
           spareType(drive) + connectionLines(drive) +
           formatted("Foreign State: %s \n"
                     "Media Type: %s\n"
                     "\n",
                     foreignState(drive), mediaType(drive));
}

/// How a listing numbers the members of a span.
enum class ArmNumbering : std::uint8_t {
    drives,  ///< each drive has a number of its own
    mirrors, ///< both halves of a mirror have one number
};

std::string memberPosition(const Controller& controller, const Drive& drive,
                           ArmNumbering numbering) {
    const std::optional<MemberPlace> place = controller.placeOf(drive.location);
    if (!place) {
        return {};
    }
    std::size_t arm = place->arm;
    for (const LogicalDrive& logicalDrive : controller.logicalDrives) {
        const bool mirrored =
            logicalDrive.level == RaidLevel::raid1 || logicalDrive.level == RaidLevel::raid10;
        if (logicalDrive.array == place->array && mirrored && numbering == ArmNumbering::mirrors) {
            arm = place->arm / 2;
        }
    }
    return formatted("Drive's position: DiskGroup: %zu, Span: %zu, Arm: %zu\n", place->array,
                     place->span, arm);
}

std::string enclosurePosition(const Controller& controller, const Drive& drive) {
    if (!drive.location.enclosure) {
        return "Enclosure position: N/A\n";
    }
    std::size_t position = 1;
    for (const std::optional<int>& enclosure : controller.enclosures()) {
        if (enclosure == drive.location.enclosure) {
            break;
        }
        position += enclosure.has_value() ? 1 : 0;
    }
    return formatted("Enclosure position: %zu\n", position);
}

std::string laterDriveTail(const Drive& drive) {
    return formatted("FDE Capable: Not Capable\n"
                     "FDE Enable: Disable\n"
                     "Secured: Unsecured\n"
                     "Locked: Unlocked\n"
                     "Needs EKM Attention: No\n"
                     "Foreign State: %s \n"
                     "Device Speed: 6.0Gb/s \n"
                     "Link Speed: 6.0Gb/s \n"
                     "Media Type: %s\n"
                     "Drive Temperature :%dC (%.2f F)\n"
                     "PI Eligibility:  No \n"
                     "Drive is formatted for PI information:  No\n"
                     "PI: No PI\n"
                     "Port-0 :\n"
                     "Port status: Active\n"
                     "Port's Linkspeed: 6.0Gb/s \n"
                     "Port-1 :\n"
                     "Port status: Active\n"
                     "Port's Linkspeed: Unknown \n"
                     "Drive has flagged a S.M.A.R.T alert : No\n"
                     "\n"
                     "\n",
                     foreignState(drive), mediaType(drive), drive.temperature,
                     drive.temperature * 1.8 + 32.0);
}

std::string laterDriveBlock(const Controller& controller, const Drive& drive,
                            ArmNumbering numbering) {
    return formatted("Enclosure Device ID: %s\n"
                     "Slot Number: %d\n",
                     enclosureText(drive.location).c_str(), drive.location.slot) +
           memberPosition(controller, drive, numbering) + enclosurePosition(controller, drive) +
           formatted("Device Id: %d\n"
                     "WWN: %016llX\n",
                     drive.deviceId, static_cast<unsigned long long>(drive.sasAddress)) +
           errorCounts(drive) + "\n" + sizeLines(drive, Generation::later) +
           formatted("Sector Size:  512\n"
                     "Firmware state: %s\n"
                     "%s"
                     "Commissioned Spare : No\n"
                     "Emergency Spare : No\n"
                     "Device Firmware Level: %s\n"
                     "Shield Counter: 0\n"
                     "Successful diagnostics completion on :  N/A\n",
                     firmwareState(drive, Generation::later), spareType(drive),
                     drive.revision.c_str()) +
           connectionLines(drive) + laterDriveTail(drive);
}

std::string driveBlock(const Controller& controller, const Drive& drive, ArmNumbering numbering) {
    return controller.identity.generation == Generation::later
               ? laterDriveBlock(controller, drive, numbering)
               : earlyDriveBlock(drive);
}

/// The level in the utility's own terms. Early firmware tells a spanned mirror from a simple one by
/// the number of spans alone.
const char* levelText(RaidLevel level, Generation generation) {
    switch (level) {
    case RaidLevel::raid0:
        return "Primary-0, Secondary-0, RAID Level Qualifier-0";
    case RaidLevel::raid1:
        return "Primary-1, Secondary-0, RAID Level Qualifier-0";
    case RaidLevel::raid5:
        return "Primary-5, Secondary-0, RAID Level Qualifier-3";
    case RaidLevel::raid6:
        return "Primary-6, Secondary-0, RAID Level Qualifier-3";
    case RaidLevel::raid10:
        return generation == Generation::later ? "Primary-1, Secondary-3, RAID Level Qualifier-0"
                                               : "Primary-1, Secondary-0, RAID Level Qualifier-0";
    case RaidLevel::raid50:
        return "Primary-5, Secondary-3, RAID Level Qualifier-3";
    case RaidLevel::raid60:
    default: // the controllers of this utility have no other level
        break;
    }
    return "Primary-6, Secondary-3, RAID Level Qualifier-3";
}

const char* stateText(LogicalDriveState state) {
    switch (state) {
    case LogicalDriveState::optimal:
        return "Optimal";
    case LogicalDriveState::partiallyDegraded:
        return "Partially Degraded";
    case LogicalDriveState::degraded:
        return "Degraded";
    case LogicalDriveState::offline:
        break;
    }
    return "Offline";
}

std::string cachePolicy(const LogicalDrive& drive) {
    const char* write = drive.writePolicy == WritePolicy::writeBack ? "WriteBack" : "WriteThrough";
    const char* read = drive.readPolicy == ReadPolicy::none    ? "ReadAheadNone"
                       : drive.readPolicy == ReadPolicy::ahead ? "ReadAhead"
                                                               : "ReadAdaptive";
    const char* bad = drive.withoutBattery ? "Write Cache OK" : "No Write Cache";
    return formatted("Default Cache Policy: %s, %s, Direct, %s if Bad BBU\n"
                     "Current Cache Policy: %s, %s, Direct, %s if Bad BBU\n",
                     write, read, bad, write, read, bad);
}

const char* driveCountKey(const Array& array) {
    return array.spans.size() > 1 ? "Number Of Drives per span" : "Number Of Drives";
}

std::string earlyVirtualDisk(const Controller& controller, std::size_t place) {
    const LogicalDrive& drive = controller.logicalDrives[place];
    const Array& array = controller.arrays[drive.array];
    const std::size_t number = controller.numberOf(place);
    return formatted("Virtual Disk: %zu (Target Id: %zu)\n"
                     "Name:%s\n"
                     "RAID Level: %s\n"
                     "Size:%lldMB\n"
                     "State: %s\n"
                     "Stripe Size: %dkB\n"
                     "%s:%zu\n"
                     "Span Depth:%zu\n",
                     number, number, drive.name.c_str(), levelText(drive.level, Generation::early),
                     asLong(drive.sizeMb), stateText(controller.stateOf(drive)), drive.stripeKb,
                     driveCountKey(array), array.spans.front().size(), array.spans.size()) +
           cachePolicy(drive) +
           "Access Policy: Read/Write\n"
           "Disk Cache Policy: Disk's Default\n";
}

/// What the level keeps beside the data: "Mirror Data" or "Parity Size".
std::string redundancyLine(const Controller& controller, const LogicalDrive& drive) {
    if (drive.level == RaidLevel::raid1 || drive.level == RaidLevel::raid10) {
        return "Mirror Data         : " + virtualDiskSizeText(drive.sizeMb) + "\n";
    }
    const auto perSpan =
        static_cast<std::int64_t>(controller.arrays[drive.array].spans.front().size());
    const std::int64_t redundant = rulesOf(drive.level).redundancy;
    return "Parity Size         : " +
           (redundant == 0
                ? "0"
                : virtualDiskSizeText(drive.sizeMb / (perSpan - redundant) * redundant)) +
           "\n";
}

std::string laterVirtualDisk(const Controller& controller, std::size_t place) {
    const LogicalDrive& drive = controller.logicalDrives[place];
    const Array& array = controller.arrays[drive.array];
    const std::size_t number = controller.numberOf(place);
    return formatted("Virtual Drive: %zu (Target Id: %zu)\n"
                     "Name                :%s\n"
                     "RAID Level          : %s\n"
                     "Size                : %s\n"
                     "Sector Size         : 512\n",
                     number, number, drive.name.c_str(), levelText(drive.level, Generation::later),
                     virtualDiskSizeText(drive.sizeMb).c_str()) +
           redundancyLine(controller, drive) +
           formatted("State               : %s\n"
                     "Strip Size          : %d KB\n"
                     "%-20s: %zu\n"
                     "Span Depth          : %zu\n",
                     stateText(controller.stateOf(drive)), drive.stripeKb, driveCountKey(array),
                     array.spans.front().size(), array.spans.size()) +
           cachePolicy(drive) +
           "Default Access Policy: Read/Write\n"
           "Current Access Policy: Read/Write\n"
           "Disk Cache Policy   : Disk's Default\n"
           "Encryption Type     : None\n"
           "Is VD Cached: No\n";
}

std::string members(const Controller& controller, const Array& array) {
    const bool later = controller.identity.generation == Generation::later;
    std::string text = formatted("Number of Spans: %zu\n", array.spans.size());
    for (std::size_t span = 0; span < array.spans.size(); ++span) {
        text += formatted("Span: %zu - Number of PDs: %zu\n", span, array.spans[span].size());
        text += later ? "\n" : "";
        for (std::size_t arm = 0; arm < array.spans[span].size(); ++arm) {
            text += formatted("PD: %zu Information\n", arm);
            const Drive& drive = *controller.driveAt(array.spans[span][arm]);
            text += drive.status == DriveStatus::missing
                        ? "\n"
                        : driveBlock(controller, drive, ArmNumbering::drives);
        }
    }
    return text;
}

} // namespace

std::string heading(int adapter) {
    return banner() + formatted("Adapter #%d\n\n", adapter);
}

std::string banner() {
    return std::string(37, ' ') + "\n";
}

std::string placeText(const DriveLocation& location) {
    return (location.enclosure ? formatted("EnclId-%d ", *location.enclosure) : std::string()) +
           formatted("SlotId-%d", location.slot);
}

std::string driveSizeText(std::int64_t sectors) {
    const std::int64_t mb = sectors / sectorsPerMb;
    if (mb >= mbPerTb) {
        return thousandths(sectors * 1000 / (mbPerTb * sectorsPerMb), "TB");
    }
    if (mb >= mbPerGb) {
        return thousandths(sectors * 1000 / (mbPerGb * sectorsPerMb), "GB");
    }
    return formatted("%lld MB", asLong(mb));
}

std::string virtualDiskSizeText(std::int64_t sizeMb) {
    // The greatest whole k with k * unit / 1000 below sizeMb + 1.
    if (sizeMb >= mbPerTb) {
        return thousandths(((sizeMb + 1) * 1000 - 1) / mbPerTb, "TB");
    }
    if (sizeMb >= mbPerGb) {
        return thousandths(((sizeMb + 1) * 1000 - 1) / mbPerGb, "GB");
    }
    return formatted("%lld MB", asLong(sizeMb));
}

std::string logicalDriveListing(const Controller& controller, int adapter) {
    std::string text = heading(adapter);
    text += formatted("Number of Virtual Disks: %zu\n", controller.logicalDrives.size());
    for (std::size_t place = 0; place < controller.logicalDrives.size(); ++place) {
        text += controller.identity.generation == Generation::later
                    ? laterVirtualDisk(controller, place)
                    : earlyVirtualDisk(controller, place);
        text += members(controller, controller.arrays[controller.logicalDrives[place].array]);
    }
    return text + "\n" + successLine;
}

std::string driveListing(const Controller& controller, int adapter) {
    std::string text = heading(adapter);
    for (const Drive& drive : controller.drives) {
        if (drive.status != DriveStatus::missing) {
            text += driveBlock(controller, drive, ArmNumbering::mirrors);
        }
    }
    const bool later = controller.identity.generation == Generation::later;
    return text + (later ? "\n\n" : "\n") + successLine;
}

} // namespace zolex_sim::megacli
