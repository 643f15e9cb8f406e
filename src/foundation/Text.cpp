#include "foundation/Text.h"

#include <algorithm>
#include <limits>

namespace zolex::text {

int compareNoCase(std::string_view a, std::string_view b) noexcept {
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const int x = static_cast<unsigned char>(lower(a[i]));
        const int y = static_cast<unsigned char>(lower(b[i]));
        if (x != y) {
            return x - y;
        }
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool equalsNoCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) {
        return false;
    }
    // From the back: keys that are alike differ in the number at their end.
    for (std::size_t i = a.size(); i > 0; --i) {
        if (lower(a[i - 1]) != lower(b[i - 1])) {
            return false;
        }
    }
    return true;
}

bool containsNoCase(std::string_view line, std::string_view key) noexcept {
    if (key.empty()) {
        return true;
    }
    const char first = lower(key.front());
    for (std::size_t at = 0; at + key.size() <= line.size(); ++at) {
        if (lower(line[at]) == first && equalsNoCase(line.substr(at, key.size()), key)) {
            return true;
        }
    }
    return false;
}

std::string_view trim(std::string_view text, std::string_view set) noexcept {
    // The set is short: asking its bytes in turn is faster than a search in it.
    const auto isRemoved = [set](char c) {
        for (const char member : set) {
            if (c == member) {
                return true;
            }
        }
        return false;
    };
    std::size_t first = 0;
    std::size_t end = text.size();
    while (first < end && isRemoved(text[first])) {
        ++first;
    }
    while (end > first && isRemoved(text[end - 1])) {
        --end;
    }
    return first == end ? text.substr(0, 0) : text.substr(first, end - first);
}

std::string_view valueAfterColon(std::string_view line) noexcept {
    const std::size_t colon = line.find(':');
    return colon == std::string_view::npos ? std::string_view() : trim(line.substr(colon + 1));
}

std::string_view token(std::string_view text, std::string_view delimiter,
                       std::size_t index) noexcept {
    if (delimiter.empty()) {
        return {};
    }
    for (; index > 0; --index) {
        const std::size_t at = text.find(delimiter);
        if (at == std::string_view::npos) {
            return {};
        }
        text.remove_prefix(at + delimiter.size());
    }
    return text.substr(0, text.find(delimiter));
}

std::int32_t leadingInt(std::string_view text) noexcept {
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    const std::size_t start = text.find_first_not_of(" \t\n\v\f\r");
    if (start == std::string_view::npos) {
        return 0;
    }
    text.remove_prefix(start);
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+') {
        text.remove_prefix(1);
    }
    std::int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            break;
        }
        value = std::min(value * 10 + (c - '0'), highest + 1);
    }
    return static_cast<std::int32_t>(std::clamp(negative ? -value : value, lowest, highest));
}

std::optional<std::int32_t> wholeNumber(std::string_view text) noexcept {
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    if (text.empty()) {
        return std::nullopt;
    }
    std::int64_t value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
        if (value > highest) {
            return std::nullopt;
        }
    }
    return static_cast<std::int32_t>(value);
}

} // namespace zolex::text
