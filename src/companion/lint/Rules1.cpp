#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto error = Severity::error;
constexpr auto warning = Severity::warning;
constexpr auto zolex = RefusedBy::zolex;

/// Group 1, values, by id.
// clang-format off
constexpr std::array<Rule, 11> rows = {{
    {"ZX101", error, zolex, "a word that the keyword does not take", "", ""},
    {"ZX102", error, zolex, "Array_Defaults that is not variance:hotspares", "", ""},
    {"ZX103", error, zolex, "Max_Logical_Drive_Size that is no number", "", ""},
    {"ZX104", error, zolex, "a list of drives that cannot be read", "", ""},
    {"ZX105", error, zolex, "drive numbers and channel:id pairs in one list", "", ""},
    {"ZX106", error, zolex, "a logical drive that cannot be read", "", ""},
    {"ZX107", error, zolex, "a gap in the arrays or logical drives", "", ""},
    {"ZX108", error, zolex, "an array after one that takes all drives", "", ""},
    {"ZX109", error, zolex, "RAID 5E or 5EE beside another logical drive", "", ""},
    {"ZX110", warning, RefusedBy::nobody, "more than the whole array is given away", "", ""},
    {"ZX111", error, zolex, "blanks beside a colon", "", ""},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup1() noexcept {
    return rows;
}

} // namespace zolex::companion
