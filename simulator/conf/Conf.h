#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim::conf {

/// Play the utilities ARCCONF and HRCONF with these options. A refusal prints its reason and ends
/// with the code 1; the server is then unchanged.
PlayResult playArcconf(Server& server, const std::vector<std::string>& options);
PlayResult playHrconf(Server& server, const std::vector<std::string>& options);

} // namespace zolex_sim::conf
