#pragma once

#include "companion/commands/Context.h"
#include "companion/execution/Apply.h"

#include <memory>
#include <string>
#include <string_view>

namespace zolex::companion {

/// What a run did, for people, appended to a file: each line with its time, each command with what
/// it printed, its exit code and its duration. One that cannot be written any more is told once,
/// and stops nothing.
class RunLog {
  public:
    /// Appends what is run; null, after a message, when that fails.
    [[nodiscard]] static std::unique_ptr<RunLog> open(Context& context, const std::string& name);

    void line(std::string_view text);
    /// What was read of a machine, and every listing.
    void captured(const Snapshot& snapshot);
    void happened(const MachinePlan& plan, const JournalEvent& event);
    void ended(const ApplyEnd& end);

  private:
    RunLog(Context& context, std::string name, std::unique_ptr<File> file)
        : context_(context), name_(std::move(name)), file_(std::move(file)) {}

    /// What was printed, each line behind "  | ".
    void block(std::string_view output);
    [[nodiscard]] bool write(const std::string& text);
    void append(const std::string& text);

    Context& context_;
    std::string name_;
    std::unique_ptr<File> file_; ///< null: it could not be written any more
};

/// "2.103 s".
[[nodiscard]] std::string exactSeconds(std::int64_t milliseconds);

/// How a child ended: "exit 38", "not started", "still at work".
[[nodiscard]] std::string outcomeText(ChildOutcome outcome, std::uint32_t exitCode);

} // namespace zolex::companion
