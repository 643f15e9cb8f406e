#pragma once

#include "companion/facts/Reading.h"

#include <cstdint>
#include <string>

/// What takes the value of a key that several utilities print.
namespace zolex::companion {

/// Tells that the line's value is not what its key announces.
void tellBadValue(Reading& reading, const ListingLine& line, const char* wanted);

template <std::string Facts::*field>
void takeText(Reading& reading, const ListingLine& line) {
    reading.facts.*field = cleanText(line.value);
}

template <std::string DriveFacts::*field>
void takeDriveText(Reading& reading, const ListingLine& line) {
    reading.drive.*field = cleanText(line.value);
}

template <auto field>
void takeDriveNumber(Reading& reading, const ListingLine& line) {
    if (const std::optional<std::int32_t> number = wholeNumber(line.value)) {
        reading.drive.*field = *number;
    } else {
        tellBadValue(reading, line, "number");
    }
}

template <std::string LogicalDriveFacts::*field>
void takeLogicalText(Reading& reading, const ListingLine& line) {
    if (LogicalDriveDraft* const draft = reading.logicalDrive()) {
        draft->facts.*field = cleanText(line.value);
    }
}

/// A size in words; a bare number is of MB.
void takeDriveSize(Reading& reading, const ListingLine& line);
/// "69618/142577664": MB, and sectors of the whole drive.
void takeDriveSizes(Reading& reading, const ListingLine& line);
void takeDriveState(Reading& reading, const ListingLine& line);
void takeProtocol(Reading& reading, const ListingLine& line);
void takeMediaType(Reading& reading, const ListingLine& line);
/// "29C (84.20 F)".
void takeTemperature(Reading& reading, const ListingLine& line);
/// "Yes" for a drive that is about to fail.
void takePrediction(Reading& reading, const ListingLine& line);

void takeLogicalState(Reading& reading, const ListingLine& line);
void takeLogicalLevel(Reading& reading, const ListingLine& line);
/// A size in words; a bare number is of MB.
void takeLogicalSize(Reading& reading, const ListingLine& line);
void takeStripSize(Reading& reading, const ListingLine& line);

/// "2/0/1", of which the first is the number of logical drives.
void announceLogicalDrives(Reading& reading, const ListingLine& line);
void announceFailedDrives(Reading& reading, const ListingLine& line);
/// The members of the logical drive.
void announceMembers(Reading& reading, const ListingLine& line);

void beginController(Reading& reading, const ListingLine& line);
void beginVersions(Reading& reading, const ListingLine& line);
/// Nothing is read up to the next heading.
void beginOther(Reading& reading, const ListingLine& line);
/// A section that holds blocks.
void beginSection(Reading& reading, const ListingLine& line);
/// "Device is a Hard disk": other devices are no drives.
void takeDeviceKind(Reading& reading, const ListingLine& line);

/// Two numbers with such a byte between them: "0,1", "1/4".
struct Pair {
    std::int32_t first = 0;
    std::int32_t second = 0;
};
[[nodiscard]] std::optional<Pair> parsePair(std::string_view text, char separator);

/// Calls take(piece) for each piece of the text between blanks.
template <typename Take>
void forEachWord(std::string_view text, Take take) {
    constexpr std::string_view blanks = " \t\r";
    for (std::size_t begin = text.find_first_not_of(blanks); begin != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(blanks, begin), text.size());
        take(text.substr(begin, end - begin));
        begin = text.find_first_not_of(blanks, end);
    }
}

/// The drives of a blank-separated list of pairs.
void appendMembers(Reading& reading, const ListingLine& line, std::string_view list, char separator,
                   std::vector<MemberDraft>& members);

} // namespace zolex::companion
