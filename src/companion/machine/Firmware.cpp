#include "companion/machine/Firmware.h"

#include <Firmware.h> // of the hardware detector

#include <cstdlib>
#include <utility>

namespace zolex::companion {

FirmwareNames askFirmware() {
    const char* const folder = std::getenv("ZOLEX_DMI_ROOT");
    hwdetect::FirmwareAnswer answer = folder == nullptr || *folder == '\0'
                                          ? hwdetect::askFirmware()
                                          : hwdetect::readDmiFolder(folder);
    FirmwareNames names;
    names.machineType = std::move(answer.names.machineType);
    names.serialNumber = std::move(answer.names.serialNumber);
    names.fault =
        answer.typeFault.empty() ? std::move(answer.serialFault) : std::move(answer.typeFault);
    return names;
}

} // namespace zolex::companion
