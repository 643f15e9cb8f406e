#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto note = Severity::note;
constexpr auto warning = Severity::warning;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto zolex = RefusedBy::zolex;
constexpr auto plan = RefusedBy::plan;
constexpr auto utility = RefusedBy::utility;

/// Group 6, what zolex does with a file that is good, by id.
// clang-format off
constexpr std::array<Rule, 6> rows = {{
    {"ZX601", warning, nobody, "more than 16 commands",
     "One run of zolex carries out 16 configuration commands, over all controllers. What is more "
     "is left out, hot spares first of all, and the run says \"All configuration commands "
     "succeeded.\" with exit code 0.",
     "Make it with two runs, of fewer logical drives each; leave write cache and read-ahead out "
     "with ARCCONF, which gets a command for each."},
    {"ZX602", warning, nobody, "an array whose members do not fit a line of the listing",
     "ARCCONF and HRCONF list the members in one line, and zolex reads 198 bytes of it. The next "
     "capture names another drive in the place of the last, or leaves some out, without a word.",
     "Make two arrays of it, or never deploy what was captured from it."},
    {"ZX603", warning, nobody, "a keyword that zolex never looks up",
     "AppliesTo.1 to .15 and Logical.1 to .9 are looked up, with no leading zero. What is numbered "
     "otherwise is accepted without effect.",
     "Number the entries from 1, without leading zeros."},
    {"ZX604", warning, plan, "a strip size that MegaRAID controllers do not take",
     "Plans for MegaRAID controllers accept 16 to 128 KB. A capture writes 256 and 512 where it "
     "finds them, and the captured policy then ends with exit code 5.",
     "Write 128 or less, or name the models that the policy is for with t:."},
    {"ZX605", warning, utility, "the policy needs drives that are in use",
     "zolex does not look at what stands on the drives. The utility refuses the first command "
     "that needs one: exit code 11, as with every second run on a configured server.",
     "Nothing is to be done where the server is as it should be. zolex /r erases all arrays of "
     "all controllers first, with their data."},
    {"ZX610", note, zolex, "what zolexctl alone knows",
     "zolex refuses the whole file, exit code 5; zolexctl takes it. So it is with controller models "
     "that only zolexctl knows, and with Drives.<x>, Spares and Level.<x>.",
     "Keep such policies in a file of their own. zolexctl convert --to policies writes the drives "
     "that Drives.<x> are on one machine into a file that zolex takes."},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup6() noexcept {
    return rows;
}

} // namespace zolex::companion
