#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto error = Severity::error;
constexpr auto warning = Severity::warning;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto zolex = RefusedBy::zolex;

/// Group 1, values, by id.
// clang-format off
constexpr std::array<Rule, 14> rows = {{
    {"ZX101", error, zolex, "a word that the keyword does not take",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "RebuildRate is HIGH, MED or LOW; ReadAhead is ADAPTIVE, ON or OFF; StripeSize is 16, "
     "32, 64, 128, 256, 512, 1024, 2048 or 4096, without KB; Init is QUICK or BUILD; "
     "Array_Mode and Logical_Mode are CUSTOM or left out:"
     "\n  StripeSize = 64"},
    {"ZX102", error, zolex, "Array_Defaults that cannot be read",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "It is variance:hotspares: by how much the sizes of an array's drives may differ (0%, "
     "5%, 10% or 100%), and a number of hot spares:"
     "\n  Array_Defaults = 10%:1"},
    {"ZX103", error, zolex, "Max_Logical_Drive_Size that is no number",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "It is a whole number of MB. zolex checks it and makes no use of it: take the line out."},
    {"ZX104", error, zolex, "a list of drives that cannot be read",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Drives are numbers from 1, or channel:id pairs in which a zero is written 0, between "
     "commas. There are no ranges; ALL stands alone and for an array only:"
     "\n  Array.A = 1,2,3"
     "\n  Array.B = ALL"},
    {"ZX105", error, zolex, "drive numbers and channel:id pairs in one list",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Name all drives of a list in one way. Pairs name the same slots when a drive is "
     "missing, numbers do not:"
     "\n  Array.A = 1:0,1:1"},
    {"ZX106", error, zolex, "a logical drive that cannot be read",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "It is array:size:level, or array:size:level:cache; Logical_Defaults has no array. The "
     "array is one that the policy has. Sizes are 1% to 100%, a number of MB, or FILL; "
     "levels are 0 1 1E 5 5E 5EE 6 10 50 60 VOLUME and AUTO; the cache is ON, OFF or AUTO:"
     "\n  Logical.1 = A:50%:5:ON"},
    {"ZX107", error, zolex, "a gap in the arrays or logical drives",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Arrays are Array.A, Array.B and so on, logical drives Logical.1, Logical.2 and so on, "
     "with none left out. Array_Mode = CUSTOM needs Array.A, and Logical_Mode = CUSTOM needs"
     " Logical.1."},
    {"ZX108", error, zolex, "an array after one that takes all drives",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "ALL takes the drives that no array before it has: it comes last."
     "\n  Array.A = 1,2"
     "\n  Array.B = ALL"},
    {"ZX109", error, zolex, "RAID 5E or 5EE beside another logical drive",
     "zolex refuses the whole file, exit code 5, and no controller is configured. With /r in"
     " the same command the arrays are erased before the file is read.",
     "Give it an array of its own; the levels 5E and 5EE keep room for a spare on all of it."},
    {"ZX110", warning, nobody, "more than the whole array is given away",
     "zolex plans it as it stands. The utility refuses the logical drive that finds no room,"
     " exit code 11, when those before it are made already. Sizes in MB are held against the "
     "drives with --machine.",
     "Percentages are of the whole array and together at most 100%. FILL takes all that is "
     "left, so it comes last:"
     "\n  Logical.1 = A:40%:5"
     "\n  Logical.2 = A:FILL:5"},
    {"ZX111", error, zolex, "blanks beside a colon",
     "zolex trims blanks beside commas, and none beside colons: they are a part of the "
     "field. Where it refuses such a field, it refuses the file, exit code 5. A machine type"
     " or serial number with a blank before it is accepted and matches nothing: the "
     "controller is skipped, exit code 0. That is a warning.",
     "Write the fields without blanks:"
     "\n  AppliesTo.1 = m:8837,c:1"
     "\n  Logical.1 = A:50%:5"},
    {"ZX112", error, zolex, "Drives.<x> that cannot be read",
     "No drives are chosen, and nothing is planned. zolex refuses every file with Drives.<x>, exit "
     "code 5; zolexctl convert makes one of it that zolex takes.",
     "Say how many and what they are, or name them. Letter case makes no difference; all words are "
     "in zolex-policies(5):"
     "\n  Drives.A = 2 x SSD <500GB"
     "\n  Drives.B = rest of one size"
     "\n  Drives.C = slots 32:0,32:1"
     "\n  Drives.D = serials 3LQ2A000,3LQ2A001"},
    {"ZX113", error, zolex, "Spares that cannot be read",
     "No hot spares are chosen, and nothing is planned. zolex refuses every file with Spares, exit "
     "code 5.",
     "Say how many, and the arrays that each must be able to stand in for, or name the drives:"
     "\n  Spares = 1"
     "\n  Spares = 1 covering A and 2 covering B,C"
     "\n  Spares = slots 32:7"},
    {"ZX114", error, zolex, "Level.<x> that cannot be read",
     "No level is chosen, and nothing is planned. zolex refuses every file with Level.<x>, exit "
     "code 5.",
     "Name RAID levels by preference; the first that the controller has and that takes so many "
     "drives is used:"
     "\n  Level.B = 6 else 5 else 1"},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup1() noexcept {
    return rows;
}

} // namespace zolex::companion
