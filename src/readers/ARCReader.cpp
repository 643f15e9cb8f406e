#include "readers/ARCReader.h"

#include "foundation/Report.h"
#include "foundation/Text.h"
#include "readers/StateTranslation.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace zolex {

namespace {

constexpr std::array<std::string_view, 2> logicalDriveHeadings = {"logical drive information",
                                                                  "logical device information"};
constexpr std::array<std::string_view, 6> logicalDriveNumber = {
    "Logical drive number", "Logical device number", "Logical Device number",
    "Logical drive Number", "Logical device Number", "Logical Device Number"};
constexpr std::array<std::string_view, 3> logicalDriveStatus = {
    "Status of logical drive", "Status of logical device", "Status of Logical Device"};
constexpr std::array<std::string_view, 3> logicalDriveCount = {"Logical drives", "Logical devices",
                                                               "Logical Devices"};
constexpr std::array<std::string_view, 3> segmentHeadings = {
    "Logical drive segment", "Logical device segment", "Logical Device segment"};
constexpr std::array<std::string_view, 2> raidLevelKeys = {"RAID level", "RAID Level"};
constexpr std::array<std::string_view, 2> writeCacheKeys = {"Write-cache mode",
                                                            "Write-cache setting"};
constexpr std::array<std::string_view, 2> hotSpareMarks = {"Hot Spare", "Hot-Spare"};
constexpr std::array<std::string_view, 2> defunctMarks = {"Defunct", "Failed"};

/// The words that name the two numbers of a drive's location.
struct LocationWords {
    std::string_view channel;
    std::string_view id;
};

// clang-format off
// Columns: the whole value of a "RAID level" line that other utilities do not print, the level's
// code. The order does not matter.
constexpr auto moreRaidLevels = std::to_array<WordCode>({
    {"6 Reed-Solomon", raid_level::raid6},
    {"Spanned_volume", raid_level::volume},
});
static_assert(moreRaidLevels.size() == 2 && hasDistinctWords<WordCode>(moreRaidLevels));

// Columns: the whole value of a "Controller Model" line, the subtype. Any other model leaves the
// subtype; the order does not matter.
constexpr auto controllerModels = std::to_array<WordCode>({
    {"Norvik Kestrix B8", 1},
    {"Norvik Kestrix B7", 2},
});
static_assert(controllerModels.size() == 2 && hasDistinctWords<WordCode>(controllerModels));

// Columns: the whole value of a "Read-cache mode" line, the read-ahead code. The order does not
// matter.
constexpr auto readCacheModes = std::to_array<WordCode>({
    {"Disabled", read_ahead::off},
    {"Enabled",  read_ahead::on},
});
static_assert(readCacheModes.size() == 2 && hasDistinctWords<WordCode>(readCacheModes));

// Columns: the state word that ARCCONF prints, letter case ignored, and the derived state. The
// order does not matter.
constexpr auto physicalStates = std::to_array<StateWord>({
    {"defunct",             badState},
    {"failed",              badState},
    {"hot spare",           goodState},
    {"hot-spare",           goodState},
    {"global hot-spare",    goodState},
    {"dedicated hot-spare", goodState},
    {"online",              goodState},
    {"rebuilding",          goodState},
    {"ready",               goodState},
    {"verifying",           goodState},
});
static_assert(physicalStates.size() == 10 && hasDistinctWords<StateWord>(physicalStates));

// The same for logical drives. One that is migrating can be used, whatever else it is.
constexpr auto logicalStates = std::to_array<StateWord>({
    {"critical",           badState},
    {"degraded",           badState},
    {"impacted",           badState},
    {"offline",            badState},
    {"clearing",           goodState},
    {"critical migrating", goodState},
    {"degraded migrating", goodState},
    {"migrating",          goodState},
    {"okay",               goodState},
});
static_assert(logicalStates.size() == 9 && hasDistinctWords<StateWord>(logicalStates));

// Columns: the two words. The first row of which both are there is taken.
constexpr std::array<LocationWords, 2> locationWords = {{
    {"Enclosure", "Slot"},
    {"Connector", "Device"},
}};
// clang-format on

constexpr ListingDialect arcconf = {
    .logicalDriveHeadings = logicalDriveHeadings,
    .logicalDriveNumber = logicalDriveNumber,
    .logicalDriveStatus = logicalDriveStatus,
    .raidLevel = raidLevelKeys,
    .hotSpare = hotSpareMarks,
    .defunct = defunctMarks,
    .moreRaidLevels = moreRaidLevels,
};

/// The number that stands behind the word, after blanks and ":" at most; none when no number does.
std::optional<std::int32_t> numberAfter(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != std::string_view::npos;
         at = text.find(word, at + 1)) {
        std::string_view rest = text.substr(at + word.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" :"), rest.size()));
        if (!rest.empty() && (rest[0] == '-' || (rest[0] >= '0' && rest[0] <= '9'))) {
            return text::leadingInt(rest);
        }
    }
    return std::nullopt;
}

