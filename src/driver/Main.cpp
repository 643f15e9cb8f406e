#include "driver/ZOLEX.h"

#include "foundation/ErrorReporter.h"
#include "foundation/IniFile.h"
#include "policies/PolicyGenerator.h"

#include <cstdlib>
#include <memory>
#include <new>

namespace zolex {

namespace {

namespace exit_code {
constexpr int success = 0;
constexpr int noControllers = 2;
constexpr int commandLine = 4;
constexpr int policyGeneratorFailed = 9;
constexpr int resources = 10;
} // namespace exit_code

} // namespace

void ZOLEX::main(int argc, const char* const* argv, Platform& platform) {
    int code = exit_code::resources;
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
    if (argc < 2) {
        printer().setVerbosity(level::detail);
        printUsage();
        return exit_code::success;
    }
    if (const unsigned result = parseCommandLine(argc, argv); result != 0) {
        return static_cast<int>(result);
    }
    if (settings.help) {
        printer().setVerbosity(level::detail);
        printUsage();
        return exit_code::success;
    }
    printer().trace("Entering ZOLEX::main\n");
    switch (checkCombinations()) {
    case Combination::refused:
        return exit_code::commandLine;
    case Combination::detectionCheck:
        return checkDetection(controllers);
    case Combination::allowed:
        break;
    }
    return runModes(controllers);
}

bool ZOLEX::refuse(const char* heading, const char* parameters) {
    printer().errorBlockf("%s%s\n", heading, parameters);
    return true;
}

ZOLEX::Combination ZOLEX::checkCombinations() {
    const auto conflict = [this](const char* parameters) {
        return refuse("The following parameters cannot be used in combination:  ", parameters);
    };
    const Settings& s = settings;
    const bool hasFile = !s.policiesFile.isEmpty();
    const bool hasSource = hasFile || s.defaults;
    bool refused = false;
    if (!hasSource && !s.restore) {
        if (!s.restoreWithNumber) {
            if (s.e2) {
                return Combination::detectionCheck;
            }
            refuse("Required parameter missing:  ", "/f:");
            return Combination::refused;
        }
        // Only the last two rules hold for "/r:" alone.
    } else if (s.restore && s.capture) {
        refused = conflict("/r /c");
    } else if (s.restoreWithNumber && s.defaults) {
        refused = conflict("/r: /d");
    } else if (!s.restoreWithNumber && s.capture && s.defaults) {
        refused = conflict("/c /d");
    } else if (s.restore && s.restoreWithNumber) {
        refused = conflict("/r /r:");
    }
    if (!refused && hasFile && s.defaults) {
        refused = conflict("/f: /d");
    }
    if (!refused && (s.e1 || s.e3) && s.runAutomatically) {
        refused = conflict("/e1 or /e3 with /a");
    }
    return refused ? Combination::refused : Combination::allowed;
}

int ZOLEX::checkDetection(ControllerList& controllers) {
    printer().setVerbosity(level::progress);
    if (!scanControllers(controllers)) {
        return exit_code::resources;
    }
    if (controllers.count() == 0) {
        printer().print("No supported RAID controllers found.\n", level::progress);
        return exit_code::noControllers;
    }
    printer().printf(level::progress, "Found %d supported RAID controllers.\n",
                     static_cast<int>(controllers.count()));
    return exit_code::success;
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
        printer().printf(level::detail, "\tController %d:  %s\n", static_cast<int>(i + 1),
                         modelName(*controllers.controller(i)).c_str());
    }
}

void ZOLEX::printFailed(unsigned code) {
    printer().printf(level::progress, "\nZOLEX failed with RC=%d \n", static_cast<int>(code));
}

void ZOLEX::printCompleted() {
    printer().printf(level::progress, "\nZOLEX completed with RC=%d \n", exit_code::success);
}

int ZOLEX::runModes(ControllerList& controllers) {
    applyDefaults();
    if (!findControllers(controllers)) {
        return exit_code::resources;
    }
    if (controllers.count() == 0) {
        printer().print("No supported RAID controllers found.\n", level::progress);
        if (settings.e2) {
            printer().trace("Exiting ZOLEX::main(1)\n");
            return exit_code::noControllers;
        }
        printer().trace("Exiting ZOLEX::main(2)\n");
        return exit_code::success;
    }
    printControllers(controllers);
    const bool hasSource = settings.defaults || !settings.policiesFile.isEmpty();
    if (settings.restore || settings.restoreWithNumber) {
        printer().trace("Calling restoreDefaults\n");
        const Result result = restoreDefaults(controllers, settings.restoreNumber);
        if (result.endsProcess) {
            return static_cast<int>(result.code);
        }
        printer().trace("Return from restoreDefaults\n");
        if (result.code != 0) {
            return static_cast<int>(result.code); // without a summary
        }
        printCompleted();
        if (!hasSource) {
            printer().trace("Exiting ZOLEX::main(3)\n");
            return exit_code::success;
        }
    }
    return settings.capture ? runCapture(controllers) : runDeploy(controllers, hasSource);
}

int ZOLEX::runCapture(ControllerList& controllers) {
    if (const unsigned result = captureConfiguration(controllers); result != 0) {
        printFailed(result);
        printer().trace("Exiting ZOLEX::main(4)\n");
        return static_cast<int>(result);
    }
    const auto generator = makePolicyGenerator();
    if (!generator) {
        printFailed(exit_code::resources);
        printer().trace("Exiting ZOLEX::main(5)\n");
        return exit_code::resources;
    }
    if (!generator->generatePolicies(controllers)) {
        printFailed(exit_code::policyGeneratorFailed);
        printer().trace("Exiting ZOLEX::main(6)\n");
        return exit_code::policyGeneratorFailed;
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
    return exit_code::success;
}

int ZOLEX::runDeploy(ControllerList& controllers, bool hasSource) {
    Result result;
    if (hasSource) {
        result = deployConfiguration(controllers);
        if (result.endsProcess) {
            return static_cast<int>(result.code);
        }
    }
    if (result.code != 0) {
        printFailed(result.code);
    } else {
        printCompleted();
    }
    printer().trace("Exiting ZOLEX::main(8)\n");
    return static_cast<int>(result.code);
}

CString ZOLEX::modelName(const RAIDController& controller) const {
    return controllerName(controller.type(), controller.subtype());
}

} // namespace zolex
