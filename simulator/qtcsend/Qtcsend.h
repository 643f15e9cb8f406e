#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim::qtcsend {

/// Plays the utility QTCSEND with these options. A refusal prints its reason and ends with code 1;
/// the server is then unchanged.
PlayResult play(Server& server, const std::vector<std::string>& options);

} // namespace zolex_sim::qtcsend
