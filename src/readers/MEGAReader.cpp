#include "readers/MEGAReader.h"

#include "foundation/Report.h"
#include "foundation/Text.h"
#include "model/RAIDController.h"
#include "readers/KeyFilter.h"
#include "readers/MegaCliText.h"
#include "show/Dumps.h"

#include <algorithm>
#include <utility>

namespace zolex {

namespace {

using text::contains;
using text::valueAfterColon;

constexpr std::int32_t channelFree = -1;
constexpr std::int32_t noChannel = -1;

/// The subtype that becomes another one when its adapter listing names RAID-5.
constexpr std::int32_t subtypeWithoutRaid5 = 8;
constexpr std::int32_t subtypeWithRaid5 = 9;

bool isCoercedSizeLine(std::string_view line) {
    return contains(line, "Coerced Size") && !contains(line, "Non Coerced Size");
}

/// Whether the line is one of those that drives are read from.
bool isDriveLine(std::string_view line) {
    return megacli::isEnclosureLine(line) || contains(line, "Slot Number") ||
           isCoercedSizeLine(line) || contains(line, "Firmware state") ||
           contains(line, "Inquiry Data");
}

constexpr std::array<std::string_view, 7> driveKeys = {
    "Adapter #",    "Enclosure Device ID", "Enclosure Number", "Slot Number",
    "Coerced Size", "Firmware state",      "Inquiry Data"};
constexpr std::array<std::string_view, 4> adapterKeys = {"Adapter #", "FW Version", "BIOS Version",
                                                         "RAID Level Supported"};

/// Whether a line says nothing. Most lines do not.
bool isIdle(std::string_view line, const KeyFilter& filter) {
    return filter.candidates(line) == 0 && line != endOfOutput;
}

const KeyFilter& driveFilter() {
    static const KeyFilter filter(driveKeys);
    return filter;
}

const KeyFilter& adapterFilter() {
    static const KeyFilter filter(adapterKeys);
    return filter;
}

bool endsDrives(std::string_view line) {
    return line == endOfOutput || megacli::isAdapterLine(line);
}

} // namespace

/// One drive of the drive listing while its block is read.
struct MEGAReader::DriveBlock {
    enum class Mark { none, present, bad };

