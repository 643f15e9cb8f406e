// The configuration listing: virtual disks and their members.

#include "foundation/Fault.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"
#include "readers/KeyFilter.h"
#include "readers/MEGAReader.h"
#include "readers/MegaCliText.h"

#include <array>
#include <span>
#include <utility>

namespace zolex {

namespace {

using text::contains;
using text::valueAfterColon;

bool isNumberOfVirtualDisks(std::string_view line) {
    return contains(line, "Number of Virtual Disks") || contains(line, "Number of Virtual Drives");
}

/// Whether the line tells the size of a virtual disk; the longer keys tell other sizes.
bool isSizeLine(std::string_view line) {
    return contains(line, "Size") && !contains(line, "Stripe Size") &&
           !contains(line, "Strip Size") && !contains(line, "Sector Size") &&
           !contains(line, "Raw Size") && !contains(line, "Coerced Size");
}

bool isStateLine(std::string_view line) {
    return contains(line, "State") && !contains(line, "Foreign State");
}

bool endsVirtualDisk(std::string_view line) {
    return line == endOfOutput || megacli::isAdapterLine(line) ||
           (contains(line, "Virtual D") &&
            (megacli::holdsKey(line, "Virtual Disk") || megacli::holdsKey(line, "Virtual Drive")));
}

/// The keys that count until the size and the state of a virtual disk are known, and thereafter.
/// The shorter two make finding them slower. "PD" is a key besides.
constexpr std::array<std::string_view, 15> diskKeys = {"Size",
                                                       "State",
                                                       "Adapter #",
                                                       "Virtual D",
                                                       "Number of PDs",
                                                       "Stripe Size",
                                                       "Strip Size",
                                                       "RAID Level",
                                                       "Exit Code",
                                                       "Current Cache Policy",
                                                       "Inquiry Data",
                                                       "Number Of Drives",
                                                       "Number of Spans",
                                                       "Enclosure ",
                                                       "Slot Number"};
constexpr auto memberKeys = std::span(diskKeys).subspan<2>();

// A filter in a function of a class would stand in the program file with its 16 KB of zeros.
const KeyFilter& diskFilter() {
    static const KeyFilter filter(diskKeys);
    return filter;
}

const KeyFilter& memberFilter() {
    static const KeyFilter filter(memberKeys);
    return filter;
}

} // namespace

/// One virtual disk while it is read.
struct MEGAReader::VirtualDisk {
    LogicalDrive drive;
    RaidArray array;
    DriveLocation member; ///< of the member block that is being read
    bool inMember = false;
    bool hasSize = false;
    bool hasState = false;
    bool isWhole = true;              ///< false once a member is known to be missing
    bool listingClosed = false;       ///< the listing's closing line has been met
    std::int32_t spans = 1;           ///< announced
    std::int32_t spansSeen = 0;       ///< "Number of PDs" lines that name a span
    std::string_view spanLine;        ///< the latest "Number of PDs" line
    std::int32_t membersExpected = 0; ///< what it announces
    std::int32_t membersSeen = 0;     ///< since that line
    std::int64_t drivesExpected = 0;  ///< what "Number Of Drives" announces
    bool drivesPerSpan = false;       ///< for each span
    std::int64_t drivesSeen = 0;

    /// Whether the line says nothing, but for "PD". Most lines do not.
    [[nodiscard]] bool isIdle(std::string_view line) const {
        const KeyFilter& filter = hasSize && hasState ? memberFilter() : diskFilter();
        return filter.candidates(line) == 0 && line != endOfOutput;
    }

    void closeSpan() {
        isWhole = isWhole && membersSeen >= membersExpected;
        drivesSeen += membersSeen;
        membersSeen = 0;
    }

    /// Whether members that the listing announces are not there; known once the last span is
    /// closed.
    [[nodiscard]] bool hasMissingDrives() const {
        return !isWhole || drivesSeen < drivesExpected * (drivesPerSpan ? spans : 1);
    }

