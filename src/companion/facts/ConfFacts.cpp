// ARCCONF and HRCONF: one listing, GETCONFIG n AL, with the controller, the logical drives and the
// physical devices. Keys as the utilities print them, in the three generations of ARCCONF.

#include "companion/facts/Takers.h"
#include "companion/facts/Utilities.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

bool holds(std::string_view text, std::string_view word) {
    return text::containsNoCase(text, word);
}

// Logical drives.

/// "Logical drive number 1", "Logical Device Number 0".
void beginLogical(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> number = lastNumber(line.text);
    reading.beginLogicalDrive(line, number ? std::to_string(*number) : "?");
    if (!number) {
        reading.broken(line, "logical drive without a number");
        return;
    }
    // Commands count from 1. So do listings that give each logical drive a list of its drives; the
    // others count from 0.
    reading.logicalDrive()->facts.commandNumber = *number + 1;
}

std::string writeCacheOf(std::string_view value) {
    if (holds(value, "write-back")) {
        return holds(value, "when protected") ? "ProtectedWriteBack" : "UnprotectedWriteBack";
    }
    return holds(value, "write-through") || holds(value, "Disabled") ? "WriteThrough" : "";
}

/// What holds now; what it is set to tells more.
void takeWriteCacheMode(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft != nullptr && draft->facts.writeCache.empty()) {
        draft->facts.writeCache = writeCacheOf(line.value);
    }
}

void takeWriteCacheSetting(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.writeCache = writeCacheOf(line.value);
    }
}

void takeReadCache(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.readCache = holds(line.value, "Enabled")    ? "ReadAhead"
                                 : holds(line.value, "Disabled") ? "Off"
                                                                 : "";
    }
}

/// "0,0 0,1 0,2". Behind a "DDD" in the key or the value stand the members that are left.
void takeDriveList(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft == nullptr) {
        return;
    }
    if (draft->spans.empty()) {
        reading.beginSpan(-1);
        draft->facts.commandNumber.reset();
    }
    constexpr std::string_view mark = "DDD";
    std::string_view list = line.value;
    if (const std::size_t at = line.text.find(mark); at != std::string_view::npos) {
        list = line.text.substr(at + mark.size());
        list.remove_prefix(list.starts_with(':') ? 1 : 0);
    }
    appendMembers(reading, line, list, ',', draft->spans.back());
}

/// The number behind the word, as in "Enclosure:0" and "Enclosure 0".
std::optional<std::int32_t> numberBehind(std::string_view text, std::string_view word) {
    const std::size_t at = text.find(word);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(at + word.size());
    text.remove_prefix(std::min(text.find_first_not_of(" :"), text.size()));
    return wholeNumber(text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size())));
}

/// "Enclosure 0, Slot 1" and "Connector 0, Device 1", in whatever form; empty for other places.
std::string bayOf(std::string_view text) {
    struct Words {
        std::string_view first;
        std::string_view second;
    };
    constexpr std::array<Words, 2> forms = {{{"Enclosure", "Slot"}, {"Connector", "Device"}}};
    for (const Words& form : forms) {
        const std::optional<std::int32_t> first = numberBehind(text, form.first);
        const std::optional<std::int32_t> second = numberBehind(text, form.second);
        if (first && second) {
            return std::string(form.first) + " " + locationText(first, *second);
        }
    }
    return {};
}

/// "Present (0,1) NV7A0002", "Present (Controller:1,Enclosure:0,Slot:1) NV9A0008", "Missing". The
/// serial number tells which drive it is; the place does so without it.
void takeSegment(Reading& reading, const ListingLine& line) {
    const std::size_t open = line.value.find('(');
    const std::size_t close = line.value.find(')', std::min(open, line.value.size()));
    reading.checkLength(line);
    if (open == std::string_view::npos || close == std::string_view::npos) {
        const bool isMissing = holds(line.value, "Missing");
        MemberDraft* const member = reading.addMember(
            line, isMissing ? "Missing" : cleanText(line.value.substr(0, 40)), true);
        if (member != nullptr) {
            member->isMissing = isMissing;
        }
        return;
    }
    const std::string_view place = line.value.substr(open + 1, close - open - 1);
    MemberDraft* const member = reading.addMember(line, cleanText(place.substr(0, 60)), true);
    if (member == nullptr) {
        return;
    }
    member->serialNumber = cleanText(line.value.substr(close + 1));
    member->isSerialFirst = true;
    member->bay = bayOf(place);
    member->mediaType = mediaTypeOf(place);
    if (const std::optional<Pair> pair = parsePair(place, ',')) {
        member->location = locationText(pair->first, pair->second);
    } else if (const std::optional<std::int32_t> channel = numberBehind(place, "Connector")) {
        const std::optional<std::int32_t> device = numberBehind(place, "Device");
        member->otherLocation = device ? locationText(channel, *device) : "";
    }
}

