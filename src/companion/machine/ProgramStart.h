#pragma once

#include "platform/Platform.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zolex::companion {

/// How the platform of a system takes a command line apart.
enum class Splitting {
    plain,   ///< splitCommandLine: blanks part, double quotes group and are removed
    windows, ///< as programs of Windows do; batch files go through its command interpreter
};

/// The splitting of the system that this program was built for.
[[nodiscard]] Splitting systemSplitting();

/// The command line that starts the program, the first argument, with exactly these arguments;
/// nothing when none does: for `plain` where an argument holds a double quote, for a batch file on
/// Windows where one holds what the command interpreter would take as its own (& | < > ^ % " ! and
/// line ends), and for an argument with a NUL.
[[nodiscard]] std::optional<std::string> commandLineOf(std::span<const std::string> arguments,
                                                       Splitting splitting);

/// Starts the program with these arguments. One that no command line can tell is not started.
[[nodiscard]] ChildResult runProgram(Platform& platform, std::span<const std::string> arguments,
                                     bool capture, std::chrono::milliseconds limit,
                                     Splitting splitting = systemSplitting());

} // namespace zolex::companion
