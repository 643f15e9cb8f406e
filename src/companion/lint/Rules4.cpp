#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto note = Severity::note;
constexpr auto warning = Severity::warning;
constexpr auto error = Severity::error;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto plan = RefusedBy::plan;
constexpr auto utility = RefusedBy::utility;

/// Group 4, logical drives, by id.
// clang-format off
constexpr std::array<Rule, 12> rows = {{
    {"ZX401", error, plan, "a RAID level that the model does not have",
     "In Logical.<n> no plan can be made: exit code 5. In Logical_Defaults zolex does not ask "
     "whether the model has the level; its utility refuses the command, exit code 11.",
     "Take a level that the model has, or AUTO for the one that fits the number of drives."},
    {"ZX402", error, plan, "a RAID level that does not take so many drives",
     "No plan can be made: exit code 5, and with /r in the same command the arrays are erased "
     "before that. RAID 1 takes 2 drives, 5 and 1E take 3 or more, 6 and 10 take 4 or more, 50 "
     "takes 6 or more and 60 takes 8 or more, both an even number.",
     "Change the list of drives, or the level."},
    {"ZX403", error, plan, "a strip size that the model does not have",
     "No plan can be made: exit code 5, and with /r in the same command the arrays are erased "
     "before that.",
     "Take one of the sizes that the finding names, or leave StripeSize out for the usual one."},
    {"ZX404", warning, nobody, "drives that a RAID 10, 50 or 60 does not use as meant",
     "MEGACLI makes a RAID 10 of pairs: of an odd number of drives the last is left out, without "
     "a word and with exit code 0; ARCCONF and HRCONF refuse the command, an error. RAID 50 and 60 are made of two spans, however many drives "
     "there are.",
     "List an even number of drives for RAID 10, and give the odd one to Hotspares."},
    {"ZX405", error, plan, "several logical drives on one array",
     "MEGACLI gets a command for the first alone: the others are missing, with exit code 0. The "
     "commands of ARCCONF, HRCONF, CFGGEN and HYPERWIN cannot be made: exit code 11, when the "
     "controllers before it have been configured.",
     "Only QTCSEND makes several. With MEGACLI, list the same drives again as a further array, "
     "with sizes that fit side by side:\n"
     "  Array.A = 1,2\n  Array.B = 1,2\n  Logical.1 = A:40%:1\n  Logical.2 = B:60%:1"},
    {"ZX406", warning, nobody, "a size that becomes FILL",
     "A size within 139 MB of what is left of the array takes all that is left: the logical "
     "drive is not as large as the policy says.",
     "Write FILL where all of it is meant, else a size that leaves more than 139 MB."},
    {"ZX407", warning, utility, "a RAID level that the utility has no command for",
     "zolex writes the word ERROR in the place of the level, and the utility refuses the command: "
     "exit code 11. MEGACLI has no 5E, 5EE and VOLUME, the CFGGEN utilities have 0, 1 and 1E "
     "alone.",
     "Take another level, or AUTO."},
    {"ZX408", warning, nobody, "a setting without effect",
     "The utility of the models in AppliesTo is not told the setting: the controller keeps its "
     "own. With HYPERWIN a size other than FILL is refused when the command is made, exit code "
     "11.",
     "Leave the entry out, and set it in the controller's own set-up where it matters."},
    {"ZX409", note, nobody, "Max_Logical_Drive_Size has no effect",
     "The value is checked and then not used: logical drives are as large as their sizes say.",
     "Leave it out, and give sizes in Logical.<n>:\n  Logical.1 = A:204800:5"},
    {"ZX410", note, nobody, "Logical.<n> without Logical_Mode = CUSTOM",
     "The entries are read and then not used: each array gets one logical drive, of the size and "
     "level of Logical_Defaults or of the model.",
     "Add the line:\n  Logical_Mode = CUSTOM"},
    {"ZX411", note, nobody, "RAID 0 over more than one drive",
     "When one of the drives fails, all data of the logical drive is lost. No hot spare helps.",
     "Take 1, 10 or 5 where the data matters. Where it does not, say so in the line before:\n"
     "  ; zolexctl: ignore ZX411"},
    {"ZX412", note, nobody, "Logical.<n> without a write cache on MegaRAID",
     "Logical_Defaults without a cache word asks a MegaRAID controller for write-back; Logical.<n> "
     "asks for nothing, so the controller keeps its own mode, which is write-through on most. "
     "Writing is then slower by far than with the automatic logical drives.",
     "Say which one is meant:\n  Logical.1 = A:FILL:1:ON"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup4() noexcept {
    return rows;
}

} // namespace zolex::companion
