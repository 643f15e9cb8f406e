#pragma once

#include "companion/facts/Facts.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What single values of listings mean. Nothing here throws, whatever the value is.
namespace zolex::companion {

inline constexpr std::uint64_t bytesPerKb = 1024;
inline constexpr std::uint64_t bytesPerMb = 1024 * bytesPerKb;

/// The text with control bytes turned into blanks, without blanks at either end.
[[nodiscard]] std::string cleanText(std::string_view value);

/// A number that begins the text; digits alone, at most 18 of them. None when there is no digit or
/// too many. `text` goes on behind it.
[[nodiscard]] std::optional<std::uint64_t> takeNumber(std::string_view& text);
/// The whole number that the text is: up to nine digits and nothing else.
[[nodiscard]] std::optional<std::int32_t> wholeNumber(std::string_view text);
/// The number at the end of the text, up to nine digits: 3 of "Device #3".
[[nodiscard]] std::optional<std::int32_t> lastNumber(std::string_view text);
/// All numbers in the text, each of up to nine digits.
[[nodiscard]] std::vector<std::int32_t> numbersIn(std::string_view text);

/// A size and how far it may be off: one of the last digit that the text has.
struct Size {
    std::uint64_t bytes = 0;
    std::uint64_t tolerance = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// "69376MB", "67.843 GB", "1.818 TB", "64 KB", "512 B": a number and a unit, 1024 of one being one
/// of the next. More may follow the unit. A number without a unit is of `bare` bytes each; 0: none.
[[nodiscard]] std::optional<Size> parseSize(std::string_view text, std::uint64_t bare = 0);

/// The sectors that "69376MB [0x8780000 Sectors]" tells in hexadecimal.
[[nodiscard]] std::optional<std::uint64_t> hexSectors(std::string_view text);

/// "RAID5" of "5", "RAID6" of "6 Reed-Solomon", "None" of volumes without redundancy or stripes;
/// empty for what is no level.
[[nodiscard]] std::string raidTypeOf(std::string_view word);

/// "SAS", "SATA", "SCSI" or "PATA", of an interface or a speed; empty when neither is there.
[[nodiscard]] std::string protocolOf(std::string_view text);
/// "HDD" or "SSD", or empty.
[[nodiscard]] std::string mediaTypeOf(std::string_view text);

/// How a logical drive is, from the word that any of the utilities has for it.
[[nodiscard]] Health logicalDriveHealth(std::string_view state);

/// What a drive does, from its utility's word.
struct StateMeaning {
    DriveState state = DriveState::unknown;
    Health health = Health::unknown;
    HotspareKind hotspare = HotspareKind::none;
    friend bool operator==(const StateMeaning&, const StateMeaning&) = default;
};

/// The words of all utilities do not contradict each other: there is one table.
[[nodiscard]] StateMeaning driveStateMeaning(std::string_view word);

/// "32:4"; ":4" without a first number.
[[nodiscard]] std::string locationText(std::optional<std::int32_t> first, std::int32_t second);

} // namespace zolex::companion
