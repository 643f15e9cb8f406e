#include "policies/PolicyFaults.h"

namespace zolex {

bool PolicyFaults::add(FaultKind kind, const PolicySpot& spot, std::string_view wanted,
                       std::string_view possible) {
    Fault& fault = list_.emplace_back();
    fault.kind = kind;
    fault.place.file = file_;
    fault.place.line = spot.line;
    fault.place.column = spot.column;
    fault.place.section = spot.section;
    fault.place.keyword = spot.keyword;
    fault.number = spot.number;
    fault.wanted = wanted;
    fault.possible = possible;
    report_.fault(fault);
    return false;
}

} // namespace zolex
