#pragma once

#include <cstdint>

/// The small integers that controllers, policies, plans and listings speak in. They are kept as
/// plain integers in the records, because captured and planned values may lie outside the named
/// ones.
namespace zolex {

/// Controller type: which utility drives it and which configuration rules apply.
namespace controller_type {
inline constexpr std::int32_t none = -1;
inline constexpr std::int32_t family = 1;     ///< QTCSEND
inline constexpr std::int32_t arcconf2 = 2;   ///< ARCCONF
inline constexpr std::int32_t hrconf3 = 3;    ///< HRCONF
inline constexpr std::int32_t hrconf4 = 4;    ///< HRCONF
inline constexpr std::int32_t lsiScsi = 5;    ///< CFGGEN1.02.02
inline constexpr std::int32_t lsiIde = 6;     ///< HYPERWIN
inline constexpr std::int32_t arcconf7 = 7;   ///< ARCCONF
inline constexpr std::int32_t hrconf8 = 8;    ///< HRCONF
inline constexpr std::int32_t hrconf9 = 9;    ///< HRCONF
inline constexpr std::int32_t lsiSas = 10;    ///< CFGGEN
inline constexpr std::int32_t arcconf11 = 11; ///< ARCCONF
inline constexpr std::int32_t megaRaid = 12;  ///< MEGACLI
inline constexpr std::int32_t first = 1;
inline constexpr std::int32_t last = 12;
} // namespace controller_type

inline constexpr std::int32_t subtypeNotSet = -1;

namespace raid_level {
inline constexpr std::int32_t none = -1; ///< no level fits
inline constexpr std::int32_t raid0 = 0;
inline constexpr std::int32_t raid1 = 1;
inline constexpr std::int32_t raid1E = 2;
inline constexpr std::int32_t raid5 = 3;
inline constexpr std::int32_t raid5E = 4;
inline constexpr std::int32_t raid5EE = 5;
inline constexpr std::int32_t raid6 = 6;
inline constexpr std::int32_t raid10 = 7;
inline constexpr std::int32_t raid50 = 8;
inline constexpr std::int32_t raid60 = 9;
inline constexpr std::int32_t volume = 10;
inline constexpr std::int32_t notGiven = 12; ///< take the class default; "AUTO" in a policy
inline constexpr std::int32_t simpleVolume = 13;
} // namespace raid_level

/// Stripe sizes 8, 16, 32, ... 4096 KB are codes 0 to 9; 10 selects none.
namespace stripe {
inline constexpr std::int32_t kb8 = 0;
inline constexpr std::int32_t kb16 = 1;
inline constexpr std::int32_t kb32 = 2;
inline constexpr std::int32_t kb64 = 3;
inline constexpr std::int32_t kb128 = 4;
inline constexpr std::int32_t kb256 = 5;
inline constexpr std::int32_t kb512 = 6;
inline constexpr std::int32_t kb1024 = 7;
inline constexpr std::int32_t kb2048 = 8;
inline constexpr std::int32_t kb4096 = 9;
inline constexpr std::int32_t none = 10;
} // namespace stripe

namespace read_ahead {
inline constexpr std::int32_t adaptive = 0;
inline constexpr std::int32_t on = 1;
inline constexpr std::int32_t off = 2;
} // namespace read_ahead

namespace rebuild_rate {
inline constexpr std::int32_t high = 0;
inline constexpr std::int32_t medium = 1;
inline constexpr std::int32_t low = 2;
} // namespace rebuild_rate

namespace write_cache {
inline constexpr std::int32_t off = 0;
inline constexpr std::int32_t on = 1;
inline constexpr std::int32_t notGiven = 2; ///< the controller keeps its own; "AUTO" in a policy
} // namespace write_cache

namespace init_choice {
inline constexpr std::int32_t quick = 0;
inline constexpr std::int32_t build = 1;
} // namespace init_choice

/// Logical-drive sizes: positive = MB, -p = p percent of the array, -101 = the rest of the array.
inline constexpr std::int32_t sizeFill = -101;
/// A number that a policy does not give.
inline constexpr std::int32_t notGiven = -25;

/// "0", "1", "1E", "5", "5E", "5EE", "6", "10", "50", "60", "VOLUME", "SIMPLE VOLUME"; "ERROR" for
/// any other code.
[[nodiscard]] const char* raidLevelWord(std::int32_t code);
/// "8", "16", ... "4096" (KB); "ERROR" for any other code.
[[nodiscard]] const char* stripeSizeWord(std::int32_t code);
/// "HIGH", "MED", "LOW"; "ERROR" for any other code.
[[nodiscard]] const char* rebuildRateWord(std::int32_t code);
/// "ADAPTIVE", "ON", "OFF"; "ERROR" for any other code.
[[nodiscard]] const char* readAheadWord(std::int32_t code);

} // namespace zolex
