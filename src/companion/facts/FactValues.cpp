#include "companion/facts/FactValues.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zolex::companion {

namespace {

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t digitsAt(std::string_view text) {
    std::size_t digits = 0;
    while (digits < text.size() && isDigit(text[digits])) {
        ++digits;
    }
    return digits;
}

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool holds(std::string_view text, std::string_view word) {
    return text::containsNoCase(text, word);
}

struct Unit {
    std::string_view word;
    std::uint64_t bytes;
};

// clang-format off
// Columns: the unit, its bytes. The first that the text begins with counts.
constexpr std::array<Unit, 7> units = {{
    {"PB",    bytesPerMb * 1024 * 1024 * 1024},
    {"TB",    bytesPerMb * 1024 * 1024},
    {"GB",    bytesPerMb * 1024},
    {"MB",    bytesPerMb},
    {"KB",    bytesPerKb},
    {"Bytes", 1},
    {"B",     1},
}};

struct LevelWord {
    std::string_view word;
    std::string_view raidType;
};

// Columns: the whole word, letter case ignored; the RAID type. The order does not matter.
constexpr std::array<LevelWord, 21> levelWords = {{
    {"0",              "RAID0"},
    {"1",              "RAID1"},
    {"1E",             "RAID1E"},
    {"5",              "RAID5"},
    {"5E",             "RAID5E"},
    {"5EE",            "RAID5EE"},
    {"6",              "RAID6"},
    {"6 Reed-Solomon", "RAID6"},
    {"10",             "RAID10"},
    {"50",             "RAID50"},
    {"60",             "RAID60"},
    {"IS",             "RAID0"},
    {"IM",             "RAID1"},
    {"IME",            "RAID1E"},
    {"STRIPE",         "RAID0"},
    {"MIRROR",         "RAID1"},
    {"SIMPLE",         "None"},
    {"Simple_volume",  "None"},
    {"Spanned_volume", "None"},
    {"VOLUME",         "None"},
    {"JBOD",           "None"},
}};

struct StateWord {
    std::string_view word;
    StateMeaning meaning;
};

// Columns: what the state holds, letter case ignored; what it means. The first that fits counts.
using enum DriveState;
constexpr std::array<StateWord, 31> stateWords = {{
    {"Unconfigured(bad)",  {failed,     Health::critical, HotspareKind::none}},
    {"Unconfigured(good)", {DriveState::free, Health::ok, HotspareKind::none}},
    {"Dedicated Hot",      {hotspare,   Health::ok,       HotspareKind::dedicated}},
    {"Hot Spare",          {hotspare,   Health::ok,       HotspareKind::global}},
    {"Hot-Spare",          {hotspare,   Health::ok,       HotspareKind::global}},
    {"Hotspare",           {hotspare,   Health::ok,       HotspareKind::global}},
    {"(HSP)",              {hotspare,   Health::ok,       HotspareKind::global}},
    {"Partitioned",        {jbod,       Health::ok,       HotspareKind::none}},
    {"JBOD",               {jbod,       Health::ok,       HotspareKind::none}},
    {"Pass Through",       {jbod,       Health::ok,       HotspareKind::none}},
    {"Raw",                {jbod,       Health::ok,       HotspareKind::none}},
    {"Missing",            {missing,    Health::critical, HotspareKind::none}},
    {"(MIS)",              {missing,    Health::critical, HotspareKind::none}},
    {"Rebuild",            {rebuilding, Health::warning,  HotspareKind::none}},
    {"(RBL)",              {rebuilding, Health::warning,  HotspareKind::none}},
    {"Copyback",           {rebuilding, Health::warning,  HotspareKind::none}},
    {"Failed",             {failed,     Health::critical, HotspareKind::none}},
    {"(FLD)",              {failed,     Health::critical, HotspareKind::none}},
    {"Defunct",            {failed,     Health::critical, HotspareKind::none}},
    {"(DDD)",              {failed,     Health::critical, HotspareKind::none}},
    {"Offline",            {failed,     Health::critical, HotspareKind::none}},
    {"Out of Sync",        {member,     Health::warning,  HotspareKind::none}},
    {"(OSY)",              {member,     Health::warning,  HotspareKind::none}},
    {"Degraded",           {member,     Health::warning,  HotspareKind::none}},
    {"Online",             {member,     Health::ok,       HotspareKind::none}},
    {"(ONL)",              {member,     Health::ok,       HotspareKind::none}},
    {"Optimal",            {member,     Health::ok,       HotspareKind::none}},
    {"Verifying",          {member,     Health::ok,       HotspareKind::none}},
    {"Ready",              {DriveState::free, Health::ok, HotspareKind::none}},
    {"(RDY)",              {DriveState::free, Health::ok, HotspareKind::none}},
    {"Available",          {DriveState::free, Health::ok, HotspareKind::none}},
}};

struct HealthWord {
    std::string_view word;
    Health health;
};

// Columns: what the state of a logical drive holds, letter case ignored; how it is. The first that
// fits counts: what still can be read and written is not critical, whatever the utility calls it.
constexpr std::array<HealthWord, 17> healthWords = {{
    {"Offline",      Health::critical},
    {"(OFL)",        Health::critical},
    {"Failed",       Health::critical},
    {"Missing",      Health::critical},
    {"Dead",         Health::critical},
    {"Degraded",     Health::warning},
    {"Critical",     Health::warning},
    {"Rebuild",      Health::warning},
    {"Migrating",    Health::warning},
    {"Impacted",     Health::warning},
    {"Suboptimal",   Health::warning},
    {"Sub-optimal",  Health::warning},
    {"Building",     Health::warning},
    {"Clearing",     Health::warning},
    {"Optimal",      Health::ok},
    {"Okay",         Health::ok},
    {"(OKY)",        Health::ok},
}};
// clang-format on

/// The part behind the decimal point that `text` begins with, in bytes of the unit, and what one of
/// its last digit is worth.
struct Fraction {
    std::uint64_t bytes = 0;
    std::uint64_t lastDigit = 0;
};

Fraction fractionOf(std::string_view digits, std::uint64_t unit) {
    constexpr std::size_t most = 6; // more digits are worth less than a MB of a TB
    std::uint64_t number = 0;
    std::uint64_t scale = 1;
    for (const char digit : digits.substr(0, most)) {
        number = number * 10 + static_cast<std::uint64_t>(digit - '0');
        scale *= 10;
    }
    // Units are powers of two up to 2^50: whole and rest keep the product small.
    return {unit / scale * number + unit % scale * number / scale, (unit + scale - 1) / scale};
}

} // namespace

