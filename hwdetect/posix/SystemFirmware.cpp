#include "Firmware.h"

namespace hwdetect {

FirmwareAnswer askFirmware() {
    return readDmiFolder("/sys/class/dmi/id");
}

} // namespace hwdetect
