#pragma once

#include <span>
#include <string_view>

namespace zolex {

class Report;

/// A state word that a utility prints, and the state that is derived from it.
struct StateWord {
    std::string_view word;
    std::string_view derived;
};

/// A drive that can be used, a drive that cannot, and one whose word is not known.
inline constexpr std::string_view goodState = "GOOD";
inline constexpr std::string_view badState = "BAD";
inline constexpr std::string_view unknownState = "????";

/// The state derived from the row whose word is `state`, letter case ignored. Without such a row
/// the word is traced and the result is "????".
[[nodiscard]] std::string_view deriveState(std::span<const StateWord> words, std::string_view state,
                                           Report& report);

} // namespace zolex
