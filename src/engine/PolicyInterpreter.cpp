#include "engine/PolicyInterpreter.h"

#include "controllers/Application.h"
#include "engine/ConfigClasses.h"
#include "foundation/IniFile.h"
#include "inventory/ControllerList.h"
#include "show/Dumps.h"

namespace zolex {

bool PolicyInterpreter::createConfigurations(ControllerList& controllers) {
    Printer& printer = application_.printer();
    printer.trace("Entering PolicyInterpreter::createConfigurations\n");
    if (!getMachineInformation()) {
        printer.errorBlock("Could not detect the system machine type or serial number.\n");
        printer.trace("Exiting PolicyInterpreter::createConfigurations(1)\n");
        return false;
    }
    for (std::size_t i = 0; i < controllers.count(); ++i) {
        RAIDController& controller = *controllers.controller(i);
        const auto number = static_cast<std::int32_t>(i + 1);
        if (controller.numberOfDrives() == 0) {
            application_.noDrives = true;
        }
        const Policy* policy = findPolicy(controller, number);
        if (policy == nullptr) {
            reportNoPolicy(controller, number);
        } else if (!configure(controller, number, *policy)) {
            return false;
        }
    }
    printer.trace("Exiting PolicyInterpreter::createConfigurations(4)\n");
    return true;
}

bool PolicyInterpreter::getMachineInformation() {
    Printer& printer = application_.printer();
    if (application_.settings.fake) {
        printer.printf(level::detail, "Getting machine information from file:  %s\n",
                       inventoryFileName);
        IniFile inventory(application_.platform().files(), inventoryFileName, true);
        if (inventory.loading() != IniFile::Loading::whole) {
            printer.errorBlockf("Could not read inventory file:  %s\n", inventoryFileName);
            return false;
        }
        machineType_ = inventory.readString("System", "machType", "");
        serialNumber_ = inventory.readString("System", "serial", "");
    } else {
        if (!application_.machine) {
            return false;
        }
        machineType_ = application_.machine->machineType;
        serialNumber_ = application_.machine->serialNumber;
    }
    printer.printf(level::detail, "Machine type = %s, serial number = %s\n", machineType_.c_str(),
                   serialNumber_.c_str());
    return true;
}

const Policy* PolicyInterpreter::findPolicy(const RAIDController& controller,
                                            std::int32_t number) const {
    MatchValues values;
    values.machineType = machineType_;
    values.serialNumber = serialNumber_;
    values.controllerType = modelName(controller);
    values.controllerNumber = number;
    values.scanOrder = controller.scanOrder();
    values.numberOfDrives = controller.numberOfDrives();
    return policies_.find(values);
}

bool PolicyInterpreter::configure(RAIDController& controller, std::int32_t number,
                                  const Policy& policy) {
    Printer& printer = application_.printer();
    const ConfigClassEntry* entry = findConfigClass(controller.type());
    if (entry == nullptr) {
        printer.errorBlockf("Internal error.  Controller type not found:  %d", controller.type());
        printer.trace("Exiting PolicyInterpreter::createConfigurations(2)\n");
        return false;
    }
    printer.trace(entry->creationTrace);
    const std::unique_ptr<RAIDConfigCreator> creator = entry->create(application_);
    if (!creator->createConfig(controller, policy)) {
        printer.trace("Exiting PolicyInterpreter::createConfigurations(3)\n");
        return false;
    }
    reportPlan(controller, number, policy);
    return true;
}

void PolicyInterpreter::reportPlan(const RAIDController& controller, std::int32_t number,
                                   const Policy& policy) {
    Printer& printer = application_.printer();
    const RAIDConfiguration* configuration = controller.configuration();
    if (configuration == nullptr) {
        printer.trace("Configuration is NULL\n");
        printer.printf(level::progress, "\tSkipped %s controller -- Not enough drives available.\n",
                       modelName(controller).c_str());
        return;
    }
    printer.trace("Configuration is NOT NULL\n");
    printer.printf(level::detail, "\t%s, controller %d using policy:  %s\n",
                   modelName(controller).c_str(), number, policy.name.c_str());
    if (printer.isVerbose()) {
        printer.trace("Dumping controller information.\n");
        printer.printAlways(show::dumpText(*configuration));
    }
}

void PolicyInterpreter::reportNoPolicy(const RAIDController& controller, std::int32_t number) {
    Printer& printer = application_.printer();
    if (application_.settings.e1) {
        printer.printf(level::progress, "\tNo policy match found for %s, controller %d.\n",
                       modelName(controller).c_str(), number);
        application_.noPolicyFound = true;
    } else {
        printer.printf(level::detail, "\t%s, controller %d using policy:  %s\n",
                       modelName(controller).c_str(), number, "No policy found.");
    }
}

CString PolicyInterpreter::modelName(const RAIDController& controller) const {
    return application_.controllerName(controller.type(), controller.subtype());
}

} // namespace zolex
