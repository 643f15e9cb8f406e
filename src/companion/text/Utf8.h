#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Texts that come from outside and need not be UTF-8.
namespace zolex::companion {

/// Bytes of the valid UTF-8 character at the front of a text that is not empty; 0 when there is
/// none.
[[nodiscard]] std::size_t characterLength(std::string_view text);

/// The last `count` characters of a text; all of it when it is shorter.
[[nodiscard]] std::string_view lastCharacters(std::string_view text, std::size_t count);

/// The text in at most `columns` columns: what is too long ends in "...". At least 4 columns.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t columns);

} // namespace zolex::companion
