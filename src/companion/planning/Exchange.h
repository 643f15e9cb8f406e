#pragma once

#include "companion/planning/Plan.h"

namespace zolex::companion {

/// Where equal drives have changed places with planned ones that no list names (a hot spare that
/// stepped in), plans for the drives that do the work, so that what stands can stay. The layout of
/// `planning` and its comparison follow. True when something was exchanged.
bool planForStandingDrives(ControllerPlanning& planning);

} // namespace zolex::companion
