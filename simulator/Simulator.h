#pragma once

#include "model/AtomicFile.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace zolex_sim {

/// What a run needs of its surroundings.
struct Environment {
    std::filesystem::path folder;  ///< where the server is
    std::filesystem::path program; ///< the running executable, which `init` puts into a new folder
    std::filesystem::path current; ///< where utilities leave their log files; empty: nowhere
    std::function<void(std::chrono::milliseconds)> pause; ///< for delays of the fault section
    StepFailure failsToSave; ///< fails steps of replacing the state file; for tests
};

/// The program. arguments[0] is its name: called "hwdetect", "fakeraid" or by the usual name of a
/// utility ("MegaCli64", "arcconf", ...; ".exe" may follow) it plays that role at once, else the
/// next argument says what to do. Returns the exit code: that of
/// the role played; 1 for whatever the program itself cannot do, which is told on `error`.
int runSimulator(const std::vector<std::string>& arguments, const Environment& environment,
                 std::ostream& output, std::ostream& error);

} // namespace zolex_sim
