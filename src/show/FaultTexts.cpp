#include "show/FaultTexts.h"

#include "show/FloorFaultTexts.h"

namespace zolex::show {

std::vector<FaultText> faultTexts(const Fault& fault) {
    if (auto texts = planningFaultTexts(fault)) {
        return *std::move(texts);
    }
    return {};
}

} // namespace zolex::show
