#pragma once

#include <string_view>

/// Ids of what families have to say of their controllers; titles and help stand with the other
/// problem codes.
namespace zolex::companion::family_code {

inline constexpr std::string_view textAnswer = "ZP130";
inline constexpr std::string_view notWhole = "ZP131";
inline constexpr std::string_view noDetails = "ZP132";
/// Of a drive that is in nothing: what may be lost is known all the same.
inline constexpr std::string_view freeNoDetails = "ZP146";
inline constexpr std::string_view unknownWord = "ZP133";
inline constexpr std::string_view notTold = "ZP134";
inline constexpr std::string_view toldTwice = "ZP135";
inline constexpr std::string_view cacheFallsBack = "ZP136";
inline constexpr std::string_view saysFailure = "ZP137";
inline constexpr std::string_view foreignIncomplete = "ZP138";
inline constexpr std::string_view notDriven = "ZP139";
/// No logical drive is made as long as the cache keeps data of one that is not there.
inline constexpr std::string_view cachePreserved = "ZP145";
/// Of a logical drive: two sizes that are not one.
inline constexpr std::string_view sizeTwice = "ZP147";
inline constexpr std::string_view utilityFails = "ZP104";
inline constexpr std::string_view utilityRuns = "ZP103";
inline constexpr std::string_view cannotStart = "ZP102";

} // namespace zolex::companion::family_code
