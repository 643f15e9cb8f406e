#pragma once

#include "model/StorcliController.h"
#include "storcli/Reply.h"

#include <optional>
#include <string>
#include <vector>

namespace zolex_sim::storcli {

/// "add vd" with the words behind it: makes virtual drives on a new group, or on that of exactly
/// these drives. Nothing is changed when it is refused.
std::optional<Refusal> addVolumes(Controller& controller, const std::vector<std::string>& words);

} // namespace zolex_sim::storcli
