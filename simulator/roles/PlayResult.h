#pragma once

#include <string>

namespace zolex_sim {

/// What one command of the virtual server came to.
struct PlayResult {
    int exitCode = 0;
    std::string output;
    bool changed = false; ///< the server's state is another one now and must be kept
};

} // namespace zolex_sim
