#pragma once

#include "companion/planning/Plan.h"
#include "companion/text/Terminal.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// What would be lost, one line each: "  - LD 1  RAID5  271.0 GB  32:2-32:6  controller 1".
[[nodiscard]] std::string lossLines(const std::vector<Loss>& losses, const TextStyle& style);

/// "LD 0, LD 1 and spare 32:7 of controller 1; LD 0 of controller 2".
[[nodiscard]] std::string lossNames(const std::vector<Loss>& losses);

} // namespace zolex::companion
