#pragma once

#include "support/FaultPlatform.h"
#include "support/ModeRun.h"

#include <string>
#include <vector>

namespace zolex::test {

/// One run of the program on a server with controllers of three families.
struct Scenario {
    const char* name;
    std::vector<std::string> arguments;
    const char* policies; ///< content of p.ini before the run; null when there is none
    bool keepsTempFile;   ///< the run is one for debugging
    bool ordersByBus;     ///< the machine is one whose type 10 controllers are put in order
};

/// Every mode, and the ways to combine them.
const std::vector<Scenario>& scenarios();

/// What a run has left behind.
struct Outcome {
    int exitCode = -1;
    std::string output;
    std::string error;
    std::vector<std::string> children; ///< without immediate repetitions
    bool hasPolicies = false;
    std::string policies;
    bool hasTempFile = false;
    std::vector<std::string> otherFiles; ///< names of files that were not there before
    std::vector<std::string> struck;     ///< what the fault has met, in order
    int openFiles = 0;
    int openKeys = 0;
    std::array<int, operations> calls{};
};

/// The server and the files of a scenario, ready to run.
class FaultRun {
  public:
    FaultRun(const Scenario& scenario, Fault fault);
    /// Runs the program. An exception for want of memory ends it as it ends the process.
    Outcome run();
    /// The program's main function: ends the process. What was left behind can be asked for then.
    [[noreturn]] void runMain();
    [[nodiscard]] Outcome outcome(int exitCode);

  private:
    std::vector<const char*> arguments() const;

    const Scenario& scenario_;
    ModeRun server_;
    FaultPlatform platform_;
};

/// What no fault may bring about: an exit code of its own making, a damaged policies file, a temp
/// file left behind, commands that the whole run would not have given, or a success that is none.
void expectNoHarm(const Scenario& scenario, const Outcome& whole, const Outcome& got);

/// Whether `text` holds `part`.
bool holds(const std::string& text, const std::string& part);
/// The policies file before the run; empty when there is none.
std::string policiesBefore(const Scenario& scenario);

} // namespace zolex::test
