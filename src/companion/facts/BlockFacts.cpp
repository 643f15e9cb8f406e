// QTCSEND, CFGGEN and its twin CFGGEN1.02.02: one listing in blocks between rulers, with the
// controller, the logical drives and the physical devices. Keys as the utilities print them.

#include "companion/facts/Takers.h"
#include "companion/facts/Utilities.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace zolex::companion {

namespace {

bool holds(std::string_view text, std::string_view word) {
    return text::containsNoCase(text, word);
}

// Logical drives.

/// "Logical drive number 1", "IR volume 1".
void beginLogical(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> number = lastNumber(line.text);
    reading.beginLogicalDrive(line, number ? std::to_string(*number) : "?");
    if (!number) {
        reading.broken(line, "logical drive without a number");
    }
}

void takeWriteCache(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.writeCache = holds(line.value, "(WB)")   ? "UnprotectedWriteBack"
                                  : holds(line.value, "(WT)") ? "WriteThrough"
                                                              : "";
    }
}

/// Adds to the array whose list is read.
void addToArray(Reading& reading, const ListingLine& line, std::string_view list) {
    constexpr std::size_t most = 256; // as each of its logical drives has them
    std::vector<MemberDraft>& members = reading.arrays[reading.array];
    appendMembers(reading, line, list, ',', members);
    if (members.size() > most) {
        members.resize(most);
        reading.broken(line, "more than " + std::to_string(most) +
                                 " drives in an array: the others are not read");
    }
}

/// "Array A": "1,0 1,1 1,2".
void takeArray(Reading& reading, const ListingLine& line) {
    constexpr std::string_view key = "Array ";
    reading.leave(Block::logicalDrive);
    reading.array = cleanText(line.key.substr(key.size()));
    addToArray(reading, line, line.value);
}

/// The list of an array goes on below its first line.
void takeArrayLine(Reading& reading, const ListingLine& line) {
    constexpr std::size_t deepest = 14;
    if (reading.block == Block::logicalDrive && !reading.array.empty() && line.indent >= deepest) {
        addToArray(reading, line, line.text);
    }
}

/// "1/0 1/1".
void takePhysicalDisks(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft != nullptr) {
        reading.beginSpan(-1);
        appendMembers(reading, line, line.value, '/', draft->spans.back());
    }
}

/// "1 4": target ids. Where a drive is told by enclosure and slot, "1:0" names these.
void takeTargets(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft == nullptr) {
        return;
    }
    reading.beginSpan(-1);
    const std::size_t before = draft->spans.back().size();
    appendMembers(reading, line, line.value, ':', draft->spans.back());
    for (std::size_t i = before; i < draft->spans.back().size(); ++i) {
        MemberDraft& member = draft->spans.back()[i];
        member.number = wholeNumber(member.named);
        member.location = member.number ? member.named : member.location;
    }
}

// Physical devices.

/// "Channel #2".
void beginChannel(Reading& reading, const ListingLine& line) {
    reading.leave(Block::none);
    reading.channel = lastNumber(line.key);
    if (!reading.channel) {
        reading.broken(line, "channel without a number");
    }
}

void beginTarget(Reading& reading, const ListingLine& line) {
    reading.beginDrive(line);
    reading.drive.protocol = reading.protocol;
}

/// A drive that the controller has for its own use is none.
void takeSerialNumber(Reading& reading, const ListingLine& line) {
    reading.drive.serialNumber = cleanText(line.value);
    if (holds(line.value, "LSIInternalUse")) {
        reading.dropDrive();
    }
}

/// "NORVIK  NV18401S": vendor, model and revision of 8, 16 and 4 bytes.
void takeDeviceId(Reading& reading, const ListingLine& line) {
    std::string_view text = line.rest;
    text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    const auto part = [text](std::size_t from, std::size_t length) {
        return from < text.size() ? cleanText(text.substr(from, length)) : std::string();
    };
    reading.drive.inquiry = cleanText(text);
    reading.drive.manufacturer = part(0, 8);
    reading.drive.model = part(8, 16);
    reading.drive.revision = part(24, 4);
}

void takeDriveType(Reading& reading, const ListingLine& line) {
    takeProtocol(reading, line);
    takeMediaType(reading, line);
}

// The controller.

/// "2 parallel SCSI".
void takeChannels(Reading& reading, const ListingLine& line) {
    reading.protocol = protocolOf(line.value);
}

void takeReadAhead(Reading& reading, const ListingLine& line) {
    reading.commonReadCache = holds(line.value, "Adaptive")   ? "AdaptiveReadAhead"
                              : holds(line.value, "Enabled")  ? "ReadAhead"
                              : holds(line.value, "Disabled") ? "Off"
                                                              : "";
}

