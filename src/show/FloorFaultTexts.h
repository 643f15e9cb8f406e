#pragma once

#include "foundation/Fault.h"
#include "show/FaultTexts.h"

#include <optional>
#include <vector>

/// The texts of the faults of each floor; nothing for a kind of another floor.
namespace zolex::show {

[[nodiscard]] std::optional<std::vector<FaultText>> policyFaultTexts(const Fault& fault);

} // namespace zolex::show
