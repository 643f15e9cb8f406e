#pragma once

#include "foundation/CString.h"

#include <cstdint>

namespace zolex {

/// What is wrong. Each kind has one prescribed text, which show/ makes from the record. The groups
/// follow the floors that find them.
enum class FaultKind : std::int32_t {
    none,

    // Children
    childPipe,         ///< the pipe for its output could not be made; wanted: the command line
    childStillRunning, ///< it had not ended at the limit; wanted: the command line

    // Inventory
    inventoryUnreadable,         ///< place: file
    inventoryWithoutControllers, ///< number: the count that the file gives
    inventoryTooManyControllers, ///< number: the count that the file gives
    inventoryModelMissing,       ///< place: section, keyword
    inventoryModelUnknown,       ///< place: section, keyword; wanted: the model
    inventoryChannelMissing,     ///< place: section, keyword; number: the channel read
    inventoryIdMissing,          ///< place: section, keyword; number: the id read
    inventorySizeMissing,        ///< place: section, keyword
    inventoryPositionInvalid,    ///< place: section, channel, id
    definitionUnreadable,        ///< place: file
    definitionMissing,           ///< place: file; the run goes on
    tooManyControllers,          ///< those after the 36th are left out
    detectorRunnerMissing,       ///< no runner for the hardware detector
    detectorNotRun,              ///< the hardware detector could not be run
    detectorFailed,              ///< number: its exit code

    // Policies

    // Listings
    typeWithoutReader,           ///< number: the type
    listingMissing,              ///< there is none, or no reader for it
    listingFormat,               ///< it is not the utility's
    listingPositionInvalid,      ///< place: channel, id; the drive is left out
    listingSizeInvalid,          ///< place: channel, id; number: size in MB; the drive is left out
    listingTooManyArrays,        ///< those beyond the limit are left out
    listingTooManyLogicalDrives, ///< the same
    listingTooManyHotspares,     ///< the same
    listingTooManyMembers,       ///< the same, of an array's drives
    listingDrivesMissing,        ///< of a logical drive; the layout is left out
    listingLevelUnsupported,     ///< wanted: the RAID level
    listingLevelUnknown,         ///< wanted: the RAID level
    listingStripeUnknown,        ///< wanted: the stripe size
    listingChannelMissing,       ///< a drive without channel or enclosure
    listingIdMissing,            ///< a drive without id
    listingSlotMissing,          ///< a drive without slot

    // Planning

    // Command lines of a utility
    typeWithoutGenerator, ///< number: the type
    layoutWithoutArray,
    arrayWithoutLogicalDrive,
    secondLogicalDrive,  ///< an array has two where the utility makes one
    oneLogicalDriveOnly, ///< the same, told with the policy's name
    fillOnly,            ///< number: size in MB, or -p for p percent
    hotspareBesideMirror,
    oneHotspareOnly,          ///< number: hot spares
    levelWithoutSpans,        ///< number: RAID level code
    hotspareOutsidePositions, ///< the utility cannot be told the drive

    // Command line of the program
};

/// Where a fault is. Fields that say nothing for its kind are empty, 0 or -1.
struct FaultPlace {
    CString file{};              ///< name as it was given
    std::int32_t line = 0;       ///< from 1
    CString section{};           ///< name of the policy, or of another section, without brackets
    CString keyword{};           ///< entry of the section
    CString model{};             ///< model name of the controller
    std::int32_t controller = 0; ///< number of the controller, from 1
    std::int32_t array = -1;     ///< index of the array, from 0
    std::int32_t channel = -1;   ///< position of a drive
    std::int32_t id = -1;

    friend bool operator==(const FaultPlace&, const FaultPlace&) = default;
};

/// One fault as a value.
struct Fault {
    FaultKind kind = FaultKind::none;
    FaultPlace place{};
    CString wanted{};        ///< the text that was given or asked for
    std::int32_t number = 0; ///< the number that was given or asked for
    CString possible{};      ///< what could be, in words; empty when there is no list

    friend bool operator==(const Fault&, const Fault&) = default;
};

} // namespace zolex
