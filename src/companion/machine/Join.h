#pragma once

#include "companion/facts/Facts.h"
#include "companion/machine/Snapshot.h"
#include "model/Configuration.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zolex {
class RAIDController;
}

namespace zolex::companion {

/// The location of a position in policies, as the utility of the controller's type names it.
[[nodiscard]] std::string locationOf(const RAIDController& controller, DrivePosition position);

/// The drives of a controller: those that policies can name first, in the order of their numbers,
/// which are those that planning counts; then the others in the order of the listings. A drive that
/// the facts do not tell has what the record of zolex tells.
[[nodiscard]] std::vector<MachineDrive> joinDrives(const RAIDController& controller,
                                                   const Facts& facts);

/// The arrays that logical drives lie on, in the order of the logical drives. Letters are those of
/// the utility where it letters its arrays, else "A" and on in this order.
[[nodiscard]] std::vector<MachineArray> joinArrays(const Facts& facts);
/// "A" to "Z", "AA", "AB", ...
[[nodiscard]] std::string arrayLetters(std::size_t index);

/// Joins a controller's record and facts: drives, arrays, and what is to be said of drives that
/// have no number.
void join(const RAIDController& controller, ControllerSnapshot& snapshot);

} // namespace zolex::companion
