#pragma once

#include "foundation/CString.h"
#include "platform/CapturedOutput.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace zolex {

class Platform;
class Report;

/// Runs one command line as a child process with its output captured.
class Tool {
  public:
    static constexpr std::chrono::milliseconds defaultLimit{300000};

    Tool(Platform& platform, Report& report, std::chrono::milliseconds limit = defaultLimit)
        : platform_(platform), report_(report), limit_(limit) {}

    void setCommand(const CString& command) { command_ = command; }

    /// True when the child was started and ended within the limit. A command that cannot be started
    /// is false without a message; a child that is still running at the limit is reported and left
    /// running.
    bool run(bool capture);

    /// The output of the latest run, shared with whoever reads it; null when the run gave none.
    [[nodiscard]] std::shared_ptr<CapturedOutput> output() const { return output_; }
    /// The child's exit code after a completed run.
    [[nodiscard]] std::uint32_t exitCode() const { return exitCode_; }

  private:
    Platform& platform_;
    Report& report_;
    std::chrono::milliseconds limit_;
    CString command_;
    std::shared_ptr<CapturedOutput> output_;
    std::uint32_t exitCode_ = 0;
};

} // namespace zolex
