#pragma once

#include "companion/json/DocumentHead.h"
#include "companion/rehearsal/Fleet.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// The document `zolex-fleet`: what policies would do with the servers of a fleet.
[[nodiscard]] std::string fleetDocument(const Fleet& fleet, const DocumentHead& head);

/// The same where there is nothing to tell but why: no servers.
[[nodiscard]] std::string failedFleetDocument(const Fleet& fleet,
                                              const std::vector<Finding>& faults,
                                              const DocumentHead& head);

} // namespace zolex::companion
