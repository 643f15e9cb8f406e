#pragma once

#include "driver/Settings.h"
#include "foundation/Fault.h"

#include <cstdint>
#include <optional>

namespace zolex {

class FileSystem;
class ParameterParser;
class Report;

/// What a command line asks for.
struct CommandLine {
    Settings settings;
    std::optional<std::int32_t> verbosity; ///< as "/v:" gives it
    std::optional<Fault> fault;            ///< the first one; it has been reported
    bool wantsUsage = false;               ///< the usage belongs to the fault
};

/// What settings ask for together.
struct Combination {
    bool detectionCheck = false; ///< "/e2" alone: only look whether there are controllers
    std::optional<Fault> fault;  ///< what excludes one another, or is missing
};

/// Fills the table of switches, in the order in which an argument is compared with them.
void addSwitches(ParameterParser& parser);

/// Takes the arguments after argv[0], and those of the parameter file that they name, into settings
/// that have their defaults. `parser` has its switches and nothing else.
[[nodiscard]] CommandLine readCommandLine(ParameterParser& parser, int argc,
                                          const char* const* argv, FileSystem& files,
                                          Report& report);

/// Checks what excludes one another. Reads only.
[[nodiscard]] Combination checkCombinations(const Settings& settings);

} // namespace zolex
