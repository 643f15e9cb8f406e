#pragma once

#include "foundation/CString.h"

#include <span>
#include <string_view>

namespace zolex {

class Report;

/// A state word that a utility prints, and the state that is derived from it.
struct StateWord {
    std::string_view word;
    const char* derived;
};

/// A drive that can be used, a drive that cannot, and one whose word is not known.
inline constexpr const char* goodState = "GOOD";
inline constexpr const char* badState = "BAD";
inline constexpr const char* unknownState = "????";

/// The state derived from the row whose word is `state`, letter case ignored. Without such a row
/// the word is traced and the result is "????".
[[nodiscard]] CString deriveState(std::span<const StateWord> words, const CString& state,
                                  Report& report);

} // namespace zolex
