#pragma once

#include <filesystem>
#include <string>

namespace zolex::test {

/// A directory of a test's own, removed with all it holds when this object goes. While it lives it
/// is the current directory.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    [[nodiscard]] std::string path() const { return path_.string(); }
    /// Writes a file, by its path in the directory; folders on the way are made.
    void write(const std::string& name, const std::string& content, bool executable = false) const;
    /// The bytes of a file; empty when there is none.
    [[nodiscard]] static std::string read(const std::string& name);

  private:
    std::filesystem::path before_;
    std::filesystem::path path_;
};

} // namespace zolex::test
