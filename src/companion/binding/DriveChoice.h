#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/binding/KindEntries.h"
#include "companion/binding/KindFile.h"
#include "companion/machine/Snapshot.h"
#include "model/RAIDController.h"

#include <cstddef>
#include <cstdint>
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

/// Chooses: named drives first, then counted ones and `all` by letter, then hot spares, then what
/// is the rest. No drive is chosen twice.
[[nodiscard]] DriveChoice chooseDrives(const KindSection& section,
                                       const ControllerSnapshot& controller,
                                       const RAIDController& record, const BindingTerms& terms);

} // namespace zolex::companion
