#pragma once

#include "companion/commands/Context.h"

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// The median time of each utility's calls, by the utility's name ("MEGACLI").
using UsualTimes = std::map<std::string, std::chrono::milliseconds>;

/// Of the calls in these recordings. Nothing, after a message, when one cannot be read.
[[nodiscard]] std::optional<UsualTimes> usualTimes(Context& context,
                                                   const std::vector<std::string>& files);

} // namespace zolex::companion