// Physical devices.

/// "Device #0".
void beginDevice(Reading& reading, const ListingLine& line) {
    reading.beginDrive(line);
    reading.drive.number = lastNumber(line.text);
}

/// "0,8" and "0,8(8:0)".
void takePosition(Reading& reading, const ListingLine& line) {
    const std::string_view value = line.value.substr(0, line.value.find('('));
    if (const std::optional<Pair> pair = parsePair(value, ',')) {
        reading.drive.channel = pair->first;
        reading.drive.id = pair->second;
    } else {
        tellBadValue(reading, line, "channel and device");
    }
}

void takeBay(Reading& reading, const ListingLine& line) {
    reading.bay = bayOf(line.value);
    if (holds(line.value, "Enclosure") && !reading.bay.empty()) {
        reading.drive.enclosure = numberBehind(line.value, "Enclosure");
        reading.drive.slot = numberBehind(line.value, "Slot");
    }
}

/// "Yes" and "No" of "SSD".
void takeSolidState(Reading& reading, const ListingLine& line) {
    reading.drive.mediaType = holds(line.value, "Yes")  ? "SSD"
                              : holds(line.value, "No") ? "HDD"
                                                        : "";
}

std::string location(const Reading& reading) {
    const DriveFacts& drive = reading.drive;
    return drive.channel && drive.id ? locationText(drive.channel, *drive.id) : std::string();
}

bool endsListing(const ListingLine& line) {
    return line.text.starts_with("Command completed successfully");
}

constexpr Blocks ofDrive = in(Block::drive);
constexpr Blocks ofLogical = in(Block::logicalDrive);
constexpr Blocks ofController = in(Block::controller);
constexpr Blocks ofVersions = in(Block::versions);

