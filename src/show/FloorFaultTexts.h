#pragma once

#include "show/FaultTexts.h"

#include <optional>
#include <vector>

/// The prescribed texts of the faults of one floor; nothing for a fault of another.
namespace zolex::show {

[[nodiscard]] std::optional<std::vector<FaultText>> commandFaultTexts(const Fault& fault);

} // namespace zolex::show
