#include "policies/PolicyValues.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <span>

namespace zolex::policy_value {

namespace {

struct CodeWord {
    std::string_view word;
    std::int32_t code;
};

/// Words of the RAID levels and their codes. Order does not matter.
// clang-format off
constexpr std::array<CodeWord, 13> raidLevelWords = {{
    {"0",             raid_level::raid0},
    {"1",             raid_level::raid1},
    {"1E",            raid_level::raid1E},
    {"10",            raid_level::raid10},
    {"5",             raid_level::raid5},
    {"5E",            raid_level::raid5E},
    {"5EE",           raid_level::raid5EE},
    {"50",            raid_level::raid50},
    {"6",             raid_level::raid6},
    {"60",            raid_level::raid60},
    {"VOLUME",        raid_level::volume},
    {"SIMPLE VOLUME", raid_level::simpleVolume},
    {"AUTO",          raid_level::notGiven},
}};

/// Words of the rebuild rates and their codes.
constexpr std::array<CodeWord, 3> rebuildRateWords = {{
    {"HIGH", rebuild_rate::high},
    {"MED",  rebuild_rate::medium},
    {"LOW",  rebuild_rate::low},
}};

/// Words of the read-ahead modes and their codes.
constexpr std::array<CodeWord, 3> readAheadWords = {{
    {"ADAPTIVE", read_ahead::adaptive},
    {"ON",       read_ahead::on},
    {"OFF",      read_ahead::off},
}};

/// Stripe sizes in KB and their codes.
constexpr std::array<CodeWord, 9> stripeSizeWords = {{
    {"16",   stripe::kb16},
    {"32",   stripe::kb32},
    {"64",   stripe::kb64},
    {"128",  stripe::kb128},
    {"256",  stripe::kb256},
    {"512",  stripe::kb512},
    {"1024", stripe::kb1024},
    {"2048", stripe::kb2048},
    {"4096", stripe::kb4096},
}};

/// Words of the ways to initialise and their codes.
constexpr std::array<CodeWord, 2> initWords = {{
    {"QUICK", init_choice::quick},
    {"BUILD", init_choice::build},
}};

/// Words of the write-cache modes and their codes.
constexpr std::array<CodeWord, 3> writeCacheWords = {{
    {"OFF",  write_cache::off},
    {"ON",   write_cache::on},
    {"AUTO", write_cache::notGiven},
}};

/// Size variances and their percentages.
constexpr std::array<CodeWord, 4> varianceWords = {{
    {"0%",   0},
    {"5%",   5},
    {"10%",  10},
    {"100%", 100},
}};
// clang-format on

std::optional<std::int32_t> findCode(std::span<const CodeWord> words,
                                     std::string_view text) noexcept {
    const auto found = std::find_if(words.begin(), words.end(), [text](const CodeWord& row) {
        return text::equalsNoCase(row.word, text);
    });
    return found == words.end() ? std::nullopt : std::optional(found->code);
}

/// Half of a position: a whole number, a zero being written "0".
std::optional<std::int32_t> coordinate(std::string_view text) noexcept {
    return text == "0" ? 0 : nonZeroNumber(text);
}

std::optional<DrivePosition> position(std::string_view text) noexcept {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const auto channel = coordinate(text.substr(0, colon));
    const auto id = coordinate(text.substr(colon + 1));
    if (!channel || !id) {
        return std::nullopt;
    }
    return DrivePosition{*channel, *id};
}

} // namespace

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

std::vector<std::string_view> splitAndTrim(std::string_view text, char separator) {
    std::vector<std::string_view> parts = split(text, separator);
    for (std::string_view& part : parts) {
        part = text::trim(part);
    }
    return parts;
}

std::optional<std::int32_t> nonZeroNumber(std::string_view text) noexcept {
    const std::optional<std::int32_t> number = text::wholeNumber(text);
    return number.value_or(0) > 0 ? number : std::nullopt;
}

std::optional<DriveSize> logicalDriveSize(std::string_view text) noexcept {
    constexpr std::int32_t wholeArray = 100;
    if (text::equalsNoCase(text, "FILL")) {
        return DriveSize{DriveSize::Kind::rest, 0};
    }
    const bool isPercent = text.ends_with('%');
    const auto number = nonZeroNumber(text.substr(0, text.size() - (isPercent ? 1 : 0)));
    if (!number || (isPercent && *number > wholeArray)) {
        return std::nullopt;
    }
    return DriveSize{isPercent ? DriveSize::Kind::percent : DriveSize::Kind::mb, *number};
}

std::optional<std::int32_t> rebuildRate(std::string_view text) noexcept {
    return findCode(rebuildRateWords, text);
}

std::optional<std::int32_t> readAhead(std::string_view text) noexcept {
    return findCode(readAheadWords, text);
}

std::optional<std::int32_t> stripeSize(std::string_view text) noexcept {
    return findCode(stripeSizeWords, text);
}

std::optional<std::int32_t> initChoice(std::string_view text) noexcept {
    return findCode(initWords, text);
}

std::optional<std::int32_t> raidLevel(std::string_view text) noexcept {
    return findCode(raidLevelWords, text);
}

std::optional<std::int32_t> writeCache(std::string_view text) noexcept {
    return findCode(writeCacheWords, text);
}

std::optional<std::int32_t> variance(std::string_view text) noexcept {
    return findCode(varianceWords, text);
}

std::optional<std::int32_t> arrayIndex(std::string_view text) noexcept {
    const char letter = text.size() == 1 ? text::upper(text[0]) : '\0';
    return letter >= 'A' && letter <= 'Z' ? std::optional<std::int32_t>(letter - 'A')
                                          : std::nullopt;
}

RaidArray DriveList::toArray() const {
    RaidArray array;
    for (const std::int32_t number : numbers) {
        array.tooManyDrives = !array.addDriveNumber(number) || array.tooManyDrives;
    }
    for (const DrivePosition& drive : positions) {
        array.tooManyDrives = !array.addDrive(drive) || array.tooManyDrives;
    }
    return array;
}

std::optional<DriveList> driveList(std::string_view text) {
    DriveList list;
    for (const std::string_view item : splitAndTrim(text, ',')) {
        if (const auto number = nonZeroNumber(item)) {
            list.numbers.push_back(*number);
        } else if (const auto place = position(item)) {
            list.positions.push_back(*place);
        } else {
            return std::nullopt;
        }
    }
    if (!list.numbers.empty() && !list.positions.empty()) {
        return std::nullopt;
    }
    return list;
}

} // namespace zolex::policy_value
