#include "companion/families/storcli/StorcliWords.h"

#include "companion/facts/FactValues.h"
#include "foundation/CString.h"
#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace zolex::companion {

namespace {

constexpr std::string_view losesData = "it is a JBOD drive: the system has it as it is";
constexpr std::string_view unsupported = "the controller does not support it";
constexpr std::string_view diagnosed = "the controller is diagnosing it";

// clang-format off
// Columns: the word; what the drive does, how it is, as which spare; why it is not planned with.
using enum DriveState;
constexpr auto driveWords = std::to_array<StorcliDriveWord>({
    {"Onln",    member,           Health::ok,       HotspareKind::none,      {}},
    {"Offln",   failed,           Health::critical, HotspareKind::none,      {}},
    {"UGood",   DriveState::free, Health::ok,       HotspareKind::none,      {}},
    {"UBad",    failed,           Health::critical, HotspareKind::none,      {}},
    {"Failed",  failed,           Health::critical, HotspareKind::none,      {}},
    {"Rbld",    rebuilding,       Health::warning,  HotspareKind::none,      {}},
    {"Cpybck",  rebuilding,       Health::warning,  HotspareKind::none,      {}},
    {"GHS",     hotspare,         Health::ok,       HotspareKind::global,    {}},
    {"DHS",     hotspare,         Health::ok,       HotspareKind::dedicated, {}},
    {"JBOD",    jbod,             Health::ok,       HotspareKind::none,      losesData},
    {"Foreign", foreign,          Health::ok,       HotspareKind::none,      {}},
    {"Frgn",    foreign,          Health::ok,       HotspareKind::none,      {}},
    {"Msng",    missing,          Health::critical, HotspareKind::none,      {}},
    {"UGUnsp",  DriveState::free, Health::warning,  HotspareKind::none,      unsupported},
    {"UBUnsp",  failed,           Health::critical, HotspareKind::none,      unsupported},
    {"UGShld",  DriveState::free, Health::warning,  HotspareKind::none,      diagnosed},
    {"HSPShld", hotspare,         Health::warning,  HotspareKind::global,    diagnosed},
    {"CFShld",  member,           Health::warning,  HotspareKind::none,      diagnosed},
    {"CBShld",  rebuilding,       Health::warning,  HotspareKind::none,      diagnosed},
    {"Sntze",   DriveState::free, Health::warning,  HotspareKind::none,      "it is being erased"},
});

struct VolumeWord {
    std::string_view word;
    Health health;
};

// Columns: the word, how the logical drive is.
constexpr auto volumeWords = std::to_array<VolumeWord>({
    {"Optl", Health::ok},
    {"Dgrd", Health::warning},
    {"Pdgd", Health::warning},
    {"Rec",  Health::warning},
    {"TRANS", Health::warning},
    {"HD",   Health::warning}, // hidden
    {"B",    Health::warning}, // blocked
    {"OfLn", Health::critical},
});

constexpr std::array<std::string_view, 8> levels = {
    "RAID0", "RAID1", "RAID5", "RAID6", "RAID00", "RAID10", "RAID50", "RAID60"};

// Columns: the words of a write mode, the mode.
constexpr std::array<std::pair<std::string_view, std::string_view>, 10> writeModes = {{
    {"WB",              "ProtectedWriteBack"},
    {"WriteBack",       "ProtectedWriteBack"},
    {"AWB",             "UnprotectedWriteBack"},
    {"FWB",             "UnprotectedWriteBack"},
    {"AlwaysWriteBack", "UnprotectedWriteBack"},
    {"Always WriteBack", "UnprotectedWriteBack"},
    {"ForceWriteBack",  "UnprotectedWriteBack"},
    {"Force WriteBack", "UnprotectedWriteBack"},
    {"WT",              "WriteThrough"},
    {"WriteThrough",    "WriteThrough"},
}};
constexpr std::array<std::pair<std::string_view, std::string_view>, 7> readModes = {{
    {"RA",              "ReadAhead"},
    {"R",               "ReadAhead"},
    {"Read Ahead",      "ReadAhead"},
    {"Adaptive",        "AdaptiveReadAhead"},
    {"NR",              "Off"},
    {"NoRA",            "Off"},
    {"No Read Ahead",   "Off"},
}};
// clang-format on

template <std::size_t count>
std::string meaningOf(const std::array<std::pair<std::string_view, std::string_view>, count>& table,
                      std::string_view words) {
    const auto* const found = std::find_if(table.begin(), table.end(), [words](const auto& row) {
        return text::equalsNoCase(row.first, words);
    });
    return found == table.end() ? std::string() : std::string(found->second);
}

bool isLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// A hexadecimal number without a sign or a prefix.
std::optional<unsigned> hexNumber(std::string_view text) {
    constexpr int base = 16;
    constexpr std::size_t mostDigits = 4;
    unsigned value = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, value, base);
    return !text.empty() && text.size() <= mostDigits && read.ec == std::errc() && read.ptr == end
               ? std::optional(value)
               : std::nullopt;
}

constexpr std::string_view blanks = " \t\r\n";

} // namespace

