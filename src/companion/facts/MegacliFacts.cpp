// MEGACLI: -LdPdInfo tells the virtual disks and their members, -pdList the drives, -adpallinfo the
// adapter. Keys as the utility prints them, in its earlier and its later generation.

#include "companion/facts/Takers.h"
#include "companion/facts/Utilities.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesPerSector = 512;
constexpr std::uint64_t bytesPerLargeSector = 4096;

bool holds(std::string_view text, std::string_view word) {
    return text::containsNoCase(text, word);
}

// Drives and members.

/// An enclosure's value; none for a drive in no enclosure.
struct Enclosure {
    std::optional<std::int32_t> id;
    bool isSound = false;
};

Enclosure enclosureOf(std::string_view value) {
    if (value == "N/A") {
        return {std::nullopt, true};
    }
    const std::optional<std::int32_t> id = wholeNumber(value);
    return {id, id.has_value()};
}

void takeEnclosureOfMember(Reading& reading, const ListingLine& line) {
    MemberDraft* member = reading.member();
    if (member == nullptr || member->slot) {
        reading.broken(line, "a member without a heading");
        member = reading.beginMember(line, "without a heading");
    }
    const Enclosure enclosure = enclosureOf(line.value);
    if (member == nullptr || !enclosure.isSound) {
        tellBadValue(reading, line, "number");
        return;
    }
    member->enclosure = enclosure.id;
    member->hasEnclosure = true;
}

/// The first line of a drive's block.
void takeEnclosure(Reading& reading, const ListingLine& line) {
    if (reading.block == Block::member) {
        takeEnclosureOfMember(reading, line);
        return;
    }
    if (reading.block != Block::drive || reading.drive.slot || reading.hasEnclosure) {
        reading.beginDrive(line);
    }
    const Enclosure enclosure = enclosureOf(line.value);
    if (!enclosure.isSound) {
        tellBadValue(reading, line, "number");
        return;
    }
    reading.drive.enclosure = enclosure.id;
    reading.hasEnclosure = true;
}

void takeSlot(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> slot = wholeNumber(line.value);
    if (reading.block == Block::member) {
        MemberDraft* const member = reading.member();
        if (member != nullptr) {
            member->slot = slot;
            member->named = slot && member->hasEnclosure ? locationText(member->enclosure, *slot)
                                                         : member->named;
            member->location = member->hasEnclosure && slot ? member->named : "";
        }
    } else {
        if (reading.block != Block::drive || reading.drive.slot) {
            reading.beginDrive(line);
        }
        reading.drive.slot = slot;
    }
    if (!slot) {
        tellBadValue(reading, line, "number");
    }
}

std::string location(const Reading& reading) {
    const DriveFacts& drive = reading.drive;
    return drive.slot && reading.hasEnclosure ? locationText(drive.enclosure, *drive.slot)
                                              : std::string();
}

/// "69376MB [0x8780000 Sectors]", "1.818 TB [0xe8b6d000 Sectors]".
void takeCoercedSize(Reading& reading, const ListingLine& line) {
    const std::optional<Size> size = parseSize(line.value, bytesPerMb * 1024);
    const std::optional<std::uint64_t> sectors = hexSectors(line.value);
    if (!size) {
        tellBadValue(reading, line, "size");
        return;
    }
    reading.drive.capacityBytes = size->bytes;
    reading.drive.capacityTolerance = size->tolerance;
    if (!sectors) {
        return;
    }
    for (const std::uint64_t sector : {bytesPerSector, bytesPerLargeSector}) {
        const std::uint64_t bytes = *sectors * sector;
        const std::uint64_t off = std::max(bytes, size->bytes) - std::min(bytes, size->bytes);
        if (off <= size->tolerance) {
            reading.drive.capacityBytes = bytes;
            reading.drive.capacityTolerance = 0;
            return;
        }
    }
    reading.broken(line, "size in sectors and size in words differ");
}

