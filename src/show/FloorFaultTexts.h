#pragma once

#include "foundation/Fault.h"
#include "show/FaultTexts.h"

#include <optional>
#include <vector>

/// The texts of faults, floor by floor; nothing for a fault of another floor.
namespace zolex::show {

[[nodiscard]] std::optional<std::vector<FaultText>> planningFaultTexts(const Fault& fault);

} // namespace zolex::show
