#pragma once

#include "driver/Application.h"
#include "driver/ExitCode.h"
#include "engine/PolicyInterpreter.h"
#include "inventory/ControllerList.h"

#include <cstdint>
#include <memory>

namespace zolex {

class CommandSource;
class DiskInformation;
class ParameterParser;
class PolicyGenerator;
class PolicyReader;
struct SourceOptions;

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

    /// Fills the settings: `success`, or `commandLine` after a fault, which has been reported.
    ExitCode parseCommandLine(int argc, const char* const* argv);
    /// Prints the usage at level 0.
    void printUsage();

    /// Plans and configures every controller; see Deploy.
    ModeResult deployConfiguration(ControllerList& controllers);
    /// The plans of the latest deployment.
    [[nodiscard]] const PolicyInterpreter::Result& planning() const { return planning_; }
    /// Dumps every controller and reads the dumps into the model; see Capture.
    ExitCode captureConfiguration(ControllerList& controllers);
    /// Returns controllers to factory defaults; see Restore.
    ModeResult restoreDefaults(ControllerList& controllers, std::int32_t number);
    /// Whether this machine's controllers of type 10 are put in order of bus number.
    [[nodiscard]] bool reordersByBusNumber() const;

    // The workers of the modes. Each is null when it cannot be made, which ends the mode with
    // `resources`.
    virtual std::unique_ptr<Tool> makeRunner();
    virtual std::unique_ptr<CommandSource> makeCaptureSource();
    virtual std::unique_ptr<CommandSource> makeRestoreSource();
    virtual std::unique_ptr<DiskInformation> makeDiskInformation();
    virtual std::unique_ptr<PolicyReader> makePolicyReader();
    virtual std::unique_ptr<PolicyGenerator> makePolicyGenerator();

  protected:
    /// Fills the table of switches.
    virtual void addSwitches(ParameterParser& parser);

  private:
    [[nodiscard]] SourceOptions sourceOptions() const;
    ExitCode checkDetection(ControllerList& controllers);
    void applyDefaults();
    bool findControllers(ControllerList& controllers);
    /// From the controller-definition file, when one is named, or else from the PCI functions.
    bool scanControllers(ControllerList& controllers);
    void printControllers(const ControllerList& controllers);
    ExitCode runModes(ControllerList& controllers);
    ExitCode runCapture(ControllerList& controllers);
    ExitCode runDeploy(ControllerList& controllers, bool hasSource);
    void printFailed(ExitCode code);
    void printCompleted();

    bool captured_ = false; ///< a capture ran before in this run
    PolicyInterpreter::Result planning_;
};

} // namespace zolex
