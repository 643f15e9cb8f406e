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

/// Makes a folder; false when it cannot be made, or is there.
[[nodiscard]] bool makeFolder(const std::string& name);
/// Removes a folder with the files that are in it. What is no folder, and a link to one, stays.
/// The system's last error is as before.
void removeFolder(const std::string& name);

/// A folder of its own for a child that leaves files in its current folder. It goes with the files
/// that are in it.
class EmptyFolder {
  public:
    EmptyFolder();
    EmptyFolder(const EmptyFolder&) = delete;
    EmptyFolder& operator=(const EmptyFolder&) = delete;
    ~EmptyFolder();

    /// Empty when it could not be made.
    [[nodiscard]] const std::string& name() const { return name_; }

  private:
    std::string name_;
};

/// The path from the root of the file system; as it is where that cannot be had.
[[nodiscard]] std::string absolutePath(const std::string& path);

/// The code page of the console; nothing where there are none, and without a console.
[[nodiscard]] std::optional<std::uint32_t> codePage();

/// The time since some moment, which never goes back. Not the clock of the C++ library: on Windows
/// that brings functions along which set the system's time.
[[nodiscard]] std::chrono::milliseconds elapsed();

} // namespace zolex::companion::system
