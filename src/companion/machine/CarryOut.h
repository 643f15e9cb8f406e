#pragma once

#include "companion/machine/Utilities.h"
#include "platform/Platform.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Command lines of families that carry them out themselves.
namespace zolex::companion {

/// First argument of this program where it is its own child: "zolexctl --carry-out PROGRAM LEAST MD
/// --create ...". A step of a plan is a process of its own, which runs on when its parent is gone.
inline constexpr std::string_view carryOutWord = "--carry-out";

/// The command line carried out; nothing where it is of no such family.
[[nodiscard]] std::optional<ChildResult> carriedOut(Platform& system, const Utilities& utilities,
                                                    std::string_view commandLine,
                                                    std::chrono::milliseconds limit);

/// The arguments, program first, that carry it out in a process of its own; none where the command
/// line is of no such family.
[[nodiscard]] std::vector<std::string> carryingArguments(const Utilities& utilities,
                                                         std::string_view commandLine);

/// Such a process: prints what came of it, and gives its exit code.
[[nodiscard]] int carryOut(Platform& system, const std::vector<std::string>& arguments);

} // namespace zolex::companion
