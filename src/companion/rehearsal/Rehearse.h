#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

namespace zolex::companion {

/// Plays the plan on a virtual copy of the captured machine, in process: the copy must first read
/// back as the original; then every step runs on it, `expectedAfter` is filled, and the end is
/// compared with what was planned; then, with everyFault, each step is made to fail once and the
/// rest is run as a resumption would. A step that the copy refuses becomes an error (refused by
/// plan) of its controller's diagnostics, with the utility's own reason, and its controller is
/// refused. What cannot be copied is said in `notDoneBecause`. What the plan leaves to a controller
/// (strip size, cache modes) is, on a copy, what controllers of its utility usually choose.
void rehearse(const Snapshot& snapshot, MachinePlan& plan, bool everyFault = true);

} // namespace zolex::companion
