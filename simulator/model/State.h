#pragma once

#include "model/Fields.h"
#include "model/Server.h"

#include <string>
#include <string_view>

namespace zolex_sim {

/// The text of the state file: the status of every drive, the arrays, the logical drives, and how
/// often each fault has been met.
std::string writeState(const Server& server);

/// Puts the state over a server in its initial state. A text that is damaged, that contradicts
/// itself or that does not fit the server is reported; the server is then of no use.
void readState(std::string_view text, Server& server, Problem& problem);

} // namespace zolex_sim
