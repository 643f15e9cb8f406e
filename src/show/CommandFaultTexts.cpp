#include "show/FloorFaultTexts.h"

namespace zolex::show {

std::optional<std::vector<FaultText>> commandFaultTexts(const Fault& fault) {
    const char* policy = fault.place.section.c_str();
    const char* model = fault.place.model.c_str();
    switch (fault.kind) {
    case FaultKind::typeWithoutGenerator:
        return errorBlock(formatText("Internal error.  Controller type not found:  %s", model));
    case FaultKind::layoutWithoutArray:
        return errorBlock(formatText("Each controller must have at least one array.\n"
                                     "Could not configure %s, controller %d.\n",
                                     model, fault.place.controller));
    case FaultKind::arrayWithoutLogicalDrive:
    case FaultKind::secondLogicalDrive:
        return errorBlock(formatText("Each array must have at least one logical drive.\n"
                                     "Could not configure %s, controller %d.\n",
                                     model, fault.place.controller));
    case FaultKind::oneLogicalDriveOnly:
        return errorBlock(formatText("Error in %s:  Only one logical drive may be created per "
                                     "array on %s controllers.\n",
                                     policy, model));
    case FaultKind::fillOnly:
        return errorBlock(formatText("Error in %s:  You may only specify FILL or 100%% for 'size' "
                                     "on %s controllers.\n",
                                     policy, model));
    case FaultKind::hotspareBesideMirror:
        return errorBlock(formatText("Error in %s:  Hot-spare drives are not supported with "
                                     "mirroring on %s controllers.\n",
                                     policy, model));
    case FaultKind::oneHotspareOnly:
        return errorBlock(formatText("Error in %s:  You may only create one hot-spare drive on %s "
                                     "controllers.\n",
                                     policy, model));
    case FaultKind::levelWithoutSpans:
        return output(formatText("Invalid RAID level specified=%d\n", fault.number));
    case FaultKind::hotspareOutsidePositions:
        return errorBlock(formatText("An internal error has occurred.\n"
                                     "Controller=%s\n",
                                     model));
    default:
        return std::nullopt;
    }
}

} // namespace zolex::show
