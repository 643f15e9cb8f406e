#include "readers/HRReader.h"

#include "foundation/Report.h"
#include "foundation/Text.h"
#include "readers/StateTranslation.h"

#include <array>
#include <limits>
#include <utility>

namespace zolex {

namespace {

constexpr std::array<std::string_view, 2> diskWords = {"Hard drive", "Hard disk"};

constexpr std::array<std::string_view, 1> logicalDriveHeadings = {"logical drive information"};
constexpr std::array<std::string_view, 1> logicalDriveNumber = {"Logical drive number"};
constexpr std::array<std::string_view, 1> logicalDriveStatus = {"Status of logical drive"};
constexpr std::array<std::string_view, 1> raidLevelKey = {"RAID level"};
constexpr std::array<std::string_view, 1> hotSpareMark = {"Hot Spare"};
constexpr std::array<std::string_view, 1> defunctMark = {"Defunct"};

constexpr ListingDialect hrconf = {
    .logicalDriveHeadings = logicalDriveHeadings,
    .logicalDriveNumber = logicalDriveNumber,
    .logicalDriveStatus = logicalDriveStatus,
    .raidLevel = raidLevelKey,
    .hotSpare = hotSpareMark,
    .defunct = defunctMark,
    .moreRaidLevels = {},
};

// Columns: the whole value of a "RAID level" line, the level's code. The order does not matter.
// clang-format off
constexpr auto raidLevels = std::to_array<WordCode>({
    {"0",             raid_level::raid0},
    {"1",             raid_level::raid1},
    {"1E",            raid_level::raid1E},
    {"5",             raid_level::raid5},
    {"5E",            raid_level::raid5E},
    {"5EE",           raid_level::raid5EE},
    {"6",             raid_level::raid6},
    {"10",            raid_level::raid10},
    {"50",            raid_level::raid50},
    {"60",            raid_level::raid60},
    {"SIMPLE",        raid_level::volume},
    {"VOLUME",        raid_level::volume},
    {"Simple_volume", raid_level::volume},
});
static_assert(raidLevels.size() == 13 && hasDistinctWords<WordCode>(raidLevels));

// Columns: the number of a "Stripe-unit size" line (KB), the stripe size's code. The order does not
// matter.
constexpr auto stripeSizes = std::to_array<WordCode>({
    {"16",   stripe::kb16},
    {"32",   stripe::kb32},
    {"64",   stripe::kb64},
    {"128",  stripe::kb128},
    {"256",  stripe::kb256},
    {"512",  stripe::kb512},
    {"1024", stripe::kb1024},
    {"2048", stripe::kb2048},
    {"4096", stripe::kb4096},
});
static_assert(stripeSizes.size() == 9 && hasDistinctWords<WordCode>(stripeSizes));

// Columns: the state word that HRCONF prints, letter case ignored, and the derived state. The order
// does not matter.
constexpr auto physicalStates = std::to_array<StateWord>({
    {"defunct",           badState},
    {"hot spare",         goodState},
    {"online",            goodState},
    {"rebuilding",        goodState},
    {"ready",             goodState},
    {"standby hot spare", goodState},
});
static_assert(physicalStates.size() == 6 && hasDistinctWords<StateWord>(physicalStates));

// The same for logical drives.
constexpr auto logicalStates = std::to_array<StateWord>({
    {"degraded",  badState},
    {"offline",   badState},
    {"migrating", goodState},
    {"okay",      goodState},
    {"optimal",   goodState},
});
static_assert(logicalStates.size() == 5 && hasDistinctWords<StateWord>(logicalStates));
// clang-format on

/// The number of a size such as "64", "64KB" or "64 KB".
std::string_view withoutKb(std::string_view size) {
    constexpr std::string_view unit = "KB";
    if (size.ends_with(unit)) {
        size.remove_suffix(unit.size());
        if (size.ends_with(' ')) {
            size.remove_suffix(1);
        }
    }
    return size;
}

/// What ends the block of a device.
constexpr std::string_view deviceEnd = "PFA";
constexpr std::array<std::string_view, 16> deviceKeys = {
    "Device #",      "Device is",         "Channel,Device", "State",      "Size",
    "Serial number", "Reported Location", "Power State",    "Block Size", "Unused Size",
    "Stripe Size",   "Hot Spare",         "Hot-Spare",      "Defunct",    "Failed",
    "Partitioned"};

/// What the lines of logical drives that count begin with or hold, on every utility, and what ends
/// them. Letter case is ignored.
constexpr std::array<std::string_view, 12> layoutKeys = {
    "physical device", "logical d", "bios",    "driver",      "raid level", "status of", "size",
    "channel,device",  "segment",   "present", "write-cache", "read-cache"};

const KeyFilter& deviceFilter() {
    static const KeyFilter filter(deviceKeys);
    return filter;
}

const KeyFilter& layoutFilter() {
    static const KeyFilter filter(layoutKeys, KeyFilter::LetterCase::ignored);
    return filter;
}

/// Keys that hold "State" or "Size" and tell something else.
constexpr std::array<std::string_view, 4> otherKeys = {"Power State", "Block Size", "Unused Size",
                                                       "Stripe Size"};

bool isSizeLine(std::string_view line) {
    return text::contains(line, "Size") && !holdsAny(line, otherKeys);
}

} // namespace

HRReader::HRReader(Detail detail, Report& report) : HRReader(detail, report, hrconf) {}

HRReader::HRReader(Detail detail, Report& report, const ListingDialect& dialect)
    : LayoutReader(detail, report), dialect_(dialect) {}

bool HRReader::readConfiguration(RAIDController& controller, Listings listings) {
    report().trace("Entering HRReader::readConfiguration\n");
    beginLines(controller, listings);
    if (configuration() != nullptr && !getArraysAndLogicalDrive()) {
        report().trace("Exiting HRReader::readConfiguration, returning false(1)\n");
        return false;
    }
    if (!getDrives()) {
        report().trace("Exiting HRReader::readConfiguration, returning false(2)\n");
        return false;
    }
    keepConfiguration();
    report().trace("Exiting HRReader::readConfiguration, returning true\n");
    return true;
}

void HRReader::beginLines(RAIDController& controller, Listings listings) {
    beginListing(controller, listings);
    line_ = {};
    stay_ = false;
}

bool HRReader::advance() {
    if (!std::exchange(stay_, false) && line_ != endOfOutput) {
        line_ = nextLine();
    }
    return line_ != endOfOutput;
}

std::string_view HRReader::valueOf(std::string_view line) {
    constexpr std::string_view mark = "(T:L)";
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return {};
    }
    constexpr std::size_t colonInMark = mark.find(':');
    if (colon < colonInMark || line.substr(colon - colonInMark, mark.size()) != mark) {
        return text::trim(line.substr(colon + 1));
    }
    return text::valueAfterColon(line.substr(colon - colonInMark + mark.size()));
}

