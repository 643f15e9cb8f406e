#include "readers/DiskInformation.h"

#include "controllers/Application.h"
#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"
#include "model/RAIDController.h"
#include "readers/ConfigurationReader.h"
#include "show/Dumps.h"

#include <cstddef>
#include <utility>

namespace zolex {

bool DiskInformation::readDiskInformation(ControllerList& controllers) {
    application_.printer().trace("Entering DiskInformation::readDiskInformation\n");
    bool read = true;
    if (application_.settings.controllerDefinitionFile.isEmpty()) {
        read = readControllers(controllers);
    } else {
        read = readDrivesFromDefinition(controllers);
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        controllers.controller(i)->clearCapturedOutputs();
    }
    return read;
}

bool DiskInformation::readControllers(ControllerList& controllers) {
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        if (!readController(*controllers.controller(i), static_cast<std::int32_t>(i + 1))) {
            return false;
        }
    }
    application_.printer().trace("Exiting DiskInformation::readDiskInformation(4)\n");
    return true;
}

bool DiskInformation::readController(RAIDController& controller, std::int32_t number) {
    Printer& printer = application_.printer();
    const CString name = application_.controllerName(controller.type(), controller.subtype());
    printer.printf(level::progress, "\tController %d:  %s\n", number, name.c_str());
    const ReaderEntry* entry = findReader(controller.type());
    if (entry == nullptr) {
        printer.errorBlock("An internal error has occurred.\n");
        printer.trace("Exiting DiskInformation::readDiskInformation(1)\n");
        return false;
    }
    std::unique_ptr<ConfigurationReader> reader = createReader(*entry);
    if (!reader) {
        printer.errorBlockf("Could not read a config file for the following controller:  %s",
                            name.c_str());
        printer.trace("Exiting DiskInformation::readDiskInformation(2)\n");
        return false;
    }
    if (!parseDiskInfo(std::move(reader), controller)) {
        printer.trace("Exiting DiskInformation::readDiskInformation(3)\n");
        return false;
    }
    return true;
}

std::unique_ptr<ConfigurationReader> DiskInformation::createReader(const ReaderEntry& entry) {
    application_.printer().trace(entry.creationTrace);
    return entry.create(application_);
}

bool DiskInformation::parseDiskInfo(std::unique_ptr<ConfigurationReader> reader,
                                    RAIDController& controller) {
    Printer& printer = application_.printer();
    printer.trace("Entering DiskInformation::parseDiskInfo\n");
    std::shared_ptr<CapturedOutput> output = controller.capturedOutput(0);
    if (!output) {
        printer.errorBlockf(
            "Could not read a config file for the following controller:  %s",
            application_.controllerName(controller.type(), controller.subtype()).c_str());
        return false;
    }
    if (!reader->readConfiguration(controller, std::move(output))) {
        printer.errorBlockf(
            "Format error in config file for the following controller:  %s",
            application_.controllerName(controller.type(), controller.subtype()).c_str());
        return false;
    }
    if (printer.isVerbose()) {
        printer.printAlways(show::dumpText(controller, application_.settings.capture));
    }
    printer.trace("Exiting DiskInformation::parseDiskInfo, returning true\n");
    return true;
}

bool DiskInformation::readDrivesFromDefinition(ControllerList& controllers) {
    Printer& printer = application_.printer();
    const CString& fileName = application_.settings.controllerDefinitionFile;
    printer.printf(level::detail, "Reading drives from file:  %s\n", fileName.c_str());
    IniFile definition(application_.platform().files(), fileName, true);
    if (definition.loading() != IniFile::Loading::whole) {
        printer.errorBlockf("Could not read controller-definition file:  %s\n", fileName.c_str());
        return false;
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        const auto number = static_cast<std::int32_t>(i);
        const CString section = formatText("Controller.%d", number);
        if (definition.readString(section, "Type", "").isEmpty()) {
            break;
        }
        RAIDController& controller = *controllers.controller(i);
        printer.printf(
            level::detail, "\tController %d:  %s\n", number + 1,
            application_.controllerName(controller.type(), controller.subtype()).c_str());
        for (std::int32_t channel = RAIDController::firstChannel;
             channel < RAIDController::channels; ++channel) {
            for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
                const CString key = formatText("C%dS%d", channel, id);
                if (!definition.readString(section, key, "").isEmpty()) {
                    controller.setSize(channel, id, definition.readInteger(section, key, 0));
                }
            }
        }
    }
    return true;
}

} // namespace zolex
