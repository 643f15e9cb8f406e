#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// What files of /sys and /proc are read with; for the files of this folder alone.
namespace zolex::companion::md {

inline constexpr std::size_t mostAttribute = 4096;
inline constexpr std::size_t mostTable = std::size_t{4} << 20U;

/// Without blanks and zero bytes at either end.
[[nodiscard]] std::string_view trimmed(std::string_view text);
/// What stands behind the last "/".
[[nodiscard]] std::string_view baseName(std::string_view path);
/// What stands between any of the separators, without empty parts.
[[nodiscard]] std::vector<std::string_view> parts(std::string_view text,
                                                  std::string_view separators);
/// "/mnt/my\040disk" as it is: tables of /proc write blanks so.
[[nodiscard]] std::string unescaped(std::string_view text);

/// The whole number that a text is.
template <typename Number>
[[nodiscard]] std::optional<Number> numberIn(std::string_view text, int base = 10) {
    Number value{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return result.ec == std::errc() && result.ptr == text.data() + text.size()
               ? std::optional(value)
               : std::nullopt;
}

} // namespace zolex::companion::md