bool HRReader::getArraysAndLogicalDrive() {
    report().trace("Entering HRReader::getArraysAndLogicalDrive\n");
    const Exit exit = readLogicalDriveSection();
    if (exit != success) {
        report().tracef("Exiting HRReader::getArraysAndLogicalDrive, returning false(%d)\n", exit);
        return false;
    }
    report().trace("Exiting HRReader::getArraysAndLogicalDrive, returning true\n");
    return true;
}

HRReader::Exit HRReader::readLogicalDriveSection() {
    bool inSection = false;
    while (advance()) {
        if (layoutFilter().candidates(line()) == 0) {
            continue;
        }
        if (text::containsNoCase(line(), physicalDeviceHeading)) {
            break;
        }
        if (!inSection) {
            inSection = holdsAnyNoCase(line(), dialect_.logicalDriveHeadings);
        } else if (endsLogicalDrives()) {
            break;
        } else if (const Exit exit = readLogicalDriveLine(); exit != success) {
            return exit;
        }
    }
    finishLogicalDrive();
    putBack();
    return success;
}

HRReader::Exit HRReader::readLogicalDriveLine() {
    if (text::containsNoCase(line(), "bios")) {
        controller().setBiosVersion(value());
    } else if (text::containsNoCase(line(), "driver")) {
        controller().setDriverVersion(value());
    } else {
        return readLayoutLine();
    }
    return success;
}

