#pragma once

#include "companion/findings/Finding.h"

#include <span>
#include <string_view>

namespace zolex::companion {

/// One rule of the linter. All that is known of it stands in one row of the table.
struct Rule {
    std::string_view id;    ///< "ZX301"
    Severity severity;      ///< usual one
    RefusedBy refusedBy;    ///< usual one
    std::string_view title; ///< what it finds, in a few words
    std::string_view why;   ///< what happens on a server when it is left so
    std::string_view help;  ///< what to write instead, with an example
};

/// All rules, in the order of their ids.
[[nodiscard]] std::span<const Rule> rules();
/// Null when there is none of this id; letter case is ignored.
[[nodiscard]] const Rule* findRule(std::string_view id);

} // namespace zolex::companion
