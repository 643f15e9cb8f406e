#include "driver/ZOLEX.h"

#include "commands/CommandSource.h"
#include "foundation/Text.h"
#include "model/TypeTraits.h"

#include <string_view>

namespace zolex {

namespace {

constexpr unsigned restoreFailed = 7;
constexpr unsigned resourcesMissing = 10;
constexpr std::int32_t everyController = -1;

} // namespace

bool ZOLEX::confirmRestore() {
    printer().print("\n", level::always);
    printer().print("ZOLEX will restore all RAID controllers to factory-default settings.\n",
                    level::always);
    printer().print("Are you sure you want to continue [Y/N]? ", level::always);
    const int answer = platform().console().readCharacter();
    printer().print("\n", level::always);
    return answer == 'Y' || answer == 'y';
}

ZOLEX::Result ZOLEX::restoreDefaults(ControllerList& controllers, std::int32_t number) {
    printer().trace("Entering restoreDefaults\n");
    const auto runner = makeRunner();
    if (!runner) {
        printer().trace("Exiting restoreDefaults(1)\n");
        return {resourcesMissing, false};
    }
    // Printed here and at the end.
    printer().print("Restore-default settings complete.\n", level::progress);
    if (!settings.noPrompt && !confirmRestore()) {
        printer().trace("Exiting restoreDefaults(2)\n");
        return {};
    }
    printer().print("Restoring all controllers to factory-default settings ...\n", level::progress);
    const auto source = makeRestoreSource();
    if (!source) {
        printer().trace("Exiting restoreDefaults(3)\n");
        return {resourcesMissing, false};
    }
    if (reordersByBusNumber()) {
        if (const unsigned result = captureConfiguration(controllers); result != 0) {
            return {result, true};
        }
        controllers.reorderByBusNumber();
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const auto k = static_cast<std::int32_t>(i + 1);
        if (number != everyController && k != number) {
            continue;
        }
        if (const unsigned result =
                restoreController(*runner, *source, *controllers.controller(i), k);
            result != 0) {
            return {result, false};
        }
    }
    printer().print("Restore-default settings complete.\n", level::progress);
    printer().trace("Exiting restoreDefaults(8)\n");
    return {};
}

unsigned ZOLEX::restoreController(Tool& runner, CommandSource& source, RAIDController& controller,
                                  std::int32_t number) {
    for (std::size_t i = 0; i < source.numberOfCommands(controller); ++i) {
        const CString command = source.getCommand(controller, number, i);
        if (command.isEmpty()) {
            printFailure(controller, Mode::restore);
            printer().trace("Exiting restoreDefaults(4)\n");
            return restoreFailed;
        }
        if (!restoreCommand(runner, controller, number, command)) {
            return restoreFailed;
        }
    }
    return 0;
}

bool ZOLEX::restoreCommand(Tool& runner, RAIDController& controller, std::int32_t number,
                           CString command) {
    printer().printfAlways("Restore Command=%s\n", command.c_str());
    if (settings.fake) {
        command = fakeCommand(controller, Mode::restore);
    }
    if (settings.noExecuteAll || settings.noExecuteReset) {
        return checkForErrors(controller, number, 0, Mode::restore);
    }
    if (!runCommand(runner, controller, command)) {
        printFailure(controller, Mode::restore);
        printer().trace("Exiting restoreDefaults(5)\n");
        return false;
    }
    if (printer().isVerbose()) {
        traceOutput(runner);
    }
    if (traitsOf(controller.type()).retriesReset && !isAccepted(controller, runner.exitCode())) {
        printer().printfAlways("Executing:%s\n", command.c_str());
        if (!runner.run(true)) {
            printer().trace("Exiting restoreDefaults(6)\n");
            return false;
        }
    }
    if (!checkForErrors(controller, number, runner.exitCode(), Mode::restore)) {
        printer().printAlways("Restore Command Standard Output:\n");
        printOutput(runner);
        printer().trace("Exiting restoreDefaults(7)\n");
        return false;
    }
    return true;
}

void ZOLEX::traceOutput(Tool& runner) {
    printer().trace("Restore Command Standard Output:\n");
    const auto output = runner.output();
    for (std::string_view piece = output->nextPiece(capturedLineLimit); !piece.empty();
         piece = output->nextPiece(capturedLineLimit)) {
        printer().trace(piece);
    }
}

} // namespace zolex
