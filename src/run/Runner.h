#pragma once

#include "foundation/CString.h"
#include "platform/CapturedOutput.h"
#include "platform/Tool.h"

#include <cstdint>
#include <memory>

namespace zolex {

class Platform;

/// What happens while command lines run, for whoever shows it.
class RunEvents {
  public:
    virtual ~RunEvents() = default;
    /// The command line is about to run, after the pause that its utility needs.
    virtual void starting(const CString& commandLine) = 0;
    /// One second of a pause is over.
    virtual void secondPassed() = 0;
    virtual void pauseEnded() = 0;
};

/// Runs the command lines of controllers one after another, with the pauses that their utilities
/// need. What an exit code means is asked of isAccepted.
class Runner {
  public:
    Runner(std::unique_ptr<Tool> tool, Platform& platform, RunEvents& events)
        : tool_(std::move(tool)), platform_(platform), events_(events) {}

    void pause(int seconds);
    /// Runs one command line of a controller of this type. True when the child was started and
    /// ended within the limit; why not has been reported.
    bool run(std::int32_t controllerType, const CString& commandLine);
    /// Runs the latest command line once more, without a pause.
    bool runAgain();

    /// The output of the latest run; null when it gave none.
    [[nodiscard]] std::shared_ptr<CapturedOutput> output() const { return tool_->output(); }
    /// The child's exit code after a completed run.
    [[nodiscard]] std::uint32_t exitCode() const { return tool_->exitCode(); }

  private:
    std::unique_ptr<Tool> tool_;
    Platform& platform_;
    RunEvents& events_;
    CString commandLine_;
};

/// Whether the exit code is one of those that count as success for the utility of the type.
[[nodiscard]] bool isAccepted(std::int32_t controllerType, std::uint32_t exitCode);

} // namespace zolex
