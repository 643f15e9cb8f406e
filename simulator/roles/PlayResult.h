#pragma once

#include <string>

namespace zolex_sim {

/// What one command of the virtual server came to.
struct PlayResult {
    int exitCode = 0;
    std::string output;
    bool changed = false; ///< the server's state is another one now and must be kept
    /// The utility was not told to leave no log file in the current folder.
    bool leavesLog = false;
};

} // namespace zolex_sim