const StorcliDriveWord* storcliDriveWord(std::string_view word) {
    const auto* const found =
        std::find_if(driveWords.begin(), driveWords.end(), [word](const StorcliDriveWord& row) {
            return text::equalsNoCase(row.word, word);
        });
    return found == driveWords.end() ? nullptr : found;
}

Health storcliVolumeHealth(std::string_view word) {
    const auto* const found =
        std::find_if(volumeWords.begin(), volumeWords.end(),
                     [word](const VolumeWord& row) { return text::equalsNoCase(row.word, word); });
    return found == volumeWords.end() ? Health::unknown : found->health;
}

std::string storcliLevel(std::string_view word) {
    const std::string_view name = text::trim(word.substr(0, word.find('(')), blanks);
    const auto* const found =
        std::find_if(levels.begin(), levels.end(),
                     [name](std::string_view level) { return text::equalsNoCase(level, name); });
    return found == levels.end() ? std::string() : std::string(*found);
}

std::optional<StorcliCache> storcliCache(std::string_view word) {
    StorcliCache cache;
    for (const std::string_view read : {"NR", "R"}) {
        if (word.size() > read.size() && text::equalsNoCase(word.substr(0, read.size()), read)) {
            cache.read = storcliReadMode(read);
            word.remove_prefix(read.size());
            break;
        }
    }
    const char last = word.empty() ? ' ' : text::upper(word.back());
    if (cache.read.empty() || (last != 'C' && last != 'D')) {
        return std::nullopt;
    }
    cache.write = storcliWriteMode(word.substr(0, word.size() - 1));
    return cache.write.empty() ? std::nullopt : std::optional(cache);
}

std::string storcliWriteMode(std::string_view words) {
    return meaningOf(writeModes, words);
}

std::string storcliReadMode(std::string_view words) {
    return meaningOf(readModes, words);
}

std::optional<StorcliSize> storcliSize(std::string_view text, StorcliUnits units) {
    const auto read = parseSize(text);
    if (!read) {
        return std::nullopt;
    }
    constexpr std::uint64_t gigabyte = bytesPerMb * 1024;
    constexpr std::uint64_t hundredth = 100;
    StorcliSize size{read->bytes, read->tolerance};
    const bool isTera = text::containsNoCase(text, "TB");
    const bool isGiga = text::containsNoCase(text, "GB");
    if (units == StorcliUnits::decimal && (isTera || isGiga)) {
        // From the decimal reading up to the binary one.
        const std::uint64_t apart = isTera ? 10 : 7;
        size.bytes = read->bytes / hundredth * (hundredth - apart);
        size.tolerance = read->bytes - size.bytes + read->tolerance;
        return size;
    }
    if (isTera) {
        size.tolerance = std::max(2 * gigabyte, size.tolerance);
    } else if (isGiga) {
        size.tolerance += bytesPerMb;
    }
    return size;
}

std::string StorcliPlace::location() const {
    return locationText(enclosure, slot);
}

std::optional<StorcliPlace> storcliPlace(std::string_view text) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view first = text::trim(text.substr(0, colon), blanks);
    const auto slot = wholeNumber(text::trim(text.substr(colon + 1), blanks));
    StorcliPlace place;
    place.enclosure = wholeNumber(first);
    place.slot = slot.value_or(0);
    const bool isPlace = slot && (first.empty() || place.enclosure);
    return isPlace ? std::optional(place) : std::nullopt;
}

std::optional<StorcliPlace> storcliPathPlace(std::string_view path) {
    StorcliPlace place;
    bool hasSlot = false;
    for (std::size_t i = 1;; ++i) {
        const std::string_view part = text::token(path, "/", i);
        if (part.empty() || (i == 1 && !part.starts_with('c'))) {
            break;
        }
        const auto number = wholeNumber(part.substr(1));
        if (part.front() == 'e' && number) {
            place.enclosure = number;
        } else if (part.front() == 's' && number) {
            place.slot = *number;
            hasSlot = true;
        }
    }
    return hasSlot ? std::optional(place) : std::nullopt;
}

std::string storcliPciAddress(std::string_view text) {
    std::array<unsigned, 4> parts{};
    for (unsigned& part : parts) {
        const std::size_t colon = std::min(text.find(':'), text.size());
        const auto number = hexNumber(text.substr(0, colon));
        if (!number) {
            return {};
        }
        part = *number;
        text.remove_prefix(std::min(colon + 1, text.size()));
    }
    constexpr unsigned mostBus = 0xFF;
    constexpr unsigned mostDevice = 0x1F;
    constexpr unsigned mostFunction = 7;
    if (!text.empty() || parts[1] > mostBus || parts[2] > mostDevice || parts[3] > mostFunction) {
        return {};
    }
    return std::string(
        formatText("%04x:%02x:%02x.%x", parts[0], parts[1], parts[2], parts[3]).view());
}

std::string storcliModel(std::string_view text) {
    std::string model;
    for (const char c : text) {
        if (isLetterOrDigit(c)) {
            model += c;
        } else if (!model.empty() && model.back() != '-') {
            model += '-';
        }
    }
    while (!model.empty() && model.back() == '-') {
        model.pop_back();
    }
    return model;
}

} // namespace zolex::companion
