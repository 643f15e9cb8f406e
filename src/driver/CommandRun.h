#pragma once

#include "foundation/CString.h"
#include "platform/CapturedOutput.h"
#include "run/Runner.h"

#include <cstdint>
#include <memory>

namespace zolex {

class Application;
class RAIDController;
class Tool;

/// What a command's exit code is judged for; the number is the one that traces show.
enum class Mode : std::int32_t { restore = 0, capture = 1, deploy = 2 };

/// The commands of one mode: runs them, shows what is run and judges the exit codes, in the texts
/// of the program.
class CommandRun : private RunEvents {
  public:
    /// `tool` is not null.
    CommandRun(Application& application, Mode mode, std::unique_ptr<Tool> tool);

    /// A dot for each second, and the end of their line.
    void pause(int seconds) { runner_.pause(seconds); }
    /// Shows and runs one command line of the controller; false when it could not run or did not
    /// end.
    bool run(const RAIDController& controller, const CString& command);
    bool runAgain() { return runner_.runAgain(); }
    [[nodiscard]] std::uint32_t exitCode() const { return runner_.exitCode(); }
    [[nodiscard]] std::shared_ptr<CapturedOutput> output() const { return runner_.output(); }

    /// Shows and returns the command that is run instead of a utility's.
    CString fakeCommand(const RAIDController& controller);
    /// Whether the exit code of the latest run counts as success; if not, the failure has been
    /// printed. `number` is the controller's, from 1.
    bool succeeded(const RAIDController& controller, std::int32_t number);
    void printFailure(const RAIDController& controller);
    /// Prints the rest of the latest output line by line, as it came.
    void printOutput();
    /// The same as traces.
    void traceOutput();

  private:
    void starting(const CString& commandLine) override;
    void secondPassed() override;
    void pauseEnded() override;

    Application& application_;
    Mode mode_;
    Runner runner_;
};

/// Whether the exit code is one that the controller's type accepts; if not, the failure of the mode
/// has been printed.
bool checkForErrors(Application& application, const RAIDController& controller, std::int32_t number,
                    std::uint32_t exitCode, Mode mode);

} // namespace zolex
