#pragma once

#include "companion/families/Family.h"
#include "companion/machine/Snapshot.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zolex::companion {

/// The snapshot of a controller that a family tells of. Its drives are numbered by enclosure and
/// slot, whatever their state: a drive that fails shifts no number. Channels in policies are the
/// enclosures in the order of their numbers, from 1; drives in none have the first.
[[nodiscard]] ControllerSnapshot familySnapshot(const Family& family, FamilyController controller,
                                                std::int32_t number);

/// Which of the usual names of the family's programs the program of this path has: "perccli64" of
/// "C:\\tools\\PERCCLI64.EXE"; empty: none.
[[nodiscard]] std::string usualName(const Family& family, std::string_view path);

/// What a family says, as a finding of the machine.
[[nodiscard]] Finding familyFinding(const FamilyFinding& told);

} // namespace zolex::companion
