#include "readers/ListingValues.h"

#include "foundation/Text.h"

#include <algorithm>

namespace zolex {

namespace {

bool startsWithNumber(std::string_view text) {
    text = text::trim(text);
    if (!text.empty() && text.front() == '-') {
        text.remove_prefix(1);
    }
    return !text.empty() && text.front() >= '0' && text.front() <= '9';
}

} // namespace

std::optional<std::int32_t> findCode(std::span<const WordCode> words, std::string_view value) {
    const auto row = std::find_if(words.begin(), words.end(),
                                  [value](const WordCode& word) { return word.word == value; });
    return row == words.end() ? std::nullopt : std::optional(row->code);
}

bool holdsAny(std::string_view line, std::span<const std::string_view> keys) {
    return std::any_of(keys.begin(), keys.end(),
                       [line](std::string_view key) { return text::contains(line, key); });
}

bool holdsAnyNoCase(std::string_view line, std::span<const std::string_view> keys) {
    return std::any_of(keys.begin(), keys.end(),
                       [line](std::string_view key) { return text::containsNoCase(line, key); });
}

std::string_view valueBetweenColons(std::string_view line) {
    const std::size_t first = line.find(':');
    if (first == std::string_view::npos) {
        return {};
    }
    line.remove_prefix(first + 1);
    return text::trim(line.substr(0, line.find(':')));
}

std::optional<DrivePosition> parsePosition(std::string_view text, std::string_view delimiter) {
    const std::string_view channel = text::token(text, delimiter, 0);
    const std::string_view id = text::token(text, delimiter, 1);
    if (!startsWithNumber(channel) || !startsWithNumber(id)) {
        return std::nullopt;
    }
    return DrivePosition{text::leadingInt(channel), text::leadingInt(id)};
}

std::vector<DrivePosition> parsePositions(std::string_view list, std::string_view delimiter) {
    std::vector<DrivePosition> positions;
    for (const std::string_view piece : splitAtBlanks(list)) {
        if (const auto position = parsePosition(piece, delimiter)) {
            positions.push_back(*position);
        }
    }
    return positions;
}

std::vector<std::string_view> splitAtBlanks(std::string_view list) {
    std::vector<std::string_view> pieces;
    for (list = text::trim(list); !list.empty(); list = text::trim(list)) {
        const std::size_t end = std::min(list.find(' '), list.size());
        pieces.push_back(list.substr(0, end));
        list.remove_prefix(end);
    }
    return pieces;
}

} // namespace zolex
