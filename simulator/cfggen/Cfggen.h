#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim::cfggen {

/// Plays the utility CFGGEN, which names drives by enclosure and slot, with these options. A
/// refusal prints its reason and ends with code 1; the server is then unchanged.
PlayResult playSas(Server& server, const std::vector<std::string>& options);

/// The same for the utility CFGGEN1.02.02, which names drives by their target ids.
PlayResult playScsi(Server& server, const std::vector<std::string>& options);

} // namespace zolex_sim::cfggen
