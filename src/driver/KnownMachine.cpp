#include "driver/KnownMachine.h"

#include "driver/Application.h"
#include "inventory/MachineInformation.h"

namespace zolex {

std::optional<Machine> knownMachine(Application& application) {
    if (application.settings.fake) {
        return machineOfInventoryFile(application.platform().files(), application.report());
    }
    return application.machine;
}

} // namespace zolex
