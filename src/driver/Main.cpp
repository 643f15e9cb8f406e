#include "driver/ZOLEX.h"

#include "driver/Capture.h"
#include "driver/CommandLine.h"
#include "driver/Deploy.h"
#include "driver/ParameterParser.h"
#include "driver/Restore.h"
#include "foundation/ErrorReporter.h"
#include "foundation/IniFile.h"
#include "inventory/MachineInformation.h"
#include "policies/PolicyGenerator.h"

#include <cstdlib>
#include <memory>
#include <new>
#include <utility>

namespace zolex {

void ZOLEX::main(int argc, const char* const* argv, Platform& platform) {
    int code = static_cast<int>(ExitCode::resources);
    try {
        code = run(argc, argv, platform);
    } catch (const std::bad_alloc&) {
        reportError(platform.console(), ReportMode::goOn, ReportCategory::memoryAllocation,
                    "ZOLEX::main");
    }
    std::exit(code);
}

int ZOLEX::run(int argc, const char* const* argv, Platform& platform) {
    ZOLEX application(platform);
    return application.run(argc, argv);
}

int ZOLEX::run(int argc, const char* const* argv) {
    ControllerList controllers;
    if (argc > 0) {
        settings.programPath = argv[0];
    }
    if (argc >= 2) {
        if (const ExitCode result = parseCommandLine(argc, argv); result != ExitCode::success) {
            return static_cast<int>(result);
        }
    }
    if (argc < 2 || settings.help) {
        printer().setVerbosity(level::detail);
        printUsage();
        return static_cast<int>(ExitCode::success);
    }
    printer().trace("Entering ZOLEX::main\n");
    const Combination combination = checkCombinations(settings);
    if (combination.fault) {
        report().fault(*combination.fault);
        return static_cast<int>(ExitCode::commandLine);
    }
    return static_cast<int>(combination.detectionCheck ? checkDetection(controllers)
                                                       : runModes(controllers));
}

ExitCode ZOLEX::parseCommandLine(int argc, const char* const* argv) {
    ParameterParser parser;
    addSwitches(parser);
    CommandLine line = readCommandLine(parser, argc, argv, platform().files(), report());
    line.settings.programPath = settings.programPath;
    settings = std::move(line.settings);
    if (line.verbosity) {
        printer().setVerbosity(*line.verbosity);
    }
    if (line.wantsUsage) {
        printUsage();
        printer().trace(line.fault->kind == FaultKind::parameterUnknown
                            ? "Exiting ZOLEX::parseCommandLine(1)\n"
                            : "Exiting ZOLEX::parseCommandLine(2)\n");
    }
    return line.fault ? ExitCode::commandLine : ExitCode::success;
}

void ZOLEX::addSwitches(ParameterParser& parser) {
    zolex::addSwitches(parser);
}

ModeResult ZOLEX::deployConfiguration(ControllerList& controllers) {
    Deploy mode(*this);
    const ModeResult result = mode.run(controllers);
    planning_ = mode.takePlanning();
    return result;
}

ExitCode ZOLEX::captureConfiguration(ControllerList& controllers) {
    return Capture(*this, captured_).run(controllers);
}

ModeResult ZOLEX::restoreDefaults(ControllerList& controllers, std::int32_t number) {
    return Restore(*this).run(controllers, number);
}

bool ZOLEX::reordersByBusNumber() const {
    return machine && zolex::reordersByBusNumber(*machine);
}

ExitCode ZOLEX::checkDetection(ControllerList& controllers) {
    printer().setVerbosity(level::progress);
    if (!scanControllers(controllers)) {
        return ExitCode::resources;
    }
    if (controllers.count() == 0) {
        printer().print("No supported RAID controllers found.\n", level::progress);
        return ExitCode::noControllers;
    }
    printer().printf(level::progress, "Found %d supported RAID controllers.\n",
                     static_cast<int>(controllers.count()));
    return ExitCode::success;
}

void ZOLEX::applyDefaults() {
    if (settings.outputScript.isEmpty()) {
        settings.outputScript = "ZOLEXOUT.BAT";
    }
    if (printer().verbosity() == level::unset) {
        printer().setVerbosity(level::progress);
    }
    if (settings.step == -1) {
        settings.step = 1;
    }
    if (settings.step == 1) {
        printer().print("Started ZOLEX.\n", level::progress);
    }
}

bool ZOLEX::findControllers(ControllerList& controllers) {
    if (settings.fake) {
        IniFile inventory(platform().files(), inventoryFileName, true);
        return controllers.initialize(inventory, report());
    }
    printer().trace("Calling controllers.initialize\n");
    const bool initialized = scanControllers(controllers);
    printer().tracef("Return from controllers.initialize, number of controllers = %d\n",
                     static_cast<int>(controllers.count()));
    return initialized;
}

bool ZOLEX::scanControllers(ControllerList& controllers) {
    if (!settings.controllerDefinitionFile.isEmpty()) {
        return controllers.initialize(platform().files(), settings.controllerDefinitionFile,
                                      report());
    }
    const std::unique_ptr<PCI_DevList_VC> devices = platform().pciDevices();
    machine = controllers.initialize(
        *devices, std::make_unique<Tool>(platform(), report(), childLimit), report());
    return true;
}

void ZOLEX::printControllers(const ControllerList& controllers) {
    printer().printf(level::progress, "Found %d supported RAID controllers.\n",
                     static_cast<int>(controllers.count()));
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        printer().printf(
            level::detail, "\tController %d:  %s\n", static_cast<int>(i + 1),
            controllerName(controllers.controller(i)->type(), controllers.controller(i)->subtype())
                .c_str());
    }
}

