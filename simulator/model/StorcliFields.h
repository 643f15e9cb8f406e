#pragma once

#include "model/Fields.h"
#include "model/StorcliController.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zolex_sim::storcli {

/// The word of a definition's field "utility" for a controller of this machine.
constexpr std::string_view utilityWord = "STORCLI";

/// The controller of a definition; `number` is its place there. A fault is reported.
Controller readController(Fields& fields, std::size_t number);

/// What commands have made of a controller, for the state file.
Json stateJson(const Controller& controller);

/// Reads what stateJson() wrote into the controller of the definition. A fault is reported.
void readState(Fields& fields, Controller& controller);

} // namespace zolex_sim::storcli
