#include "readers/ListingCursor.h"

namespace zolex {

namespace {

/// Ends a line at its first carriage return or zero byte.
std::string_view cutAtTextEnd(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    return line.substr(0, line.find('\r'));
}

unsigned isOdd(char c, char next) {
    return static_cast<unsigned>(c == '\0') |
           (static_cast<unsigned>(c == '\r') & static_cast<unsigned>(next != '\n'));
}

/// Whether the text of a line may end elsewhere than at the line's end. Whole chunks are looked at
/// at once, which compilers make fast.
bool hasOddLines(std::string_view text) {
    constexpr std::size_t chunk = 64;
    std::size_t at = 0;
    for (; at + chunk < text.size(); at += chunk) {
        const char* const bytes = text.data() + at;
        unsigned char odd = 0;
        for (std::size_t i = 0; i < chunk; ++i) {
            odd = static_cast<unsigned char>(odd | isOdd(bytes[i], bytes[i + 1]));
        }
        if (odd != 0) {
            return true;
        }
    }
    for (; at < text.size(); ++at) {
        if (isOdd(text[at], at + 1 < text.size() ? text[at + 1] : '\0') != 0) {
            return true;
        }
    }
    return false;
}

} // namespace

ListingCursor::ListingCursor(std::string_view text)
    : rest_(text), hasListing_(true), hasOddLines_(hasOddLines(text)) {}

std::string_view ListingCursor::nextOddLine() {
    const std::string_view piece = rest_.substr(0, longestListingLine);
    const std::size_t newline = piece.find('\n');
    if (newline == std::string_view::npos && piece.size() < longestListingLine) {
        rest_ = {};
        return endOfOutput;
    }
    std::string_view line = piece.substr(0, newline);
    rest_.remove_prefix(newline == std::string_view::npos ? piece.size() : newline + 1);
    line = cutAtTextEnd(line);
    if (line == endOfOutput) {
        rest_ = {};
    }
    return line;
}

} // namespace zolex
