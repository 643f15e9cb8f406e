#include "properties/Limits.h"

#include "model/Codes.h"

#include <algorithm>
#include <array>

namespace zolex::properties {

namespace {

using zolex_sim::RefusalKind;

// Columns: cause; how the machine tells of it (none of the kinds for the generators' causes); name.
struct CauseRow {
    Cause cause;
    int kind;
    std::string_view name;
};
constexpr int byGenerator = -1;
constexpr int kindNumber(RefusalKind kind) {
    return static_cast<int>(kind);
}
// clang-format off
constexpr std::array<CauseRow, 25> causeRows{{
    {Cause::none,                     byGenerator, ""},
    {Cause::noArray,                  byGenerator, "no array"},
    {Cause::arrayWithoutLogicalDrive, byGenerator, "an array without logical drive"},
    {Cause::severalOnArray,           byGenerator, "several logical drives on an array"},
    {Cause::hyperwinSeveral,          byGenerator, "HYPERWIN, not exactly one logical drive"},
    {Cause::hyperwinSize,             byGenerator, "HYPERWIN, a size"},
    {Cause::hyperwinMirrorSpare,      byGenerator, "HYPERWIN, a mirror with a hot spare"},
    {Cause::hyperwinSecondSpare,      byGenerator, "HYPERWIN, a second hot spare"},
    {Cause::level,                    kindNumber(RefusalKind::levelUnsupported), "a level that the controller does not build"},
    {Cause::namedTwice,               kindNumber(RefusalKind::driveNamedTwice), "a drive twice in a command"},
    {Cause::taken,                    kindNumber(RefusalKind::driveNotFree), "a drive of another array or a hot spare"},
    {Cause::failed,                   kindNumber(RefusalKind::driveNotFree), "a drive that failed or is bad"},
    {Cause::foreign,                  kindNumber(RefusalKind::driveNotFree), "a drive of a foreign configuration"},
    {Cause::missing,                  kindNumber(RefusalKind::driveNotFound), "a drive that is not there"},
    {Cause::tooFewDrives,             kindNumber(RefusalKind::wrongDriveCount), "too few drives"},
    {Cause::tooManyDrives,            kindNumber(RefusalKind::wrongDriveCount), "more drives than an array takes"},
    {Cause::odd10,                    kindNumber(RefusalKind::wrongDriveCount), "an odd number of drives for RAID 10"},
    {Cause::tooManySpans,             kindNumber(RefusalKind::wrongDriveCount), "more than 8 pairs for RAID 10"},
    {Cause::size,                     kindNumber(RefusalKind::badSize), "more MB than the array has"},
    {Cause::sizeOfLeftOut,            kindNumber(RefusalKind::badSize), "a size that counts the odd drive of RAID 10"},
    {Cause::sizeOfFurther,            kindNumber(RefusalKind::badSize), "a further logical drive without room"},
    {Cause::sizeOfShared,             kindNumber(RefusalKind::badSize), "more MB than the array has left that is listed again"},
    {Cause::tooManyLogicalDrives,     kindNumber(RefusalKind::tooMany), "more logical drives than the controller takes"},
    {Cause::tooManyHotspares,         kindNumber(RefusalKind::tooMany), "more hot spares than the controller takes"},
    {Cause::notAlone,                 kindNumber(RefusalKind::tooMany), "5E or 5EE beside another logical drive"},
}};
// clang-format on
static_assert([] {
    for (std::size_t i = 0; i < causeRows.size(); ++i) {
        if (causeRows[i].cause != static_cast<Cause>(i)) {
            return false;
        }
    }
    return true;
}());

const CauseRow& rowOf(Cause cause) {
    return causeRows.at(static_cast<std::size_t>(cause));
}

constexpr int halved = LevelShape::halved;

// Columns: level; least and most drives; drives' worth of room that is lost.
// clang-format off
constexpr std::array<LevelShape, 11> levelShapes{{
    {raid_level::raid0,   1, 0, 0},
    {raid_level::raid1,   2, 2, halved},
    {raid_level::raid1E,  3, 0, halved},
    {raid_level::raid5,   3, 0, 1},
    {raid_level::raid5E,  4, 0, 2},
    {raid_level::raid5EE, 4, 0, 2},
    {raid_level::raid6,   4, 0, 2},
    {raid_level::raid10,  4, 0, halved},
    {raid_level::raid50,  6, 0, 2},
    {raid_level::raid60,  8, 0, 4},
    {raid_level::volume,  1, 0, 0},
}};
// clang-format on

} // namespace

std::string_view nameOf(Cause cause) {
    return rowOf(cause).name;
}

bool isKind(Cause cause, RefusalKind kind) {
    return rowOf(cause).kind == kindNumber(kind);
}

// Columns: name; levels; most drives, logical drives and hot spares.
const UtilityLimits& limitsOf(std::string_view utility) {
    // clang-format off
    static const std::array<UtilityLimits, 7> limits{{
        {"MEGACLI",       {"0", "1", "5", "6", "10", "50", "60"}, 32, 64, 1024},
        {"ARCCONF",       {"0", "1", "1E", "5", "5EE", "6", "10", "50", "60", "VOLUME"}, 32, 64, 1024},
        {"HRCONF",        {"0", "1", "10", "VOLUME"}, 32, 64, 1024},
        {"QTCSEND",       {"0", "1", "1E", "5", "5E", "5EE"}, 16, 8, 8},
        {"CFGGEN",        {"0", "1", "1E"}, 10, 2, 2},
        {"CFGGEN1.02.02", {"1"}, 10, 2, 2},
        {"HYPERWIN",      {"0", "1"}, 2, 1, 1},
    }};
    // clang-format on
    return *std::find_if(limits.begin(), limits.end(),
                         [utility](const UtilityLimits& row) { return row.name == utility; });
}

const LevelShape* shapeOf(std::int32_t level) {
    const auto* const found =
        std::find_if(levelShapes.begin(), levelShapes.end(),
                     [level](const LevelShape& shape) { return shape.level == level; });
    return found == levelShapes.end() ? nullptr : found;
}

float partOf(std::int32_t level, std::size_t drives) {
    const LevelShape* const shape = shapeOf(level);
    if (shape == nullptr || shape->lost == 0) {
        return 1;
    }
    const auto all = static_cast<float>(drives);
    return shape->lost == LevelShape::halved ? 0.5F : (all - static_cast<float>(shape->lost)) / all;
}

} // namespace zolex::properties
