#include "support/FaultTextRows.h"

namespace zolex::show {
namespace {

using Place = FaultText::Place;
using test::FaultTextRow;

TEST(ListingFaultTexts, EveryKindHasItsText) {
    // clang-format off
    const FaultTextRow rows[] = {
        {FaultKind::typeWithoutReader, Place::errorBlock, "An internal error has occurred.\n"},
        {FaultKind::listingMissing, Place::errorBlock,
         "Could not read a config file for the following controller:  Model-1"},
        {FaultKind::listingFormat, Place::errorBlock,
         "Format error in config file for the following controller:  Model-1"},
        {FaultKind::listingPositionInvalid, Place::errorBlock,
         "Drive position out of range for controller Model-1:  channel=5, id=36\n"},
        {FaultKind::listingSizeInvalid, Place::errorBlock,
         "Drive size out of range for controller Model-1:  channel=5, id=36, size=-8 MB\n"},
        {FaultKind::listingTooManyArrays, Place::errorBlock,
         "Controller Model-1 has more than 16 arrays; the rest is not captured.\n"},
        {FaultKind::listingTooManyLogicalDrives, Place::errorBlock,
         "Controller Model-1 has more than 8 logical drives; the rest is not captured.\n"},
        {FaultKind::listingTooManyHotspares, Place::errorBlock,
         "Controller Model-1 has more than 8 hot-spare drives; the rest is not captured.\n"},
        {FaultKind::listingTooManyMembers, Place::errorBlock,
         "Controller Model-1 has more than 32 drives in an array; the rest is not captured.\n"},
        {FaultKind::listingDrivesMissing, Place::errorBlock,
         "Controller Model-1 has a logical drive with missing drives; its configuration is not "
         "captured.\n"},
        {FaultKind::listingLevelUnsupported, Place::errorBlock,
         "ZOLEX cannot create RAID-10 or RAID-50 drives on this controller type.\n"},
        {FaultKind::listingLevelUnknown, Place::output,
         "Error: Could not recognize RAID level:  %d\n"},
        {FaultKind::listingStripeUnknown, Place::output,
         "Error:  Could not recognize stripe size:  %d\n"},
        {FaultKind::listingChannelMissing, Place::output,
         "Enclosure/Channel not found. channel<0\n"},
        {FaultKind::listingIdMissing, Place::output, "SCSIID not found. scsiID<0\n"},
        {FaultKind::listingSlotMissing, Place::output, "Slot not found. slot<0\n"},
    };
    // clang-format on
    Fault fault;
    fault.place.model = "Model-1";
    fault.place.channel = 5;
    fault.place.id = 36;
    fault.wanted = "%d";
    fault.number = -8;
    test::expectFaultTexts(rows, fault);
}

} // namespace
} // namespace zolex::show
