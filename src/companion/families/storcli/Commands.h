#pragma once

#include "companion/families/Family.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The command lines of STORCLI and PERCCLI of the versions 1.x and 007 that change something. No
/// line holds "force": what the utility refuses without it (a volume that the system uses) is not
/// done.
namespace zolex::companion::storcli {

inline constexpr std::string_view word = "STORCLI";
/// How each line ends: JSON, and no log file in the current folder.
inline constexpr std::string_view ending = " J nolog";

/// "/c0/e252/s3", "/c0/s3" for a drive in no enclosure (":3").
[[nodiscard]] std::string drivePath(std::int32_t adapter, std::string_view location);

/// Words of the utility as somebody types them: "storcli64 /c0 show preservedcache". Where the
/// program is not known, it is the one that the controller's maker calls so.
[[nodiscard]] std::string typed(const FamilyController& controller, std::string_view words);

[[nodiscard]] std::string createVolume(std::int32_t adapter, const VolumeWish& wish);
[[nodiscard]] std::string deleteVolume(std::int32_t adapter, const LogicalDriveFacts& volume);
[[nodiscard]] std::string addSpare(std::int32_t adapter, const std::string& location,
                                   const std::vector<std::string>& arrays);
[[nodiscard]] std::string removeSpare(std::int32_t adapter, const std::string& location);
[[nodiscard]] std::string clearForeign(std::int32_t adapter);
[[nodiscard]] std::string setCache(std::int32_t adapter, const LogicalDriveFacts& volume,
                                   std::string_view attribute, std::string_view value);
[[nodiscard]] std::string setRebuildRate(std::int32_t adapter, std::string_view rate);

} // namespace zolex::companion::storcli
