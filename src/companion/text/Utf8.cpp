#include "companion/text/Utf8.h"

#include "companion/text/Terminal.h"

#include <array>
#include <cstdint>

namespace zolex::companion {

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

std::string_view lastCharacters(std::string_view text, std::size_t count) {
    std::size_t characters = columnsOf(text);
    while (characters > count) {
        const std::size_t length = characterLength(text);
        text.remove_prefix(length == 0 ? 1 : length);
        --characters;
    }
    return text;
}

std::string shortened(std::string_view text, std::size_t columns) {
    if (columnsOf(text) <= columns) {
        return std::string(text);
    }
    constexpr std::string_view dots = "...";
    std::string result;
    for (std::size_t taken = 0; taken + dots.size() < columns; ++taken) {
        const std::size_t length = characterLength(text);
        result += text.substr(0, length == 0 ? 1 : length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result + std::string(dots);
}

} // namespace zolex::companion
