#pragma once

#include "Firmware.h"

#include "platform/Registry.h"

#include <optional>
#include <string>
#include <string_view>

namespace hwdetect {

/// The data of a value of a key; nothing when there is none. Names are compared with exact case.
[[nodiscard]] std::optional<std::string>
registryValue(zolex::Registry& registry, const std::string& key, std::string_view name);

/// What Windows knows of the machine. `table` is what the system answers when it is asked for the
/// SMBIOS table, empty when it has no such call or no table. Without one the copy of the driver
/// mssmbios is read from the registry; a machine type that neither tells is read from the
/// registry's BIOS key.
[[nodiscard]] FirmwareAnswer readWindowsSources(std::string_view table, zolex::Registry& registry);

} // namespace hwdetect
