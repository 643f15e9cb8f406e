#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace zolex_sim {

enum class RaidLevel : std::uint8_t { raid0, raid1, raid5, raid6, raid10, raid50, raid60 };

/// What a level asks of its spans and what it keeps of their room. An array of a level that is not
/// spanned has one span.
struct LevelRules {
    RaidLevel level;
    std::string_view name; ///< in files, for example "RAID5"
    bool spanned;
    int minDrives;  ///< of one span
    int maxDrives;  ///< of one span; 0: as many as the controller takes
    int redundancy; ///< drives of one span that hold no data of their own and may be lost
};

std::span<const LevelRules> allLevels();
const LevelRules& rulesOf(RaidLevel level);
/// The level of a name such as "RAID5", letter case ignored.
std::optional<RaidLevel> levelNamed(std::string_view name);

} // namespace zolex_sim
