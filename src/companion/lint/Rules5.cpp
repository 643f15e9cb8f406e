#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto warning = Severity::warning;
constexpr auto error = Severity::error;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto plan = RefusedBy::plan;
constexpr auto utility = RefusedBy::utility;

/// Group 5, hot spares, by id.
// clang-format off
constexpr std::array<Rule, 5> rows = {{
    {"ZX501", warning, utility, "the default hot spare is a drive of an array",
     "Without Hotspares the controller gets the number of spares of its kind, or that of "
     "Array_Defaults: the largest drive, of equal ones the last. It is chosen before the arrays, "
     "and a list may name it all the same. The array is made, the spare is refused: exit code "
     "11. No refusal is more common.",
     "Say which drive is the spare, or that there is none:\n"
     "  Hotspares = 8\n  Array_Defaults = 0%:0"},
    {"ZX502", error, utility, "a hot spare that is also in an array",
     "zolex plans both. The array is made, the spare is refused: exit code 11, and the server is "
     "without a spare.",
     "Take the drive out of one of the two lists."},
    {"ZX503", error, plan, "more hot spares than there can be",
     "A plan holds 8 hot spares, and no more than the controller has drives: exit code 5. A list "
     "of more than 16 makes zolex refuse the file.",
     "List 8 at most, and no more than d: says."},
    {"ZX504", warning, nobody, "a hot spare that covers no array",
     "RAID 0 and VOLUME cannot be rebuilt: the spare never steps in, and its room is lost. "
     "HYPERWIN refuses a spare beside a mirror when the command is made, exit code 11.",
     "Use the drive in an array, or take a level that a spare can rebuild."},
    {"ZX505", warning, nobody, "a captured policy, and so no hot spare",
     "Policies whose names begin with Policy.AUTO- are taken to list all that a server had: "
     "without Hotspares they get no spare, where the same policy under another name would.",
     "Say it: Hotspares = 8 for one, or Array_Defaults = 0%:0 for none. zolexctl show --as "
     "policies writes it so."},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup5() noexcept {
    return rows;
}

} // namespace zolex::companion
