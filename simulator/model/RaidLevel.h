#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace zolex_sim {

enum class RaidLevel : std::uint8_t {
    raid0,
    raid1,
    raid5,
    raid6,
    raid10,
    raid50,
    raid60,
    raid1E,
    raid5E,
    raid5EE,
    volume,
};

/// What a level keeps of the room of its drives.
enum class Room : std::uint8_t {
    dataDrives, ///< that of the drives that hold data, each as large as the smallest
    half,       ///< everything is stored twice
    sum,        ///< all of it; the drives follow one another
};

/// What a level asks of its spans and what it keeps of their room. An array of a level that is not
/// spanned has one span.
struct LevelRules {
    RaidLevel level;
    std::string_view name; ///< in files, for example "RAID5"
    bool spanned;
    int minDrives; ///< of one span
    int maxDrives; ///< of one span; 0: as many as the controller takes
    Room room;
    int redundancy; ///< drives of one span that hold no data of their own
    int tolerated;  ///< drives of one span that may be lost
    bool alone;     ///< a logical drive of the level takes an array to itself
};

std::span<const LevelRules> allLevels();
const LevelRules& rulesOf(RaidLevel level);
/// The level of a name such as "RAID5", letter case ignored.
std::optional<RaidLevel> levelNamed(std::string_view name);

} // namespace zolex_sim
