#include "inventory/MachineInformation.h"

#include "foundation/IniFile.h"
#include "foundation/Report.h"
#include "inventory/ControllerList.h"

namespace zolex {

std::optional<Machine> machineOfInventoryFile(FileSystem& files, Report& report) {
    report.notef(level::detail, "Getting machine information from file:  %s\n", inventoryFileName);
    IniFile inventory(files, inventoryFileName, true);
    if (inventory.loading() != IniFile::Loading::whole) {
        report.fault(
            {.kind = FaultKind::inventoryUnreadable, .place = {.file = inventoryFileName}});
        return std::nullopt;
    }
    return Machine{inventory.readString("System", "machType", ""),
                   inventory.readString("System", "serial", "")};
}

bool reordersByBusNumber(const Machine& machine) {
    return machine.machineType.contains("5941") || machine.machineType.contains("5944");
}

} // namespace zolex
