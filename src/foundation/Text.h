#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// Pure operations on views of text, for code that reads much and keeps little.
namespace zolex::text {

/// Lower-case of one byte, ASCII letters only.
[[nodiscard]] constexpr char lower(char c) noexcept {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}
/// Upper-case of one byte, ASCII letters only.
[[nodiscard]] constexpr char upper(char c) noexcept {
    return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
}

/// Three-way comparison of unsigned bytes that ignores the case of ASCII letters.
[[nodiscard]] int compareNoCase(std::string_view a, std::string_view b) noexcept;
[[nodiscard]] bool equalsNoCase(std::string_view a, std::string_view b) noexcept;
/// Whether `line` holds `key`, letter case ignored.
[[nodiscard]] bool containsNoCase(std::string_view line, std::string_view key) noexcept;
[[nodiscard]] inline bool contains(std::string_view line, std::string_view key) noexcept {
    return line.find(key) != std::string_view::npos;
}

/// `text` without leading and trailing bytes of `set`.
[[nodiscard]] std::string_view trim(std::string_view text, std::string_view set) noexcept;
/// `text` without leading and trailing blanks, tabs and newlines.
[[nodiscard]] inline std::string_view trim(std::string_view text) noexcept {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\n'; };
    std::size_t first = 0;
    std::size_t end = text.size();
    while (first < end && isBlank(text[first])) {
        ++first;
    }
    while (end > first && isBlank(text[end - 1])) {
        --end;
    }
    return first == end ? text.substr(0, 0) : text.substr(first, end - first);
}

/// The text after the first ":" to the end of the line, trimmed of blanks, tabs and newlines; empty
/// when there is no ":".
[[nodiscard]] std::string_view valueAfterColon(std::string_view line) noexcept;

/// Token `index` (from 0) of `text` split at the string `delimiter`; empty when there is none.
[[nodiscard]] std::string_view token(std::string_view text, std::string_view delimiter,
                                     std::size_t index) noexcept;

/// Leading decimal integer: blanks skipped, optional sign, digits up to the first other character,
/// clamped at the 32-bit limits; 0 without digits.
[[nodiscard]] std::int32_t leadingInt(std::string_view text) noexcept;

/// A whole number: one or more decimal digits and nothing else, at most 2147483647.
[[nodiscard]] std::optional<std::int32_t> wholeNumber(std::string_view text) noexcept;

} // namespace zolex::text
