#include "companion/text/Terminal.h"

#include <array>
#include <cstddef>

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
        return "\033[33m";
    case Emphasis::changed:
        return "\033[33m";
    }
    return "";
}

/// Bytes of the valid UTF-8 character at the front of the text; 0 when there is none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    std::size_t length = 0;
    std::uint32_t code = 0;
    if (first < 0x80) {
        return 1;
    }
    if ((first & 0xE0U) == 0xC0) {
        length = 2;
        code = first & 0x1FU;
    } else if ((first & 0xF0U) == 0xE0) {
        length = 3;
        code = first & 0x0FU;
    } else if ((first & 0xF8U) == 0xF0) {
        length = 4;
        code = first & 0x07U;
    }
    if (length == 0 || text.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) {
            return 0;
        }
        code = (code << 6U) | (byte(i) & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool valid =
        code >= smallest.at(length) && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    return valid ? length : 0;
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

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        const bool isControl = length == 1 && (first < 0x20 || first == 0x7F);
        // U+0080 to U+009F steer terminals too.
        const bool isHighControl =
            length == 2 && first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0;
        if (length == 0 || isControl || isHighControl) {
            result += '?';
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

} // namespace zolex::companion
