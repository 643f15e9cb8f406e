#include "model/RaidLevel.h"

#include "model/Text.h"

#include <array>
#include <cstddef>

namespace zolex_sim {
namespace {

// In the order of the enumeration. Drive counts are those of one span; a greatest count of 0 leaves
// it to the controller.
// clang-format off
constexpr std::array<LevelRules, 7> levels = {{
    // level             name      spanned least most redundant
    {RaidLevel::raid0,  "RAID0",  false,  1,    0,   0},
    {RaidLevel::raid1,  "RAID1",  false,  2,    2,   1},
    {RaidLevel::raid5,  "RAID5",  false,  3,    0,   1},
    {RaidLevel::raid6,  "RAID6",  false,  4,    0,   2},
    {RaidLevel::raid10, "RAID10", true,   2,    2,   1},
    {RaidLevel::raid50, "RAID50", true,   3,    0,   1},
    {RaidLevel::raid60, "RAID60", true,   4,    0,   2},
}};
// clang-format on
static_assert(levels.size() == static_cast<std::size_t>(RaidLevel::raid60) + 1);

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