void ZOLEX::printFailed(ExitCode code) {
    printer().printf(level::progress, "\nZOLEX failed with RC=%d \n", static_cast<int>(code));
}

void ZOLEX::printCompleted() {
    printer().printf(level::progress, "\nZOLEX completed with RC=%d \n",
                     static_cast<int>(ExitCode::success));
}

ExitCode ZOLEX::runModes(ControllerList& controllers) {
    applyDefaults();
    if (!findControllers(controllers)) {
        return ExitCode::resources;
    }
    if (controllers.count() == 0) {
        printer().print("No supported RAID controllers found.\n", level::progress);
        if (settings.e2) {
            printer().trace("Exiting ZOLEX::main(1)\n");
            return ExitCode::noControllers;
        }
        printer().trace("Exiting ZOLEX::main(2)\n");
        return ExitCode::success;
    }
    printControllers(controllers);
    const bool hasSource = settings.defaults || !settings.policiesFile.isEmpty();
    if (settings.restore || settings.restoreWithNumber) {
        printer().trace("Calling restoreDefaults\n");
        const ModeResult result = restoreDefaults(controllers, settings.restoreNumber);
        if (result.endsProcess) {
            return result.code;
        }
        printer().trace("Return from restoreDefaults\n");
        if (result.code != ExitCode::success) {
            return result.code; // without a summary
        }
        printCompleted();
        if (!hasSource) {
            printer().trace("Exiting ZOLEX::main(3)\n");
            return ExitCode::success;
        }
    }
    return settings.capture ? runCapture(controllers) : runDeploy(controllers, hasSource);
}

ExitCode ZOLEX::runCapture(ControllerList& controllers) {
    if (const ExitCode result = captureConfiguration(controllers); result != ExitCode::success) {
        printFailed(result);
        printer().trace("Exiting ZOLEX::main(4)\n");
        return result;
    }
    const auto generator = makePolicyGenerator();
    if (!generator) {
        printFailed(ExitCode::resources);
        printer().trace("Exiting ZOLEX::main(5)\n");
        return ExitCode::resources;
    }
    if (!generator->generatePolicies(controllers)) {
        printFailed(ExitCode::policiesNotMade);
        printer().trace("Exiting ZOLEX::main(6)\n");
        return ExitCode::policiesNotMade;
    }
    printer().print(generator->wrotePolicies()
                        ? "ZOLEX complete.  Wrote policies file.\n"
                        : "ZOLEX complete.  Note: No policies were created.\n",
                    level::progress);
    printCompleted();
    if (settings.debug) {
        printer().printAlways(controllers.dumpText(true));
    }
    printer().trace("Exiting ZOLEX::main(7)\n");
    return ExitCode::success;
}

ExitCode ZOLEX::runDeploy(ControllerList& controllers, bool hasSource) {
    ModeResult result;
    if (hasSource) {
        result = deployConfiguration(controllers);
        if (result.endsProcess) {
            return result.code;
        }
    }
    if (result.code != ExitCode::success) {
        printFailed(result.code);
    } else {
        printCompleted();
    }
    printer().trace("Exiting ZOLEX::main(8)\n");
    return result.code;
}

} // namespace zolex
