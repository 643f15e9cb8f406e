#include "driver/ZOLEX.h"

#include "commands/CommandSource.h"
#include "readers/DiskInformation.h"

#include <string>
#include <utility>
#include <vector>

namespace zolex {

namespace {

constexpr unsigned captureFailed = 8;
constexpr unsigned resourcesMissing = 10;

/// Listings of a controller that are kept; a fifth is dropped.
constexpr std::size_t mostListings = 4;

} // namespace

unsigned ZOLEX::captureConfiguration(ControllerList& controllers) {
    printer().trace("Entering ZOLEX::captureConfiguration\n");
    const auto runner = makeRunner();
    if (!runner) {
        return resourcesMissing;
    }
    printer().print("Capturing configurations from supported controllers ...\n", level::progress);
    const auto source = makeCaptureSource();
    if (!source) {
        return resourcesMissing;
    }
    // What an earlier capture of this run has read is no longer true. There is none under /fake:
    // only machines that the hardware detector has named are captured twice.
    if (captured_) {
        for (std::size_t i = 0; i < controllers.count(); ++i) {
            controllers.controller(i)->forgetReadings();
        }
    }
    captured_ = true;
    std::vector<std::vector<std::string>> listings(controllers.count());
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        if (!captureController(*runner, *source, *controllers.controller(i),
                               static_cast<int>(i + 1), listings[i])) {
            return captureFailed;
        }
    }
    printer().print("Reading configuration parameters from supported controllers ...\n",
                    level::progress);
    const auto information = makeDiskInformation();
    if (!information) {
        return resourcesMissing;
    }
    const CString& definition = settings.controllerDefinitionFile;
    const bool read =
        definition.isEmpty()
            ? information->readDiskInformation(controllers, listings)
            : information->readDefinition(controllers, platform().files(), definition);
    listings.clear();
    if (!read) {
        return captureFailed;
    }
    if (settings.debug) {
        printer().printAlways(controllers.dumpText(settings.capture));
    }
    printer().print("Gathering hard disk information completed \n", level::progress);
    printer().trace("Exiting ZOLEX::captureConfiguration\n");
    return 0;
}

bool ZOLEX::captureController(Tool& runner, CommandSource& source, const RAIDController& controller,
                              std::int32_t number, std::vector<std::string>& listings) {
    printer().tracef("Number of commmands required for controller %d = %d\n", number,
                     static_cast<int>(source.numberOfCommands(controller)));
    for (std::size_t i = 0; i < source.numberOfCommands(controller); ++i) {
        if (!captureCommand(runner, controller, number, source.getCommand(controller, number, i),
                            listings)) {
            return false;
        }
    }
    return true;
}

bool ZOLEX::captureCommand(Tool& runner, const RAIDController& controller, std::int32_t number,
                           CString command, std::vector<std::string>& listings) {
    printer().printfAlways("Capture Command=%s\n", command.c_str());
    if (settings.fake || settings.noExecuteAll || settings.noExecuteCapture) {
        command = fakeCommand(controller, Mode::capture);
    }
    if (!runCommand(runner, controller, command)) {
        printFailure(controller, Mode::capture);
        return false;
    }
    if (!checkForErrors(controller, number, runner.exitCode(), Mode::capture)) {
        printer().printAlways("Capture Command Standard Output:\n");
        printOutput(runner);
        return false;
    }
    // The readers parse it later.
    if (listings.size() < mostListings) {
        listings.push_back(runner.output()->take());
    }
    return true;
}

} // namespace zolex
