#include "driver/ZOLEX.h"

#include "commands/CommandGenerator.h"
#include "driver/KnownMachine.h"
#include "driver/PolicyArguments.h"

#include <utility>

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
    if (planning_.noPolicyFound && settings.e1) {
        return {noPolicyForController, false};
    }
    if (planning_.noDrives && settings.e3) {
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
    PolicyInterpreter interpreter(*policies->policies(), {.reportUnmatched = settings.e1},
                                  report());
    planning_ =
        interpreter.createConfigurations(controllers, [this] { return knownMachine(*this); });
    if (planning_.fault) {
        returnCode = planningCodeOf(planning_.fault->kind);
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

unsigned ZOLEX::generateCommands(const RAIDController& controller, std::int32_t number,
                                 const RAIDConfiguration& layout) {
    const CString model = modelName(controller);
    if (const GeneratorEntry* entry = findGenerator(controller.type()); entry != nullptr) {
        printer().trace(entry->creationTrace);
        printer().printf(level::detail, "\tGenerating commands for controller %d: %s ...\n", number,
                         model.c_str());
        printer().printf(level::progress, "        Controller %d:  %s ...", number, model.c_str());
        printer().print("\n", level::progress);
    }
    CommandLines generated = commandLines(controller, number, layout,
                                          {.pathPrefix = settings.commandPathPrefix}, report());
    // A line that finds no room is dropped without a message: the run fetches only the first half
    // of the list, so that no line is lost that would have been run.
    static_assert(CommandList::fetchable * 2 == CommandList::slots, "the first half is fetched");
    for (CString& line : generated.lines) {
        static_cast<void>(commands_.add(std::move(line)));
    }
    if (!generated.fault) {
        return success;
    }
    if (generated.fault->kind == FaultKind::typeWithoutGenerator) {
        printer().trace("Exiting ZOLEX::deployConfiguration(1)\n");
        return resourcesMissing;
    }
    printer().print("An internal error has occurred.\n", level::detail);
    printer().trace("Exiting ZOLEX::deployConfiguration(2)\n");
    return commandFailed;
}

unsigned ZOLEX::configureController(Tool& runner, RAIDController& controller, std::int32_t number,
                                    std::size_t& nextCommand) {
    const ControllerPlan& plan = planning_.plans.at(static_cast<std::size_t>(number - 1));
    if (!plan.layout) {
        printer().printf(level::progress, "\tSkipped %s controller.\n",
                         modelName(controller).c_str());
        return success;
    }
    if (const unsigned result = generateCommands(controller, number, *plan.layout);
        result != success) {
        return result;
    }
    while (const CString* command = commands_.get(nextCommand)) {
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
