#pragma once

#include "foundation/Fault.h"
#include "show/FaultTexts.h"

#include <optional>
#include <vector>

/// The texts of the faults of each floor; nothing for a kind of another floor.
namespace zolex::show {

[[nodiscard]] std::optional<std::vector<FaultText>> inventoryFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> planningFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> policyFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> commandFaultTexts(const Fault& fault);

} // namespace zolex::show