/// The numbers that a location gives behind the two words; none when one of them is missing.
std::optional<DrivePosition> numbersOf(std::string_view location, const LocationWords& words) {
    const auto channel = numberAfter(location, words.channel);
    const auto id = numberAfter(location, words.id);
    return channel && id ? std::optional(DrivePosition{*channel, *id}) : std::nullopt;
}

/// The text in the first parentheses of a segment's value; none without any.
std::optional<std::string_view> inParentheses(std::string_view value) {
    const std::size_t open = value.find('(');
    if (open == std::string_view::npos) {
        return std::nullopt;
    }
    value.remove_prefix(open + 1);
    const std::size_t close = value.find(')');
    return close == std::string_view::npos ? std::nullopt : std::optional(value.substr(0, close));
}

/// Whether the line is one such as "Device 0 : Present (...)".
bool isPresentDevice(std::string_view line) {
    constexpr std::string_view key = "Device ";
    line = text::trim(line);
    if (!line.starts_with(key)) {
        return false;
    }
    line = text::trim(line.substr(key.size()));
    const std::size_t digits = std::min(line.find_first_not_of("0123456789"), line.size());
    line = digits > 0 ? text::trim(line.substr(digits)) : std::string_view();
    return line.starts_with(':') && text::trim(line.substr(1)).starts_with("Present");
}

} // namespace

ARCReader::ARCReader(Detail detail, Report& report) : HRReader(detail, report, arcconf) {}

bool ARCReader::readConfiguration(RAIDController& controller, Listings listings) {
    report().trace("Entering ARCReader::readConfiguration\n");
    beginLines(controller, listings);
    segmentForm_ = false;
    announcedLogicalDrives_ = 0;
    segments_.reset();
    hasDriveList_ = false;
    locations_.reset();
    getControllerInfo();
    skipBlock();
    getFirmware();
    if (configuration() != nullptr && !getLogicalDrives()) {
        report().trace("Exiting ARCReader::readConfiguration, returning false(1)\n");
        return false;
    }
    if (!getDrives()) {
        report().trace("Exiting ARCReader::readConfiguration, returning false(2)\n");
        return false;
    }
    keepConfiguration();
    report().trace("Exiting ARCReader::readConfiguration\n");
    return true;
}

std::string_view ARCReader::nextLine() {
    if (!hasListing()) {
        report().note(level::ungated, "***************configInfo = NULL******************");
    }
    const std::string_view line = HRReader::nextLine();
    if (traces()) {
        report().tracef("ARCReader::nextLine:%s\n", CString(line).c_str());
    }
    return line;
}

/// Where the drives are said to be, read ahead when the first segment names a drive by that.
/// Nothing is traced; the drives themselves are read in their turn.
const std::vector<ARCReader::ReportedDrive>& ARCReader::locations() {
    if (!locations_) {
        locations_.emplace();
        const ListingCursor here = lines();
        readLocations();
        lines() = here;
    }
    return *locations_;
}

void ARCReader::readLocations() {
    std::string_view line = HRReader::nextLine();
    while (line != endOfOutput && !text::containsNoCase(line, physicalDeviceHeading)) {
        line = HRReader::nextLine();
    }
    while (line != endOfOutput && !text::contains(line, separator)) {
        line = HRReader::nextLine();
    }
    while (line != endOfOutput) {
        line = text::contains(line, deviceHeading) ? readLocation() : HRReader::nextLine();
    }
}

