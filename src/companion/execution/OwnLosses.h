#pragma once

#include "companion/execution/Certificate.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

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

/// Looks for each loss in the certificates of this very machine. A logical drive is own when it has
/// its certified level and size, and where the certificate tells them its id and name, and lies on
/// the certified drives, known by their serial numbers; a hot spare when it is a certified one.
/// What a certificate tells of is found once. Foreign configurations are never own, nor is anything
/// on drives that tell no serial numbers. Nor is anything of a controller of which one drive is not
/// as that certificate tells of it: gone, new, in another bay, of another state or role. A policy
/// that is the same may then choose other drives than it did, in whatever form it names them.
[[nodiscard]] std::vector<OwnLoss> ownLosses(const std::vector<Loss>& losses,
                                             const Snapshot& snapshot,
                                             std::span<const Certificate> certificates);

} // namespace zolex::companion