HRReader::Exit HRReader::readLayoutLine() {
    if (holdsAny(line(), dialect_.logicalDriveNumber)) {
        beginLogicalDrive();
    } else if (holdsAny(line(), dialect_.raidLevel)) {
        return readRaidLevel();
    } else if (holdsAny(line(), dialect_.logicalDriveStatus)) {
        readLogicalDriveState();
    } else if (isSizeLine(line())) {
        logicalDrive().sizeMb = text::leadingInt(value());
    } else if (text::contains(line(), "Stripe-unit size")) {
        return readStripeSize();
    } else if (text::contains(line(), "Channel,Device")) {
        readDriveList();
    }
    return success;
}

HRReader::Exit HRReader::readRaidLevel() {
    const CString level = value();
    auto code = findCode(raidLevels, level);
    if (!code) {
        code = findCode(dialect_.moreRaidLevels, level);
    }
    if (!code) {
        traceUnknownRaidLevel(level);
        return unknownRaidLevel;
    }
    logicalDrive().raidLevel = *code;
    return success;
}

void HRReader::readLogicalDriveState() {
    LogicalDrive& drive = logicalDrive();
    drive.state = value();
    drive.derivedState = translateLogicalState(drive.state);
    report().tracef("Setting the state of the logical drive=%s\n", drive.state.c_str());
}

HRReader::Exit HRReader::readStripeSize() {
    const CString size = value();
    const auto code = findCode(stripeSizes, withoutKb(size));
    if (!code) {
        report().tracef("Stripe size not recognized:  %s\n", size.c_str());
        return unknownStripeSize;
    }
    configuration()->stripeSize = *code;
    return success;
}

std::string_view HRReader::driveListValue() const {
    constexpr std::string_view mark = "DDD";
    const std::size_t at = line_.find(mark);
    if (at == std::string_view::npos) {
        return value();
    }
    return text::trim(line_.substr(at + mark.size()));
}

void HRReader::readDriveList() {
    addArrayOf(parsePositions(driveListValue(), ","));
    logicalDrive().writeCache = write_cache::notGiven;
}

DrivePosition HRReader::toModel(DrivePosition position) {
    if (position.channel < std::numeric_limits<std::int32_t>::max()) {
        ++position.channel;
    }
    return position;
}

void HRReader::addArrayOf(const std::vector<DrivePosition>& drives) {
    std::vector<DrivePosition> members;
    members.reserve(drives.size());
    for (const DrivePosition& drive : drives) {
        members.push_back(toModel(drive));
    }
    RaidArray array;
    addMembers(array, members);
    if (array.driveCount() > 0) {
        addArrayOfDrive(std::move(array));
    }
}

bool HRReader::getDrives() {
    report().trace("Entering HRReader::getDrives\n");
    if (!readDevices()) {
        report().trace("Entering HRReader::getDrives, returning false\n");
        return false;
    }
    report().trace("Entering HRReader::getDrives, returning true\n");
    return true;
}

bool HRReader::readDevices() {
    while (advance() && (layoutFilter().candidates(line()) == 0 ||
                         !text::containsNoCase(line(), physicalDeviceHeading))) {
    }
    while (advance() && !text::contains(line(), separator)) {
    }
    while (advance()) {
        if (text::contains(line(), deviceHeading) && !addDevice()) {
            return false;
        }
    }
    return true;
}

bool HRReader::addDevice() {
    report().trace("Entering HRReader::addDevice\n");
    readDevice();
    report().trace("Exiting HRReader::addDevice, returning true\n");
    return true;
}

void HRReader::readDevice() {
    const KeyFilter& filter = deviceFilter();
    KeyAhead endKey(deviceEnd);
    Device device;
    while (advance()) {
        if (endKey.canBeIn(line(), lines()) && text::contains(line(), deviceEnd)) {
            break;
        }
        const KeyedLine keyed(line(), filter);
        if (keyed.holdsNone()) {
            continue;
        }
        if (keyed.holds(nextDevice)) {
            putBack();
            break;
        }
        readDeviceLine(device, keyed);
    }
    if (device.disk) {
        storeDevice(device);
    }
}

