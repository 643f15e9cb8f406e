#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto warning = Severity::warning;
constexpr auto error = Severity::error;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto plan = RefusedBy::plan;
constexpr auto zolex = RefusedBy::zolex;
constexpr auto utility = RefusedBy::utility;

/// Group 3, drives and arrays, by id.
// clang-format off
constexpr std::array<Rule, 12> rows = {{
    {"ZX301", error, utility, "a drive twice in one list",
     "zolex takes the drive twice and counts it twice in the size. The utility refuses the "
     "command, and the run ends with exit code 11, after the commands before it were carried "
     "out.",
     "Name each drive once. Drives are numbered from 1; zolexctl show tells the numbers:\n"
     "  Array.B = 3,4,5"},
    {"ZX302", error, utility, "a drive in two arrays",
     "The first array is made, the second is refused: exit code 11, and the server stands half "
     "configured. Only MEGACLI takes the very same list a second time, for a second logical "
     "drive on those drives.",
     "Take the drive out of one of the lists."},
    {"ZX303", error, plan, "a position that no drive can have",
     "Channels are 1 to 4, ids 0 to 35. No plan can be made: exit code 5, and with /r in the same "
     "command the arrays are erased before that.",
     "Write channel:id as zolexctl show tells them: the first slot of the first enclosure is "
     "1:0."},
    {"ZX304", error, plan, "a drive number above the number of drives",
     "The policy asks for d: drives and then names one with a higher number. No plan can be "
     "made for such a controller: exit code 5, and with /r in the same command the arrays are "
     "erased before that.",
     "Numbers go from 1 to what d: says:\n"
     "  AppliesTo.1 = d:8\n  Array.A = 1,2,3,4,5,6,7\n  Hotspares = 8"},
    {"ZX305", error, plan, "more drives than an array takes",
     "A list holds 32 drives: with more no plan can be made, exit code 5. ALL takes as many as the "
     "level allows, 16 for most; the drives beyond are left over without a word.",
     "Make two arrays of it."},
    {"ZX307", warning, nobody, "Array.<x> without Array_Mode = CUSTOM",
     "The lists are read and then not used: zolex chooses the drives itself, and may make one "
     "RAID 5 over all of them, with exit code 0.",
     "Add the line:\n  Array_Mode = CUSTOM"},
    {"ZX308", error, plan, "an array without a logical drive",
     "With Logical_Mode = CUSTOM each array needs a Logical.<n>. The commands of this controller "
     "cannot be made: exit code 11, when those of the controllers before it have been carried "
     "out.",
     "Add a line such as:\n  Logical.2 = B:FILL:5"},
    {"ZX309", warning, nobody, "drive numbers, and no d: that holds them still",
     "Drives are counted, and drives without a number are not: when one is pulled, or has failed "
     "on a MegaRAID controller, each number behind it names the next slot. The arrays are made "
     "of other drives than meant, with exit code 0. A plan that deletes something on such a "
     "controller of today says so too, and what it deletes is not \"own\" while a drive of the "
     "certificate is gone.",
     "Ask for the number of drives in each AppliesTo, or name the drives by channel and id:\n"
     "  AppliesTo.1 = t:LSI-MegaRAID-8480,d:8\n  Array.A = 1:0,1:1"},
    {"ZX310", warning, nobody, "Array_Defaults beside listed arrays",
     "With Array_Mode = CUSTOM the drives are listed, so the variance of Array_Defaults is not "
     "used: drives of any size are put together. Its second number, of hot spares, still "
     "counts.",
     "Write 0% there, so that nobody relies on it:\n  Array_Defaults = 0%:1"},
    {"ZX311", error, zolex, "entries beside those that they replace",
     "Drives.<x> stands in the place of Array.<x>, Spares in that of Hotspares and Array_Defaults, "
     "and Level.<x> in that of Logical.<n> of its array. With both nobody can say which is meant: "
     "nothing is planned.",
     "Tell all arrays of a policy in one way:\n  Drives.A = slots 32:0,32:1\n"
     "  Drives.B = rest of one size\n  Spares = 1"},
    {"ZX312", error, zolex, "entries that lack what they speak of",
     "Arrays are lettered from A to H without a gap, Level.<x> and \"covering\" speak of arrays "
     "that the policy has as Drives.<x>, and a drive stands in one entry. Otherwise nothing is "
     "planned.",
     "Write the array that is missing, or take the entry out:\n  Drives.A = 2 x SSD\n"
     "  Level.A = 1"},
    {"ZX313", error, plan, "drives that this machine does not have",
     "Drives.<x>, Spares or Level.<x> ask for what the good drives of the controller do not give. "
     "No plan is made for it, and nothing is changed.",
     "zolexctl show lists the drives with their sizes. Ask for fewer, or for other ones:\n"
     "  Drives.A = 2 x SSD any size"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup3() noexcept {
    return rows;
}

} // namespace zolex::companion
