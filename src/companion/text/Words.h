#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// The pieces one behind the other, with the separator between them.
[[nodiscard]] std::string joined(const std::vector<std::string>& pieces,
                                 std::string_view separator);

/// Only the letters and digits of a text, in small letters: two tellings of a name that differ in
/// blanks, signs and letter case are the same.
[[nodiscard]] std::string lettersAndDigits(std::string_view text);

} // namespace zolex::companion
