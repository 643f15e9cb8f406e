#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/binding/KindEntries.h"
#include "companion/binding/KindFile.h"
#include "companion/machine/Snapshot.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zolex::companion {

/// A drive that an entry got.
struct ChosenDrive {
    const MachineDrive* drive = nullptr;
    std::string code; ///< as in BoundDrive
    std::string why;
};

/// Which drives each entry of a policy gets on one controller.
struct DriveChoice {
    std::map<char, std::vector<ChosenDrive>> arrays; ///< by letter
    std::vector<ChosenDrive> spares;
    std::vector<BindingFault> faults;
};

/// What the planner of a controller makes of its drives.
struct DriveUse {
    std::function<bool(const MachineDrive& drive)> isUsable;
    std::function<std::uint64_t(const MachineDrive& drive)> bytes; ///< 0: not known
    /// What to do about one that is not usable; may be empty.
    std::function<std::string(const MachineDrive& drive)> whatToDo{};
    std::size_t mostDrives = mostKindDrives; ///< of an array
};

/// Chooses: named drives first, then counted ones and `all` by letter, then hot spares, then what
/// is the rest. No drive is chosen twice.
[[nodiscard]] DriveChoice chooseDrives(const KindSection& section,
                                       const ControllerSnapshot& controller, const DriveUse& use);

} // namespace zolex::companion
