#pragma once

#include "companion/facts/Facts.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Where zolex keeps each drive of `facts`: the channel and id that policies name it by. Nothing
/// for a drive outside the 4 channels of 36 that it knows. Whether it keeps the drive at all is
/// another matter.
[[nodiscard]] std::vector<std::optional<DrivePosition>> corePositions(std::int32_t controllerType,
                                                                      const Facts& facts);

enum class DifferenceKind {
    // What zolex does with every such listing.
    driveLeftOut,     ///< failed, missing, outside its channels and ids
    drivesAtOnePlace, ///< zolex keeps one of two
    namedOtherwise,   ///< its command lines name another place
    layoutLimit,      ///< it keeps less than there is
    // What should not be.
    drive, ///< one reading has a drive that the other has not
    driveSize,
    hotspare,
    layout, ///< one reading has a layout, or more of it
    raidLevel,
    logicalSize,
    stripSize,
    members,
};

/// Whether one of the two readings must be wrong.
[[nodiscard]] constexpr bool isContradiction(DifferenceKind kind) {
    return kind >= DifferenceKind::drive;
}

/// Where the two readings of one controller's listings differ.
struct ReadingDifference {
    DifferenceKind kind = DifferenceKind::drive;
    std::string subject; ///< "32:4", "logical drive 0", "layout"
    std::string what;    ///< "left out by zolex: failed"
    friend bool operator==(const ReadingDifference&, const ReadingDifference&) = default;
};

/// Holds `facts` against what zolex read from the same listings, which were captured with the
/// layout. `isRead` is false when its reader refused them.
[[nodiscard]] std::vector<ReadingDifference>
compareReadings(const Facts& facts, const RAIDController& core, bool isRead = true);

} // namespace zolex::companion
