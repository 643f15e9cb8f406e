#include "model/RaidLevel.h"

#include "model/Text.h"

#include <array>
#include <cstddef>

namespace zolex_sim {
namespace {

// In the order of the enumeration. Drive counts are those of one span; a greatest count of 0 leaves
// it to the controller.
// clang-format off
constexpr std::array<LevelRules, 11> levels = {{
    // level              name      spanned least most room           redundant tolerated alone
    {RaidLevel::raid0,   "RAID0",   false,  1,    0,   Room::dataDrives, 0,     0,        false},
    {RaidLevel::raid1,   "RAID1",   false,  2,    2,   Room::dataDrives, 1,     1,        false},
    {RaidLevel::raid5,   "RAID5",   false,  3,    0,   Room::dataDrives, 1,     1,        false},
    {RaidLevel::raid6,   "RAID6",   false,  4,    0,   Room::dataDrives, 2,     2,        false},
    {RaidLevel::raid10,  "RAID10",  true,   2,    2,   Room::dataDrives, 1,     1,        false},
    {RaidLevel::raid50,  "RAID50",  true,   3,    0,   Room::dataDrives, 1,     1,        false},
    {RaidLevel::raid60,  "RAID60",  true,   4,    0,   Room::dataDrives, 2,     2,        false},
    {RaidLevel::raid1E,  "RAID1E",  false,  3,    0,   Room::half,       1,     1,        false},
    {RaidLevel::raid5E,  "RAID5E",  false,  4,    0,   Room::dataDrives, 2,     1,        true},
    {RaidLevel::raid5EE, "RAID5EE", false,  4,    0,   Room::dataDrives, 2,     1,        true},
    {RaidLevel::volume,  "VOLUME",  false,  1,    0,   Room::sum,        0,     0,        false},
}};
// clang-format on
static_assert(levels.size() == static_cast<std::size_t>(RaidLevel::volume) + 1);

} // namespace

std::span<const LevelRules> allLevels() {
    return levels;
}

const LevelRules& rulesOf(RaidLevel level) {
    return levels[static_cast<std::size_t>(level)];
}

std::optional<RaidLevel> levelNamed(std::string_view name) {
    for (const LevelRules& rules : levels) {
        if (equalsIgnoringCase(rules.name, name)) {
            return rules.level;
        }
    }
    return std::nullopt;
}

} // namespace zolex_sim
