#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace hwdetect {

/// What the firmware tells of the machine. A text that it leaves out is empty.
struct MachineNames {
    std::string machineType;
    std::string serialNumber;

    bool operator==(const MachineNames&) const = default;
};

/// The product name and the serial number of the system (structure type 1) in an SMBIOS table: its
/// structures one after another. Nothing when the table has no such structure before its end, its
/// end mark (type 127) or the first structure that is cut or too short to be one.
[[nodiscard]] std::optional<MachineNames> readSmbiosTable(std::string_view table);

/// The same of a table with the header that Windows puts before it: four bytes of versions and the
/// length of the table in four bytes, the lowest first. A length beyond the end means the end.
[[nodiscard]] std::optional<MachineNames> readRawSmbiosData(std::string_view data);

} // namespace hwdetect
