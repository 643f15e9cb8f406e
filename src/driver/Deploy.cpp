#include "driver/ZOLEX.h"

#include "commands/CommandGenerator.h"
#include "driver/PolicyArguments.h"
#include "engine/PolicyInterpreter.h"

#include <memory>

namespace zolex {

namespace {

constexpr unsigned success = 0;
constexpr unsigned noPolicyForController = 1;
constexpr unsigned controllerWithoutDrives = 3;
constexpr unsigned policiesInvalid = 5;
constexpr unsigned resourcesMissing = 10;
constexpr unsigned commandFailed = 11;

} // namespace

ZOLEX::Result ZOLEX::deployConfiguration(ControllerList& controllers) {
    constexpr int secondsBeforeDeploy = 10;
    printer().trace("Entering ZOLEX::deployConfiguration\n");
    const auto runner = makeRunner();
    if (!runner) {
        return {resourcesMissing, false};
    }
    pauseWithDots(secondsBeforeDeploy);
    if (const unsigned result = captureConfiguration(controllers); result != success) {
        return {result, true};
    }
    if (reordersByBusNumber()) {
        controllers.reorderByBusNumber();
    }
    if (const unsigned result = planConfigurations(controllers); result != success) {
        return {result, false};
    }
    if (const unsigned result = configureControllers(*runner, controllers); result != success) {
        return {result, false};
    }
    if (noPolicyFound && settings.e1) {
        return {noPolicyForController, false};
    }
    if (noDrives && settings.e3) {
        return {controllerWithoutDrives, false};
    }
    printer().print("All configuration commands succeeded.\n", level::progress);
    printer().trace("Exiting ZOLEX::deployConfiguration(5)\n");
    return {};
}

unsigned ZOLEX::planConfigurations(ControllerList& controllers) {
    if (settings.defaults) {
        printer().print("Using default policy for all RAID controllers.\n", level::progress);
    } else {
        printer().printf(level::progress, "Checking policies file syntax: %s ...\n",
                         settings.policiesFile.c_str());
    }
    const auto policies = makePolicyReader();
    if (!policies) {
        return resourcesMissing;
    }
    if (!policies->read(policySource(settings))) {
        return policiesInvalid;
    }
    if (policies->policies() == nullptr) {
        return resourcesMissing;
    }
    printer().print("Interpreting policies and determining configurations ...\n", level::progress);
    PolicyInterpreter interpreter(*this, *policies->policies());
    if (!interpreter.createConfigurations(controllers)) {
        printer().trace("Received an error from interpreter\n");
        return policiesInvalid;
    }
    return success;
}

unsigned ZOLEX::configureControllers(Tool& runner, ControllerList& controllers) {
    printer().print("Configuring RAID controllers ...", level::progress);
    printer().print("\n", level::progress);
    // Counts over all controllers: the generated commands are one list.
    std::size_t nextCommand = 0;
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        if (const unsigned result = configureController(runner, *controllers.controller(i),
                                                        static_cast<int>(i + 1), nextCommand);
            result != success) {
            return result;
        }
    }
    return success;
}

unsigned ZOLEX::configureController(Tool& runner, RAIDController& controller, std::int32_t number,
                                    std::size_t& nextCommand) {
    const CString model = modelName(controller);
    if (controller.configuration() == nullptr) {
        printer().printf(level::progress, "\tSkipped %s controller.\n", model.c_str());
        return success;
    }
    const GeneratorEntry* entry = findGenerator(controller.type());
    if (entry == nullptr) {
        printer().errorBlockf("Internal error.  Controller type not found:  %s", model.c_str());
        printer().trace("Exiting ZOLEX::deployConfiguration(1)\n");
        return resourcesMissing;
    }
    printer().trace(entry->creationTrace);
    const std::unique_ptr<CommandGenerator> generator = entry->create(*this);
    printer().printf(level::detail, "\tGenerating commands for controller %d: %s ...\n", number,
                     model.c_str());
    printer().printf(level::progress, "        Controller %d:  %s ...", number, model.c_str());
    printer().print("\n", level::progress);
    generator->start(controller, number,
                     settings.commandPathPrefix + catalogue().getUtilityCommand(controller.type()));
    if (!generator->generate()) {
        printer().print("An internal error has occurred.\n", level::detail);
        printer().trace("Exiting ZOLEX::deployConfiguration(2)\n");
        return commandFailed;
    }
    while (const CString* command = commands().get(nextCommand)) {
        ++nextCommand;
        if (!deployCommand(runner, controller, number, *command)) {
            return commandFailed;
        }
    }
    return success;
}

bool ZOLEX::deployCommand(Tool& runner, RAIDController& controller, std::int32_t number,
                          CString command) {
    printer().printfAlways("Deploy Command=%s\n", command.c_str());
    if (settings.fake) {
        command = fakeCommand(controller, Mode::deploy);
    }
    if (settings.noExecuteAll || settings.noExecuteDeploy) {
        return checkForErrors(controller, number, 0, Mode::deploy);
    }
    if (!runCommand(runner, controller, command)) {
        printFailure(controller, Mode::deploy);
        printer().trace("Exiting ZOLEX::deployConfiguration(3)\n");
        return false;
    }
    if (printer().isVerbose()) {
        printOutput(runner);
    }
    if (!checkForErrors(controller, number, runner.exitCode(), Mode::deploy)) {
        printer().printAlways("Deploy Command Standard Output:\n");
        printOutput(runner);
        printer().trace("Exiting ZOLEX::deployConfiguration(4)\n");
        return false;
    }
    return true;
}

} // namespace zolex
