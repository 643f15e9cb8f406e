#include "driver/ZOLEX.h"

#include "model/TypeTraits.h"

#include <string_view>

namespace zolex {

bool ZOLEX::isAccepted(const RAIDController& controller, std::uint32_t exitCode) {
    for (std::int32_t slot = 1; slot <= 3; ++slot) {
        const std::int32_t accepted = catalogue().getAcceptedReturnCode(controller.type(), slot);
        if (accepted >= 0 && exitCode == static_cast<std::uint32_t>(accepted)) {
            return true;
        }
    }
    return false;
}

void ZOLEX::printFailure(const RAIDController& controller, Mode mode) {
    const CString model = modelName(controller);
    switch (mode) {
    case Mode::restore:
        printer().printf(level::progress,
                         "     Error restoring controller %s to factory-default settings.\n",
                         model.c_str());
        break;
    case Mode::capture:
        printer().printf(level::progress, "     Error gathering information from controller %s.\n",
                         model.c_str());
        break;
    case Mode::deploy:
        printer().printf(level::progress, "     Error deploying configuration to controller %s.\n",
                         model.c_str());
        break;
    }
}

bool ZOLEX::checkForErrors(const RAIDController& controller, std::int32_t number,
                           std::uint32_t exitCode, Mode mode) {
    const auto shownCode = static_cast<std::int32_t>(exitCode);
    printer().tracef("Entering ZOLEX::checkForErrors, controllerNum=%d, RC=%d, Mode=%d\n", number,
                     shownCode, static_cast<std::int32_t>(mode));
    if (isAccepted(controller, exitCode)) {
        printer().trace("Exiting ZOLEX::checkForErrors, returning true\n");
        return true;
    }
    printer().print("### ERROR\n", level::progress);
    printFailure(controller, mode);
    printer().printf(level::progress, "     Received error return code %d from the %s command.\n",
                     shownCode, catalogue().getUtilityCommand(controller.type()).c_str());
    return false;
}

bool ZOLEX::reordersByBusNumber() const {
    return machine &&
           (machine->machineType.contains("5941") || machine->machineType.contains("5944"));
}

void ZOLEX::pauseWithDots(int seconds) {
    for (int second = 0; second < seconds; ++second) {
        platform().pauseOneSecond();
        printer().printAlways(".");
    }
    printer().printAlways("\n");
}

CString ZOLEX::fakeCommand(const RAIDController& controller, Mode mode) {
    CString command = formatText("fakeraid %d %s", static_cast<std::int32_t>(mode),
                                 modelName(controller).c_str());
    printer().printfAlways("FakeRAID Command=%s\n", command.c_str());
    return command;
}

bool ZOLEX::runCommand(Tool& runner, const RAIDController& controller, const CString& command) {
    runner.setCommand(command);
    printer().printfAlways("Executing:%s\n", command.c_str());
    if (const int seconds = traitsOf(controller.type()).secondsBeforeCommand; seconds > 0) {
        pauseWithDots(seconds);
    }
    return runner.run(true);
}

void ZOLEX::printOutput(Tool& runner) {
    const auto output = runner.output();
    for (std::string_view piece = output->nextPiece(capturedLineLimit); !piece.empty();
         piece = output->nextPiece(capturedLineLimit)) {
        printer().printAlways(piece);
    }
}

} // namespace zolex
