#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim::hyperwin {

/// Plays the utility HYPERWIN with these options. It knows one adapter, the first. A refusal prints
/// its reason and ends with code 1; the server is then unchanged.
PlayResult play(Server& server, const std::vector<std::string>& options);

} // namespace zolex_sim::hyperwin
