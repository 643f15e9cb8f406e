#pragma once

#include "support/Input.h"

#include <cstdint>
#include <span>

namespace zolex::fuzz {

/// Reads captured outputs into a controller, as a run does, and checks what came of it. The first
/// byte of the input holds, from its lowest bit: the capture flag, the debug flag, the verbosity
/// (two bits), which of `types` the controller is of (two bits), its subtype (two bits). The texts
/// that follow are the outputs, in the order of the commands.
void readListings(std::span<const std::int32_t> types, Input input);

} // namespace zolex::fuzz
