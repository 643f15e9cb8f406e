#pragma once

#include "foundation/CString.h"
#include "model/Configuration.h"
#include "policies/Policy.h"

#include <cstdint>

namespace zolex {

/// Why a plan is as it is, one decision each. Fields that say nothing for the kind or the subject
/// keep their first values.
struct Reason {
    enum class Kind : std::int32_t {
        // Of the controller: why a policy is the one that is used, or is not. There is one for each
        // AppliesTo entry that was looked at; the first that matches ends the search.
        entryMatches,
        entryDiffers,      ///< `specifier` is the first that does not hold
        entryGivesNothing, ///< it has neither a specifier with a value nor ALL

        // Of a hot spare or an array: why a drive was taken.
        listed,       ///< the policy names it
        allRemaining, ///< the policy gives the array all drives that remain
        firstFree,    ///< the first free drive begins an automatic array
        likeFirst,    ///< its size is within the variance of the first drive's
        largestLast,  ///< the largest free drive, of equal ones the last

        // Of a value: where it comes from.
        given,            ///< an entry for the array, the logical drive or the setting
        policyDefault,    ///< the policy's Array_Defaults or Logical_Defaults
        classDefault,     ///< the rules of the controller's class
        capturedPolicy,   ///< a captured policy lists all that its controller had
        leftToController, ///< the controller keeps its own setting
    };
    enum class Subject : std::int32_t {
        controller,
        hotspareCount,
        hotspare, ///< `index`: of the hot spare
        array,    ///< `index`: of the array; so for the drives of arrays
        // `index`: of the logical drive.
        raidLevel,
        size,
        writeCache,
        // Of the controller.
        stripeSize,
        readAhead,
        rebuildRate,
        init,
    };

    Kind kind = Kind::classDefault;
    Subject subject = Subject::controller;
    std::int32_t index = -1;
    std::int32_t policy = -1; ///< index of the policy in its list
    CString keyword{};        ///< entry of the policy that decided; empty for a class default
    char specifier = '\0';    ///< letter of the specifier that does not hold
    CString wanted{};         ///< its value
    CString actual{};         ///< the controller's value
    DrivePosition drive{};    ///< the drive that was taken
    /// What the policy asks for: a code or a number. The variance in percent for `likeFirst`.
    std::int32_t asked = 0;
    /// What the policy asks for when the subject is `size`. A size within 139 MB of what is left of
    /// the array becomes the rest.
    DriveSize askedSize{};
    /// What is planned: a code, a number, or a size as in LogicalDrive; the size of the drive in
    /// MB.
    std::int32_t value = 0;

    friend bool operator==(const Reason&, const Reason&) = default;
};

} // namespace zolex
