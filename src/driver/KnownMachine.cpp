#include "driver/KnownMachine.h"

#include "controllers/Application.h"
#include "inventory/MachineInformation.h"

namespace zolex {

std::optional<Machine> knownMachine(Application& application) {
    if (application.settings.fake) {
        return machineOfInventoryFile(application.platform().files(), application.report());
    }
    if (application.machineInformationMissing) {
        return std::nullopt;
    }
    return Machine{application.machineType, application.serialNumber};
}

} // namespace zolex