/// The parts of the inquiry text: vendor, model, revision and serial number of 8, 16, 4 and 20
/// bytes; in the longer form serial number, model and revision of 20, 40 and 8 bytes.
void takeInquiry(Reading& reading, const ListingLine& line) {
    std::string_view text = line.rest;
    text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    const auto part = [text](std::size_t from, std::size_t length) {
        return from < text.size() ? cleanText(text.substr(from, length)) : std::string();
    };
    constexpr std::size_t longForm = 60;
    const bool isLong =
        text.size() > longForm && text.find_first_not_of(' ', longForm) < text.size();
    const std::string serial = isLong ? part(0, 20) : part(28, 20);
    if (reading.block == Block::member) {
        if (MemberDraft* const member = reading.member()) {
            member->serialNumber = serial;
        }
        return;
    }
    DriveFacts& drive = reading.drive;
    drive.inquiry = cleanText(text);
    drive.serialNumber = serial;
    drive.manufacturer = isLong ? "" : part(0, 8);
    drive.model = isLong ? part(20, 40) : part(8, 16);
    drive.revision = isLong ? part(60, 8) : part(24, 4);
}

void takeForeignState(Reading& reading, const ListingLine& line) {
    reading.drive.isForeign = !holds(line.value, "None");
}

/// "Type" of a hot spare: "Dedicated, is not revertible".
void takeSpareType(Reading& reading, const ListingLine& line) {
    if (reading.drive.state == DriveState::hotspare && line.value.starts_with("Dedicated")) {
        reading.drive.hotspare = HotspareKind::dedicated;
    }
}

/// "DiskGroup: 0, Span: 0, Arm: 1".
void takeMemberPosition(Reading& reading, const ListingLine& line) {
    constexpr std::string_view key = "DiskGroup: ";
    MemberDraft* const member = reading.member();
    if (member != nullptr && line.value.starts_with(key)) {
        std::string_view rest = line.value.substr(key.size());
        if (const std::optional<std::int32_t> group = wholeNumber(rest.substr(0, rest.find(',')))) {
            member->group = group;
        }
    }
}

// Virtual disks.

/// "0 (Target Id: 0)".
void takeVirtualDisk(Reading& reading, const ListingLine& line) {
    const std::string id = cleanText(line.value.substr(0, line.value.find('(')));
    reading.beginLogicalDrive(line, id);
    if (!wholeNumber(id)) {
        tellBadValue(reading, line, "number");
    }
}

/// "Primary-5, Secondary-3, RAID Level Qualifier-3". Early firmware tells a level over spans by the
/// number of spans alone.
void takeLevel(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.reportedLevel = cleanText(line.value);
    }
}

std::string levelOf(const LogicalDriveDraft& draft) {
    constexpr std::string_view primaryKey = "Primary-";
    constexpr std::string_view secondaryKey = "Secondary-";
    const std::string_view level = draft.facts.reportedLevel;
    const std::size_t primary = level.find(primaryKey);
    const std::size_t secondary = level.find(secondaryKey);
    if (primary == std::string_view::npos || secondary == std::string_view::npos) {
        return {};
    }
    const std::string_view number = level.substr(primary + primaryKey.size());
    const std::string_view first = number.substr(0, number.find(','));
    const std::string_view second = level.substr(secondary + secondaryKey.size());
    const std::string_view above = second.substr(0, second.find(','));
    if (above != "0" && above != "3") {
        return {};
    }
    const bool hasSpans = above == "3" || draft.spans.size() > 1;
    if (first == "0") {
        return "RAID0";
    }
    if (first == "1" || first == "5" || first == "6") {
        return "RAID" + std::string(first) + (hasSpans ? "0" : "");
    }
    return {};
}

void announceDrivesPerSpan(Reading& reading, const ListingLine& line) {
    announceMembers(reading, line);
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->announcedPerSpan = true;
    }
}

void announceSpans(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    const std::optional<std::int32_t> count = wholeNumber(line.value);
    if (!count) {
        tellBadValue(reading, line, "number");
    } else if (draft != nullptr) {
        draft->announcedSpans = count;
    }
}

void announceVirtualDisks(Reading& reading, const ListingLine& line) {
    announceLogicalDrives(reading, line);
}

/// "0 - Number of PDs: 3".
void takeSpan(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> count = lastNumber(line.value);
    if (reading.block == Block::member) {
        reading.leave(Block::logicalDrive);
    }
    if (!count || !holds(line.value, "Number of PDs")) {
        tellBadValue(reading, line, "number of drives");
    }
    reading.beginSpan(count ? *count : -1);
}

/// "0 Information".
void takeMember(Reading& reading, const ListingLine& line) {
    if (reading.membersAsDrives) {
        reading.leave(Block::none);
        return;
    }
    reading.beginMember(line, "PD " + cleanText(line.value.substr(0, line.value.find(' '))));
}

