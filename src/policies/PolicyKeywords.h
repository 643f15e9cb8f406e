#pragma once

#include <cstdint>
#include <string_view>

/// The keywords of a policy.
namespace zolex::keyword {

inline constexpr const char* rebuildRate = "RebuildRate";
inline constexpr const char* readAhead = "ReadAhead";
inline constexpr const char* stripeSize = "StripeSize";
inline constexpr const char* init = "Init";
inline constexpr const char* arrayMode = "Array_Mode";
inline constexpr const char* arrayDefaults = "Array_Defaults";
inline constexpr const char* hotspares = "Hotspares";
inline constexpr const char* logicalMode = "Logical_Mode";
inline constexpr const char* logicalDefaults = "Logical_Defaults";
inline constexpr const char* maxLogicalDriveSize = "Max_Logical_Drive_Size";
inline constexpr const char* appliesTo = "AppliesTo."; ///< and a number
inline constexpr const char* array = "Array.";         ///< and a letter
inline constexpr const char* logical = "Logical.";     ///< and a number

/// `AppliesTo.1` to `AppliesTo.15` and `Logical.1` to `Logical.9` are looked up.
inline constexpr std::int32_t lastAppliesTo = 15;
inline constexpr std::int32_t lastLogical = 9;

/// Whether a policy may hold this keyword, letter case ignored.
[[nodiscard]] bool isValid(std::string_view keyword) noexcept;
/// Whether a valid keyword is one that no look-up asks for: its number is too high or has leading
/// zeros.
[[nodiscard]] bool isNeverLookedUp(std::string_view keyword) noexcept;

} // namespace zolex::keyword
