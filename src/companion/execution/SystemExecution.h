#pragma once

#include "companion/execution/ExecutionSystem.h"

#include <memory>

namespace zolex::companion {

struct Utilities;

/// The system that this program was built for. From here to the destruction of what is returned
/// the user's wish to end is noted instead of followed: see Interruption. A signal that was ignored
/// stays so. `system` tells the time, `utilities` what a command line starts; both outlive it.
///
/// What cannot be had is told by the result, and where that is a null pointer or false, by
/// lastSystemError too.
[[nodiscard]] std::unique_ptr<ExecutionSystem> makeSystemExecution(Platform& system,
                                                                   const Utilities& utilities);

} // namespace zolex::companion
