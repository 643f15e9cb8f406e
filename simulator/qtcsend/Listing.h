#pragma once

#include "model/Server.h"

#include <cstddef>
#include <string>

namespace zolex_sim::qtcsend {

constexpr std::size_t maxArrays = 8;

/// The letter of an array, "A" for the first.
std::string arrayName(std::size_t array);

/// The blocks of the GETCONFIG command: the controller, its logical drives and arrays, its drives.
std::string listing(const Controller& controller);

} // namespace zolex_sim::qtcsend
