#pragma once

#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Policies whose drives are told by what they are: `Drives.A = 2 x SSD <500GB`. zolex refuses a
/// file that holds such entries; here they are bound to the drives of one controller, which makes a
/// file that it takes.
namespace zolex::companion {

/// What is wrong with an entry, or with what it asks of this controller.
struct BindingFault {
    std::string code;        ///< rule: ZX112 to ZX114, ZX311, ZX312; ZX313: not on this controller
    std::string keyword;     ///< "Drives.A"
    std::int32_t line = 0;   ///< from 1
    std::int32_t column = 0; ///< from 1, in bytes: of the word at fault
    std::int32_t endColumn = 0;
    std::string what;
    std::string help; ///< may be empty
};

/// One drive that an entry was bound to, and why: "by-slot", "by-serial", "by-kind", "rest",
/// "spare".
struct BoundDrive {
    std::string location;
    std::string code;
    std::string why; ///< for people: "SSD, 480 GB: the first of 2"
};

struct Binding {
    std::string keyword; ///< "Drives.A", "Spares", "Level.B"
    std::int32_t line = 0;
    std::string value;   ///< as it is written
    std::string becomes; ///< "Array.A = 1,2"
    std::vector<BoundDrive> drives;
    std::string why; ///< of Level: "6 takes 4 drives or more, and the array has 3"
};

struct BoundPolicies {
    std::string text;                 ///< a policies file that zolex takes
    std::vector<std::int32_t> lineOf; ///< of the file as it is written, for each line of `text`
    std::vector<Binding> bindings;
    std::vector<BindingFault> faults; ///< with one, `text` is not to be used
    /// The arrays, by letter, that shall have no hot spare: Spares says that it covers others.
    std::string uncovered;
};

/// Whether some policy holds an entry that only zolexctl knows.
[[nodiscard]] bool hasKindEntries(std::string_view text);

/// The file with something in the place of such entries that zolex reads (`Array.A = 999`), each
/// line where it was: what it takes to find the policy of a controller, and nothing else.
[[nodiscard]] std::string withoutKindEntries(std::string_view text);

/// The faults of form of all such entries of the file, which need no machine.
[[nodiscard]] std::vector<BindingFault> kindEntryFaults(std::string_view text);

/// How drives are looked at.
struct BindingTerms {
    /// Failed and missing members of arrays that stand count as good, where they have a position:
    /// to hold what stands against what is wanted. Otherwise no drive is taken that is not good.
    bool failedMembersStay = false;
};

/// Binds the entries of one policy (its index among the sections of the file) to the drives of a
/// controller, as channel:id, which no drive that comes or goes can shift. Entries of the other
/// policies are put aside as withoutKindEntries does it. Equal arguments give equal texts. Without
/// faults, `text` is a file that zolex reads.
[[nodiscard]] BoundPolicies bindPolicy(std::string_view text, std::size_t policy,
                                       const ControllerSnapshot& controller,
                                       const RAIDController& record,
                                       const BindingTerms& terms = {});

} // namespace zolex::companion
