#pragma once

#include "companion/facts/Facts.h"
#include "model/RAIDController.h"
#include "model/Server.h"

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// A sample of the virtual server in its initial state.
[[nodiscard]] zolex_sim::Server sampleServer(std::string_view name);
/// The server of a definition; a failure for one that is not sound.
[[nodiscard]] zolex_sim::Server definedServer(std::string_view definition);

/// A controller type that the utility of this controller serves.
[[nodiscard]] std::int32_t typeOf(const zolex_sim::Controller& controller);

/// What the utility of the controller prints when it is captured with its layout.
[[nodiscard]] std::vector<std::string> listingsOf(zolex_sim::Server& server,
                                                  const zolex_sim::Controller& controller);

/// What zolex's own reader makes of the listings.
struct CoreReading {
    bool isRead = false;
    RAIDController controller;
};
[[nodiscard]] CoreReading readByCore(std::int32_t type, const std::vector<std::string>& listings);

/// One line for each thing that the facts hold, drives and logical drives alone.
[[nodiscard]] std::vector<std::string> describe(const Facts& facts);
/// The same of the controller itself, as far as its utility tells.
[[nodiscard]] std::vector<std::string> describe(const zolex_sim::Controller& controller);

/// "listing:line what" of each broken block.
[[nodiscard]] std::vector<std::string> brokenLines(const Facts& facts);

/// A server of one controller with any drives, states and logical drives that its utility can have.
[[nodiscard]] zolex_sim::Server randomServer(std::mt19937& random);

} // namespace zolex::companion::test
