#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

/// Group 9, style, by id.
// clang-format off
constexpr std::array<Rule, 2> rows = {{
    {"ZX901", Severity::note, RefusedBy::nobody, "blanks at the end of a line", "", ""},
    {"ZX902", Severity::note, RefusedBy::nobody, "a keyword in unusual letter case", "", ""},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup9() noexcept {
    return rows;
}

} // namespace zolex::companion
