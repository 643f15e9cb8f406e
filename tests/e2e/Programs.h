#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

// What starting a program takes on this system.

namespace zolex::e2e {

struct ProgramStart {
    std::string program; ///< its path
    std::vector<std::string> arguments;
    std::filesystem::path folder;                   ///< its current directory
    std::map<std::string, std::string> environment; ///< variables beside the present ones
    std::filesystem::path input;                    ///< file that is its standard input
    std::filesystem::path output;                   ///< file for its standard output
    std::filesystem::path error;                    ///< file for its standard error
    std::string closed; ///< numbers of standard streams that it is started without: "02"
};

/// Runs the program to its end. Its exit code, 128 and the number of the signal that ended it, or
/// -1 when it cannot be started.
int runProgram(const ProgramStart& start);

/// The number of this process.
int processId();

/// A file that this process has locked as the program locks its policies file.
class LockedFile {
  public:
    explicit LockedFile(const std::filesystem::path& path);
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;
    ~LockedFile();
    [[nodiscard]] bool isLocked() const { return locked_; }

  private:
    std::intptr_t file_ = -1;
    bool locked_ = false;
};

} // namespace zolex::e2e
