#pragma once

#include "Firmware.h"

#include <functional>
#include <string>
#include <vector>

namespace hwdetect {

/// Exit codes of the program.
namespace exit_code {
inline constexpr int success = 0;
inline constexpr int commandLine = 1;
inline constexpr int firmware = 2; ///< a value cannot be had
inline constexpr int output = 3;   ///< the values could not be printed
} // namespace exit_code

/// What a run needs of its surroundings.
struct Surroundings {
    /// The value of a variable of the environment; empty when there is none.
    std::function<std::string(const char* name)> variable;
    /// Asks the firmware of this machine.
    std::function<FirmwareAnswer()> firmware;
    /// Reads a folder that ZOLEX_DMI_ROOT names, in the place of the firmware.
    std::function<FirmwareAnswer(const std::string& folder)> folder;
};

/// What a run prints and ends with.
struct Detection {
    int exitCode = exit_code::success;
    std::string output; ///< for standard output
    std::string error;  ///< for standard error
};

/// The program without its printing; `arguments` without its name. A value comes from an option,
/// else from the environment (ZOLEX_MACHINE_TYPE, ZOLEX_SERIAL_NUMBER), else from the firmware,
/// which is not asked when both are given.
[[nodiscard]] Detection detect(const std::vector<std::string>& arguments,
                               const Surroundings& surroundings);

} // namespace hwdetect
