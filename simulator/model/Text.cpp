#include "model/Text.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

namespace zolex_sim {
namespace {

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool sameLetter(char a, char b) {
    return lowered(a) == lowered(b);
}

} // namespace

std::string formatted(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    // Most texts are short: they are made in one go.
    std::array<char, 1024> room; // written before it is read
    const int length = std::vsnprintf(room.data(), room.size(), format, arguments);
    va_end(arguments);
    std::string text;
    if (length > 0) {
        const auto size = static_cast<std::size_t>(length);
        text.assign(room.data(), std::min(size, room.size() - 1));
        if (size >= room.size()) {
            text.resize(size);
            std::vsnprintf(text.data(), size + 1, format, again);
        }
    }
    va_end(again);
    return text;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), sameLetter);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view start) {
    return text.size() >= start.size() && equalsIgnoringCase(text.substr(0, start.size()), start);
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    return std::search(text.begin(), text.end(), part.begin(), part.end(), sameLetter) !=
               text.end() ||
           part.empty();
}

std::optional<std::int64_t> parseWhole(std::string_view digits) {
    if (digits.empty() || digits.size() > 18) {
        return std::nullopt;
    }
    std::int64_t number = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        number = number * 10 + (c - '0');
    }
    return number;
}

std::vector<std::string> splitWords(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    std::vector<std::string> words;
    std::size_t start = text.find_first_not_of(blanks);
    while (start != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(blanks, start), text.size());
        words.emplace_back(text.substr(start, end - start));
        start = text.find_first_not_of(blanks, end);
    }
    return words;
}

std::string join(const std::vector<std::string>& items, std::string_view separator) {
    std::string text;
    for (const std::string& item : items) {
        if (&item != &items.front()) {
            text += separator;
        }
        text += item;
    }
    return text;
}

} // namespace zolex_sim
