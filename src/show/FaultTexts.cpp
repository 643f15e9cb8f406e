#include "show/FaultTexts.h"

#include "show/FloorFaultTexts.h"

#include <array>
#include <optional>

namespace zolex::show {

std::vector<FaultText> faultTexts(const Fault& fault) {
    static constexpr std::array floors = {
        inventoryFaultTexts, policyFaultTexts,      planningFaultTexts,
        commandFaultTexts,   commandLineFaultTexts,
    };
    for (const auto& floor : floors) {
        if (std::optional<std::vector<FaultText>> texts = floor(fault)) {
            return *texts;
        }
    }
    return {};
}

} // namespace zolex::show
