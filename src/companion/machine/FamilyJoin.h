#pragma once

#include "companion/families/Family.h"
#include "companion/machine/Snapshot.h"

#include <cstdint>

namespace zolex::companion {

/// The snapshot of a controller that a family tells of. Its drives are numbered by enclosure and
/// slot, whatever their state: a drive that fails shifts no number. Channels in policies are the
/// enclosures in the order of their numbers, from 1; drives in none have the first.
[[nodiscard]] ControllerSnapshot familySnapshot(const Family& family, FamilyController controller,
                                                std::int32_t number);

/// What a family says, as a finding of the machine.
[[nodiscard]] Finding familyFinding(const FamilyFinding& told);

} // namespace zolex::companion
