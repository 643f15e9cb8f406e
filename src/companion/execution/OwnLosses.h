#pragma once

#include "companion/execution/Certificate.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zolex::companion {

/// A loss, and whether it is what an earlier run has made and nobody has changed since.
struct OwnLoss {
    Loss loss;
    bool isOwn = false;
    std::string planId; ///< of the certificate that tells of it; or empty
    std::string why;    ///< of what is not own: for people, "no certificate is of this machine"
};

/// A controller whose policy names drives by number.
struct NumberedDrives {
    std::int32_t controller = 0;
    std::string entry; ///< the first that does: "Array.A"
};

/// Those of a plan.
[[nodiscard]] std::vector<NumberedDrives> numberedDrives(const MachinePlan& plan);

/// Looks for each loss in the certificates of this very machine. A logical drive is own when it has
/// its certified level and size, and where they are told its id and name, and lies on the certified
/// drives, known by their serial numbers; a hot spare when it is a certified one. What a
/// certificate tells of is found once. Foreign configurations are never own, nor is anything on
/// drives that tell no serial numbers. Where drives are named by number, nothing is own as long as
/// a bay that held a certified drive is empty, or one holds a drive that held none: the numbers
/// name other drives than they did.
[[nodiscard]] std::vector<OwnLoss> ownLosses(const std::vector<Loss>& losses,
                                             const Snapshot& snapshot,
                                             std::span<const Certificate> certificates,
                                             const std::vector<NumberedDrives>& numbered = {});

} // namespace zolex::companion