template <std::optional<std::int32_t> Reading::*field>
void takePciNumber(Reading& reading, const ListingLine& line) {
    reading.*field = wholeNumber(line.value);
    if (!reading.pciBus || !reading.pciDevice || !reading.pciFunction || *reading.pciBus > 255 ||
        *reading.pciDevice > 31 || *reading.pciFunction > 7) {
        return;
    }
    std::array<char, 16> address{};
    std::snprintf(address.data(), address.size(), "%02x:%02x.%x",
                  static_cast<unsigned>(*reading.pciBus), static_cast<unsigned>(*reading.pciDevice),
                  static_cast<unsigned>(*reading.pciFunction));
    reading.facts.pciAddress = address.data();
}

// How commands name drives.

std::string channelAndId(const Reading& reading) {
    const DriveFacts& drive = reading.drive;
    return drive.channel && drive.id ? locationText(drive.channel, *drive.id) : std::string();
}

std::string enclosureAndSlot(const Reading& reading) {
    const DriveFacts& drive = reading.drive;
    return drive.enclosure && drive.slot ? locationText(drive.enclosure, *drive.slot)
                                         : std::string();
}

std::string idAlone(const Reading& reading) {
    return reading.drive.id ? std::to_string(*reading.drive.id) : std::string();
}

bool endsQtcsend(const ListingLine& line) {
    return line.text.starts_with("Command completed successfully");
}

/// The listing ends with a ruler; after other lines it is none.
bool endsCfggen(const ListingLine& line) {
    return line.text.starts_with("--------") || holds(line.text, "Completed Successfully");
}

constexpr Blocks ofDrive = in(Block::drive);
constexpr Blocks ofLogical = in(Block::logicalDrive);
constexpr Blocks ofController = in(Block::controller);

// Columns: the key, the blocks where it stands, what takes its value (nothing: known, not used).
// The order does not matter.
// clang-format off
constexpr auto qtcsendRows = std::to_array<KeyRow>({
    {"Controller type",                 ofController, takeText<&Facts::productName>},
    {"BIOS version",                    ofController, takeText<&Facts::biosVersion>},
    {"Firmware version",                ofController, takeText<&Facts::firmwareVersion>},
    {"Defunct disk drive count",        ofController, announceFailedDrives},
    {"Logical drives/Offline/Critical", ofController, announceLogicalDrives},
    {"Rebuild rate",                    ofController, takeText<&Facts::rebuildRate>},
    {"Readahead cache setting",         ofController, takeReadAhead},
    {"Channel description",             ofController, takeChannels},
    {"Initiator IDs (Channel/SCSI ID)", ofController},
    {"Maximum physical devices",        ofController},
    {"Concurrent commands supported",   ofController},
    {"Slot",                            ofController},
    {"Controller slot",                 ofController},
    {"Controller name",                 ofController},
    {"Stripe-unit size",                ofController},
    {"Battery backup",                  ofController},
    {"Status of logical drive",         ofLogical,    takeLogicalState},
    {"RAID level",                      ofLogical,    takeLogicalLevel},
    {"Size (in MB)",                    ofLogical,    takeLogicalSize},
    {"Write cache status",              ofLogical,    takeWriteCache},
    {"Number of chunks",                ofLogical,    announceMembers},
    {"Stripe-unit size",                ofLogical,    takeStripSize},
    {"Status of volume",                ofLogical,    takeLogicalState},
    {"Physical hard disks",             ofLogical,    takePhysicalDisks},
    {"Part of array",                   ofLogical,    takeLogicalText<&LogicalDriveFacts::array>},
    {"SCSI ID",                         ofDrive,      takeDriveNumber<&DriveFacts::id>},
    {"State",                           ofDrive,      takeDriveState},
    {"Size (in MB)/(in sectors)",       ofDrive,      takeDriveSizes},
    {"Serial No",                       ofDrive,      takeSerialNumber},
    {"Device ID",                       ofDrive,      takeDeviceId},
});
constexpr std::array<KeyRow, 3> qtcsendNumbered = {{
    {"Array ",              in(Block::none, Block::logicalDrive, Block::other), takeArray},
    {"Physical hard disks", ofLogical, takePhysicalDisks},
    {"Channel #",           anywhere,  beginChannel},
}};
constexpr auto qtcsendHeadings = std::to_array<HeadingRow>({
    {"Target on ",                  beginTarget},
    {"Device is ",                  takeDeviceKind},
    {"Logical drive number ",       beginLogical},
    {"IR volume ",                  beginLogical},
    {"Controller information",      beginController},
    {"Logical drive information",   beginSection},
    {"Physical device information", beginSection},
});

