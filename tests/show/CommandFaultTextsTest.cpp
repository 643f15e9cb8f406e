#include "show/FaultTexts.h"

#include <gtest/gtest.h>

#include <vector>

namespace zolex::show {
namespace {

using Place = FaultText::Place;

TEST(CommandFaultTexts, EveryKindHasItsText) {
    struct Row {
        FaultKind kind;
        Place place;
        const char* text;
    };
    // clang-format off
    const Row rows[] = {
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
    for (const Row& row : rows) {
        Fault fault;
        fault.kind = row.kind;
        fault.place.section = "Policy.%d";
        fault.place.model = "Model-1";
        fault.place.controller = 3;
        fault.place.array = 1;
        fault.number = 8;
        const std::vector<FaultText> texts = faultTexts(fault);
        ASSERT_EQ(texts.size(), 1U) << row.text;
        EXPECT_EQ(texts[0].place, row.place) << row.text;
        EXPECT_EQ(texts[0].text.view(), row.text);
        EXPECT_EQ(texts[0].level, level::ungated) << row.text;
    }
}

} // namespace
} // namespace zolex::show
