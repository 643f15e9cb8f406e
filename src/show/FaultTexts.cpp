#include "show/FaultTexts.h"

namespace zolex::show {

std::vector<FaultText> faultTexts(const Fault& /*fault*/) {
    return {};
}

} // namespace zolex::show
