#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto note = Severity::note;
constexpr auto nobody = RefusedBy::nobody;

/// Group 9, style, by id.
// clang-format off
constexpr std::array<Rule, 2> rows = {{
    {"ZX901", note, nobody, "blanks at the end of a line",
     "zolex trims them. They are of no use, and a tab that stands alone on a line makes "
     "zolex refuse the file.",
     "zolexctl check --fix FILE takes them out and changes nothing else in those lines."},
    {"ZX902", note, nobody, "a keyword in unusual letter case",
     "zolex takes keywords in any letter case. One way of writing them makes a file easier "
     "to search.",
     "zolexctl check --fix FILE writes it as usual:"
     "\n  Hotspares = 8"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup9() noexcept {
    return rows;
}

} // namespace zolex::companion
