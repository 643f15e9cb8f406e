#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zolex::companion {

/// How text is written: whether with colours, and how wide.
struct TextStyle {
    bool colours = false;
    std::int32_t width = 80; ///< columns, 40 to 1000
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// What a piece of text means. Colours are never the only carrier of it.
enum class Emphasis { plain, bold, dim, heading, good, bad, warning, changed };

/// The text with the colour of `emphasis` where the style has colours, as it is otherwise.
[[nodiscard]] std::string emphasized(std::string_view text, Emphasis emphasis,
                                     const TextStyle& style);

/// Number of columns that UTF-8 text takes; a byte that is not UTF-8 takes one. Colours take none.
[[nodiscard]] std::size_t columnsOf(std::string_view text);

/// The text with blanks behind it up to a number of columns; `least` of them in any case.
[[nodiscard]] std::string padded(std::string text, std::size_t columns, std::size_t least = 0);

/// The text with what is no printable character (control characters, escapes, what turns the
/// direction of a text or ends its line) as "?", so that no listing or file can steer a terminal or
/// show what it does not hold. Other characters above 0x7F stay when they are valid UTF-8.
[[nodiscard]] std::string printable(std::string_view text);

/// The same in quotes: what somebody typed, or a file holds.
[[nodiscard]] std::string inQuotes(std::string_view text);

} // namespace zolex::companion
