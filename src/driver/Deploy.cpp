#include "driver/Deploy.h"

#include "commands/CommandGenerator.h"
#include "driver/KnownMachine.h"
#include "driver/PolicyArguments.h"
#include "driver/ZOLEX.h"

#include <utility>

namespace zolex {

ModeResult Deploy::run(ControllerList& controllers) {
    constexpr int secondsBeforeDeploy = 10;
    application_.printer().trace("Entering ZOLEX::deployConfiguration\n");
    auto tool = application_.makeRunner();
    if (!tool) {
        return {ExitCode::resources, false};
    }
    CommandRun commands(application_, Mode::deploy, std::move(tool));
    commands.pause(secondsBeforeDeploy);
    if (const ExitCode result = application_.captureConfiguration(controllers);
        result != ExitCode::success) {
        return {result, true};
    }
    if (application_.reordersByBusNumber()) {
        controllers.reorderByBusNumber();
    }
    if (const ExitCode result = plan(controllers); result != ExitCode::success) {
        return {result, false};
    }
    if (const ExitCode result = configureControllers(commands, controllers);
        result != ExitCode::success) {
        return {result, false};
    }
    if (planning_.noPolicyFound && application_.settings.e1) {
        return {ExitCode::noPolicy, false};
    }
    if (planning_.noDrives && application_.settings.e3) {
        return {ExitCode::noDrives, false};
    }
    application_.printer().print("All configuration commands succeeded.\n", level::progress);
    application_.printer().trace("Exiting ZOLEX::deployConfiguration(5)\n");
    return {};
}

ExitCode Deploy::plan(ControllerList& controllers) {
    if (application_.settings.defaults) {
        application_.printer().print("Using default policy for all RAID controllers.\n",
                                     level::progress);
    } else {
        application_.printer().printf(level::progress, "Checking policies file syntax: %s ...\n",
                                      application_.settings.policiesFile.c_str());
    }
    const auto policies = application_.makePolicyReader();
    if (!policies) {
        return ExitCode::resources;
    }
    if (!policies->read(policySource(application_.settings))) {
        return ExitCode::policies;
    }
    if (policies->policies() == nullptr) {
        return ExitCode::resources;
    }
    application_.printer().print("Interpreting policies and determining configurations ...\n",
                                 level::progress);
    PolicyInterpreter interpreter(*policies->policies(),
                                  {.reportUnmatched = application_.settings.e1},
                                  application_.report());
    planning_ = interpreter.createConfigurations(controllers,
                                                 [this] { return knownMachine(application_); });
    if (planning_.fault) {
        application_.returnCode = planningCodeOf(planning_.fault->kind);
        application_.printer().trace("Received an error from interpreter\n");
        return ExitCode::policies;
    }
    return ExitCode::success;
}

ExitCode Deploy::configureControllers(CommandRun& commands, ControllerList& controllers) {
    application_.printer().print("Configuring RAID controllers ...", level::progress);
    application_.printer().print("\n", level::progress);
    // Counts over all controllers: the generated commands are one list.
    std::size_t nextCommand = 0;
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        if (const ExitCode result = configureController(commands, *controllers.controller(i),
                                                        planning_.plans.at(i), nextCommand);
            result != ExitCode::success) {
            return result;
        }
    }
    return ExitCode::success;
}

ExitCode Deploy::generateCommands(const RAIDController& controller, std::int32_t number,
                                  const RAIDConfiguration& layout) {
    const CString model = application_.controllerName(controller.type(), controller.subtype());
    if (const GeneratorEntry* entry = findGenerator(controller.type()); entry != nullptr) {
        application_.printer().trace(entry->creationTrace);
        application_.printer().printf(level::detail,
                                      "\tGenerating commands for controller %d: %s ...\n", number,
                                      model.c_str());
        application_.printer().printf(level::progress, "        Controller %d:  %s ...", number,
                                      model.c_str());
        application_.printer().print("\n", level::progress);
    }
    CommandLines generated = commandLines(controller, number, layout,
                                          {.pathPrefix = application_.settings.commandPathPrefix},
                                          application_.report());
    // A line that finds no room is dropped without a message: the run fetches only the first half
    // of the list, so that no line is lost that would have been run.
    static_assert(CommandList::fetchable * 2 == CommandList::slots, "the first half is fetched");
    for (CString& line : generated.lines) {
        static_cast<void>(commands_.add(std::move(line)));
    }
    if (!generated.fault) {
        return ExitCode::success;
    }
    if (generated.fault->kind == FaultKind::typeWithoutGenerator) {
        application_.printer().trace("Exiting ZOLEX::deployConfiguration(1)\n");
        return ExitCode::resources;
    }
    application_.printer().print("An internal error has occurred.\n", level::detail);
    application_.printer().trace("Exiting ZOLEX::deployConfiguration(2)\n");
    return ExitCode::commandFailed;
}

ExitCode Deploy::configureController(CommandRun& commands, RAIDController& controller,
                                     const ControllerPlan& plan, std::size_t& nextCommand) {
    if (!plan.layout) {
        application_.printer().printf(
            level::progress, "\tSkipped %s controller.\n",
            application_.controllerName(controller.type(), controller.subtype()).c_str());
        return ExitCode::success;
    }
    if (const ExitCode result = generateCommands(controller, plan.number, *plan.layout);
        result != ExitCode::success) {
        return result;
    }
    while (const CString* command = commands_.get(nextCommand)) {
        ++nextCommand;
        if (!deployCommand(commands, controller, plan.number, *command)) {
            return ExitCode::commandFailed;
        }
    }
    return ExitCode::success;
}

bool Deploy::deployCommand(CommandRun& commands, RAIDController& controller, std::int32_t number,
                           CString command) {
    application_.printer().printfAlways("Deploy Command=%s\n", command.c_str());
    if (application_.settings.fake) {
        command = commands.fakeCommand(controller);
    }
    if (application_.settings.noExecuteAll || application_.settings.noExecuteDeploy) {
        return checkForErrors(application_, controller, number, 0, Mode::deploy);
    }
    if (!commands.run(controller, command)) {
        commands.printFailure(controller);
        application_.printer().trace("Exiting ZOLEX::deployConfiguration(3)\n");
        return false;
    }
    if (application_.printer().isVerbose()) {
        commands.printOutput();
    }
    if (!commands.succeeded(controller, number)) {
        application_.printer().printAlways("Deploy Command Standard Output:\n");
        commands.printOutput();
        application_.printer().trace("Exiting ZOLEX::deployConfiguration(4)\n");
        return false;
    }
    return true;
}

} // namespace zolex
