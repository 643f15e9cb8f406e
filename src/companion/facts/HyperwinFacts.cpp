// HYPERWIN: three listings, of the adapter with its only array and of each of its two drives. Keys
// as the utility prints them.

#include "companion/facts/Takers.h"
#include "companion/facts/Utilities.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

constexpr std::int32_t mostDrives = 2;
constexpr std::string_view success = "0000";
constexpr std::string_view notReady = "000a";

void takeArray(Reading& reading, const ListingLine& line) {
    const std::string number = cleanText(line.value);
    reading.beginLogicalDrive(line, number.empty() ? "0" : number); // there is one
}

void takeStripe(Reading& reading, const ListingLine& line) {
    takeStripSize(reading, line);
}

/// Of members and spare.
void takeTotal(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> total = wholeNumber(line.value);
    if (!total || *total > mostDrives) {
        tellBadValue(reading, line, "number of drives");
    } else {
        announceMembers(reading, line);
    }
}

/// The position of the spare, from 0.
void takeSpare(Reading& reading, const ListingLine& line) {
    const std::optional<std::int32_t> position = wholeNumber(line.value);
    if (position && *position < mostDrives) {
        reading.spare = *position + 1;
    } else {
        tellBadValue(reading, line, "position of a drive");
    }
}

/// "Adapter 0, drive 1" begins the listing of a drive, "Adapter 0" that of the adapter.
void beginAdapter(Reading& reading, const ListingLine& line) {
    reading.leave(Block::controller);
    if (!text::containsNoCase(line.text, "drive")) {
        return;
    }
    reading.beginDrive(line);
    reading.drive.number = lastNumber(line.text);
    reading.drive.protocol = "PATA";
}

/// The last line. A drive answers, or it is not ready.
void takeErrorCode(Reading& reading, const ListingLine& line) {
    reading.close();
    const bool isDrive = reading.block == Block::drive;
    if (isDrive && line.value == success) {
        reading.drive.reportedState = "ready";
        reading.drive.state = DriveState::free;
        reading.drive.health = Health::ok;
        reading.leave(Block::none);
    } else if (isDrive && line.value == notReady) {
        reading.dropDrive();
        reading.leave(Block::none);
    } else if (line.value != success && reading.isListing()) {
        reading.broken(line, "the utility ended with error code " + cleanText(line.value));
    }
}

/// "+WRITE_CACHE" and "-WRITE_CACHE", and keys whose value stands behind a "=" or a blank.
void takePlain(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    if (draft != nullptr && line.text == "+WRITE_CACHE") {
        draft->facts.writeCache = "UnprotectedWriteBack";
    } else if (draft != nullptr && line.text == "-WRITE_CACHE") {
        draft->facts.writeCache = "WriteThrough";
    } else {
        const std::size_t mark = line.text.find('=');
        reading.takeOtherKey(line, std::min(mark, line.text.find_last_of(" \t")));
    }
}

std::string location(const Reading& reading) {
    const std::optional<std::int32_t> number = reading.drive.number;
    return number && *number >= 1 && *number <= mostDrives ? std::to_string(*number)
                                                           : std::string();
}

bool endsListing(const ListingLine& /*line*/) {
    return false; // the last line has a key
}

constexpr Blocks ofArray = in(Block::logicalDrive);

// Columns: the key, the blocks where it stands, what takes its value. The order does not matter.
// clang-format off
constexpr auto keyRows = std::to_array<KeyRow>({
    {"Error Code (hex)",      anywhere,              takeErrorCode},
    {"LOGICAL_ARRAY",         in(Block::none, Block::controller), takeArray},
    {"ARRAY_STATUS",          ofArray,               takeLogicalState},
    {"RAID_MODE",             ofArray,               takeLogicalLevel},
    {"STRIPE_SIZE",           ofArray,               takeStripe},
    {"TOTAL_PHYSICAL_DRIVES", ofArray,               takeTotal},
    {"SPARE",                 in(Block::controller, Block::logicalDrive), takeSpare},
});

