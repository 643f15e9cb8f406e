#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim::storcli {

/// STORCLI under its several names: "/c0 show all J" and so on. What the server's effect says of
/// the answer is done to it.
PlayResult play(Server& server, const std::vector<std::string>& arguments);

} // namespace zolex_sim::storcli