/// Reads one device block from the line after its "Device #", and returns the line that ends it.
std::string_view ARCReader::readLocation() {
    std::optional<ReportedDrive> drive;
    std::string_view line = HRReader::nextLine();
    for (; line != endOfOutput && !text::contains(line, "PFA") &&
           !text::contains(line, deviceHeading);
         line = HRReader::nextLine()) {
        if (text::contains(line, "Device is")) {
            drive = isDiskLine(line) ? std::optional(ReportedDrive()) : std::nullopt;
        } else if (drive && text::contains(line, "Reported Location")) {
            drive->location = text::valueAfterColon(line);
        } else if (drive && text::contains(line, "Channel,Device")) {
            drive->position = parsePosition(valueOf(line), ",").value_or(drive->position);
        }
    }
    if (drive && !drive->location.empty()) {
        locations_->push_back(*drive);
    }
    return line;
}

void ARCReader::getControllerInfo() {
    report().trace("Entering ARCReader::getControllerInfo\n");
    bool begun = false;
    while (advance() && !(begun && text::contains(line(), separator))) {
        begun = readControllerLine() || begun;
    }
    report().trace("Exiting ARCReader::getControllerInfo\n");
}

bool ARCReader::readControllerLine() {
    if (text::contains(line(), "Controller Model")) {
        if (const auto subtype = findCode(controllerModels, value())) {
            controller().setSubtype(*subtype);
        }
    } else if (text::contains(line(), "Automatic Failover")) {
        segmentForm_ = true;
    } else if (holdsAny(line(), logicalDriveCount)) {
        announcedLogicalDrives_ = text::leadingInt(value());
    } else if (text::contains(line(), "Physical Slot")) {
        controller().setSlotNumber(text::leadingInt(value()));
    } else {
        return false;
    }
    return true;
}

void ARCReader::skipBlock() {
    while (advance() && !text::contains(line(), separator)) {
    }
}

void ARCReader::getFirmware() {
    report().trace("Entering ARCReader::getFirmware\n");
    while (advance() && !text::contains(line(), separator)) {
        if (text::contains(line(), "BIOS")) {
            controller().setBiosVersion(value());
        } else if (text::contains(line(), "Firmware")) {
            controller().setFirmwareVersion(value());
        } else if (text::contains(line(), "Driver")) {
            controller().setDriverVersion(value());
        }
    }
    report().trace("Exiting ARCReader::getFirmware\n");
}

bool ARCReader::getLogicalDrives() {
    return segmentForm_ ? getSegmentsAndLogicalDrives() : getArraysAndLogicalDrives();
}

bool ARCReader::getArraysAndLogicalDrives() {
    report().trace("Entering ARCReader::getArraysAndLogicalDrives\n");
    const Exit exit = readLogicalDriveSection();
    if (exit != success) {
        report().tracef("Exiting ARCReader::getArraysAndLogicalDrives, returning false(%d)\n",
                        exit);
        return false;
    }
    report().trace("Exiting ARCReader::getArraysAndLogicalDrives, returning true\n");
    return true;
}

bool ARCReader::getSegmentsAndLogicalDrives() {
    report().trace("Entering ARCReader::getSegmentsAndLogicalDrives\n");
    const Exit exit = readLogicalDriveSection();
    if (exit != success) {
        report().tracef("Exiting ARCReader::getSegmentsAndLogicalDrives, returning false(%d)\n",
                        exit);
        return false;
    }
    report().trace("Exiting ARCReader::getSegmentsAndLogicalDrives, returning true\n");
    return true;
}

bool ARCReader::endsLogicalDrives() const {
    return segmentForm_ && text::contains(line(), "Physical Device");
}

HRReader::Exit ARCReader::readLogicalDriveLine() {
    if (holdsAny(line(), segmentHeadings)) {
        beginSegments();
    } else if (text::contains(line(), "Segment") || isPresentDevice(line())) {
        addSegment();
    } else if (holdsAny(line(), writeCacheKeys)) {
        readWriteCacheMode();
    } else if (text::contains(line(), "Read-cache mode")) {
        return readReadCacheMode();
    } else if (text::contains(line(), "Read-cache setting")) {
        configuration()->readAhead =
            findCode(readCacheModes, value()).value_or(configuration()->readAhead);
    } else {
        return readLayoutLine();
    }
    return success;
}

void ARCReader::readDriveList() {
    report().trace("Processing channel/device info\n");
    const CString list = driveListValue();
    const std::vector<DrivePosition> drives = parsePositions(list, ",");
    report().tracef("Found channel/device value='%s', number of drives=%d\n", list.c_str(),
                    static_cast<int>(drives.size()));
    for (const DrivePosition& drive : drives) {
        const DrivePosition member = toModel(drive);
        report().tracef("Setting channel=%d, scsiID=%d\n", member.channel, member.id);
    }
    if (drives.empty() || (segments_ && !segments_->empty())) {
        return; // no members, or those that the segments have named already
    }
    segments_.reset();
    addArrayOf(drives);
    hasDriveList_ = true;
}

