#pragma once

#include "companion/planning/Plan.h"

#include <string>

namespace zolex::companion {

/// A logical drive that is deleted.
[[nodiscard]] Loss volumeLoss(const ControllerPlanning& planning, const LayoutGroup& group,
                              const LayoutVolume& volume);
/// What ends the use of a logical drive that the system tells as in LogicalDriveFacts: "umount
/// /srv".
[[nodiscard]] std::string howToEndUse(const std::string& usedAs);
/// A spare that is none afterwards; no bytes are lost with it.
[[nodiscard]] Loss spareLoss(const ControllerPlanning& planning, const LayoutSpare& spare);
/// A drive whose layout of another controller is cleared: all that it can hold.
[[nodiscard]] Loss foreignLoss(const ControllerPlanning& planning, const std::string& location);

} // namespace zolex::companion
