#pragma once

#include "companion/exchange/IronicDocument.h"
#include "companion/findings/Finding.h"
#include "companion/lint/Models.h"
#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// On which drives of a controller the logical disks of a document lie; for the files of this
/// folder alone.
namespace zolex::companion {

/// One drive of an array.
struct IronicMember {
    std::string listed;   ///< as the policy lists it: "3", or "1:2"
    std::string location; ///< "32:2"; "drive 3" where no machine is known
    friend bool operator==(const IronicMember& a, const IronicMember& b) {
        return a.listed == b.listed;
    }
};

/// One array and the logical disks on it.
struct IronicArray {
    std::vector<IronicMember> members;
    std::vector<std::size_t> disks; ///< indices, those that take the rest of the space last
};

/// A controller that the document means.
struct IronicTarget {
    std::string model;                           ///< empty: not told
    std::int32_t number = 0;                     ///< 0: not told
    const ControllerSnapshot* details = nullptr; ///< null: no machine is known
    std::optional<Kind> kind;                    ///< how it is planned, where the model is known
    std::vector<std::size_t> disks;              ///< indices
    std::vector<IronicArray> arrays;             ///< in the order of their first disks

    /// Whether some drive has no number, so that those of the others may be others tomorrow.
    [[nodiscard]] bool numbersAreShaky() const;
};

/// Tells a finding at a property of a logical disk.
using TellIronic =
    std::function<Finding&(std::size_t disk, std::string_view property, std::string_view rule,
                           std::string summary, std::vector<std::string> help)>;

/// Finds the drives that are named, chooses the others, and puts the disks on the same drives into
/// one array. Errors are told; then `arrays` are not to be used.
void placeDisks(IronicTarget& target, const std::vector<IronicDisk>& disks, Models& models,
                const TellIronic& tell);

} // namespace zolex::companion
