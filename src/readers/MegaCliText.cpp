#include "readers/MegaCliText.h"

#include "foundation/Text.h"
#include "model/Codes.h"
#include "readers/ListingValues.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace zolex::megacli {

namespace {

using text::contains;

/// A decimal number: `whole` and `billionths`, and whether digits beyond these follow that are not
/// all 0.
struct Decimal {
    std::uint64_t whole = 0;
    std::uint64_t billionths = 0;
    bool more = false;
};

constexpr std::uint64_t billion = 1000000000;

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The decimal number that `text` begins with; the whole part stops growing at 2147483647.
Decimal leadingDecimal(std::string_view text) {
    constexpr std::uint64_t highest = std::numeric_limits<std::int32_t>::max();
    Decimal number;
    std::size_t i = std::min(text.find_first_not_of(" \t+"), text.size());
    for (; i < text.size() && isDigit(text[i]); ++i) {
        number.whole =
            std::min(number.whole * 10 + static_cast<std::uint64_t>(text[i] - '0'), highest);
    }
    if (i == text.size() || text[i] != '.') {
        return number;
    }
    std::uint64_t unit = billion;
    for (++i; i < text.size() && isDigit(text[i]); ++i) {
        unit /= 10;
        number.billionths += static_cast<std::uint64_t>(text[i] - '0') * unit;
        number.more = number.more || (unit == 0 && text[i] != '0');
    }
    return number;
}

/// A "RAID Level" line holds both texts, an empty one always. The first row that fits counts.
struct LevelRow {
    std::string_view primary;
    std::string_view secondary;
    std::int32_t raidLevel;
};

// clang-format off
constexpr std::array<LevelRow, 7> levelRows{{
    {"Primary-0", "",            raid_level::raid0},
    {"Primary-1", "Secondary-0", raid_level::raid1},
    {"Primary-5", "Secondary-0", raid_level::raid5},
    {"Primary-6", "Secondary-0", raid_level::raid6},
    {"Primary-1", "Secondary-3", raid_level::raid10},
    {"Primary-5", "Secondary-3", raid_level::raid50},
    {"Primary-6", "Secondary-3", raid_level::raid60},
}};
// clang-format on
static_assert(levelRows.size() == 7);

// Columns: the number of KB as printed, its code. The order does not matter.
// clang-format off
constexpr auto stripeSizes = std::to_array<WordCode>({
    {"16",  stripe::kb16},
    {"32",  stripe::kb32},
    {"64",  stripe::kb64},
    {"128", stripe::kb128},
    {"256", stripe::kb256},
    {"512", stripe::kb512},
});
// clang-format on
static_assert(stripeSizes.size() == 6 && hasDistinctWords<WordCode>(stripeSizes));

} // namespace

bool holdsKey(std::string_view line, std::string_view key) noexcept {
    for (std::size_t at = line.find(key); at != std::string_view::npos;
         at = line.find(key, at + 1)) {
        const std::size_t next = line.find_first_not_of(" \t", at + key.size());
        if (next != std::string_view::npos && line[next] == ':') {
            return true;
        }
    }
    return false;
}

bool isEnclosureLine(std::string_view line) noexcept {
    // Few lines hold what both keys begin with.
    return contains(line, "Enclosure ") &&
           (contains(line, "Enclosure Device ID") || contains(line, "Enclosure Number"));
}

std::int32_t sizeInMb(std::string_view value, Rounding rounding) noexcept {
    if (contains(value, "MB")) {
        return std::max(text::leadingInt(value), 0);
    }
    constexpr std::uint64_t highest = std::numeric_limits<std::int32_t>::max();
    const std::uint64_t factor = contains(value, "TB") ? 1024 * 1024 : 1024;
    const Decimal number = leadingDecimal(value);
    const std::uint64_t part = number.billionths * factor;
    std::uint64_t megabytes = number.whole * factor + part / billion;
    if (rounding == Rounding::up && (part % billion != 0 || number.more)) {
        ++megabytes;
    }
    return static_cast<std::int32_t>(std::min(megabytes, highest));
}

std::int32_t raidLevelOf(std::string_view line) noexcept {
    const auto row = std::find_if(levelRows.begin(), levelRows.end(), [line](const LevelRow& r) {
        return contains(line, r.primary) && contains(line, r.secondary);
    });
    return row == levelRows.end() ? raid_level::none : row->raidLevel;
}

std::int32_t spannedLevelOf(std::int32_t raidLevel) noexcept {
    switch (raidLevel) {
    case raid_level::raid1:
        return raid_level::raid10;
    case raid_level::raid5:
        return raid_level::raid50;
    case raid_level::raid6:
        return raid_level::raid60;
    default:
        return raidLevel;
    }
}

std::int32_t stripeSizeOf(std::string_view kilobytes, std::int32_t otherwise) noexcept {
    return findCode(stripeSizes, kilobytes).value_or(otherwise);
}

std::int32_t readAheadOf(std::string_view line) noexcept {
    if (contains(line, "ReadAheadNone")) {
        return read_ahead::off;
    }
    return contains(line, "ReadAdaptive") ? read_ahead::adaptive : read_ahead::on;
}

} // namespace zolex::megacli
