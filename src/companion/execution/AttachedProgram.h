#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// Runs a program with exactly these arguments, on the standard streams and in the process group of
/// this process, and waits for its end, however long that takes. What would end this process
/// meanwhile (Ctrl-C, SIGTERM, ...) is for the program: it is passed on, and its end is waited for.
/// The exit code, 128 and the signal's number for a program that a signal ended; nothing when it
/// cannot be started.
[[nodiscard]] std::optional<std::uint32_t> runAttached(const std::string& path,
                                                       const std::vector<std::string>& arguments);

} // namespace zolex::companion
