#pragma once

#include "SmbiosTable.h"

#include <string>

namespace hwdetect {

/// What asking the firmware gave.
struct FirmwareAnswer {
    MachineNames names;
    /// What could not be read and why, a sentence each without its full stop; empty when all could.
    std::string typeFault;
    std::string serialFault;
};

/// Reads product_name and product_serial in a folder as Linux shows them; the first line of each
/// file counts. A file that is missing leaves an empty text, a folder without either is a fault of
/// both.
[[nodiscard]] FirmwareAnswer readDmiFolder(const std::string& folder);

/// Asks the firmware of this machine.
[[nodiscard]] FirmwareAnswer askFirmware();

} // namespace hwdetect