    RaidDisk record;
    DriveLocation location;
    Mark mark = Mark::none;
};

bool MEGAReader::readConfiguration(RAIDController& controller, Listings listings) {
    report().trace("Entering MEGAReader::readConfiguration\n");
    beginController(controller);
    channelTable_.fill(channelFree);
    driveLines_.reset();
    nextDriveLine_ = 0;
    std::optional<RAIDConfiguration> configuration;
    std::size_t driveListing = 0;
    if (detail().layout) {
        driveListing = 1;
        setListing(listings, driveListing);
        numberEnclosures();
        setListing(listings, 0);
        configuration = readVirtualDisks();
    }
    setListing(listings, driveListing);
    getDrives(configuration ? &*configuration : nullptr);
    setListing(listings, driveListing + 1);
    getAdapterInfo();
    driveLines_.reset();
    if (configuration) {
        controller.setCaptured(std::move(configuration));
    }
    report().trace("Exitng MEGAReader::readConfiguration, returning true\n");
    return true;
}

/// Gives the enclosures their channels in the order of the drive listing, ahead of reading the
/// configuration listing: a deploy run sees the drive listing alone, and a captured drive number
/// has to mean the same drive there.
void MEGAReader::numberEnclosures() {
    const KeyFilter& filter = driveFilter();
    driveLines_.emplace();
    bool begun = false;
    std::string_view line;
    do {
        line = lines().nextLine();
        const bool idle = isIdle(line, filter);
        begun = begun || (!idle && isDriveLine(line));
        if (begun && (!idle || traces())) {
            driveLines_->push_back(line);
        }
        if (idle || !begun) {
            continue;
        }
        if (megacli::isAdapterLine(line)) {
            break;
        }
        if (megacli::isEnclosureLine(line)) {
            channelOf(megacli::enclosureOf(line));
        }
    } while (line != endOfOutput);
}

std::string_view MEGAReader::nextDriveLine() {
    if (!driveLines_) {
        return lines().nextLine();
    }
    return nextDriveLine_ < driveLines_->size() ? (*driveLines_)[nextDriveLine_++] : endOfOutput;
}

/// The channel that belongs to the enclosure or else the first free one, which it takes; -1 when
/// there is none. As channels are taken in order, a free one never stands before one that is taken.
std::int32_t MEGAReader::channelOf(std::int32_t enclosure) {
    auto entry = std::find(channelTable_.begin(), channelTable_.end(), enclosure);
    if (entry == channelTable_.end()) {
        entry = std::find(channelTable_.begin(), channelTable_.end(), channelFree);
    }
    if (entry == channelTable_.end()) {
        return noChannel;
    }
    *entry = enclosure;
    return RAIDController::firstChannel + static_cast<std::int32_t>(entry - channelTable_.begin());
}

std::int32_t MEGAReader::reAssignChannelID(std::int32_t enclosure) {
    report().tracef("Entering MEGAReader::reAssignChannelID, trueChannelID=%d\n", enclosure);
    const std::int32_t channel = channelOf(enclosure);
    report().tracef("Exiting MEGAReader::reAssignChannelID, iterator=%d\n", channel);
    return channel;
}

/// Takes an enclosure or slot line of a drive's block; false for any other line.
bool MEGAReader::readLocationLine(std::string_view line, DriveLocation& location) {
    if (megacli::isEnclosureLine(line)) {
        location.enclosure = megacli::enclosureOf(line);
        location.hasEnclosure = true;
        if (megacli::isNotAvailable(valueAfterColon(line))) {
            controller().clearChannelReassignment();
        }
        location.channel = reAssignChannelID(location.enclosure);
        report().tracef("Setting enclosure number=%d\n", location.enclosure);
        return true;
    }
    if (contains(line, "Slot Number")) {
        location.slot = text::leadingInt(valueAfterColon(line));
        location.hasSlot = true;
        report().tracef("Setting slot number=%d\n", location.slot);
        return true;
    }
    return false;
}

void MEGAReader::getDrives(RAIDConfiguration* configuration) {
    report().trace("Entering MEGAReader::getDrives\n");
    const KeyFilter& filter = driveFilter();
    std::string_view line = nextDriveLine();
    while (line != endOfOutput && (isIdle(line, filter) || !isDriveLine(line))) {
        line = nextDriveLine();
    }
    while (!endsDrives(line)) {
        report().trace("Creating new instance of RaidDisk\n");
        DriveBlock block;
        line = readDriveBlock(line, block, configuration);
        storeDrive(block);
    }
    report().trace("Exiting MEGAReader::getDrives\n");
}

/// Reads the block that begins with `line`, and returns the first line behind it.
std::string_view MEGAReader::readDriveBlock(std::string_view line, DriveBlock& block,
                                            RAIDConfiguration* configuration) {
    const KeyFilter& filter = driveFilter();
    for (;; line = nextDriveLine()) {
        const bool idle = isIdle(line, filter);
        if (!idle && endsDrives(line)) {
            return line;
        }
        if (traces()) {
            report().tracef("p_lines: %.*s\n", static_cast<int>(line.size()), line.data());
        }
        if (idle) {
            continue;
        }
        readDriveLine(line, block, configuration);
        if (contains(line, "Inquiry Data")) {
            return nextDriveLine();
        }
    }
}

void MEGAReader::readDriveLine(std::string_view line, DriveBlock& block,
                               RAIDConfiguration* configuration) {
    if (readLocationLine(line, block.location)) {
        block.record.channelNumber = block.location.enclosure;
        block.record.id = block.location.slot;
    } else if (isCoercedSizeLine(line)) {
        block.record.sizeMb = megacli::sizeInMb(valueAfterColon(line), megacli::Rounding::up);
        report().tracef("Setting Coerced size=%d\n", block.record.sizeMb);
    } else if (contains(line, "Firmware state")) {
        readFirmwareState(line, block, configuration);
    } else if (contains(line, "Inquiry Data")) {
        block.record.serialNumber = valueAfterColon(line);
        report().tracef("Found 'Inquiry Data', value=%s\n", block.record.serialNumber.c_str());
        report().tracef("Setting serial number=%s\n", block.record.serialNumber.c_str());
    }
}

void MEGAReader::readFirmwareState(std::string_view line, DriveBlock& block,
                                   RAIDConfiguration* configuration) {
    block.record.state = valueAfterColon(line);
    block.record.derivedState = "GOOD";
    block.mark = DriveBlock::Mark::none;
    if (contains(line, "Unconfigured(good)") || contains(line, "Online") ||
        contains(line, "Rebuild")) {
        block.mark = DriveBlock::Mark::present;
    } else if (contains(line, "Hotspare")) {
        report().trace("Found a Hotspare\n");
        block.mark = DriveBlock::Mark::present;
        if (configuration != nullptr) {
            addCapturedHotspare(block.location, *configuration);
        }
    } else if (contains(line, "Unconfigured(bad)")) {
        block.record.derivedState = "BAD";
        block.mark = DriveBlock::Mark::bad;
    }
}

/// A drive is a hot spare once, and only where a drive can be: one that cannot is named with the
/// drive itself.
void MEGAReader::addCapturedHotspare(const DriveLocation& location,
                                     RAIDConfiguration& configuration) {
    const auto& hotspares = configuration.hotspares();
    const bool known =
        std::any_of(hotspares.begin(), hotspares.end(), [&location](const Hotspare& hotspare) {
            return hotspare.enclosure == location.enclosure && hotspare.id == location.slot;
        });
    if (known || !RAIDController::isPosition(location.channel, location.slot)) {
        return;
    }
    Hotspare hotspare;
    hotspare.channelNumber = location.channel;
    hotspare.enclosure = location.enclosure;
    hotspare.id = location.slot;
    hotspare.diskNumber = location.slot;
    addHotspare(configuration, hotspare);
}

void MEGAReader::storeDrive(DriveBlock& block) {
    const auto [enclosure, channel, slot, hasEnclosure, hasSlot] = block.location;
    const bool stored = block.mark != DriveBlock::Mark::none && block.record.sizeMb > 0 &&
                        checkPosition(channel, slot);
    if (stored) {
        controller().setSizeAndTarget(channel, slot, block.record.sizeMb, enclosure);
        if (block.mark == DriveBlock::Mark::bad) {
            controller().setUsed(channel, slot);
            report().tracef("Inserted new instance of RaidDisk(2) at location %d:%d\n", channel,
                            slot);
        } else {
            report().tracef("Inserted new instance of RaidDisk(1) at location %d:%d\n", channel,
                            slot);
        }
    }
    // What stands behind the last drive is no drive.
    if (detail().dumpRecords && (hasEnclosure || hasSlot)) {
        report().note(level::ungated, show::dumpText(block.record));
    }
    if (stored) {
        controller().setDriveRecord(channel, slot, std::move(block.record));
    }
}

void MEGAReader::getAdapterInfo() {
    report().trace("Entering MEGAReader::getAdapterInfo\n");
    const KeyFilter& filter = adapterFilter();
    std::string_view line = lines().nextLine();
    while (isIdle(line, filter) || !endsDrives(line)) {
        line = lines().nextLine();
    }
    // Behind "EOF" there is nothing.
    for (line = lines().nextLine(); isIdle(line, filter) || !endsDrives(line);
         line = lines().nextLine()) {
        readAdapterLine(line);
    }
    report().trace("Exiting MEGAReader::getAdapterInfo\n");
}

void MEGAReader::readAdapterLine(std::string_view line) {
    if (contains(line, "FW Version")) {
        const CString value(valueAfterColon(line));
        report().tracef("Found 'FW Version' value: %s\n", value.c_str());
        controller().setFirmwareVersion(value);
    } else if (contains(line, "BIOS Version") && !contains(line, "WebBIOS Version")) {
        const CString value(valueAfterColon(line));
        report().tracef("Found 'BIOS Version' or 'WebBIOS Version' value: %s\n", value.c_str());
        controller().setBiosVersion(value);
    } else if (contains(line, "RAID Level Supported")) {
        const CString value(valueAfterColon(line));
        report().tracef("Found 'RAID Level Supported' value: %s\n", value.c_str());
        if (controller().subtype() == subtypeWithoutRaid5 && value.contains("RAID5")) {
            controller().setSubtype(subtypeWithRaid5);
        }
    }
}

} // namespace zolex