/// "WriteBack, ReadAdaptive, Direct, No Write Cache if Bad BBU".
void takeCachePolicy(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft == nullptr) {
        return;
    }
    const std::string_view value = line.value;
    if (holds(value, "WriteBack")) {
        draft->facts.writeCache =
            holds(value, "No Write Cache if Bad") ? "ProtectedWriteBack" : "UnprotectedWriteBack";
    } else {
        draft->facts.writeCache = holds(value, "WriteThrough") ? "WriteThrough" : "";
    }
    draft->facts.readCache = holds(value, "ReadAheadNone")  ? "Off"
                             : holds(value, "ReadAdaptive") ? "AdaptiveReadAhead"
                             : holds(value, "ReadAhead")    ? "ReadAhead"
                                                            : "";
}

// The adapter.

void takeLevels(Reading& reading, const ListingLine& line) {
    std::string_view rest = line.value;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        const std::string level = cleanText(rest.substr(0, end));
        if (level.starts_with("RAID") && raidTypeOf(std::string_view(level).substr(4)) == level) {
            reading.facts.raidTypes.push_back(level);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
}

template <std::optional<std::uint64_t> Facts::*field>
void takeStripLimit(Reading& reading, const ListingLine& line) {
    if (const std::optional<Size> size = parseSize(line.value, bytesPerKb)) {
        reading.facts.*field = size->bytes;
    } else {
        tellBadValue(reading, line, "size");
    }
}

void takeRebuildRate(Reading& reading, const ListingLine& line) {
    reading.facts.rebuildRate = cleanText(line.value);
    const std::string_view number = line.value.substr(0, line.value.find('%'));
    reading.facts.rebuildRatePercent = wholeNumber(cleanText(number));
}

/// The four parts come in the order in which they stand in the text.
void takePciId(Reading& reading, const ListingLine& line) {
    constexpr std::size_t digits = 4;
    std::string& ids = reading.facts.pciIds;
    if (line.value.size() != digits ||
        line.value.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos) {
        tellBadValue(reading, line, "PCI id");
        return;
    }
    ids += ids.empty() ? "" : ":";
    for (const char digit : line.value) {
        ids += text::lower(digit);
    }
}

void announceDisks(Reading& reading, const ListingLine& line) {
    if (const std::optional<std::int32_t> count = wholeNumber(line.value)) {
        reading.announce(Announcement::What::drives, line, *count);
    } else {
        tellBadValue(reading, line, "number");
    }
}

void takeExitCode(Reading& reading, const ListingLine& line) {
    reading.leave(Block::none);
    reading.close();
    if (line.value != "0x00" && reading.isListing()) {
        reading.broken(line, "the utility ended with exit code " + cleanText(line.value));
    }
}

/// "Adapter #0" is the heading; a second one is of another adapter.
void beginAdapter(Reading& reading, const ListingLine& line) {
    if (reading.hasHeading) {
        reading.broken(line, "what follows is of another adapter");
        reading.isOver = true;
    }
    reading.hasHeading = true;
    reading.leave(Block::controller);
}

constexpr Blocks ofDrives = in(Block::member, Block::drive);
constexpr Blocks ofDisks = in(Block::logicalDrive, Block::member);
constexpr Blocks ofAdapter = in(Block::none, Block::controller);
constexpr Blocks ofDrive = in(Block::drive);
constexpr Blocks ofDisk = in(Block::logicalDrive);

// Columns: the key, the blocks where it stands, what takes its value (nothing: known, not used).
// The order does not matter.
// clang-format off
constexpr auto keyRows = std::to_array<KeyRow>({
    {"Exit Code",                          anywhere,  takeExitCode},
    // Drives, in the drive listing and as members.
    {"Enclosure Device ID",                anywhere,  takeEnclosure},
    {"Enclosure Number",                   ofDrives,  takeEnclosure},
    {"Slot Number",                        anywhere,  takeSlot},
    {"Device Id",                          ofDrive,   takeDriveNumber<&DriveFacts::number>},
    {"Media Error Count",                  ofDrive,   takeDriveNumber<&DriveFacts::mediaErrorCount>},
    {"Other Error Count",                  ofDrive,   takeDriveNumber<&DriveFacts::otherErrorCount>},
    {"Predictive Failure Count",           ofDrive,   takeDriveNumber<&DriveFacts::predictedFailureCount>},
    {"PD Type",                            ofDrive,   takeProtocol},
    {"Coerced Size",                       ofDrive,   takeCoercedSize},
    {"Firmware state",                     ofDrive,   takeDriveState},
    {"Inquiry Data",                       ofDrives,  takeInquiry},
    {"Foreign State",                      ofDrive,   takeForeignState},
    {"Media Type",                         ofDrive,   takeMediaType},
    {"Drive Temperature",                  ofDrive,   takeTemperature},
    {"Drive has flagged a S.M.A.R.T alert", ofDrive,  takePrediction},
    {"Type",                               ofDrive,   takeSpareType},
    {"Drive's position",                   in(Block::member), takeMemberPosition},
    {"Drive's position",                   ofDrive},
    {"Device Id",                          in(Block::member)},
    {"Media Error Count",                  in(Block::member)},
    {"Other Error Count",                  in(Block::member)},
    {"Predictive Failure Count",           in(Block::member)},
    {"PD Type",                            in(Block::member)},
    {"Coerced Size",                       in(Block::member)},
    {"Firmware state",                     in(Block::member)},
    {"Foreign State",                      in(Block::member)},
    {"Media Type",                         in(Block::member)},
    {"Drive Temperature",                  in(Block::member)},
    {"Drive has flagged a S.M.A.R.T alert", in(Block::member)},
    {"Type",                               in(Block::member)},
    {"Sequence Number",                    ofDrives},
    {"Last Predictive Failure Event Seq Number", ofDrives},
    {"Raw Size",                           ofDrives},
    {"Non Coerced Size",                   ofDrives},
    {"Sector Size",                        in(Block::logicalDrive, Block::member, Block::drive)},
    {"SAS Address(0)",                     ofDrives},
    {"SAS Address(1)",                     ofDrives},
    {"Connected Port Number",              ofDrives},
    {"Enclosure position",                 ofDrives},
    {"WWN",                                ofDrives},
    {"Commissioned Spare",                 ofDrives},
    {"Emergency Spare",                    ofDrives},
    {"Hotspare Information",               ofDrives},
    {"Device Firmware Level",              ofDrives},
    {"Shield Counter",                     ofDrives},
    {"Successful diagnostics completion on", ofDrives},
    {"FDE Capable",                        ofDrives},
    {"FDE Enable",                         ofDrives},
    {"Secured",                            ofDrives},
    {"Locked",                             ofDrives},
    {"Needs EKM Attention",                ofDrives},
    {"Device Speed",                       ofDrives},
    {"Link Speed",                         ofDrives},
    {"PI Eligibility",                     ofDrives},
    {"Drive is formatted for PI information", ofDrives},
    {"PI",                                 ofDrives},
    {"Port-0",                             ofDrives},
    {"Port-1",                             ofDrives},
    {"Port status",                        ofDrives},
    {"Port's Linkspeed",                   ofDrives},
    // Virtual disks.
    {"Number of Virtual Disks",            ofAdapter, announceVirtualDisks},
    {"Number of Virtual Drives",           ofAdapter, announceVirtualDisks},
    {"Virtual Disk",                       anywhere,  takeVirtualDisk},
    {"Virtual Drive",                      anywhere,  takeVirtualDisk},
    {"Name",                               ofDisk,    takeLogicalText<&LogicalDriveFacts::name>},
    {"RAID Level",                         ofDisk,    takeLevel},
    {"Size",                               ofDisk,    takeLogicalSize},
    {"State",                              ofDisk,    takeLogicalState},
    {"Stripe Size",                        ofDisk,    takeStripSize},
    {"Strip Size",                         ofDisk,    takeStripSize},
    {"Number Of Drives",                   ofDisk,    announceMembers},
    {"Number of PDs",                      ofDisks,   announceMembers},
    {"VD has Emulated PD",                 ofDisks},
    {"Number Of Drives per span",          ofDisk,    announceDrivesPerSpan},
    {"Number of Spans",                    ofDisk,    announceSpans},
    {"Span",                               ofDisks,   takeSpan},
    {"PD",                                 in(Block::logicalDrive, Block::member, Block::drive), takeMember},
    {"Current Cache Policy",               ofDisk,    takeCachePolicy},
    {"Default Cache Policy",               ofDisk},
    {"Mirror Data",                        ofDisk},
    {"Parity Size",                        ofDisk},
    {"Span Depth",                         ofDisk},
    {"Access Policy",                      ofDisk},
    {"Default Access Policy",              ofDisk},
    {"Current Access Policy",              ofDisk},
    {"Disk Cache Policy",                  ofDisk},
    {"Encryption Type",                    ofDisk},
    {"Is VD Cached",                       ofDisk},
    {"Bad Blocks Exist",                   ofDisk},
    // The adapter.
    {"Product Name",                       ofAdapter, takeText<&Facts::productName>},
    {"Serial No",                          ofAdapter, takeText<&Facts::serialNumber>},
    {"FW Version",                         ofAdapter, takeText<&Facts::firmwareVersion>},
    {"BIOS Version",                       ofAdapter, takeText<&Facts::biosVersion>},
    {"Vendor Id",                          ofAdapter, takePciId},
    {"Device Id",                          ofAdapter, takePciId},
    {"SubVendorId",                        ofAdapter, takePciId},
    {"SubDeviceId",                        ofAdapter, takePciId},
    {"Rebuild Rate",                       ofAdapter, takeRebuildRate},
    {"RAID Level Supported",               ofAdapter, takeLevels},
    {"Min Stripe Size",                    ofAdapter, takeStripLimit<&Facts::minStripSizeBytes>},
    {"Min Strip Size",                     ofAdapter, takeStripLimit<&Facts::minStripSizeBytes>},
    {"Max Stripe Size",                    ofAdapter, takeStripLimit<&Facts::maxStripSizeBytes>},
    {"Max Strip Size",                     ofAdapter, takeStripLimit<&Facts::maxStripSizeBytes>},
    {"Virtual Drives",                     ofAdapter, announceVirtualDisks},
    {"Disks",                              ofAdapter, announceDisks},
    {"FW Package Build",                   ofAdapter},
    {"Mfg. Date",                          ofAdapter},
    {"Rework Date",                        ofAdapter},
    {"Revision No",                        ofAdapter},
    {"Battery FRU",                        ofAdapter},
    {"Image Versions In Flash",            ofAdapter},
    {"WebBIOS Version",                    ofAdapter},
    {"Boot Block Version",                 ofAdapter},
    {"Physical Drive Coercion Mode",       ofAdapter},
    {"Supported Drives",                   ofAdapter},
    {"Max Arms Per VD",                    ofAdapter},
    {"Max Spans Per VD",                   ofAdapter},
    {"Degraded",                           ofAdapter},
    {"Offline",                            ofAdapter},
    {"Physical Devices",                   ofAdapter},
    {"Critical Disks",                     ofAdapter},
    {"Failed Disks",                       ofAdapter},
});

constexpr std::array<KeyRow, 2> numberedKeys = {{
    {"SAS Address(", ofDrives},
    {"Port-",        ofDrives},
}};

constexpr std::array<HeadingRow, 1> headings = {{
    {"Adapter #", beginAdapter},
}};
// clang-format on

constexpr KeyTable keyTable(keyRows);
static_assert(keyTable.isDistinct());

bool endsListing(const ListingLine& /*line*/) {
    return false; // the last line has a key
}

constexpr UtilityTable table = {
    .keys = keyTable.lookup(),
    .numberedKeys = numberedKeys,
    .headings = headings,
    .takePlain = nullptr,
    .endsListing = endsListing,
    .location = location,
    .locationMissing = "physical drive without an enclosure or without a slot",
    .listings = 3,
    .tellsDrives = true,
};

} // namespace

Facts readMegacli(std::span<const std::string> listings) {
    Reading reading(table);
    for (std::size_t i = 0; i < listings.size(); ++i) {
        reading.read(i, listings[i]);
    }
    if (reading.facts.drives.empty()) {
        // The drives were not listed: those that are members are told with the virtual disks.
        Reading members(table);
        members.membersAsDrives = true;
        for (std::size_t i = 0; i < listings.size(); ++i) {
            members.read(i, listings[i]);
        }
        reading.takeDrives(members);
    }
    for (LogicalDriveDraft& draft : reading.logicalDrives) {
        draft.facts.raidType = levelOf(draft);
    }
    reading.finish();
    return std::move(reading.facts);
}

} // namespace zolex::companion
