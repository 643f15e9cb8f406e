#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "companion/machine/Snapshot.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// The document `zolex-machine`: all that is known of a machine.
[[nodiscard]] std::string machineDocument(const Snapshot& snapshot, const DocumentHead& head);

/// A document of the same format of a machine that could not be looked at: no controllers, and why
/// in `diagnostics`.
[[nodiscard]] std::string failedMachineDocument(const std::vector<Finding>& findings,
                                                const DocumentHead& head);

} // namespace zolex::companion
