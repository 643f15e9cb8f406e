#include "show/FloorFaultTexts.h"

#include <utility>

namespace zolex::show {

std::optional<std::vector<FaultText>> commandLineFaultTexts(const Fault& fault) {
    const char* wanted = fault.wanted.c_str();
    const char* file = fault.place.file.c_str();
    switch (fault.kind) {
    case FaultKind::parameterUnknown:
        return errorBlock("Unknown parameter.\n");
    case FaultKind::switchesInvalid:
        return errorBlock("Internal error processing command-line switches.\n");
    case FaultKind::parameterFileMissing:
        return errorStream(formatText("Could not open parameter file:  %s\n", file));
    case FaultKind::parameterFileUnreadable:
        return errorBlock(formatText("Could not read parameter file:  %s\n", file));
    case FaultKind::verbosityUnsupported:
        return errorBlock(formatText("Verbose level not supported:  %s\n", wanted));
    case FaultKind::parameterSyntax:
        return errorBlock(formatText("Improper syntax for the following parameter:  %s\n", wanted));
    case FaultKind::parameterMissing:
        return errorBlock(formatText("Required parameter missing:  %s\n", wanted));
    case FaultKind::parametersConflict:
        return errorBlock(
            formatText("The following parameters cannot be used in combination:  %s\n", wanted));
    default:
        return std::nullopt;
    }
}

} // namespace zolex::show
