#pragma once

#include "companion/lint/Models.h"
#include "companion/lint/PolicyView.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The logical drives of a policy: what each is made on.
namespace zolex::companion {

/// One logical drive that will be made, or a rule for all of them.
struct AskedDrive {
    /// `Logical.<n>`, or `Logical_Defaults`, or null where the policy gives nothing.
    const LogicalView* view = nullptr;
    const DriveListView* array = nullptr; ///< null for arrays that are chosen automatically
    std::int32_t level = 0;               ///< raid_level::notGiven for AUTO
    std::size_t drives = 0;               ///< of its array; 0: not known
};

/// RAID 5E or 5EE: hot space lies on the members themselves.
[[nodiscard]] bool is5E(std::int32_t level);
/// Whether a drive that failed can be rebuilt: not in RAID 0 and volumes.
[[nodiscard]] bool canRebuild(std::int32_t level);

/// With `Logical_Mode = CUSTOM` one for each `Logical.<n>`, else one for each listed array, or one
/// for all where arrays are chosen automatically.
[[nodiscard]] std::vector<AskedDrive> plannedDrives(const PolicyView& policy);

/// The most drives that are left for an array given as ALL on a controller of `drives` drives.
[[nodiscard]] std::size_t mostRemaining(const PolicyView& policy, std::size_t drives);

/// The most hot spares that a controller of the entry gets without being told which.
[[nodiscard]] std::size_t mostAutomaticHotspares(const PolicyView& policy, const EntryView& entry);

/// "0, 1, 10": the levels that a policy may ask of this kind.
[[nodiscard]] std::string levelWords(const Kind& kind);
/// "16, 32, 64": the strip sizes that a policy may ask of this kind.
[[nodiscard]] std::string stripeWords(const Kind& kind);

} // namespace zolex::companion
