#pragma once

#include "companion/families/Family.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zolex::companion {

/// How a RAID level lies on a number of drives.
struct SpanChoice {
    std::size_t drivesPerSpan = 0; ///< of a level with spans; 0: one span, as the level has it
    std::string fault; ///< why it does not go: "RAID 5 takes 3 drives or more"; or empty
    std::string help;
};

/// "RAID 10" of "RAID10"; "a volume" of "None".
[[nodiscard]] std::string levelWords(std::string_view raidType);

/// The spans of a level over so many drives: pairs for RAID 10, or the next larger even number
/// where that would be more spans than the controller takes; for RAID 50 and 60 as few as divide
/// evenly. `wanted` is what the policy says; 0: nothing.
[[nodiscard]] SpanChoice chooseSpans(std::string_view raidType, std::size_t drives,
                                     std::size_t wanted, const FamilyLimits& limits);

} // namespace zolex::companion