void ARCReader::beginSegments() {
    if (!hasDriveList_ && !segments_) {
        segments_.emplace();
    }
}

void ARCReader::addSegment() {
    const auto position = segmentDrive(value());
    if (segments_ && position) {
        segments_->push_back(*position);
    }
}

/// The drive that a segment names, numbered from channel 0: "Present (0,1)" by its position,
/// "(Controller:1,Enclosure:0,Slot:1)" and "(Controller:1,Connector:0,Device:1)" by its reported
/// location. Its two numbers are its position when no drive tells that location.
std::optional<DrivePosition> ARCReader::segmentDrive(std::string_view value) {
    const auto location = inParentheses(value);
    if (!location) {
        return std::nullopt;
    }
    for (const LocationWords& words : locationWords) {
        const auto numbers = numbersOf(*location, words);
        if (!numbers) {
            continue;
        }
        const std::vector<ReportedDrive>& drives = locations();
        const auto drive =
            std::find_if(drives.begin(), drives.end(), [&](const ReportedDrive& each) {
                return numbersOf(each.location, words) == numbers;
            });
        return drive != drives.end() ? drive->position : *numbers;
    }
    return parsePosition(*location, ",");
}

void ARCReader::finishLogicalDrive() {
    if (segments_) {
        addArrayOf(*segments_);
    }
    segments_.reset();
    hasDriveList_ = false;
    HRReader::finishLogicalDrive();
}

void ARCReader::readWriteCacheMode() {
    report().trace("Processing write-cache mode info\n");
    logicalDrive().writeCache =
        text::contains(value(), "Disabled") ? write_cache::off : write_cache::notGiven;
}

HRReader::Exit ARCReader::readReadCacheMode() {
    const CString mode = value();
    const auto code = findCode(readCacheModes, mode);
    if (!code) {
        report().tracef("Read cache mode not recognized:  %s\n", mode.c_str());
        return unknownReadCacheMode;
    }
    configuration()->readAhead = *code;
    return success;
}

bool ARCReader::getDrives() {
    report().trace("Entering ARCReader::getDrives\n");
    if (!readDevices()) {
        report().trace("Entering ARCReader::getDrives, returning false\n");
        return false;
    }
    report().trace("Entering ARCReader::getDrives, returning true\n");
    return true;
}

bool ARCReader::addDevice() {
    report().trace("Entering ARCReader::addDevice\n");
    readDevice();
    report().trace("Exiting ARCReader::addDevice, returning true\n");
    return true;
}

void ARCReader::readDeviceLine(Device& device, const KeyedLine& keyed) {
    if (device.disk && keyed.holds(locationLine)) {
        device.disk->reportedLocation = value();
    } else {
        HRReader::readDeviceLine(device, keyed);
    }
}

std::string_view ARCReader::translatePhysicalState(std::string_view state) {
    report().trace("Entering ARCReader::translatePhysicalState\n");
    const std::string_view derived = deriveState(physicalStates, state, report());
    if (traces()) {
        report().tracef("Exitinging ARCReader::translatePhysicalState, derivedState=%s\n",
                        CString(derived).c_str());
    }
    return derived;
}

std::string_view ARCReader::translateLogicalState(std::string_view state) {
    report().trace("Entering ARCReader::translateLogicalState\n");
    const std::string_view derived = deriveState(logicalStates, state, report());
    if (traces()) {
        report().tracef("Exitinging ARCReader::translateLogicalState, derivedState=%s\n",
                        CString(derived).c_str());
    }
    return derived;
}

void ARCReader::traceUnknownRaidLevel(const CString& value) {
    report().tracef("RAID level not recognized:  %s \n", value.c_str());
}

void ARCReader::traceStored(const RaidDisk& disk, bool used) {
    if (used) {
        report().tracef("Setting the channel: %d, sid: %d, and size: %d **\n", disk.channelNumber,
                        disk.id, disk.sizeMb);
    } else {
        report().tracef("Setting the channel: %d, sid: %d, and size: %d\n", disk.channelNumber,
                        disk.id, disk.sizeMb);
    }
}

} // namespace zolex
