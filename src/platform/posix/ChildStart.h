#pragma once

#include "platform/posix/FileDescriptor.h"

#include <csignal>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace zolex::posix {

/// Gives SIGCHLD its default action while it lives. Where the signal is ignored (a parent can hand
/// that down), the system forgets the exit codes of children.
class DefaultChildSignal {
  public:
    DefaultChildSignal();
    DefaultChildSignal(const DefaultChildSignal&) = delete;
    DefaultChildSignal& operator=(const DefaultChildSignal&) = delete;
    ~DefaultChildSignal();

  private:
    struct sigaction before_ = {};
};

/// Starts a command line without standard input, its output and errors on the descriptor `output`,
/// or on nothing when that is -1; nothing, and errno, when it cannot be started. The command line
/// is split into arguments and the program looked up; a file that is neither a binary nor begins
/// with "#!" is run by /bin/sh. A child that is apart leads a session of its own, which has no
/// terminal, so that what ends this process does not reach it; all signals have their default
/// action there, and none is blocked. `folder` is the child's current folder; empty: this
/// process's. A program's path is relative to that folder then.
[[nodiscard]] std::optional<pid_t> startChild(std::string_view commandLine, int output,
                                              bool isApart = false, const std::string& folder = {});

/// A descriptor that becomes readable when the child ends; none where the kernel has no such thing.
[[nodiscard]] FileDescriptor processDescriptor(pid_t child);

enum class ChildState { running, ended, lost };

/// Asks, without waiting, whether the child has ended, and takes its exit code if so: 128 plus the
/// signal's number when a signal ended it.
[[nodiscard]] ChildState askForEnd(pid_t child, std::uint32_t& exitCode);

} // namespace zolex::posix
