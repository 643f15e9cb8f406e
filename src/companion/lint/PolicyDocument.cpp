#include "companion/lint/PolicyDocument.h"

#include "foundation/Text.h"

#include <algorithm>

namespace zolex::companion {

namespace {

/// What zolex takes as if the keyword were not there.
constexpr std::string_view absentValue = "^~";

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

} // namespace

const DocumentEntry* DocumentPolicy::find(std::string_view keyword) const {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [keyword](const DocumentEntry& entry) {
            return text::equalsNoCase(entry.keyword.text, keyword);
        });
    return found == entries.end() ? nullptr : &*found;
}

const DocumentEntry* DocumentPolicy::effective(std::string_view keyword) const {
    const DocumentEntry* entry = find(keyword);
    return entry == nullptr || entry->value.text == absentValue ? nullptr : entry;
}

std::string_view PolicyDocument::line(std::int32_t number) const {
    if (number < 1 || static_cast<std::size_t>(number) > lineStarts.size()) {
        return {};
    }
    const std::size_t start = lineStarts[static_cast<std::size_t>(number) - 1];
    std::string_view rest = std::string_view(text).substr(start);
    const std::size_t end = rest.find('\n');
    if (end == std::string_view::npos) {
        return rest;
    }
    rest = rest.substr(0, end);
    return rest.ends_with('\r') ? rest.substr(0, end - 1) : rest;
}

TextPlace PolicyDocument::placeOf(std::size_t byte) const {
    const auto next = std::upper_bound(lineStarts.begin(), lineStarts.end(), byte);
    const auto number = next - lineStarts.begin();
    const std::size_t start = number == 0 ? 0 : *(next - 1);
    return {static_cast<std::int32_t>(std::max<std::ptrdiff_t>(number, 1)),
            static_cast<std::int32_t>(byte - start + 1), static_cast<std::int64_t>(byte)};
}

Piece partOf(const Piece& piece, std::size_t first, std::size_t length) {
    first = std::min(first, piece.text.size());
    length = std::min(length, piece.text.size() - first);
    const auto after = [&piece](std::size_t bytes) {
        return TextPlace{piece.start.line, piece.start.column + static_cast<std::int32_t>(bytes),
                         piece.start.byte + static_cast<std::int64_t>(bytes)};
    };
    return {piece.text.substr(first, length), after(first), after(first + length)};
}

std::vector<Piece> fieldsOf(const Piece& value, char separator) {
    std::vector<Piece> fields;
    const std::string& text = value.text;
    for (std::size_t begin = 0;;) {
        const std::size_t separatorAt = std::min(text.find(separator, begin), text.size());
        std::size_t first = begin;
        std::size_t end = separatorAt;
        while (first < end && isBlank(text[first])) {
            ++first;
        }
        while (end > first && isBlank(text[end - 1])) {
            --end;
        }
        fields.push_back(partOf(value, first, end - first));
        if (separatorAt == text.size()) {
            return fields;
        }
        begin = separatorAt + 1;
    }
}

} // namespace zolex::companion
