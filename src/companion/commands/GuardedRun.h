#pragma once

#include "companion/findings/Finding.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zolex {
class FileSystem;
}

namespace zolex::companion {

/// What a command line of zolex would do to a server.
struct GuardedRun {
    static constexpr std::int32_t everyController = -1;

    std::vector<Finding> faults;   ///< why it is not understood; then the rest says nothing
    std::vector<Finding> refusals; ///< understood, and never right on a server
    std::vector<Finding> notes;

    bool resets = false; ///< controllers are erased
    std::int32_t resetNumber = everyController;
    bool plans = false;         ///< policies are read and planned, be it for nothing
    bool deploys = false;       ///< and their commands are run
    bool needsPolicy = false;   ///< "/e1"
    bool needsDrives = false;   ///< "/e3"
    bool captures = false;      ///< policies are written behind all that
    bool classDefaults = false; ///< "/d"
    std::string policiesFile;   ///< of "/f:"; empty with the defaults and when none is read
    std::string parameterFile;  ///< of "@"; or empty
    std::string programFolder;  ///< of "/p:"; or empty

    [[nodiscard]] bool changesSomething() const { return resets || deploys; }
    /// Whether a controller is erased.
    [[nodiscard]] bool resetsController(std::int32_t number) const {
        return resets && (resetNumber == everyController || resetNumber == number);
    }
};

/// Reads the words behind "zolex" as zolex does, and what they ask for together. The parameter file
/// that they name is read.
[[nodiscard]] GuardedRun readGuardedRun(const std::vector<std::string>& words, FileSystem& files);

/// The words as they are typed: "zolex /r /y /f:web.ini".
[[nodiscard]] std::string typedRun(const std::vector<std::string>& words);

} // namespace zolex::companion
