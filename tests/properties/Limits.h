#pragma once

#include "model/Operations.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::properties {

/// Why a plan is not carried out. The first ones keep the generator from making command lines, the
/// others make the machine refuse one.
enum class Cause : std::uint8_t {
    none,
    noArray,
    arrayWithoutLogicalDrive,
    severalOnArray,
    hyperwinSeveral,
    hyperwinSize,
    hyperwinMirrorSpare,
    hyperwinSecondSpare,
    level,
    namedTwice,
    taken,
    failed,
    foreign,
    missing,
    tooFewDrives,
    tooManyDrives,
    odd10,
    tooManySpans,
    size,
    sizeOfLeftOut,
    sizeOfFurther,
    sizeOfShared,
    tooManyLogicalDrives,
    tooManyHotspares,
    notAlone,
};
std::string_view nameOf(Cause cause);
/// Whether this is how the machine tells of the cause.
bool isKind(Cause cause, zolex_sim::RefusalKind kind);

/// What a utility builds, as its documents tell.
struct UtilityLimits {
    std::string_view name;
    std::vector<std::string> levels;
    std::size_t drives; ///< most in an array, or in each span of it
    std::size_t logicalDrives;
    std::size_t hotspares;
};
/// The name is one of a utility.
const UtilityLimits& limitsOf(std::string_view utility);

/// Pairs of RAID 10.
constexpr std::size_t mostSpans = 8;

/// What a RAID level asks of its drives.
struct LevelShape {
    static constexpr int halved = -1;
    std::int32_t level;
    std::size_t least;
    std::size_t most; ///< 0: as many as the utility takes
    int lost;         ///< drives' worth of room that redundancy takes; halved: half of all
};
/// Null for what is no level of a logical drive.
const LevelShape* shapeOf(std::int32_t level);

/// The part of an array's room that logical drives of this level can hold, in single precision as
/// plans have it; all of it for what is no level.
float partOf(std::int32_t level, std::size_t drives);

} // namespace zolex::properties
