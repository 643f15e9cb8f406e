#include "companion/text/Terminal.h"

#include "companion/text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace zolex::companion {

namespace {

constexpr std::string_view colourOf(Emphasis emphasis) {
    switch (emphasis) {
    case Emphasis::plain:
        return "";
    case Emphasis::bold:
        return "\033[1m";
    case Emphasis::dim:
        return "\033[2m";
    case Emphasis::heading:
        return "\033[36m";
    case Emphasis::good:
        return "\033[32m";
    case Emphasis::bad:
        return "\033[31m";
    case Emphasis::warning:
    case Emphasis::changed:
        return "\033[33m";
    }
    return "";
}

/// Whether every byte is a printable character of ASCII. Nearly all texts are.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < '\x7F'; });
}

/// Characters that are not seen and change how those around them are: U+0080 to U+009F steer
/// terminals, others turn the direction of the text, end its line or join words.
struct CodeRange {
    std::uint32_t first;
    std::uint32_t last;
};
constexpr std::array<CodeRange, 9> unseenCharacters{{{0x80, 0x9F},
                                                     {0x61C, 0x61C},
                                                     {0x180E, 0x180E},
                                                     {0x200B, 0x200F},
                                                     {0x2028, 0x202E},
                                                     {0x2060, 0x206F},
                                                     {0xFEFF, 0xFEFF},
                                                     {0xFFF9, 0xFFFB},
                                                     {0xE0000, 0xE007F}}};

/// The number of a character of two bytes or more.
std::uint32_t codeOf(std::string_view character) {
    std::uint32_t code =
        static_cast<unsigned char>(character[0]) & (0xFFU >> (character.size() + 1));
    for (const char byte : character.substr(1)) {
        code = (code << 6U) | (static_cast<unsigned char>(byte) & 0x3FU);
    }
    return code;
}

bool isUnseen(std::string_view character) {
    const std::uint32_t code = codeOf(character);
    return std::any_of(
        unseenCharacters.begin(), unseenCharacters.end(),
        [code](const CodeRange& range) { return code >= range.first && code <= range.last; });
}

} // namespace

std::string emphasized(std::string_view text, Emphasis emphasis, const TextStyle& style) {
    const std::string_view colour = colourOf(emphasis);
    if (!style.colours || colour.empty() || text.empty()) {
        return std::string(text);
    }
    return std::string(colour) + std::string(text) + "\033[0m";
}

std::size_t columnsOf(std::string_view text) {
    if (isPlain(text)) {
        return text.size();
    }
    std::size_t columns = 0;
    while (!text.empty()) {
        if (text.substr(0, 2) == "\033[") {
            const std::size_t end = text.find('m');
            text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
            continue;
        }
        const std::size_t length = characterLength(text);
        text.remove_prefix(length == 0 ? 1 : length);
        ++columns;
    }
    return columns;
}

std::string padded(std::string text, std::size_t columns, std::size_t least) {
    const std::size_t used = columnsOf(text);
    return text.append(used < columns ? columns - used : least, ' ');
}

std::string printable(std::string_view text) {
    if (isPlain(text)) {
        return std::string(text);
    }
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        const bool isControl = length == 1 && (first < 0x20 || first == 0x7F);
        if (length == 0 || isControl || (length > 1 && isUnseen(text.substr(0, length)))) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

std::string inQuotes(std::string_view text) {
    return "\"" + printable(text) + "\"";
}

} // namespace zolex::companion
