#include "storcli/Targets.h"

#include "model/Text.h"

#include <algorithm>
#include <array>

namespace zolex_sim::storcli {
namespace {

constexpr std::int64_t greatestNumber = 65535;
constexpr std::size_t mostNumbers = 1024; ///< of one list

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    while (true) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(end + 1);
    }
}

std::optional<int> parseNumber(std::string_view digits) {
    const std::optional<std::int64_t> number = parseWhole(digits);
    return number && *number <= greatestNumber ? std::optional(static_cast<int>(*number))
                                               : std::nullopt;
}

/// Adds "3", or "0" to "3" of "0-3". False for anything else.
bool addRange(std::string_view text, std::vector<int>& numbers) {
    const std::size_t mark = text.find('-');
    const std::optional<int> first = parseNumber(text.substr(0, mark));
    const std::optional<int> last =
        mark == std::string_view::npos ? first : parseNumber(text.substr(mark + 1));
    if (!first || !last || *last < *first) {
        return false;
    }
    for (int number = *first; number <= *last; ++number) {
        if (numbers.size() == mostNumbers) {
            return false;
        }
        numbers.push_back(number);
    }
    return true;
}

/// The letter of a part of a path, and what it stands for.
struct Letter {
    char letter;
    Subject subject;
};
constexpr std::array<Letter, 3> itemLetters = {{
    {'s', Subject::drives},
    {'v', Subject::volumes},
    {'d', Subject::groups},
}};

/// "s0,1" or "sall". False when it is neither.
bool readItems(std::string_view part, Target& target) {
    for (const Letter& known : itemLetters) {
        if (part.empty() || part.front() != known.letter) {
            continue;
        }
        target.subject = known.subject;
        if (part.substr(1) == "all") {
            target.items.reset();
            return true;
        }
        target.items = parseNumbers(part.substr(1));
        return target.items.has_value();
    }
    return false;
}

bool readEnclosures(std::string_view part, Target& target) {
    target.subject = Subject::enclosures;
    target.inEnclosures = true;
    if (part == "eall") {
        return true;
    }
    target.enclosures = parseNumbers(part.substr(1));
    return target.enclosures.has_value();
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

bool readController(std::string_view part, Target& target) {
    if (part == "call") {
        return true;
    }
    const std::optional<int> number =
        part.starts_with('c') ? parseNumber(part.substr(1)) : std::nullopt;
    if (number) {
        target.controller = static_cast<std::size_t>(*number);
    }
    return number.has_value();
}

} // namespace

std::optional<std::vector<int>> parseNumbers(std::string_view text) {
    std::vector<int> numbers;
    for (const std::string_view part : split(text, ',')) {
        if (!addRange(part, numbers)) {
            return std::nullopt;
        }
    }
    return numbers;
}

std::optional<std::vector<DriveLocation>> parsePlaces(std::string_view text) {
    std::vector<DriveLocation> places;
    std::optional<int> enclosure;
    for (std::string_view part : split(text, ',')) {
        if (const std::size_t mark = part.find(':'); mark != std::string_view::npos) {
            const std::string_view before = part.substr(0, mark);
            enclosure = parseNumber(before);
            if (!enclosure && !before.empty() && before != " ") {
                return std::nullopt;
            }
            part.remove_prefix(mark + 1);
        }
        std::vector<int> slots;
        if (!addRange(part, slots) || places.size() + slots.size() > mostNumbers) {
            return std::nullopt;
        }
        for (const int slot : slots) {
            places.push_back({enclosure, slot});
        }
    }
    return places;
}

std::optional<Target> parseTarget(std::string_view path) {
    const std::string small = lowered(path);
    std::vector<std::string_view> parts = split(small, '/');
    Target target;
    if (parts.size() < 2 || parts.size() > 4 || !parts[0].empty() ||
        !readController(parts[1], target)) {
        return std::nullopt;
    }
    if (parts.size() == 2) {
        return target;
    }
    if (parts[2] == "fall") {
        target.subject = Subject::foreign;
    } else if (parts[2] == "cv" || parts[2] == "bbu") {
        target.subject = Subject::cache;
    } else if (parts[2].starts_with('e')) {
        if (!readEnclosures(parts[2], target)) {
            return std::nullopt;
        }
        if (parts.size() == 4 && (!parts[3].starts_with('s') || !readItems(parts[3], target))) {
            return std::nullopt;
        }
        return target;
    } else if (!readItems(parts[2], target)) {
        return std::nullopt;
    }
    return parts.size() == 3 ? std::optional(target) : std::nullopt;
}

} // namespace zolex_sim::storcli
