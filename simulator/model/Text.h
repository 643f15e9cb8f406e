#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zolex_sim {

/// The text of a printf-style format.
#if defined(__MINGW32__)
[[gnu::format(gnu_printf, 1, 2)]]
#else
[[gnu::format(printf, 1, 2)]]
#endif
std::string
formatted(const char* format, ...);

/// Letter case of ASCII letters is ignored.
bool equalsIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view start);
bool containsIgnoringCase(std::string_view text, std::string_view part);

/// The number that one to eighteen decimal digits write; nothing for any other text.
std::optional<std::int64_t> parseWhole(std::string_view digits);

/// The parts between blanks, tabs and line ends.
std::vector<std::string> splitWords(std::string_view text);

/// The items with `separator` between them.
std::string join(const std::vector<std::string>& items, std::string_view separator);

} // namespace zolex_sim
