#include "driver/Restore.h"

#include "commands/CommandSource.h"
#include "driver/ZOLEX.h"
#include "model/TypeTraits.h"

#include <utility>

namespace zolex {

namespace {

constexpr std::int32_t everyController = -1;

} // namespace

bool Restore::confirm() {
    Printer& printer = application_.printer();
    printer.print("\n", level::always);
    printer.print("ZOLEX will restore all RAID controllers to factory-default settings.\n",
                  level::always);
    printer.print("Are you sure you want to continue [Y/N]? ", level::always);
    const int answer = application_.platform().console().readCharacter();
    printer.print("\n", level::always);
    return answer == 'Y' || answer == 'y';
}

ModeResult Restore::run(ControllerList& controllers, std::int32_t number) {
    Printer& printer = application_.printer();
    printer.trace("Entering restoreDefaults\n");
    auto tool = application_.makeRunner();
    if (!tool) {
        printer.trace("Exiting restoreDefaults(1)\n");
        return {ExitCode::resources, false};
    }
    CommandRun commands(application_, Mode::restore, std::move(tool));
    // Printed here and at the end.
    printer.print("Restore-default settings complete.\n", level::progress);
    if (!application_.settings.noPrompt && !confirm()) {
        printer.trace("Exiting restoreDefaults(2)\n");
        return {};
    }
    printer.print("Restoring all controllers to factory-default settings ...\n", level::progress);
    const auto source = application_.makeRestoreSource();
    if (!source) {
        printer.trace("Exiting restoreDefaults(3)\n");
        return {ExitCode::resources, false};
    }
    if (application_.reordersByBusNumber()) {
        if (const ExitCode result = application_.captureConfiguration(controllers);
            result != ExitCode::success) {
            return {result, true};
        }
        controllers.reorderByBusNumber();
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const auto k = static_cast<std::int32_t>(i + 1);
        if (number != everyController && k != number) {
            continue;
        }
        if (!restoreController(commands, *source, *controllers.controller(i), k)) {
            return {ExitCode::restoreFailed, false};
        }
    }
    printer.print("Restore-default settings complete.\n", level::progress);
    printer.trace("Exiting restoreDefaults(8)\n");
    return {};
}

bool Restore::restoreController(CommandRun& commands, CommandSource& source,
                                RAIDController& controller, std::int32_t number) {
    for (std::size_t i = 0; i < source.numberOfCommands(controller); ++i) {
        const CString command = source.getCommand(controller, number, i);
        if (command.isEmpty()) {
            commands.printFailure(controller);
            application_.printer().trace("Exiting restoreDefaults(4)\n");
            return false;
        }
        if (!restoreCommand(commands, controller, number, command)) {
            return false;
        }
    }
    return true;
}

bool Restore::restoreCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                             CString command) {
    Printer& printer = application_.printer();
    const Settings& settings = application_.settings;
    printer.printfAlways("Restore Command=%s\n", command.c_str());
    if (settings.fake) {
        command = commands.fakeCommand(controller);
    }
    if (settings.noExecuteAll || settings.noExecuteReset) {
        return checkForErrors(application_, controller, number, 0, Mode::restore);
    }
    if (!commands.run(controller, command)) {
        commands.printFailure(controller);
        printer.trace("Exiting restoreDefaults(5)\n");
        return false;
    }
    if (printer.isVerbose()) {
        printer.trace("Restore Command Standard Output:\n");
        commands.traceOutput();
    }
    if (traitsOf(controller.type()).retriesReset &&
        !isAccepted(controller.type(), commands.exitCode())) {
        if (!commands.runAgain()) {
            printer.trace("Exiting restoreDefaults(6)\n");
            return false;
        }
    }
    if (!commands.succeeded(controller, number)) {
        printer.printAlways("Restore Command Standard Output:\n");
        commands.printOutput();
        printer.trace("Exiting restoreDefaults(7)\n");
        return false;
    }
    return true;
}

} // namespace zolex
