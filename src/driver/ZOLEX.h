#pragma once

#include "controllers/Application.h"
#include "driver/CommandList.h"
#include "engine/PolicyInterpreter.h"
#include "inventory/ControllerList.h"

#include <cstddef>
#include <cstdint>
#include <memory>

namespace zolex {

class CapturedOutput;
class CommandSource;
struct SourceOptions;
class DiskInformation;
class ParameterParser;
class PolicyGenerator;
class PolicyReader;

/// What a command's exit code is judged for; the number is the one that traces show.
enum class Mode : std::int32_t { restore = 0, capture = 1, deploy = 2 };

/// The application object with the modes of a run.
class ZOLEX : public Application {
  public:
    using Application::Application;
    virtual ~ZOLEX() = default;

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
    /// Plans and configures every controller: 0, 1, 3, 5, 10, 11, or the result of the capture that
    /// it begins with.
    Result deployConfiguration(ControllerList& controllers);
    /// The plans of the latest deployment.
    [[nodiscard]] const PolicyInterpreter::Result& planning() const { return planning_; }
    /// Dumps every controller and reads the dumps into the model: 0, 8 or 10.
    unsigned captureConfiguration(ControllerList& controllers);
    /// Returns every controller (`number` -1), or the one numbered `number` from 1, to factory
    /// defaults: 0, 7, 10, or the result of a capture. A number that no controller has restores
    /// none, and an operator who declines does so too: both are 0.
    Result restoreDefaults(ControllerList& controllers, std::int32_t number);
    /// Whether the exit code is one of the three that the controller's type accepts; if not, the
    /// failure has been printed.
    bool checkForErrors(const RAIDController& controller, std::int32_t number,
                        std::uint32_t exitCode, Mode mode);

  protected:
    /// Fills the table of switches.
    virtual void addSwitches(ParameterParser& parser);

    // The workers of the modes. Each is null when it cannot be made, which ends the mode with 10.
    virtual std::unique_ptr<Tool> makeRunner();
    virtual std::unique_ptr<CommandSource> makeCaptureSource();
    virtual std::unique_ptr<CommandSource> makeRestoreSource();
    virtual std::unique_ptr<DiskInformation> makeDiskInformation();
    virtual std::unique_ptr<PolicyReader> makePolicyReader();
    virtual std::unique_ptr<PolicyGenerator> makePolicyGenerator();

  private:
    enum class Combination { allowed, refused, detectionCheck };

    // The main flow
    Combination checkCombinations();
    bool refuse(const char* heading, const char* parameters);
    int checkDetection(ControllerList& controllers);
    void applyDefaults();
    bool findControllers(ControllerList& controllers);
    /// From the controller-definition file, when one is named, or else from the PCI functions.
    bool scanControllers(ControllerList& controllers);
    void printControllers(const ControllerList& controllers);
    int runModes(ControllerList& controllers);
    int runCapture(ControllerList& controllers);
    int runDeploy(ControllerList& controllers, bool hasSource);
    void printFailed(unsigned code);
    void printCompleted();

    // Capture and restore
    bool captureController(Tool& runner, CommandSource& source, RAIDController& controller,
                           std::int32_t number);
    bool captureCommand(Tool& runner, RAIDController& controller, std::int32_t number,
                        CString command);
    bool confirmRestore();
    unsigned restoreController(Tool& runner, CommandSource& source, RAIDController& controller,
                               std::int32_t number);
    bool restoreCommand(Tool& runner, RAIDController& controller, std::int32_t number,
                        CString command);
    void traceOutput(Tool& runner);

    // Deploy
    /// Generates the controller's command lines and keeps those that find room: 0, 10 or 11.
    unsigned generateCommands(const RAIDController& controller, std::int32_t number,
                              const RAIDConfiguration& layout);
    unsigned planConfigurations(ControllerList& controllers);
    unsigned configureControllers(Tool& runner, ControllerList& controllers);
    unsigned configureController(Tool& runner, RAIDController& controller, std::int32_t number,
                                 std::size_t& nextCommand);
    bool deployCommand(Tool& runner, RAIDController& controller, std::int32_t number,
                       CString command);

    // Shared by the modes
    [[nodiscard]] SourceOptions sourceOptions() const;
    /// Whether this machine's controllers of type 10 are put in order of bus number.
    [[nodiscard]] bool reordersByBusNumber() const;
    void pauseWithDots(int seconds);
    /// Shows and returns the command that is run instead of a utility's.
    CString fakeCommand(const RAIDController& controller, Mode mode);
    /// Prints the rest of the runner's output line by line, as it came.
    void printOutput(Tool& runner);
    /// Shows and runs one command line with its output captured, after the pause that the type
    /// needs; false when it could not run or did not end.
    bool runCommand(Tool& runner, const RAIDController& controller, const CString& command);
    void printFailure(const RAIDController& controller, Mode mode);
    bool isAccepted(const RAIDController& controller, std::uint32_t exitCode);
    CString modelName(const RAIDController& controller) const;

    CommandList commands_;  ///< the commands of the deploy run
    bool captured_ = false; ///< a capture ran before in this run
    PolicyInterpreter::Result planning_;
};

} // namespace zolex