bool HRReader::isDiskLine(std::string_view line) {
    return holdsAny(line, diskWords);
}

void HRReader::readDeviceLine(Device& device, const KeyedLine& keyed) {
    if (keyed.holds(deviceKind)) {
        device = {};
        if (isDiskLine(line())) {
            device.disk.emplace();
        }
    } else if (!device.disk) {
        return;
    } else if (keyed.holds(positionLine)) {
        if (const auto position = parsePosition(value(), ",")) {
            device.disk->channelNumber = toModel(*position).channel;
            device.disk->id = position->id;
        }
    } else if (keyed.holds(stateLine) && !tellsSomethingElse(keyed)) {
        readDeviceState(device, keyed);
    } else if (keyed.holds(sizeLine) && !tellsSomethingElse(keyed)) {
        device.disk->sizeMb = text::leadingInt(value());
    } else if (keyed.holds(serialLine)) {
        device.disk->serialNumber = value();
    }
}

bool HRReader::tellsSomethingElse(const KeyedLine& keyed) {
    return keyed.holds(powerState) || keyed.holds(blockSize) || keyed.holds(unusedSize) ||
           keyed.holds(stripeSize);
}

void HRReader::readDeviceState(Device& device, const KeyedLine& keyed) {
    const bool canBeSpare = keyed.canHold(hotSpareWord) || keyed.canHold(hotSpareJoined);
    const bool canBeDefunct = keyed.canHold(defunctWord) || keyed.canHold(failedWord);
    device.disk->state = value();
    device.disk->derivedState = translatePhysicalState(device.disk->state);
    report().tracef("Setting the state of the physical drive=%s\n", device.disk->state.c_str());
    if (canBeSpare && holdsAny(line(), dialect_.hotSpare)) {
        device.hotSpare = true;
    }
    if (!canBeDefunct || !holdsAny(line(), dialect_.defunct)) {
        device.usable = true;
    } else if (detail().layout) {
        constexpr const char* warning =
            "Warning:  One or more controller have a defunct disk drive.\n";
        report().note(level::progress, "\n");
        report().note(level::progress, warning);
        report().note(level::progress, warning);
        report().note(level::progress, "\n");
    }
    if (keyed.holds(partitionedWord)) {
        report().note(level::progress, "\n");
        report().note(level::progress,
                      "Drive is partitioned and cannot be used in raid configuration.\n");
        device.usable = false;
    }
}

void HRReader::storeDevice(Device& device) {
    const DrivePosition at = {device.disk->channelNumber, device.disk->id};
    RaidDisk& disk = *device.disk;
    if (!checkPosition(disk.channelNumber, disk.id) ||
        !checkSize(disk.channelNumber, disk.id, disk.sizeMb)) {
        return;
    }
    controller().setSize(disk.channelNumber, disk.id, disk.sizeMb);
    const bool used = !device.usable && !device.hotSpare;
    if (used) {
        controller().setUsed(at.channel, at.id);
    }
    traceStored(disk, used);
    controller().setDriveRecord(at.channel, at.id, std::move(disk));
    if (device.hotSpare && configuration() != nullptr) {
        addHotspare(*configuration(), {.channelNumber = at.channel, .id = at.id});
    }
}

std::string_view HRReader::translatePhysicalState(std::string_view state) {
    report().trace("Entering HRReader::translatePhysicalState\n");
    const std::string_view derived = deriveState(physicalStates, state, report());
    if (traces()) {
        report().tracef("Exitinging HRReader::translatePhysicalState, derivedState=%s\n",
                        CString(derived).c_str());
    }
    return derived;
}

std::string_view HRReader::translateLogicalState(std::string_view state) {
    report().trace("Entering HRReader::translateLogicalState\n");
    const std::string_view derived = deriveState(logicalStates, state, report());
    if (traces()) {
        report().tracef("Exitinging HRReader::translateLogicalState, derivedState=%s\n",
                        CString(derived).c_str());
    }
    return derived;
}

void HRReader::traceUnknownRaidLevel(const CString& value) {
    report().tracef("RAID level not recognized:  %s\n", value.c_str());
}

} // namespace zolex
