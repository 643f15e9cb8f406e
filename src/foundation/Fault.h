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
    inventoryWithoutControllers, ///< place: section, keyword; number: the count that the file gives
    inventoryTooManyControllers, ///< the same
    inventoryModelMissing,       ///< place: section, keyword
    inventoryModelUnknown,       ///< place: section, keyword; wanted: the model; possible: names
    inventoryChannelMissing,     ///< place: section, keyword; number: the channel read
    inventoryIdMissing,          ///< place: section, keyword; number: the id read
    inventorySizeMissing,        ///< place: section, keyword
    inventoryPositionInvalid,    ///< place: section, keyword of the channel, channel, id
    definitionUnreadable,        ///< place: file
    definitionMissing,           ///< place: file; the run goes on
    tooManyControllers,          ///< number: how many are kept; the others are left out
    detectorRunnerMissing,       ///< no runner for the hardware detector
    detectorNotRun,              ///< wanted: the command line of the hardware detector
    detectorFailed,              ///< wanted: the same; number: its exit code

    // Policies. Place: file, line, column and, in a section, section and keyword
    policiesUnreadable,       ///< the file could not be opened or read to its end
    policyLookUpUnreadable,   ///< the file of a look-up could not be opened
    policiesMissing,          ///< the file holds no policy
    policyCharacterInvalid,   ///< a section should begin here; number: newlines before the fault
    policyDeclarationInvalid, ///< a header without "]"; number as above
    policyNameInvalid,        ///< invalid or used before; number as above
    policiesTooMany,          ///< number as above
    policyLineInvalid,        ///< not "keyword = value"; number as above
    policyKeywordInvalid,     ///< number as above
    policyKeywordRepeated,    ///< place: the later one; wanted: the earlier one as written
    policyWithoutAppliesTo,   ///< no entry AppliesTo.1
    policyAppliesToAbsent,    ///< AppliesTo.1 that reads as absent
    policyWordInvalid,        ///< not one of the words of its keyword
    policySpecifierInvalid,   ///< of AppliesTo
    policyControllerNumberInvalid,
    policyScanOrderInvalid,
    policyControllerTypeInvalid,
    policyDriveCountInvalid,
    policyArrayDefaultsInvalid, ///< not "variance:hotspares"
    policyHotspareCountInvalid,
    policyMaxSizeInvalid,
    policyArrayMissing,      ///< Array_Mode = CUSTOM without Array.A
    policyDriveListInvalid,  ///< of Array.<letter> or Hotspares
    policyArrayOrderInvalid, ///< an array after one that is absent
    policyArrayAfterAll,     ///< an array after one that takes all drives; wanted: its keyword
    policyArraysTooMany,
    policyHotsparesTooMany,
    policyLogicalDefaultsInvalid, ///< not "size:raidlevel(:writecmode)"
    policyLogicalMissing,         ///< Logical_Mode = CUSTOM without Logical.1
    policyLogicalInvalid,         ///< not "array:size:raidlevel(:writecmode)"
    policyArrayLetterInvalid,     ///< no letter, or of no array of the policy
    policyWriteCacheInvalid,
    policyRaidLevelInvalid,
    policySizeInvalid,
    policyArrayShared,         ///< 5E or 5EE beside another logical drive
    policyLogicalOrderInvalid, ///< a logical drive after one that is absent
    captureParametersInvalid,  ///< wanted: the parameters
    temporaryUnwritable,       ///< no room for temporary files
    temporaryNotRemoved,       ///< place: file; the run goes on
    policiesUnwritable,        ///< the policies file cannot be opened for writing
    policiesWrittenInPart,     ///< writing the policies file failed on the way

    // Listings. Place: model and number of the controller
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
    planMachineUnknown,
    planControllerTypeUnknown, ///< `number`: the type
    planHotspareShortage,      ///< `number`: hot spares asked for; `possible`: drives
    planHotspareDriveMissing,  ///< `wanted`: drive number or position; `possible`: those that exist
    planTooManyHotspares,      ///< `number`: how many a plan holds; so for all that are too many
    planArrayDriveMissing,     ///< `wanted`, `possible`: see above
    planTooManyArrays,         ///< `number`: see above
    planTooManyArrayDrives,    ///< `number`: see above
    planArrayUnknown,          ///< `array`: index of the array that there is not
    planRaidLevelUnsupported,  ///< `wanted`: the level; `possible`: those that there are
    planRaidLevelDriveCount,   ///< `wanted`: the level; `number`: drives; `possible`: drives
    planTooManyLogicalDrives,  ///< `number`: see above
    planStripeSizeUnsupported, ///< `wanted`: KB; `possible`: those that there are

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
    parameterUnknown,        ///< wanted: the argument, where one is known
    switchesInvalid,         ///< the table of switches itself is at fault
    parameterFileMissing,    ///< place: file; the run goes on
    parameterFileUnreadable, ///< place: file
    verbosityUnsupported,    ///< wanted: the value
    parameterSyntax,         ///< wanted: the value
    parameterMissing,        ///< wanted: the switch
    parametersConflict,      ///< wanted: the switches
};

/// Where a fault is. Fields that say nothing for its kind are empty, 0 or -1.
struct FaultPlace {
    CString file{};              ///< name as it was given
    std::int32_t line = 0;       ///< from 1
    std::int32_t column = 0;     ///< from 1, in bytes
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
