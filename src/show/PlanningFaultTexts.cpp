#include "show/FloorFaultTexts.h"
#include "show/TextPieces.h"

namespace zolex::show {

namespace {

constexpr const char* hotspareShortage = "Not enough available drives to allocate hot spares\n";
constexpr const char* arrayShortage =
    "Not enough same size drives to accommodate requested configuration\n";

char arrayLetter(const Fault& fault) {
    return static_cast<char>('A' + fault.place.array);
}

using show::errorBlock;

/// With a line of its own at verbosity 1.
std::vector<FaultText> errorBlock(CString text, const char* shortage) {
    std::vector<FaultText> texts = errorBlock(std::move(text));
    texts.push_back({FaultText::Place::output, shortage, level::shortage});
    return texts;
}

} // namespace

std::optional<std::vector<FaultText>> planningFaultTexts(const Fault& fault) {
    const char* const policy = fault.place.section.c_str();
    const char* const model = fault.place.model.c_str();
    const char* const wanted = fault.wanted.c_str();
    switch (fault.kind) {
    case FaultKind::planMachineUnknown:
        return errorBlock("Could not detect the system machine type or serial number.\n");
    case FaultKind::planControllerTypeUnknown:
        return errorBlock(
            formatText("Internal error.  Controller type not found:  %d", fault.number));
    case FaultKind::planHotspareShortage:
        return errorBlock(formatText("%s, Hotspares -- Not enough drives available to create %d "
                                     "hot-spare drives.\n\t%s controller.\n",
                                     policy, fault.number, model),
                          hotspareShortage);
    case FaultKind::planHotspareDriveMissing:
        return errorBlock(
            formatText("%s, Hotspares -- The following drive does not exist:  %s\n\t%s "
                       "controller.\n",
                       policy, wanted, model),
            hotspareShortage);
    case FaultKind::planTooManyHotspares:
        return errorBlock(formatText(
            "Error in %s -- %s does not support more than 8 hot-spare drives.\n", policy, model));
    case FaultKind::planArrayDriveMissing:
        return errorBlock(
            formatText("%s, Array.%c -- The following drive does not exist:  %s\n\t%s "
                       "controller.\n",
                       policy, arrayLetter(fault), wanted, model),
            arrayShortage);
    case FaultKind::planTooManyArrays:
        return errorBlock(
            formatText("Error in %s -- %s does not support more than 16 arrays.\n", policy, model));
    case FaultKind::planTooManyArrayDrives:
        return errorBlock(formatText(
            "Error in %s -- %s does not support more than 32 drives per array.\n", policy, model));
    case FaultKind::planArrayUnknown:
        return errorBlock(
            formatText("%s -- Invalid array letter specified:  %c\n", policy, arrayLetter(fault)));
    case FaultKind::planRaidLevelUnsupported:
        return errorBlock(formatText(
            "Error in %s -- %s does not support the RAID level specified.\n", policy, model));
    case FaultKind::planRaidLevelDriveCount:
        return errorBlock(
            formatText("Could not use %s to configure %s controller.\nThe number of drives in "
                       "the Array.%c cannot accommodate the RAID level specified.\n",
                       policy, model, arrayLetter(fault)),
            arrayShortage);
    case FaultKind::planTooManyLogicalDrives:
        return errorBlock(formatText(
            "Error in %s -- %s does not support more than 8 logical drives.\n", policy, model));
    case FaultKind::planStripeSizeUnsupported:
        return errorBlock(formatText(
            "Error in %s -- %s does not support the stripe size specified.\n", policy, model));
    default:
        return std::nullopt;
    }
}

} // namespace zolex::show