constexpr std::array<HeadingRow, 1> headings = {{
    {"Adapter ", beginAdapter},
}};
// clang-format on

constexpr KeyTable keyTable(keyRows);
static_assert(keyTable.isDistinct());

constexpr UtilityTable table = {
    .keys = keyTable.lookup(),
    .numberedKeys = {},
    .headings = headings,
    .takePlain = takePlain,
    .endsListing = endsListing,
    .location = location,
    .locationMissing = "drive with a number that is neither 1 nor 2",
    .listings = 3,
    .tellsDrives = false,
};

DriveFacts* driveOf(Facts& facts, std::int32_t number) {
    const auto found =
        std::find_if(facts.drives.begin(), facts.drives.end(),
                     [number](const DriveFacts& drive) { return drive.number == number; });
    return found == facts.drives.end() ? nullptr : &*found;
}

/// A member that the array alone tells of: it does not answer, or was not asked.
DriveFacts toldByArray(std::int32_t number, bool wasAsked, ListingPlace place) {
    DriveFacts drive;
    drive.location = std::to_string(number);
    drive.number = number;
    drive.protocol = "PATA";
    drive.reportedState = wasAsked ? "not ready" : "";
    drive.state = wasAsked ? DriveState::missing : DriveState::member;
    drive.health = wasAsked ? Health::critical : Health::unknown;
    drive.place = place;
    return drive;
}

/// The array takes all drives but the spare. Where it is told to be of one, that is the one that
/// answers.
void placeMembers(Reading& reading) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    const std::int32_t total = draft == nullptr ? 0 : draft->announcedMembers.value_or(0);
    const bool isSecond = total == 1 && driveOf(reading.facts, 1) == nullptr &&
                          driveOf(reading.facts, mostDrives) != nullptr;
    if (draft != nullptr) {
        // No other state is told of an array that is sound.
        draft->facts.health = draft->facts.reportedState.empty() ? Health::ok : draft->facts.health;
        draft->announcedMembers.reset();
        draft->spans.emplace_back();
        draft->announcedInSpan.push_back(-1);
    }
    for (std::int32_t number = 1; number <= mostDrives; ++number) {
        const bool isSpare = reading.spare == number;
        const bool isTaken = isSecond ? number == mostDrives : number <= total;
        const bool isMember = draft != nullptr && isTaken && !isSpare;
        DriveFacts* drive = driveOf(reading.facts, number);
        if (drive == nullptr && isMember) {
            const bool wasAsked = reading.facts.listings.size() > static_cast<std::size_t>(number);
            reading.addDrive(toldByArray(number, wasAsked, draft->facts.place));
            if (wasAsked && draft->facts.health == Health::ok) {
                reading.broken(draft->facts.place,
                               "drive " + std::to_string(number) + " of the array does not answer");
            }
        } else if (drive != nullptr && (isMember || isSpare)) {
            drive->state = isSpare ? DriveState::hotspare : DriveState::member;
            drive->hotspare = isSpare ? HotspareKind::global : HotspareKind::none;
        }
        if (isMember) {
            MemberDraft& member = draft->spans.back().emplace_back();
            member.named = member.location = std::to_string(number);
            member.place = draft->facts.place;
        }
    }
}

} // namespace

Facts readHyperwin(std::span<const std::string> listings) {
    Reading reading(table);
    for (std::size_t i = 0; i < listings.size(); ++i) {
        reading.read(i, listings[i]);
    }
    placeMembers(reading);
    for (DriveFacts& drive : reading.facts.drives) {
        drive.channel = 1; // the only one
        drive.id = drive.number.value_or(1) - 1;
    }
    reading.finish();
    // One that does not answer is told behind the others.
    std::sort(reading.facts.drives.begin(), reading.facts.drives.end(),
              [](const DriveFacts& a, const DriveFacts& b) { return a.location < b.location; });
    return std::move(reading.facts);
}

} // namespace zolex::companion
