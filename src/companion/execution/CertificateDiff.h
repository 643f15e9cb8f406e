#pragma once

#include "companion/execution/Certificate.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Diff.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// A machine against the certificate of a run: of this machine, else every controller is unknown
/// and `diagnostics` tell why. Drives are known by their serial numbers where these are told: a
/// layout that went to another slot with its drives is the same one. Drives that were replaced,
/// moved, taken out or added are equivalences. `controllers`: numbers of those asked for; empty:
/// all of the certificate.
[[nodiscard]] MachineDiff diffOf(const Snapshot& snapshot, const Certificate& certificate,
                                 const std::vector<std::int32_t>& controllers = {});

/// What became of drives since they were listed.
struct DriveDrift {
    enum class Kind { replaced, moved, gone, added };
    Kind kind = Kind::replaced;
    const DriveFacts* before = nullptr; ///< null: added
    const DriveFacts* now = nullptr;    ///< null: gone
};

/// Drives that are known by a serial number are looked for everywhere, others where they were.
[[nodiscard]] std::vector<DriveDrift> driveDrifts(const std::vector<DriveFacts>& before,
                                                  const std::vector<DriveFacts>& now);

/// Where each drive of `layout` is now: what is gone stands as "(gone) 32:3" where another drive
/// that was moved has its place.
[[nodiscard]] Layout layoutBehind(const Layout& layout, const std::vector<DriveDrift>& changes);

} // namespace zolex::companion
