#include "driver/Capture.h"

#include "commands/CommandSource.h"
#include "driver/ZOLEX.h"
#include "readers/DiskInformation.h"

namespace zolex {

ExitCode Capture::run(ControllerList& controllers) {
    Printer& printer = application_.printer();
    const Settings& settings = application_.settings;
    printer.trace("Entering ZOLEX::captureConfiguration\n");
    auto tool = application_.makeRunner();
    if (!tool) {
        return ExitCode::resources;
    }
    CommandRun commands(application_, Mode::capture, std::move(tool));
    printer.print("Capturing configurations from supported controllers ...\n", level::progress);
    const auto source = application_.makeCaptureSource();
    if (!source) {
        return ExitCode::resources;
    }
    // What an earlier capture of this run has read is no longer true. There is none under /fake:
    // only machines that the hardware detector has named are captured twice.
    if (captured_) {
        for (std::size_t i = 0; i < controllers.count(); ++i) {
            controllers.controller(i)->forgetReadings();
        }
    }
    captured_ = true;
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        if (!captureController(commands, *source, *controllers.controller(i),
                               static_cast<int>(i + 1))) {
            return ExitCode::captureFailed;
        }
    }
    printer.print("Reading configuration parameters from supported controllers ...\n",
                  level::progress);
    const auto information = application_.makeDiskInformation();
    if (!information) {
        return ExitCode::resources;
    }
    if (!information->readDiskInformation(controllers)) {
        return ExitCode::captureFailed;
    }
    if (settings.debug) {
        printer.printAlways(controllers.dumpText(settings.capture));
    }
    printer.print("Gathering hard disk information completed \n", level::progress);
    printer.trace("Exiting ZOLEX::captureConfiguration\n");
    return ExitCode::success;
}

bool Capture::captureController(CommandRun& commands, CommandSource& source,
                                RAIDController& controller, std::int32_t number) {
    application_.printer().tracef("Number of commmands required for controller %d = %d\n", number,
                                  static_cast<int>(source.numberOfCommands(controller)));
    for (std::size_t i = 0; i < source.numberOfCommands(controller); ++i) {
        if (!captureCommand(commands, controller, number,
                            source.getCommand(controller, number, i))) {
            return false;
        }
    }
    return true;
}

bool Capture::captureCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                             CString command) {
    Printer& printer = application_.printer();
    const Settings& settings = application_.settings;
    printer.printfAlways("Capture Command=%s\n", command.c_str());
    if (settings.fake || settings.noExecuteAll || settings.noExecuteCapture) {
        command = commands.fakeCommand(controller);
    }
    if (!commands.run(controller, command)) {
        commands.printFailure(controller);
        return false;
    }
    // The readers parse it later; a fifth output finds no slot and is dropped.
    controller.addCapturedOutput(commands.output());
    if (!commands.succeeded(controller, number)) {
        printer.printAlways("Capture Command Standard Output:\n");
        commands.printOutput();
        return false;
    }
    return true;
}

} // namespace zolex
