#pragma once

#include "companion/rehearsal/Fleet.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The page of a fleet, in one file: a table that is searched and sorted by a script in the page,
/// and without it is a table; then each server with its pictures. It asks no network for anything.
namespace zolex::companion {

/// The section of one server, with the pictures of its plan; `index` is its place in the fleet.
[[nodiscard]] std::string serverSection(const FleetServer& server, std::size_t index);

/// The page; `sections` are those of its servers, in their order.
[[nodiscard]] std::string fleetHtml(const Fleet& fleet, const std::vector<std::string>& sections,
                                    std::string_view madeAt);

} // namespace zolex::companion
