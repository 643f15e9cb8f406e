#pragma once

#include <cstdint>

namespace zolex {

/// The program's exit codes.
enum class ExitCode : std::int32_t {
    success = 0,
    noPolicy = 1,        ///< a controller matched no policy ("/e1")
    noControllers = 2,   ///< there is no controller ("/e2")
    noDrives = 3,        ///< a controller has no drives ("/e3")
    commandLine = 4,     ///< the command line is at fault
    policies = 5,        ///< of the policies, the plans or the machine information
    restoreFailed = 7,   ///< a controller could not be reset
    captureFailed = 8,   ///< a controller could not be captured
    policiesNotMade = 9, ///< the captured policies could not be written
    resources = 10,      ///< something that a run needs cannot be had
    commandFailed = 11,  ///< a configuration command could not be made or failed
};

/// Result of a mode. When `endsProcess` is set the exit code is final and nothing more is printed.
struct ModeResult {
    ExitCode code = ExitCode::success;
    bool endsProcess = false;
};

} // namespace zolex
