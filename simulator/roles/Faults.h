#pragma once

#include "model/Server.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zolex_sim {

/// What counting a command among the faults came to.
struct FaultMatch {
    const Fault* due = nullptr; ///< the first fault that is due; null when none is
    bool counted = false;       ///< a count that decides about a later command has changed
};

FaultMatch countFaults(Server& server, std::string_view command);

/// What a fault prints: its text, then its filler lines.
std::string faultOutput(const Fault& fault);

} // namespace zolex_sim
