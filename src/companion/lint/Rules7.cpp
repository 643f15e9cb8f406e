#include "companion/lint/RuleGroups.h"

#include <array>

namespace zolex::companion {

namespace {

constexpr auto note = Severity::note;
constexpr auto warning = Severity::warning;
constexpr auto error = Severity::error;
constexpr auto nobody = RefusedBy::nobody;
constexpr auto utility = RefusedBy::utility;

/// Group 7, what a machine shows, by id.
// clang-format off
constexpr std::array<Rule, 12> rows = {{
    {"ZX701", error, nobody, "drive numbers are shifted on this machine",
     "A drive has no number: it has failed, is missing, or is outside of what policies can name. "
     "Drives are counted without it, so each number at or behind its place names the next slot. "
     "The arrays are made of other drives than meant, with exit code 0.",
     "Replace the drive first, or name the drives by channel and id, which stay:\n"
     "  Array.A = 1:0,1:1"},
    {"ZX702", error, utility, "a bad drive is taken",
     "A drive that a list names is planned whatever its state. The utility refuses it, or makes "
     "an array that is degraded from the first day.",
     "Replace the drive, or take it out of the list. Where an array is offline do neither: bring "
     "back the drives that left it."},
    {"ZX703", warning, nobody, "a drive with errors is taken",
     "The drive counts media errors, or says itself that it will fail. It works today; under the "
     "load of a rebuild such drives are lost first.",
     "Replace it before the array is made."},
    {"ZX704", warning, nobody, "room of an array that is not used, or unlike drives",
     "Each drive of an array gives as much as the smallest: the rest of the larger ones is not "
     "used by anything, nor is what sizes in MB leave over. SAS beside SATA and SSD beside HDD are as slow as the slower, and some "
     "controllers refuse them.",
     "Put like drives together; zolexctl show tells size and kind of each."},
    {"ZX705", warning, nobody, "all drives of a mirror in one enclosure",
     "There is a second enclosure. When the first loses its power or its cable, both halves of "
     "the mirror are gone.",
     "Take one half from each enclosure:\n  Array.A = 1:0,2:0"},
    {"ZX706", error, utility, "a hot spare that is too small",
     "It is smaller than the smallest drive of an array, so it can rebuild none of that array's. "
     "The utility takes it for other arrays, or refuses it.",
     "Take a drive that is as large as the members."},
    {"ZX707", warning, nobody, "a controller that no policy fits",
     "It is skipped: it keeps what it has, and the run ends with exit code 0 unless it was "
     "started with /e1.",
     "The finding tells for each policy what does not fit."},
    {"ZX708", warning, nobody, "a controller without drives",
     "Nothing can be made on it, and the run ends with exit code 0 unless it was started with "
     "/e3.",
     "Look for a loose cable or a driver that is missing."},
    {"ZX709", note, nobody, "a serial number that says nothing",
     "The firmware tells a placeholder that many machines have, so s: cannot tell this machine "
     "from others, and a policy with s: may be used on the wrong one.",
     "Have the number written into the firmware, or match by m:, t: and d:."},
    {"ZX710", warning, nobody, "drives with a foreign configuration",
     "They come from another server and hold its arrays. zolex /r clears these too, without a "
     "question of its own; without /r the utility refuses the drives.",
     "Make sure that nobody needs what is on them, or take them out."},
    {"ZX711", error, utility, "a drive that the command line does not name",
     "MEGACLI is told enclosure and slot. Where one drive is in no enclosure, zolex names all "
     "members without an enclosure, and hot spares with enclosure 0: other drives are taken than "
     "the policy says, or the utility refuses the command.",
     "Use drives of enclosures alone, or of none alone, and no hot spare that is in none."},
    {"ZX712", note, nobody, "drives that get no job",
     "The policy uses fewer drives than the controller has. They stay free, and nothing says so.",
     "List them in an array or in Hotspares, or leave it so."},
}};
// clang-format on

} // namespace

std::span<const Rule> rulesOfGroup7() noexcept {
    return rows;
}

} // namespace zolex::companion
