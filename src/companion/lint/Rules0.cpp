#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto error = Severity::error;
constexpr auto zolex = RefusedBy::zolex;

/// Group 0, the shape of the file, by id.
// clang-format off
constexpr std::array<Rule, 14> rows = {{
    {"ZX001", error, zolex, "the file cannot be read, or changes while it is read", "", ""},
    {"ZX002", error, zolex, "byte-order mark, UTF-16 or NUL byte", "", ""},
    {"ZX003", error, zolex, "text before the first policy, or a header without \"]\"", "", ""},
    {"ZX004", error, zolex, "invalid name of a policy", "", ""},
    {"ZX005", error, zolex, "two policies of one name", "", ""},
    {"ZX006", error, zolex, "line without \"=\"", "", ""},
    {"ZX007", error, zolex, "unknown keyword", "", ""},
    {"ZX008", error, zolex, "keyword twice in a policy", "", ""},
    {"ZX009", error, zolex, "no AppliesTo.1", "", ""},
    {"ZX010", error, zolex, "more than 100 policies", "", ""},
    {"ZX011", error, zolex, "more than 50 entries in a policy", "", ""},
    {"ZX012", error, zolex, "line of more than 255 characters", "", ""},
    {"ZX013", error, zolex, "no policy in the file", "", ""},
    {"ZX014", error, zolex, "tab before \"[\" or \";\"", "", ""},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup0() noexcept {
    return rows;
}

} // namespace zolex::companion