constexpr auto cfggenRows = std::to_array<KeyRow>({
    {"Controller type",                 ofController, takeText<&Facts::productName>},
    {"BIOS version",                    ofController, takeText<&Facts::biosVersion>},
    {"Firmware version",                ofController, takeText<&Facts::firmwareVersion>},
    {"Bus",                             ofController, takePciNumber<&Reading::pciBus>},
    {"Device",                          ofController, takePciNumber<&Reading::pciDevice>},
    {"Function",                        ofController, takePciNumber<&Reading::pciFunction>},
    {"Channel description",             ofController},
    {"Initiator ID",                    ofController},
    {"Initiator IDs (Channel/SCSI ID)", ofController},
    {"Maximum physical devices",        ofController},
    {"Concurrent commands supported",   ofController},
    {"Slot",                            ofController},
    {"RAID Support",                    ofController},
    {"Status of volume",                ofLogical,    takeLogicalState},
    {"RAID level",                      ofLogical,    takeLogicalLevel},
    {"Size (in MB)",                    ofLogical,    takeLogicalSize},
    {"Physical hard disks",             ofLogical,    takeTargets},
    {"Physical hard disks (Target ID)", ofLogical,    takeTargets},
    {"Volume ID",                       ofLogical},
    {"Enclosure #",                     ofDrive,      takeDriveNumber<&DriveFacts::enclosure>},
    {"Slot #",                          ofDrive,      takeDriveNumber<&DriveFacts::slot>},
    {"Target ID",                       ofDrive,      takeDriveNumber<&DriveFacts::number>},
    {"SCSI ID",                         ofDrive,      takeDriveNumber<&DriveFacts::id>},
    {"State",                           ofDrive,      takeDriveState},
    {"Size (in MB)/(in sectors)",       ofDrive,      takeDriveSizes},
    {"Manufacturer",                    ofDrive,      takeDriveText<&DriveFacts::manufacturer>},
    {"Model Number",                    ofDrive,      takeDriveText<&DriveFacts::model>},
    {"Firmware Revision",               ofDrive,      takeDriveText<&DriveFacts::revision>},
    {"Serial No",                       ofDrive,      takeSerialNumber},
    {"Drive Type",                      ofDrive,      takeDriveType},
    {"Enclosure#",                      anywhere,     beginOther},
});
constexpr auto cfggenHeadings = std::to_array<HeadingRow>({
    {"Target on ",                  beginTarget},
    {"Device is ",                  takeDeviceKind},
    {"IR Volume information",       beginSection},
    {"IR volume ",                  beginLogical},
    {"Controller information",      beginController},
    {"Physical device information", beginSection},
    {"Enclosure information",       beginOther},
    {"Initiator at ",               beginSection},
});
// clang-format on

constexpr KeyTable qtcsendKeys(qtcsendRows);
static_assert(qtcsendKeys.isDistinct());
constexpr KeyTable cfggenKeys(cfggenRows);
static_assert(cfggenKeys.isDistinct());

constexpr UtilityTable qtcsend = {
    .keys = qtcsendKeys.lookup(),
    .numberedKeys = qtcsendNumbered,
    .headings = qtcsendHeadings,
    .takePlain = takeArrayLine,
    .endsListing = endsQtcsend,
    .location = channelAndId,
    .locationMissing = "physical drive without a channel and a SCSI id",
    .listings = 1,
    .tellsDrives = true,
};

constexpr UtilityTable cfggen = {
    .keys = cfggenKeys.lookup(),
    .numberedKeys = {},
    .headings = cfggenHeadings,
    .takePlain = nullptr,
    .endsListing = endsCfggen,
    .location = enclosureAndSlot,
    .locationMissing = "physical drive without an enclosure and a slot",
    .listings = 1,
    .tellsDrives = true,
};

constexpr UtilityTable cfggenScsi = {
    .keys = cfggenKeys.lookup(),
    .numberedKeys = {},
    .headings = cfggenHeadings,
    .takePlain = nullptr,
    .endsListing = endsCfggen,
    .location = idAlone,
    .locationMissing = "physical drive without a SCSI id",
    .listings = 1,
    .tellsDrives = true,
};

Facts readBlocks(const UtilityTable& table, std::span<const std::string> listings) {
    Reading reading(table);
    for (std::size_t i = 0; i < listings.size(); ++i) {
        reading.read(i, listings[i]);
    }
    reading.finish();
    return std::move(reading.facts);
}

} // namespace

Facts readQtcsend(std::span<const std::string> listings) {
    return readBlocks(qtcsend, listings);
}

Facts readCfggen(std::span<const std::string> listings) {
    return readBlocks(cfggen, listings);
}

Facts readCfggenScsi(std::span<const std::string> listings) {
    Facts facts = readBlocks(cfggenScsi, listings);
    for (DriveFacts& drive : facts.drives) {
        drive.channel = 1; // the only one
    }
    return facts;
}

} // namespace zolex::companion
