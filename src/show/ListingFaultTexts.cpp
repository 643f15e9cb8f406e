#include "show/FloorFaultTexts.h"
#include "show/TextPieces.h"

namespace zolex::show {

namespace {

std::vector<FaultText> tooMany(const Fault& fault, const char* what) {
    return errorBlock(formatText("Controller %s has more than %s; the rest is not captured.\n",
                                 fault.place.model.c_str(), what));
}

} // namespace

std::optional<std::vector<FaultText>> listingFaultTexts(const Fault& fault) {
    const FaultPlace& place = fault.place;
    const char* model = place.model.c_str();
    switch (fault.kind) {
    case FaultKind::typeWithoutReader:
        return errorBlock("An internal error has occurred.\n");
    case FaultKind::listingMissing:
        return errorBlock(
            formatText("Could not read a config file for the following controller:  %s", model));
    case FaultKind::listingFormat:
        return errorBlock(
            formatText("Format error in config file for the following controller:  %s", model));
    case FaultKind::listingPositionInvalid:
        return errorBlock(
            formatText("Drive position out of range for controller %s:  channel=%d, id=%d\n", model,
                       place.channel, place.id));
    case FaultKind::listingSizeInvalid:
        return errorBlock(formatText(
            "Drive size out of range for controller %s:  channel=%d, id=%d, size=%d MB\n", model,
            place.channel, place.id, fault.number));
    case FaultKind::listingTooManyArrays:
        return tooMany(fault, "16 arrays");
    case FaultKind::listingTooManyLogicalDrives:
        return tooMany(fault, "8 logical drives");
    case FaultKind::listingTooManyHotspares:
        return tooMany(fault, "8 hot-spare drives");
    case FaultKind::listingTooManyMembers:
        return tooMany(fault, "32 drives in an array");
    case FaultKind::listingDrivesMissing:
        return errorBlock(formatText("Controller %s has a logical drive with missing drives; its "
                                     "configuration is not captured.\n",
                                     model));
    case FaultKind::listingLevelUnsupported:
        return errorBlock(
            "ZOLEX cannot create RAID-10 or RAID-50 drives on this controller type.\n");
    case FaultKind::listingLevelUnknown:
        return output(
            formatText("Error: Could not recognize RAID level:  %s\n", fault.wanted.c_str()));
    case FaultKind::listingStripeUnknown:
        return output(
            formatText("Error:  Could not recognize stripe size:  %s\n", fault.wanted.c_str()));
    case FaultKind::listingChannelMissing:
        return output("Enclosure/Channel not found. channel<0\n");
    case FaultKind::listingIdMissing:
        return output("SCSIID not found. scsiID<0\n");
    case FaultKind::listingSlotMissing:
        return output("Slot not found. slot<0\n");
    default:
        return std::nullopt;
    }
}

} // namespace zolex::show
