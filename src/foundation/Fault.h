#pragma once

#include "foundation/CString.h"

#include <cstdint>

namespace zolex {

/// What is wrong. Each kind has one prescribed text, which show/ makes from the record. The groups
/// follow the floors that find them.
enum class FaultKind : std::int32_t {
    none,

    // Inventory

    // Policies

    // Listings

    // Planning
    planMachineFileUnreadable, ///< `file`: the inventory file
    planMachineUnknown,
    planControllerTypeUnknown, ///< `number`: the type
    planHotspareShortage,      ///< `number`: hot spares asked for
    planHotspareDriveMissing,  ///< `wanted`: drive number or position
    planTooManyHotspares,      ///< `number`: how many a plan holds; so for all that are too many
    planArrayDriveMissing,     ///< `wanted`: drive number or position
    planTooManyArrays,         ///< `number`: see above
    planTooManyArrayDrives,    ///< `number`: see above
    planArrayUnknown,          ///< `array`: index of the array that there is not
    planRaidLevelUnsupported,  ///< `wanted`: the level; `possible`: those that there are
    planRaidLevelDriveCount,   ///< `wanted`: the level; `number`: drives; `possible`: drives
    planTooManyLogicalDrives,  ///< `number`: see above
    planStripeSizeUnsupported, ///< `wanted`: KB; `possible`: those that there are

    // Command lines of a utility

    // Command line of the program
};

/// Where a fault is. Fields that say nothing for its kind are empty, 0 or -1.
struct FaultPlace {
    CString file;                ///< name as it was given
    std::int32_t line = 0;       ///< from 1
    CString section;             ///< name of the policy, or of another section, without brackets
    CString keyword;             ///< entry of the section
    CString model;               ///< model name of the controller
    std::int32_t controller = 0; ///< number of the controller, from 1
    std::int32_t array = -1;     ///< index of the array, from 0
    std::int32_t channel = -1;   ///< position of a drive
    std::int32_t id = -1;

    friend bool operator==(const FaultPlace&, const FaultPlace&) = default;
};

/// One fault as a value.
struct Fault {
    FaultKind kind = FaultKind::none;
    FaultPlace place;
    CString wanted;          ///< the text that was given or asked for
    std::int32_t number = 0; ///< the number that was given or asked for
    CString possible;        ///< what could be, in words; empty when there is no list

    friend bool operator==(const Fault&, const Fault&) = default;
};

} // namespace zolex
