#pragma once

#include "companion/commands/Commands.h"
#include "companion/machine/Snapshot.h"

namespace zolex::companion {

/// Delivers a machine's layouts as policies, and tells on standard error what would not come back.
/// `time` is that of the capture. Returns the exit code.
[[nodiscard]] int showPolicies(Context& context, const ShowOptions& options,
                               const Snapshot& snapshot, const LocalTime& time);

} // namespace zolex::companion
