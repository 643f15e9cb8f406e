#pragma once

#include "platform/Platform.h"

#include <string>

namespace zolex::companion {

/// Asks the firmware: on Linux the files product_name and product_serial in /sys/class/dmi/id, on
/// Windows the SMBIOS table and the registry's BIOS key. A folder that ZOLEX_DMI_ROOT names takes
/// their place on every system.
[[nodiscard]] FirmwareNames askFirmware();

} // namespace zolex::companion
