#pragma once

#include "model/Configuration.h"
#include "policies/Policy.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The values of policy keywords, read from text. Nothing is the result for a text that is not of
/// the wanted form. Letter case is ignored throughout.
namespace zolex::policy_value {

/// The parts of `text` between the separators, not trimmed; always at least one.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);
/// The same, each part trimmed of blanks, tabs and newlines.
[[nodiscard]] std::vector<std::string_view> splitAndTrim(std::string_view text, char separator);

/// A whole number above 0.
[[nodiscard]] std::optional<std::int32_t> nonZeroNumber(std::string_view text) noexcept;
/// "1%" to "100%", "FILL", or a whole number above 0 in MB.
[[nodiscard]] std::optional<DriveSize> logicalDriveSize(std::string_view text) noexcept;
/// "HIGH", "MED", "LOW": the code.
[[nodiscard]] std::optional<std::int32_t> rebuildRate(std::string_view text) noexcept;
/// "ADAPTIVE", "ON", "OFF": the code.
[[nodiscard]] std::optional<std::int32_t> readAhead(std::string_view text) noexcept;
/// "16", "32", ... "4096" (KB): the code.
[[nodiscard]] std::optional<std::int32_t> stripeSize(std::string_view text) noexcept;
/// "QUICK", "BUILD": the code.
[[nodiscard]] std::optional<std::int32_t> initChoice(std::string_view text) noexcept;
/// RAID level code; "AUTO" is 12.
[[nodiscard]] std::optional<std::int32_t> raidLevel(std::string_view text) noexcept;
/// "OFF", "ON", "AUTO": 0, 1, 2.
[[nodiscard]] std::optional<std::int32_t> writeCache(std::string_view text) noexcept;
/// "0%", "5%", "10%", "100%": the number.
[[nodiscard]] std::optional<std::int32_t> variance(std::string_view text) noexcept;
/// Index of an array letter, 0 for "A".
[[nodiscard]] std::optional<std::int32_t> arrayIndex(std::string_view text) noexcept;

/// A comma list of drives: all of them numbers, or all of them positions.
struct DriveList {
    std::vector<std::int32_t> numbers;
    std::vector<DrivePosition> positions;
    [[nodiscard]] std::size_t count() const { return numbers.size() + positions.size(); }
    /// The list as an array record, which tells when the list has more drives than an array holds.
    [[nodiscard]] RaidArray toArray() const;
};
/// Numbers are whole numbers above 0, positions pairs "channel:id" in which a zero is written "0".
[[nodiscard]] std::optional<DriveList> driveList(std::string_view text);

} // namespace zolex::policy_value
