#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto error = Severity::error;
constexpr auto zolex = RefusedBy::zolex;

/// Group 0, the shape of the file, by id.
// clang-format off
constexpr std::array<Rule, 14> rows = {{
    {"ZX001", error, zolex, "a file that cannot be read, or changes while it is read",
     "zolex ends with exit code 5. With /r in the same command the arrays are erased before "
     "the file is opened.",
     "Give the name of a file that can be read, and check it when nobody writes it."},
    {"ZX002", error, zolex, "a byte-order mark, UTF-16 or NUL bytes",
     "To zolex these are bytes like any other. A mark before the first line is text before "
     "the first policy, and UTF-16 is never readable: the file is refused, exit code 5. A "
     "NUL byte in a comment does no harm; elsewhere it makes another word of the word that "
     "it stands in.",
     "Save the file as plain text: ASCII, or UTF-8 without a byte-order mark."},
    {"ZX003", error, zolex, "text before the first policy, or a header without \"]\"",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Begin each policy with a line of its own; what stands before the first one must be a "
     "comment:"
     "\n  ; Web servers."
     "\n  [Policy.web]"},
    {"ZX004", error, zolex, "a name that no policy can have",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "A name is Policy. and at least one letter, digit, \".\", \"_\" or \"-\". Blanks belong to "
     "the name, so there is none:"
     "\n  [Policy.web-server]"},
    {"ZX005", error, zolex, "two policies of one name",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read. Letter case makes no "
     "difference.",
     "Give one of them another name, or put what both say into one:"
     "\n  [Policy.web]"
     "\n  [Policy.web-2]"},
    {"ZX006", error, zolex, "a line without \"=\"",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read. A line of tabs counts"
     " too: blank lines hold nothing but spaces.",
     "Every line is KEYWORD = VALUE, a header, a comment or blank:"
     "\n  Init = QUICK"},
    {"ZX007", error, zolex, "an unknown keyword",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "The keywords are AppliesTo.1 to .15, RebuildRate, ReadAhead, StripeSize, Init, "
     "Array_Mode, Array_Defaults, Array.A to .H, Hotspares, Logical_Mode, Logical_Defaults, "
     "Logical.1 to .9 and Max_Logical_Drive_Size. Letter case makes no difference."},
    {"ZX008", error, zolex, "a keyword that a policy has twice",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read. When AppliesTo.1 is "
     "the one, the header of a second policy is missing.",
     "Leave one of the two lines, or write the header:"
     "\n  [Policy.web-2]"
     "\n  AppliesTo.1 = c:2"},
    {"ZX009", error, zolex, "a policy without AppliesTo.1",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Say which controllers the policy is for; AppliesTo.2 alone is not enough:"
     "\n  AppliesTo.1 = m:8837,c:1"},
    {"ZX010", error, zolex, "more than 100 policies",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Put the policies of some machines into a file of their own: each run reads one file."},
    {"ZX011", error, zolex, "more than 50 entries in a policy",
     "After 50 entries zolex takes the next line for the begin of a policy, and refuses the "
     "file: exit code 5. Nothing is said of the rest of the policy here.",
     "AppliesTo.16 and above and Logical.10 and above have no effect and can go; or make two"
     " policies of it."},
    {"ZX012", error, zolex, "a line of more than 255 characters",
     "zolex reads 255 characters of a line; what is beyond is a line of its own to it. The "
     "value is cut, and the rest is refused, or is taken for an entry: the tail of a long "
     "comment can change an array. A comment whose tail is blank or a comment does no harm: "
     "that is a warning.",
     "Break a long comment. Long lists of drives have no second line: name the drives in two"
     " arrays."},
    {"ZX013", error, zolex, "no policy in the file",
     "zolex has nothing to do and ends with exit code 5.",
     "A policy needs a header and the controllers that it is for:"
     "\n  [Policy.web]"
     "\n  AppliesTo.1 = ALL"},
    {"ZX014", error, zolex, "a tab before \"[\" or \";\"",
     "zolex skips spaces at the begin of a line, and no tabs: a header or comment behind a "
     "tab is an entry to it. zolex refuses the whole file, exit code 5, and no controller is"
     " configured. With /r in the same command the arrays are erased before the file is "
     "read.",
     "Take the tab out, or write spaces."},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup0() noexcept {
    return rows;
}

} // namespace zolex::companion
