#include "show/FloorFaultTexts.h"

namespace zolex::show {

namespace {

using Texts = std::vector<FaultText>;

CString missingText(const FaultPlace& place) {
    return formatText("ReadString for section='%s', item='%s' returned value=%s\n",
                      place.section.c_str(), place.keyword.c_str(), "");
}

CString missingNumber(const Fault& fault, const char* what) {
    return formatText("ReadInteger for section='%s', item='%s' returned Drive %s=%d\n",
                      fault.place.section.c_str(), fault.place.keyword.c_str(), what, fault.number);
}

} // namespace

std::optional<Texts> inventoryFaultTexts(const Fault& fault) {
    const FaultPlace& place = fault.place;
    switch (fault.kind) {
    case FaultKind::childPipe:
        return output("CreatePipe Faield:Tool::Tool()\n");
    case FaultKind::childStillRunning:
        return output(formatText("\n### Process %s has failed to execute within the five minute "
                                 "limit.\nProcess cancelled.\n",
                                 fault.wanted.c_str()));
    case FaultKind::inventoryUnreadable:
        return errorBlock(formatText("Could not read inventory file:  %s\n", place.file.c_str()));
    case FaultKind::inventoryWithoutControllers:
        return errorBlock("No Controllers Found in Inventory File\n");
    case FaultKind::inventoryTooManyControllers:
        return errorBlock("More than 36 controllers found in Inventory File\n");
    case FaultKind::inventoryModelMissing:
    case FaultKind::inventorySizeMissing:
        return output(missingText(place));
    case FaultKind::inventoryModelUnknown:
        return errorBlock("Non-supported Controller Found in Inventory File\n");
    case FaultKind::inventoryChannelMissing:
        return output(missingNumber(fault, "channel"));
    case FaultKind::inventoryIdMissing:
        return output(missingNumber(fault, "id"));
    case FaultKind::inventoryPositionInvalid:
        return errorBlock(
            formatText("Drive position out of range in Inventory File:  channel=%d, id=%d\n",
                       place.channel, place.id));
    case FaultKind::definitionUnreadable:
        return errorBlock(
            formatText("Could not read controller-definition file:  %s\n", place.file.c_str()));
    case FaultKind::definitionMissing:
        return errorStream(
            formatText("Could not open controller-definition file:  %s\n", place.file.c_str()));
    case FaultKind::tooManyControllers:
        return errorBlock("More than 36 RAID controllers found; only the first 36 are used.\n");
    case FaultKind::detectorRunnerMissing:
        return output("ZOLEXSupport.gatherHardwareInfo: util is NULL\n");
    case FaultKind::detectorNotRun:
        return output("ZOLEXSupport.gatherHardwareInfo:Execution failed.\n");
    case FaultKind::detectorFailed:
        return output(
            formatText("ZOLEXSupport.gatherHardwareInfo: Return code is %d.\n", fault.number));
    default:
        return std::nullopt;
    }
}

} // namespace zolex::show
