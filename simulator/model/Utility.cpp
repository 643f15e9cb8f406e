#include "model/Utility.h"

#include "model/Text.h"

#include <array>

namespace zolex_sim {
namespace {

// clang-format off
constexpr std::array megacliLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid5, RaidLevel::raid6, RaidLevel::raid10,
    RaidLevel::raid50, RaidLevel::raid60,
};
constexpr std::array arcconfLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid1E, RaidLevel::raid5, RaidLevel::raid5EE,
    RaidLevel::raid6, RaidLevel::raid10, RaidLevel::raid50, RaidLevel::raid60, RaidLevel::volume,
};
constexpr std::array hrconfLevels = {
    RaidLevel::raid0, RaidLevel::raid1, RaidLevel::raid10, RaidLevel::volume,
};

// Columns: name, places of drives, number of the first channel, whether failed drives are counted,
// levels; stripe size in KB, write and read policy.
constexpr std::array<UtilityTraits, 3> utilities = {{
    {"MEGACLI", Addressing::enclosures, 0, false, megacliLevels,  64, WritePolicy::writeThrough, ReadPolicy::none},
    {"ARCCONF", Addressing::channels,   0, true,  arcconfLevels, 256, WritePolicy::writeBack,    ReadPolicy::ahead},
    {"HRCONF",  Addressing::channels,   0, true,  hrconfLevels,   64, WritePolicy::writeBack,    ReadPolicy::ahead},
}};
// clang-format on

} // namespace

const UtilityTraits* utilityNamed(std::string_view name) {
    for (const UtilityTraits& utility : utilities) {
        if (equalsIgnoringCase(utility.name, name)) {
            return &utility;
        }
    }
    return nullptr;
}

} // namespace zolex_sim
