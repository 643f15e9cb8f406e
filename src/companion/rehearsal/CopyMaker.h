#pragma once

#include "companion/rehearsal/VirtualCopy.h"

#include <cstdint>
#include <optional>
#include <string>

namespace zolex::companion {

/// A copy that reads back as its original, or why there is none.
struct MadeCopy {
    std::optional<VirtualCopy> copy;
    Facts facts;         ///< captured of the copy
    std::string because; ///< for people: "LD 0 has a RAID level that is not known, \"7\""
};

/// Makes a virtual copy of the controller: its drives, their states, its logical drives and spares.
/// Where the listings leave open what the controller is (the generation of its utility, how it
/// names members), each kind is tried. What is made is captured by the original's own commands:
/// only a copy with the same drives and the same layout counts. The type is that of zolex; it is
/// not looked at for controllers that zolex does not know.
[[nodiscard]] MadeCopy copyController(const ControllerSnapshot& original,
                                      std::int32_t controllerType);

} // namespace zolex::companion
