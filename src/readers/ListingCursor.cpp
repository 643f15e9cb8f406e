#include "readers/ListingCursor.h"

namespace zolex {

namespace {

/// Ends a line at its first carriage return or zero byte.
std::string_view cutAtTextEnd(std::string_view line) {
    line = line.substr(0, line.find('\0'));
    return line.substr(0, line.find('\r'));
}

} // namespace

ListingCursor::ListingCursor(std::string_view text)
    : rest_(text), hasListing_(true), hasTextEnds_(text.find('\0') != std::string_view::npos ||
                                                   text.find('\r') != std::string_view::npos) {}

std::string_view ListingCursor::nextOddLine() {
    const std::string_view piece = rest_.substr(0, longestListingLine);
    const std::size_t newline = piece.find('\n');
    if (newline == std::string_view::npos && piece.size() < longestListingLine) {
        rest_ = {};
        return endOfOutput;
    }
    std::string_view line = piece.substr(0, newline);
    rest_.remove_prefix(newline == std::string_view::npos ? piece.size() : newline + 1);
    if (hasTextEnds_) {
        line = cutAtTextEnd(line);
    }
    if (line == endOfOutput) {
        rest_ = {};
    }
    return line;
}

} // namespace zolex
