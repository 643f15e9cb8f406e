#pragma once

#include "foundation/Fault.h"
#include "show/FaultTexts.h"

#include <optional>
#include <utility>
#include <vector>

/// The texts of the faults of each floor; nothing for a kind of another floor.
namespace zolex::show {

[[nodiscard]] std::optional<std::vector<FaultText>> inventoryFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> planningFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> policyFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> commandFaultTexts(const Fault& fault);
[[nodiscard]] std::optional<std::vector<FaultText>> commandLineFaultTexts(const Fault& fault);

// Texts of one piece.
[[nodiscard]] inline std::vector<FaultText> errorBlock(CString text) {
    return {{FaultText::Place::errorBlock, std::move(text), level::ungated}};
}
[[nodiscard]] inline std::vector<FaultText> output(CString text) {
    return {{FaultText::Place::output, std::move(text), level::ungated}};
}
[[nodiscard]] inline std::vector<FaultText> errorStream(CString text) {
    return {{FaultText::Place::error, std::move(text), level::ungated}};
}

} // namespace zolex::show
