#pragma once

#include "model/Server.h"
#include "roles/PlayResult.h"

#include <string>
#include <vector>

namespace zolex_sim {

/// What UTIL.BAT runs: the name of a utility, then its options.
PlayResult playUtility(Server& server, const std::vector<std::string>& arguments);

/// The hardware detector: "/i" prints the machine type and the serial number.
PlayResult playDetector(Server& server, const std::vector<std::string>& arguments);

/// The stand-in for all utilities: 0, 1 or 2 (restore, capture, deploy), then a model name.
PlayResult playFakeraid(Server& server, const std::vector<std::string>& arguments);

/// The state of the server as text for a person.
PlayResult showServer(Server& server, const std::vector<std::string>& arguments);

} // namespace zolex_sim
