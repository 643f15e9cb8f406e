#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What is asked of the system without the seam of Platform: questions about this process, which no
/// recording holds.
namespace zolex::companion::system {

inline constexpr bool isWindows =
#ifdef _WIN32
    true;
#else
    false;
#endif

/// The folder of the running program with a separator at its end; empty when it cannot be had.
[[nodiscard]] std::string ownFolder();
/// The folders of the search path, in its order.
[[nodiscard]] std::vector<std::string> searchPath();

/// The folder for temporary files.
struct TemporaryFolder {
    std::string name;
    bool isWritable = false;
    std::optional<std::uint64_t> freeBytes; ///< nothing: not told
};
/// Looks at it; nothing is written.
[[nodiscard]] TemporaryFolder temporaryFolder();

/// The code page of the console; nothing where there are none, and without a console.
[[nodiscard]] std::optional<std::uint32_t> codePage();

/// The time since some moment, which never goes back. Not the clock of the C++ library: on Windows
/// that brings functions along which set the system's time.
[[nodiscard]] std::chrono::milliseconds elapsed();

} // namespace zolex::companion::system
