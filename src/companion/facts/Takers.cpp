#include "companion/facts/Takers.h"

#include "foundation/Text.h"

#include <algorithm>

namespace zolex::companion {

namespace {

constexpr std::uint64_t bytesPerSector = 512;

bool holds(std::string_view text, std::string_view word) {
    return text::containsNoCase(text, word);
}

} // namespace

void tellBadValue(Reading& reading, const ListingLine& line, const char* wanted) {
    constexpr std::size_t longest = 40;
    reading.broken(line, "\"" + cleanText(line.key.substr(0, longest)) + "\" has no " + wanted +
                             ", but \"" + cleanText(line.value.substr(0, longest)) + "\"");
}

void takeDriveSize(Reading& reading, const ListingLine& line) {
    if (const std::optional<Size> size = parseSize(line.value, bytesPerMb)) {
        reading.drive.capacityBytes = size->bytes;
        reading.drive.capacityTolerance = size->tolerance;
    } else {
        tellBadValue(reading, line, "size");
    }
}

void takeDriveSizes(Reading& reading, const ListingLine& line) {
    std::string_view rest = line.value;
    const std::optional<std::uint64_t> mb = takeNumber(rest);
    constexpr std::uint64_t mostMb = std::uint64_t{1} << 40U;
    if (!mb || *mb > mostMb) {
        tellBadValue(reading, line, "size");
        return;
    }
    reading.drive.capacityBytes = *mb * bytesPerMb;
    reading.drive.capacityTolerance = bytesPerMb;
    if (rest.empty() || rest.front() != '/') {
        return;
    }
    rest.remove_prefix(1);
    const std::optional<std::uint64_t> sectors = takeNumber(rest);
    if (sectors && *sectors / (bytesPerMb / bytesPerSector) == *mb) {
        reading.drive.capacityBytes = *sectors * bytesPerSector;
        reading.drive.capacityTolerance = 0;
    }
}

void takeDriveState(Reading& reading, const ListingLine& line) {
    reading.takeState(line);
}

void takeProtocol(Reading& reading, const ListingLine& line) {
    reading.drive.protocol = protocolOf(line.value);
}

void takeMediaType(Reading& reading, const ListingLine& line) {
    reading.drive.mediaType = mediaTypeOf(line.value);
}

void takeTemperature(Reading& reading, const ListingLine& line) {
    std::string_view rest = line.value;
    const std::optional<std::uint64_t> degrees = takeNumber(rest);
    constexpr std::uint64_t most = 1000;
    const bool isCelsius = !rest.empty() && (rest.front() == 'C' || rest.starts_with(" C"));
    if (degrees && *degrees <= most && isCelsius) {
        reading.drive.temperatureCelsius = static_cast<std::int32_t>(*degrees);
    }
}

void takePrediction(Reading& reading, const ListingLine& line) {
    const std::uint64_t before = reading.drive.predictedFailureCount.value_or(0);
    reading.drive.predictedFailureCount =
        holds(line.value, "Yes") ? std::max<std::uint64_t>(before, 1) : before;
}

void takeLogicalState(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.reportedState = cleanText(line.value);
        draft->facts.health = logicalDriveHealth(line.value);
    }
}

void takeLogicalLevel(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.reportedLevel = cleanText(line.value);
        draft->facts.raidType = raidTypeOf(line.value);
    }
}

void takeLogicalSize(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    const std::optional<Size> size = parseSize(line.value, bytesPerMb);
    if (draft == nullptr) {
        return;
    }
    if (size) {
        draft->facts.capacityBytes = size->bytes;
        draft->facts.capacityTolerance = size->tolerance;
    } else {
        draft->isBroken = true;
        tellBadValue(reading, line, "size");
    }
}

void takeStripSize(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    const std::optional<Size> size = parseSize(line.value, bytesPerKb);
    if (draft == nullptr) {
        return;
    }
    if (size) {
        draft->facts.stripSizeBytes = size->bytes;
    } else {
        tellBadValue(reading, line, "size");
    }
}

void announceLogicalDrives(Reading& reading, const ListingLine& line) {
    const std::string_view first = line.value.substr(0, line.value.find('/'));
    if (const std::optional<std::int32_t> count = wholeNumber(first)) {
        reading.announce(Announcement::What::logicalDrives, line, *count);
    } else {
        tellBadValue(reading, line, "number");
    }
}

void announceFailedDrives(Reading& reading, const ListingLine& line) {
    if (const std::optional<std::int32_t> count = wholeNumber(line.value)) {
        reading.announce(Announcement::What::failedDrives, line, *count);
    } else {
        tellBadValue(reading, line, "number");
    }
}

void announceMembers(Reading& reading, const ListingLine& line) {
    LogicalDriveDraft* const draft = reading.logicalDrive();
    const std::optional<std::int32_t> count = wholeNumber(line.value);
    if (!count) {
        tellBadValue(reading, line, "number");
    } else if (draft != nullptr) {
        draft->announcedMembers = count;
    }
}

void beginController(Reading& reading, const ListingLine& /*line*/) {
    reading.leave(Block::controller);
}

void beginVersions(Reading& reading, const ListingLine& /*line*/) {
    reading.leave(Block::versions);
}

void beginOther(Reading& reading, const ListingLine& /*line*/) {
    reading.leave(Block::other);
}

void beginSection(Reading& reading, const ListingLine& /*line*/) {
    reading.leave(Block::none);
}

void takeDeviceKind(Reading& reading, const ListingLine& line) {
    const bool isDisk = holds(line.text, "Hard drive") || holds(line.text, "Hard disk") ||
                        holds(line.text, "Solid State");
    if (reading.block == Block::drive && !isDisk) {
        reading.dropDrive();
    }
}

std::optional<Pair> parsePair(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const std::optional<std::int32_t> first = wholeNumber(text.substr(0, at));
    const std::optional<std::int32_t> second = wholeNumber(text.substr(at + 1));
    return first && second ? std::optional(Pair{*first, *second}) : std::nullopt;
}

void appendMembers(Reading& reading, const ListingLine& line, std::string_view list, char separator,
                   std::vector<MemberDraft>& members) {
    reading.checkLength(line);
    forEachWord(list, [&](std::string_view word) {
        MemberDraft& member = members.emplace_back();
        constexpr std::size_t longest = 40;
        member.named = cleanText(word.substr(0, longest));
        member.place = reading.place(line);
        if (const std::optional<Pair> pair = parsePair(word, separator)) {
            member.location = locationText(pair->first, pair->second);
        }
    });
}

} // namespace zolex::companion
