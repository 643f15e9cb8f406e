#pragma once

#include "companion/machine/Snapshot.h"
#include "model/RAIDController.h"

#include <optional>

namespace zolex::companion {

/// A controller as it was before drives of it failed: they have their numbers, and can be planned.
struct HealthyView {
    RAIDController record;
    ControllerSnapshot detail; ///< without the texts of its listings
};

/// Nothing where no drive has failed, is missing or is being rebuilt.
[[nodiscard]] std::optional<HealthyView> healthyView(const RAIDController& record,
                                                     const ControllerSnapshot& detail);

/// The controller without the texts of its listings.
[[nodiscard]] ControllerSnapshot withoutListings(const ControllerSnapshot& detail);

} // namespace zolex::companion
