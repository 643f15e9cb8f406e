#include "companion/text/Terminal.h"

#include "companion/text/Utf8.h"

#include <algorithm>
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
    case Emphasis::changed:
        return "\033[33m";
    }
    return "";
}

/// Whether every byte is a printable character of ASCII. Nearly all texts are.
bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < '\x7F'; });
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
