#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/rehearsal/CopyMaker.h"
#include "model/Server.h"

#include <random>
#include <string>
#include <vector>

namespace zolex::companion::test {

/// The options of the commands whose listings a capture reads.
[[nodiscard]] std::vector<std::string> listingCommandsOf(const std::string& utility);

/// The first controller of the server as it would be captured, without what zolex makes of it.
[[nodiscard]] ControllerSnapshot originalOf(zolex_sim::Server& server);
/// A copy of it.
[[nodiscard]] MadeCopy copyOf(const ControllerSnapshot& original,
                              const zolex_sim::Controller& controller);

/// A command line that changes something of such a controller, or that is refused.
[[nodiscard]] std::vector<std::string> randomLine(const Facts& facts, const std::string& utility,
                                                  std::mt19937& random);

/// One line for each thing of the facts that matters to a layout.
[[nodiscard]] std::vector<std::string> layoutFacts(const Facts& facts);

} // namespace zolex::companion::test
