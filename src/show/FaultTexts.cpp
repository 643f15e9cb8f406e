#include "show/FaultTexts.h"

#include "show/FloorFaultTexts.h"

#include <utility>

namespace zolex::show {

std::vector<FaultText> faultTexts(const Fault& fault) {
    if (auto texts = commandFaultTexts(fault)) {
        return *std::move(texts);
    }
    return {};
}

} // namespace zolex::show