std::string cleanText(std::string_view value) {
    std::string text(withoutBlanks(value));
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < ' ' || byte == 0x7F) {
            c = ' ';
        }
    }
    return text;
}

std::optional<std::uint64_t> takeNumber(std::string_view& text) {
    constexpr std::size_t most = 18;
    const std::size_t digits = digitsAt(text);
    if (digits == 0 || digits > most) {
        return std::nullopt;
    }
    std::uint64_t number = 0;
    for (const char digit : text.substr(0, digits)) {
        number = number * 10 + static_cast<std::uint64_t>(digit - '0');
    }
    text.remove_prefix(digits);
    return number;
}

std::optional<std::int32_t> wholeNumber(std::string_view text) {
    constexpr std::size_t most = 9;
    if (text.size() > most) {
        return std::nullopt;
    }
    const std::optional<std::uint64_t> number = takeNumber(text);
    return number && text.empty() ? std::optional(static_cast<std::int32_t>(*number))
                                  : std::nullopt;
}

std::optional<std::int32_t> lastNumber(std::string_view text) {
    std::size_t first = text.size();
    while (first > 0 && isDigit(text[first - 1])) {
        --first;
    }
    return wholeNumber(text.substr(first));
}

std::vector<std::int32_t> numbersIn(std::string_view text) {
    std::vector<std::int32_t> numbers;
    while (!text.empty()) {
        const std::size_t digits = digitsAt(text);
        if (const std::optional<std::int32_t> number = wholeNumber(text.substr(0, digits))) {
            numbers.push_back(*number);
        }
        text.remove_prefix(std::max<std::size_t>(digits, 1));
    }
    return numbers;
}

