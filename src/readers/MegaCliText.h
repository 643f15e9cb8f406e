#pragma once

#include "foundation/Text.h"

#include <cstdint>
#include <string_view>

/// What single lines and values of MegaCLI's listings mean.
namespace zolex::megacli {

/// The enclosure id under which drives without an enclosure ("N/A") are kept.
inline constexpr std::int32_t noEnclosure = 0;

/// Whether `line` holds `key` and, behind blanks at most, a ":".
[[nodiscard]] bool holdsKey(std::string_view line, std::string_view key) noexcept;

/// Whether the line is the heading of one adapter's part of a listing.
[[nodiscard]] inline bool isAdapterLine(std::string_view line) noexcept {
    return text::contains(line, "Adapter #");
}

/// Whether the line names the enclosure of a drive.
[[nodiscard]] bool isEnclosureLine(std::string_view line) noexcept;

/// Whether an enclosure's value says that there is none.
[[nodiscard]] inline bool isNotAvailable(std::string_view value) noexcept {
    return text::contains(value, "N/A");
}

/// The enclosure id of an enclosure line.
[[nodiscard]] inline std::int32_t enclosureOf(std::string_view line) noexcept {
    const std::string_view value = text::valueAfterColon(line);
    return isNotAvailable(value) ? noEnclosure : text::leadingInt(value);
}

/// What happens to a part of a MB.
enum class Rounding { up, down };

/// Size in MB of a value such as "69376MB [0x8780000 Sectors]", "67.843 GB" or "1.818 TB"; a number
/// without a unit counts as GB. A number of MB keeps its whole part. 0 for a value that does not
/// begin with a number or is negative; at most 2147483647.
[[nodiscard]] std::int32_t sizeInMb(std::string_view value, Rounding rounding) noexcept;

/// RAID level code of a "RAID Level" line before its spans are known; raid_level::none for a
/// combination without a code.
[[nodiscard]] std::int32_t raidLevelOf(std::string_view line) noexcept;

/// The level that a virtual disk of level `raidLevel` over more than one span has.
[[nodiscard]] std::int32_t spannedLevelOf(std::int32_t raidLevel) noexcept;

/// Stripe code of a number of KB; `otherwise` for a number without a code.
[[nodiscard]] std::int32_t stripeSizeOf(std::string_view kilobytes,
                                        std::int32_t otherwise) noexcept;

/// Read-ahead code of a "Current Cache Policy" line.
[[nodiscard]] std::int32_t readAheadOf(std::string_view line) noexcept;

} // namespace zolex::megacli