    /// Whether it can be captured. A listing that breaks off must not pass for fewer spans.
    [[nodiscard]] bool isComplete() const {
        return drive.raidLevel != raid_level::none && !array.drives().empty() &&
               (listingClosed || spansSeen == 0 || spansSeen >= spans);
    }
};

/// Nothing when no virtual disk is announced, or when one that is cannot be captured whole.
std::optional<RAIDConfiguration> MEGAReader::readVirtualDisks() {
    std::string_view line = lines().nextLine();
    while (line != endOfOutput && !contains(line, "Enclosure") && !isNumberOfVirtualDisks(line)) {
        line = lines().nextLine();
    }
    const std::int32_t announced =
        isNumberOfVirtualDisks(line) ? text::leadingInt(valueAfterColon(line)) : 0;
    if (announced < 1) {
        return std::nullopt;
    }
    std::optional<RAIDConfiguration> configuration(std::in_place);
    for (std::int32_t i = 0; i < announced; ++i) {
        do {
            line = lines().nextLine();
        } while (line != endOfOutput && !megacli::holdsKey(line, "Name"));
        if (line == endOfOutput || !getArraysAndLogicalDrives(*configuration)) {
            return std::nullopt;
        }
    }
    return configuration;
}

/// Reads one virtual disk, from the line after its name, and adds it to the configuration; false
/// when it cannot be captured whole.
bool MEGAReader::getArraysAndLogicalDrives(RAIDConfiguration& configuration) {
    report().trace("Entering MEGAReader::getArraysAndLogicalDrives\n");
    VirtualDisk disk;
    KeyAhead memberKey("PD");
    std::string_view line = lines().nextLine();
    for (;; line = lines().nextLine()) {
        if (disk.isIdle(line) && !memberKey.canBeIn(line, lines())) {
            continue;
        }
        if (endsVirtualDisk(line)) {
            break;
        }
        const bool taken = disk.inMember && readMemberLine(line, disk);
        if (!taken && !readVirtualDiskLine(line, disk, configuration)) {
            report().trace("Exiting MEGAReader::getArraysAndLogicalDrives, returning false(1)\n");
            return false;
        }
    }
    disk.listingClosed = disk.listingClosed || line != endOfOutput;
    closeMember(disk);
    disk.closeSpan();
    if (disk.hasMissingDrives()) {
        fail(FaultKind::listingDrivesMissing);
    }
    if (disk.hasMissingDrives() || !disk.isComplete()) {
        report().trace("Exiting MEGAReader::getArraysAndLogicalDrives, returning false(2)\n");
        return false;
    }
    // An array without its logical drive could not be configured again.
    disk.drive.arrayIndex = static_cast<std::int32_t>(configuration.arrays().size());
    if (addLogicalDrive(configuration, std::move(disk.drive))) {
        addArray(configuration, std::move(disk.array));
    }
    report().trace("Exiting MEGAReader::getArraysAndLogicalDrives, returning true\n");
    return true;
}

/// False for a RAID level that has no code.
bool MEGAReader::readVirtualDiskLine(std::string_view line, VirtualDisk& disk,
                                     RAIDConfiguration& configuration) {
    if (contains(line, "Number of PDs")) {
        readNumberOfPds(line, disk);
    } else if (contains(line, "Number Of Drives")) {
        disk.drivesExpected = text::leadingInt(valueAfterColon(line));
        disk.drivesPerSpan = contains(line, "per span");
    } else if (contains(line, "RAID Level")) {
        disk.drive.raidLevel = megacli::raidLevelOf(line);
        return disk.drive.raidLevel != raid_level::none;
    } else if (!disk.hasSize && isSizeLine(line)) {
        disk.hasSize = true;
        const std::int32_t sizeMb =
            megacli::sizeInMb(valueAfterColon(line), megacli::Rounding::down);
        report().tracef("Setting size=%d\n", sizeMb);
        disk.drive.sizeMb = sizeMb > 0 ? sizeMb : sizeFill;
    } else if (!disk.hasState && isStateLine(line)) {
        disk.hasState = true;
        disk.drive.state = valueAfterColon(line);
        disk.drive.derivedState = disk.drive.state.contains("Degraded") ? "BAD" : "GOOD";
    } else if (contains(line, "Strip") &&
               (contains(line, "Stripe Size") || contains(line, "Strip Size"))) {
        readStripeSize(line, configuration);
    } else if (contains(line, "Current Cache Policy")) {
        disk.drive.writeCache = contains(line, "WriteBack") ? write_cache::on : write_cache::off;
        configuration.readAhead = megacli::readAheadOf(line);
    } else if (contains(line, "Number of Spans")) {
        disk.spans = text::leadingInt(valueAfterColon(line));
        if (disk.spans > 1) {
            disk.drive.raidLevel = megacli::spannedLevelOf(disk.drive.raidLevel);
        }
    } else if (contains(line, "Exit Code")) {
        disk.listingClosed = true;
    } else if (megacli::holdsKey(line, "PD")) {
        closeMember(disk);
        disk.inMember = true;
    }
    return true;
}

/// "Span: 0 - Number of PDs: 2" opens a span. The same line again opens none, and one that names no
/// span counts the members of all.
void MEGAReader::readNumberOfPds(std::string_view line, VirtualDisk& disk) {
    const std::int32_t announced =
        text::leadingInt(valueAfterColon(line.substr(line.find("Number of PDs"))));
    report().tracef("Number of PDs=%d \n", announced);
    if (line == disk.spanLine) {
        return;
    }
    closeMember(disk);
    disk.closeSpan();
    disk.spanLine = line;
    disk.spansSeen += contains(line, "Span") ? 1 : 0;
    disk.membersExpected = announced;
}

void MEGAReader::readStripeSize(std::string_view line, RAIDConfiguration& configuration) {
    std::string_view value = valueAfterColon(line);
    const std::size_t unit = value.find(contains(value, "kB") ? "kB" : "KB");
    value = text::trim(value.substr(0, unit));
    report().tracef("Stripe size value=%.*s\n", static_cast<int>(value.size()), value.data());
    configuration.stripeSize = megacli::stripeSizeOf(value, configuration.stripeSize);
}

/// Takes a line of a member block that tells where the member is, or that ends the block; false for
/// any other line.
bool MEGAReader::readMemberLine(std::string_view line, VirtualDisk& disk) {
    if (readLocationLine(line, disk.member)) {
        return true;
    }
    if (!contains(line, "Inquiry Data")) {
        return false;
    }
    closeMember(disk);
    return true;
}

/// Ends the member block, if one is open. A block that does not say where its drive is has none.
void MEGAReader::closeMember(VirtualDisk& disk) {
    disk.inMember = false;
    const DriveLocation member = std::exchange(disk.member, DriveLocation());
    if (!member.hasEnclosure || !member.hasSlot) {
        return;
    }
    if (!checkPosition(member.channel, member.slot)) {
        disk.isWhole = false;
        return;
    }
    ++disk.membersSeen;
    controller().setMember(member.channel, member.slot);
    addMember(disk.array, {member.channel, member.slot});
}

} // namespace zolex