std::optional<Size> parseSize(std::string_view text, std::uint64_t bare) {
    text = withoutBlanks(text);
    const std::optional<std::uint64_t> whole = takeNumber(text);
    if (!whole) {
        return std::nullopt;
    }
    std::string_view digits;
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        digits = text.substr(0, digitsAt(text));
        text.remove_prefix(digits.size());
    }
    text = withoutBlanks(text);
    const auto unit = std::find_if(units.begin(), units.end(), [&](const Unit& each) {
        return text::equalsNoCase(text.substr(0, each.word.size()), each.word);
    });
    const std::uint64_t bytes = unit != units.end() ? unit->bytes : text.empty() ? bare : 0;
    if (bytes == 0 || *whole > std::numeric_limits<std::int64_t>::max() / bytes) {
        return std::nullopt;
    }
    const Fraction fraction = fractionOf(digits, bytes);
    const Size size = {*whole * bytes + fraction.bytes, fraction.lastDigit};
    constexpr std::uint64_t greatest = std::uint64_t{1} << 60U;
    return size.bytes > greatest ? std::nullopt : std::optional(size);
}

std::optional<std::uint64_t> hexSectors(std::string_view text) {
    const std::size_t begin = text.find("[0x");
    if (begin == std::string_view::npos) {
        return std::nullopt;
    }
    text.remove_prefix(begin + 3);
    constexpr std::size_t most = 12; // of 512 bytes each below 2^60
    std::uint64_t sectors = 0;
    std::size_t digits = 0;
    for (; digits < text.size() && digits <= most; ++digits) {
        const char c = text::lower(text[digits]);
        if (!isDigit(c) && (c < 'a' || c > 'f')) {
            break;
        }
        sectors = sectors * 16 + static_cast<std::uint64_t>(isDigit(c) ? c - '0' : c - 'a' + 10);
    }
    const bool ends = text.substr(std::min(digits, text.size())).starts_with(" Sectors]");
    return digits > 0 && digits <= most && ends ? std::optional(sectors) : std::nullopt;
}

std::string raidTypeOf(std::string_view word) {
    const auto row = std::find_if(levelWords.begin(), levelWords.end(), [word](const auto& each) {
        return text::equalsNoCase(each.word, word);
    });
    return row == levelWords.end() ? std::string() : std::string(row->raidType);
}

std::string protocolOf(std::string_view text) {
    if (holds(text, "SATA")) {
        return "SATA";
    }
    if (holds(text, "SAS")) {
        return "SAS";
    }
    if (holds(text, "SCSI") || holds(text, "Ultra")) {
        return "SCSI";
    }
    return holds(text, "IDE") || holds(text, "ATA") ? "PATA" : "";
}

std::string mediaTypeOf(std::string_view text) {
    if (holds(text, "SSD") || holds(text, "Solid State")) {
        return "SSD";
    }
    return holds(text, "HDD") || holds(text, "Hard Disk") ? "HDD" : "";
}

Health logicalDriveHealth(std::string_view state) {
    const auto row = std::find_if(healthWords.begin(), healthWords.end(),
                                  [state](const auto& each) { return holds(state, each.word); });
    return row == healthWords.end() ? Health::unknown : row->health;
}

StateMeaning driveStateMeaning(std::string_view word) {
    const auto row = std::find_if(stateWords.begin(), stateWords.end(),
                                  [word](const auto& each) { return holds(word, each.word); });
    return row == stateWords.end() ? StateMeaning() : row->meaning;
}

std::string locationText(std::optional<std::int32_t> first, std::int32_t second) {
    return (first ? std::to_string(*first) : std::string()) + ":" + std::to_string(second);
}

} // namespace zolex::companion
