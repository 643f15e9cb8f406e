#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "companion/planning/Diff.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// The document `zolex-diff`: how a machine stands to policies, or to a plan.
[[nodiscard]] std::string diffDocument(const MachineDiff& diff, const DocumentHead& head);

/// A document of the same format when nothing could be compared: no controllers, and why in
/// `diagnostics`.
[[nodiscard]] std::string failedDiffDocument(const std::vector<Finding>& findings,
                                             const DocumentHead& head);

} // namespace zolex::companion