// Columns: the key, the blocks where it stands, what takes its value (nothing: known, not used).
// The order does not matter.
// clang-format off
constexpr auto keyRows = std::to_array<KeyRow>({
    {"Controllers found",            in(Block::none)},
    // The controller.
    {"Controller Status",            ofController, takeText<&Facts::reportedState>},
    {"Controller Model",             ofController, takeText<&Facts::productName>},
    {"Controller Serial Number",     ofController, takeText<&Facts::serialNumber>},
    {"Defunct disk drive count",     ofController, announceFailedDrives},
    {"Logical drives/Offline/Critical",  ofController, announceLogicalDrives},
    {"Logical devices/Offline/Critical", ofController, announceLogicalDrives},
    {"Logical devices/Failed/Degraded",  ofController, announceLogicalDrives},
    {"Channel description",          ofController},
    {"Physical Slot",                ofController},
    {"Installed memory",             ofController},
    {"Copyback",                     ofController},
    {"Data scrubbing",               ofController},
    {"Automatic Failover",           ofController},
    {"Temperature",                  ofController},
    {"BIOS",                         ofVersions,   takeText<&Facts::biosVersion>},
    {"Firmware",                     ofVersions,   takeText<&Facts::firmwareVersion>},
    {"Driver",                       ofVersions,   takeText<&Facts::driverVersion>},
    {"BIOS version",                 ofVersions,   takeText<&Facts::biosVersion>},
    {"Firmware version",             ofVersions,   takeText<&Facts::firmwareVersion>},
    {"Driver version",               ofVersions,   takeText<&Facts::driverVersion>},
    {"Boot Flash",                   ofVersions},
    // Logical drives.
    {"Logical drive name",           ofLogical,    takeLogicalText<&LogicalDriveFacts::name>},
    {"Logical device name",          ofLogical,    takeLogicalText<&LogicalDriveFacts::name>},
    {"RAID level",                   ofLogical,    takeLogicalLevel},
    {"Status of logical drive",      ofLogical,    takeLogicalState},
    {"Status of logical device",     ofLogical,    takeLogicalState},
    {"Size",                         ofLogical,    takeLogicalSize},
    {"Stripe-unit size",             ofLogical,    takeStripSize},
    {"Read-cache mode",              ofLogical,    takeReadCache},
    {"Read-cache setting",           ofLogical,    takeReadCache},
    {"Write-cache mode",             ofLogical,    takeWriteCacheMode},
    {"Write-cache setting",          ofLogical,    takeWriteCacheSetting},
    {"Number of segments",           ofLogical,    announceMembers},
    {"Drive(s) (Channel,Device)",    ofLogical,    takeDriveList},
    {"Drive(s) (Channel,Device) DDD", ofLogical,   takeDriveList},
    {"Full Stripe Size",             ofLogical},
    {"Read-cache status",            ofLogical},
    {"Write-cache status",           ofLogical},
    {"Partitioned",                  ofLogical},
    {"Defunct segments",             ofLogical},
    {"Protected by Hot-Spare",       ofLogical},
    {"Bootable",                     ofLogical},
    {"Defunct stripes",              ofLogical},
    {"Failed stripes",               ofLogical},
    {"Power settings",               ofLogical},
    {"Block Size of member drives",  ofLogical},
    // Physical devices.
    {"State",                        ofDrive,      takeDriveState},
    {"Reported Channel,Device",      ofDrive,      takePosition},
    {"Reported Channel,Device(T:L)", ofDrive,      takePosition},
    {"Reported Location",            ofDrive,      takeBay},
    {"Transfer Speed",               ofDrive,      takeProtocol},
    {"Vendor",                       ofDrive,      takeDriveText<&DriveFacts::manufacturer>},
    {"Model",                        ofDrive,      takeDriveText<&DriveFacts::model>},
    {"Firmware",                     ofDrive,      takeDriveText<&DriveFacts::revision>},
    {"Serial number",                ofDrive,      takeDriveText<&DriveFacts::serialNumber>},
    {"Size",                         ofDrive,      takeDriveSize},
    {"SSD",                          ofDrive,      takeSolidState},
    {"PFA",                          ofDrive,      takePrediction},
    {"S.M.A.R.T.",                   ofDrive,      takePrediction},
    {"Supported",                    ofDrive},
    {"Block Size",                   ofDrive},
    {"Reported ESD",                 ofDrive},
    {"Reported ESD(T:L)",            ofDrive},
    {"Write Cache",                  ofDrive},
    {"FRU",                          ofDrive},
    {"Power State",                  ofDrive},
    {"Supported Power States",       ofDrive},
});

constexpr std::array<KeyRow, 2> numberedKeys = {{
    {"Segment ", ofLogical, takeSegment},
    {"Device ",  ofLogical, takeSegment},
}};

// The first row that fits counts.
constexpr auto headings = std::to_array<HeadingRow>({
    {"Device #",                       beginDevice},
    {"Device is ",                     takeDeviceKind},
    {"Logical drive number ",          beginLogical},
    {"Logical device number ",         beginLogical},
    {"Controller information",         beginController},
    {"Controller Version Information", beginVersions},
    {"Controller Battery Information", beginOther},
    {"Logical drive information",      beginVersions},
    {"Logical device information",     beginVersions},
    {"Physical device information",    beginSection},
});
// clang-format on

constexpr KeyTable keyTable(keyRows);
static_assert(keyTable.isDistinct());

constexpr UtilityTable table = {
    .keys = keyTable.lookup(),
    .numberedKeys = numberedKeys,
    .headings = headings,
    .takePlain = nullptr,
    .endsListing = endsListing,
    .location = location,
    .locationMissing = "physical drive without a channel and a device number",
    .listings = 1,
    .tellsDrives = true,
};

Facts readConf(std::span<const std::string> listings) {
    Reading reading(table);
    for (std::size_t i = 0; i < listings.size(); ++i) {
        reading.read(i, listings[i]);
    }
    reading.finish();
    return std::move(reading.facts);
}

} // namespace

Facts readArcconf(std::span<const std::string> listings) {
    return readConf(listings);
}

Facts readHrconf(std::span<const std::string> listings) {
    return readConf(listings);
}

} // namespace zolex::companion
