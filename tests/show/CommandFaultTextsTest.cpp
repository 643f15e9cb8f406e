#include "support/FaultTextRows.h"

namespace zolex::show {
namespace {

using Place = FaultText::Place;
using test::FaultTextRow;

TEST(CommandFaultTexts, EveryKindHasItsText) {
    // clang-format off
    const FaultTextRow rows[] = {
        {FaultKind::typeWithoutGenerator, Place::errorBlock,
         "Internal error.  Controller type not found:  Model-1"},
        {FaultKind::layoutWithoutArray, Place::errorBlock,
         "Each controller must have at least one array.\n"
         "Could not configure Model-1, controller 3.\n"},
        {FaultKind::arrayWithoutLogicalDrive, Place::errorBlock,
         "Each array must have at least one logical drive.\n"
         "Could not configure Model-1, controller 3.\n"},
        {FaultKind::secondLogicalDrive, Place::errorBlock,
         "Each array must have at least one logical drive.\n"
         "Could not configure Model-1, controller 3.\n"},
        {FaultKind::oneLogicalDriveOnly, Place::errorBlock,
         "Error in Policy.%d:  Only one logical drive may be created per array on Model-1 "
         "controllers.\n"},
        {FaultKind::fillOnly, Place::errorBlock,
         "Error in Policy.%d:  You may only specify FILL or 100% for 'size' on Model-1 "
         "controllers.\n"},
        {FaultKind::hotspareBesideMirror, Place::errorBlock,
         "Error in Policy.%d:  Hot-spare drives are not supported with mirroring on Model-1 "
         "controllers.\n"},
        {FaultKind::oneHotspareOnly, Place::errorBlock,
         "Error in Policy.%d:  You may only create one hot-spare drive on Model-1 controllers.\n"},
        {FaultKind::levelWithoutSpans, Place::output, "Invalid RAID level specified=8\n"},
        {FaultKind::hotspareOutsidePositions, Place::errorBlock,
         "An internal error has occurred.\nController=Model-1\n"},
    };
    // clang-format on
    Fault fault;
    fault.place.section = "Policy.%d";
    fault.place.model = "Model-1";
    fault.place.controller = 3;
    fault.place.array = 1;
    fault.number = 8;
    test::expectFaultTexts(rows, fault);
}

} // namespace
} // namespace zolex::show
