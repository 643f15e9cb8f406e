#pragma once

#include "platform/Platform.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::test {

/// Keeps what is printed and answers from a script.
class FakeConsole : public Console {
  public:
    void writeOutput(std::string_view text) override { output += text; }
    void writeError(std::string_view text) override { error += text; }
    int readCharacter() override;

    /// The output so far, which is then forgotten.
    std::string takeOutput() { return std::exchange(output, {}); }

    std::string output;
    std::string error;
    std::string answers; ///< what standard input holds
    std::size_t charactersRead = 0;
};

/// Files in memory. "\" and "/" are different characters here; names are taken as given.
class FakeFileSystem : public FileSystem {
  public:
    std::unique_ptr<File> open(std::string_view name, const char* mode) override;
    std::unique_ptr<File> create(std::string_view name, std::string_view other,
                                 WhenInterrupted interrupted) override;
    LockResult lock(std::string_view name, std::chrono::milliseconds wait) override;
    bool remove(std::string_view name) override;
    bool isFile(std::string_view name) override { return exists(std::string(name)); }

    [[nodiscard]] bool exists(const std::string& name) const { return files.count(name) != 0; }

    std::map<std::string, std::string> files;
    std::vector<std::string> opened; ///< "mode name" of every call of open; "w+" for create
    std::vector<std::string> removed;
    std::vector<std::string> refused;   ///< "mode name" of calls that must fail
    std::vector<std::string> lockCalls; ///< "name milliseconds" of every call of lock
    std::string locked;                 ///< the file that is locked; empty: none
    bool busy = false;                  ///< another run has every file locked
    WhenInterrupted interrupted = WhenInterrupted::removed; ///< of the file created last
    /// Bytes that can still be written before the device is full; negative: no limit.
    long long spaceLeft = -1;
    bool failFlush = false;
    bool failClose = false;
    bool failRewind = false;
    bool failRemove = false;
};

/// A platform without a system: children are answered by a script, pauses and starts are recorded.
class FakePlatform : public Platform {
  public:
    FakePlatform();

    Console& console() override { return consoleFake; }
    FileSystem& files() override { return fileFake; }
    ChildResult runChild(std::string_view commandLine, bool capture,
                         std::chrono::milliseconds limit) override;
    std::unique_ptr<PCI_DevList_VC> pciDevices() override;
    void pauseOneSecond() override { ++pauses; }
    LocalTime localTime() override { return now; }

    /// A child that ended with `exitCode` after printing `output`.
    static ChildResult ended(std::uint32_t exitCode, std::string output = {}) {
        return {ChildOutcome::ended, exitCode, std::move(output)};
    }

    FakeConsole consoleFake;
    FakeFileSystem fileFake;
    std::vector<std::string> children; ///< command lines started, in order
    std::vector<std::chrono::milliseconds> limits;
    int pauses = 0; ///< seconds
    LocalTime now{2026, 3, 9, 14, 5, 7};
    std::vector<PciDevice> devices;
    /// Answers in order; when they are used up, `respond` answers, and by default each child ends
    /// with exit code 0 and no output. The output of a child that is not captured is lost.
    std::deque<ChildResult> results;
    std::function<ChildResult(const std::string& commandLine)> respond;

  private:
    ChildResult nextResult();
};

} // namespace zolex::test
