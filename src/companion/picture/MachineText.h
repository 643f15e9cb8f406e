#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// What `show` writes on a terminal. `verbose` adds how each controller was read, and the messages
/// of the core.
[[nodiscard]] std::string machineText(const Snapshot& snapshot, const TextStyle& style,
                                      bool verbose);

} // namespace zolex::companion
