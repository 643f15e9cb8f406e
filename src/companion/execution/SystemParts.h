#pragma once

#include "companion/execution/ExecutionSystem.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// What makeSystemExecution is made of, for each system. Whole descriptions stand at
/// ExecutionSystem.
namespace zolex::companion::system_execution {

/// Notes the wish to end while it lives. An interruption ends one wait early: the one that it falls
/// into, or the next, when nobody asked in between.
class Interruptions {
  public:
    enum class Awaited { object, interruption, timeOver };

    virtual ~Interruptions() = default;
    [[nodiscard]] virtual Interruption asked() = 0;
    /// Waits until `object` (a descriptor that is readable, a handle that is signalled) is ready,
    /// the user interrupts, or the time is over.
    virtual Awaited await(std::optional<std::intptr_t> object, std::chrono::milliseconds limit) = 0;
};
[[nodiscard]] std::shared_ptr<Interruptions> heedInterruptions();
/// As an object of `await`; nothing: there is none.
[[nodiscard]] std::optional<std::intptr_t> standardInput();

/// Starts a command line as the system takes it; an empty one starts nothing. `folder` is the
/// child's current folder; empty: this process's.
[[nodiscard]] std::unique_ptr<StartedChild> startProgram(std::string_view commandLine,
                                                         const std::string& output,
                                                         std::shared_ptr<Interruptions> waits,
                                                         const std::string& folder = {});

[[nodiscard]] ProcessIdentity ownProcess();
[[nodiscard]] bool isRunning(const ProcessIdentity& process);

/// Whether files can be locked, for a test of what is done where they cannot.
enum class FileLocks { ofSystem, none };
[[nodiscard]] LockAnswer takeLock(const std::string& name, FileLocks locks = FileLocks::ofSystem);

[[nodiscard]] std::unique_ptr<DurableFile> makeDurable(const std::string& name);
[[nodiscard]] std::unique_ptr<DurableFile> reopenDurable(const std::string& name,
                                                         std::uint64_t keep);

/// In UTF-8; what is none of it is "?".
[[nodiscard]] std::string userName();
[[nodiscard]] bool isLostAtRestart(const std::string& file);

} // namespace zolex::companion::system_execution
