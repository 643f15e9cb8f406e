#include "driver/CommandRun.h"

#include "driver/Application.h"
#include "model/RAIDController.h"

#include <string_view>
#include <utility>

namespace zolex {

namespace {

CString modelName(const RAIDController& controller) {
    return ControllerCatalogue::getControllerName(controller.type(), controller.subtype());
}

void printFailureOf(Printer& printer, const RAIDController& controller, Mode mode) {
    const CString model = modelName(controller);
    switch (mode) {
    case Mode::restore:
        printer.printf(level::progress,
                       "     Error restoring controller %s to factory-default settings.\n",
                       model.c_str());
        break;
    case Mode::capture:
        printer.printf(level::progress, "     Error gathering information from controller %s.\n",
                       model.c_str());
        break;
    case Mode::deploy:
        printer.printf(level::progress, "     Error deploying configuration to controller %s.\n",
                       model.c_str());
        break;
    }
}

/// Calls print with each piece of what is left of the output.
template <typename Print>
void eachPiece(CapturedOutput& output, Print print) {
    for (std::string_view piece = output.nextPiece(capturedLineLimit); !piece.empty();
         piece = output.nextPiece(capturedLineLimit)) {
        print(piece);
    }
}

} // namespace

CommandRun::CommandRun(Application& application, Mode mode, std::unique_ptr<Tool> tool)
    : application_(application), mode_(mode),
      runner_(std::move(tool), application.platform(), *this) {}

bool CommandRun::run(const RAIDController& controller, const CString& command) {
    return runner_.run(controller.type(), command);
}

void CommandRun::starting(const CString& commandLine) {
    application_.printer().printfAlways("Executing:%s\n", commandLine.c_str());
}

void CommandRun::secondPassed() {
    application_.printer().printAlways(".");
}

void CommandRun::pauseEnded() {
    application_.printer().printAlways("\n");
}

CString CommandRun::fakeCommand(const RAIDController& controller) {
    CString command = formatText("fakeraid %d %s", static_cast<std::int32_t>(mode_),
                                 modelName(controller).c_str());
    application_.printer().printfAlways("FakeRAID Command=%s\n", command.c_str());
    return command;
}

bool CommandRun::succeeded(const RAIDController& controller, std::int32_t number) {
    return checkForErrors(application_, controller, number, exitCode(), mode_);
}

void CommandRun::printFailure(const RAIDController& controller) {
    printFailureOf(application_.printer(), controller, mode_);
}

void CommandRun::printOutput() {
    eachPiece(*output(),
              [this](std::string_view piece) { application_.printer().printAlways(piece); });
}

void CommandRun::traceOutput() {
    eachPiece(*output(), [this](std::string_view piece) { application_.printer().trace(piece); });
}

bool checkForErrors(Application& application, const RAIDController& controller, std::int32_t number,
                    std::uint32_t exitCode, Mode mode) {
    Printer& printer = application.printer();
    const auto shownCode = static_cast<std::int32_t>(exitCode);
    printer.tracef("Entering ZOLEX::checkForErrors, controllerNum=%d, RC=%d, Mode=%d\n", number,
                   shownCode, static_cast<std::int32_t>(mode));
    if (isAccepted(controller.type(), exitCode)) {
        printer.trace("Exiting ZOLEX::checkForErrors, returning true\n");
        return true;
    }
    printer.print("### ERROR\n", level::progress);
    printFailureOf(printer, controller, mode);
    printer.printf(level::progress, "     Received error return code %d from the %s command.\n",
                   shownCode, ControllerCatalogue::getUtilityCommand(controller.type()).c_str());
    return false;
}

} // namespace zolex
