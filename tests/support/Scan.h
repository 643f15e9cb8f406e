#pragma once

#include "driver/Application.h"
#include "inventory/ControllerList.h"

#include <memory>

namespace zolex::test {

/// Fills the list as a run does: from the controller-definition file that the settings name, or
/// else from the PCI functions.
inline bool scan(ControllerList& list, Application& application) {
    Platform& platform = application.platform();
    const CString& definition = application.settings.controllerDefinitionFile;
    if (!definition.isEmpty()) {
        return list.initialize(platform.files(), definition, application.report());
    }
    const auto devices = platform.pciDevices();
    application.machine = list.initialize(
        *devices, std::make_unique<Tool>(platform, application.report(), application.childLimit),
        application.report());
    return true;
}

} // namespace zolex::test
