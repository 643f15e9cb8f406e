#pragma once

#include "platform/Platform.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::fuzz {

/// Keeps the texts of one run.
class MemoryConsole : public Console {
  public:
    void writeOutput(std::string_view text) override { output += text; }
    void writeError(std::string_view text) override { error += text; }
    int readCharacter() override { return 'y'; }

    std::string output;
    std::string error;
};

/// Files in memory. Names are taken as they are given.
class MemoryFiles : public FileSystem {
  public:
    std::unique_ptr<File> open(std::string_view name, const char* mode) override;
    bool remove(std::string_view name) override;

    std::map<std::string, std::string> files;
    std::vector<std::string> written; ///< names that were opened for writing
};

/// A machine in memory for one run: children are answered by a function, time does not pass.
class MemoryPlatform : public Platform {
  public:
    Console& console() override { return memoryConsole; }
    FileSystem& files() override { return memoryFiles; }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override;
    void pauseOneSecond() override {}
    LocalTime localTime() override { return {2026, 3, 9, 14, 5, 7}; }

    MemoryConsole memoryConsole;
    MemoryFiles memoryFiles;
    std::vector<PciDevice> devices;
    /// Answers a child; without it each one ends with exit code 0 and no output.
    std::function<ChildResult(std::string_view commandLine)> respond;
    std::vector<std::string> children; ///< command lines started, in order
};

} // namespace zolex::fuzz
