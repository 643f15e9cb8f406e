#pragma once

#include "controllers/Application.h"
#include "controllers/ControllerList.h"

#include <cstdint>

namespace zolex {

class CapturedOutput;

/// What a command's exit code is judged for; the number is the one that traces show.
enum class Mode : std::int32_t { restore = 0, capture = 1, deploy = 2 };

/// The application object with the modes of a run.
class ZOLEX : public Application {
  public:
    using Application::Application;

    /// The program: runs and ends the process with its exit code.
    [[noreturn]] static void main(int argc, const char* const* argv, Platform& platform);
    /// The program up to its exit code.
    static int run(int argc, const char* const* argv, Platform& platform);
    /// The program up to its exit code, over this application object.
    int run(int argc, const char* const* argv);

    /// Fills the settings: 0, or 4 after a fault, which has been reported.
    unsigned parseCommandLine(int argc, const char* const* argv);
    /// Prints the usage at level 0.
    void printUsage();

    /// Result of a mode. When `endsProcess` is set the exit code is final and nothing more is
    /// printed.
    struct Result {
        unsigned code = 0;
        bool endsProcess = false;
    };
    Result deployConfiguration(ControllerList& controllers);
    /// 0, 8 or 10.
    unsigned captureConfiguration(ControllerList& controllers);
    /// `number`: the one controller to restore, from 1; -1 for all.
    Result restoreDefaults(ControllerList& controllers, std::int32_t number);
    /// Whether the exit code is one of the three that the controller's type accepts; if not, the
    /// failure has been printed.
    bool checkForErrors(const RAIDController& controller, std::int32_t number,
                        std::uint32_t exitCode, Mode mode);

  private:
    int runModes(ControllerList& controllers);
    int detectionCheck(ControllerList& controllers);
    /// -1 when the combination of switches is allowed, else an exit code.
    int checkCombinations();
    bool refuseCombination(const char* text);
    void pauseWithDots(int seconds);
    void printOutput(CapturedOutput& output);
    CString modelName(const RAIDController& controller) const;
};

} // namespace zolex
