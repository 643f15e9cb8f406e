#include "model/Text.h"
#include "roles/Roles.h"

namespace zolex_sim {
namespace {

std::string controllerLine(const Controller& controller, std::size_t number) {
    const PciFunction& pci = controller.identity.pci;
    return formatted("\nController %zu: %s, %s, PCI %d:%d:%d %04X:%04X:%04X:%04X\n", number,
                     controller.identity.model.c_str(), controller.identity.utility.c_str(),
                     pci.bus, pci.device, pci.function, pci.vendorId, pci.deviceId,
                     pci.subsystemVendorId, pci.subsystemId);
}

std::string driveLine(const Drive& drive) {
    return formatted("  drive %-8s %10lld MB  %-4s %-20s %s%s\n", toText(drive.location).c_str(),
                     static_cast<long long>(drive.sizeMb), drive.interface.c_str(),
                     drive.serial.c_str(), std::string(statusWord(drive.status)).c_str(),
                     drive.medium == Medium::solidState ? ", ssd" : "");
}

std::string arrayLine(const Controller& controller, std::size_t number) {
    std::string text = formatted("  array %zu:", number);
    for (const std::vector<DriveLocation>& span : controller.arrays[number].spans) {
        text += " [" + toText(span) + "]";
    }
    return text + "\n";
}

std::string logicalDriveLine(const LogicalDrive& drive, std::size_t number) {
    return formatted("  logical drive %zu: array %zu, %s, %lld MB, stripe %d KB, %s%s, %s\n",
                     number, drive.array, std::string(rulesOf(drive.level).name).c_str(),
                     static_cast<long long>(drive.sizeMb), drive.stripeKb,
                     std::string(policyWord(drive.writePolicy)).c_str(),
                     drive.batteryProtected ? " with battery" : "",
                     std::string(policyWord(drive.readPolicy)).c_str());
}

/// What foreign drives carry: the logical drive that they were part of elsewhere.
std::string foreignLine(const Controller& controller, const ForeignGroup& group,
                        std::size_t number) {
    std::string text =
        formatted("  foreign configuration %zu: [", number) + toText(group.drives) + "]";
    if (!group.configuration) {
        return text + "\n";
    }
    const ForeignConfiguration& carried = controller.foreignConfigurations[*group.configuration];
    text += ", " + std::string(rulesOf(carried.level).name);
    text +=
        carried.sizeMb > 0 ? formatted(", %lld MB", static_cast<long long>(carried.sizeMb)) : "";
    text += carried.missing > 0 ? formatted(", %d missing", carried.missing) : "";
    return text + (carried.name.empty() ? "" : ", \"" + carried.name + "\"") + "\n";
}

std::string storcliText(const storcli::Controller& controller, std::size_t number) {
    const PciFunction& pci = controller.pci;
    std::string text =
        formatted("\nController %zu: %s, STORCLI, PCI %d:%d:%d %04X:%04X:%04X:%04X\n", number,
                  controller.model.c_str(), pci.bus, pci.device, pci.function, pci.vendorId,
                  pci.deviceId, pci.subsystemVendorId, pci.subsystemId);
    for (const storcli::Drive& drive : controller.drives) {
        text += formatted("  drive %-8s %14lld sectors of %d bytes  %-4s %-20s %s%s\n",
                          toText(drive.place).c_str(), static_cast<long long>(drive.sectors),
                          drive.sectorBytes, drive.interface.c_str(), drive.serial.c_str(),
                          std::string(wordOf(drive.state)).c_str(),
                          drive.medium == Medium::solidState ? ", ssd" : "");
    }
    for (std::size_t group = 0; group < controller.groups.size(); ++group) {
        text += formatted("  drive group %zu:", group);
        for (const std::vector<DriveLocation>& span : controller.groups[group].spans) {
            text += " [" + toText(span) + "]";
        }
        text += "\n";
    }
    for (const storcli::Volume& volume : controller.volumes) {
        text +=
            formatted("  virtual drive %d: group %zu, %s, %lld blocks, strip %d KB, %s, %s%s%s\n",
                      volume.number, volume.group, std::string(rulesOf(volume.level).name).c_str(),
                      static_cast<long long>(volume.blocks), volume.stripKb,
                      std::string(wordOf(volume.cache)).c_str(), volume.readAhead ? "RA" : "NORA",
                      volume.name.empty() ? "" : (", \"" + volume.name + "\"").c_str(),
                      volume.hasSystem ? ", with an operating system" : "");
    }
    return text;
}

} // namespace

PlayResult showServer(Server& server, const std::vector<std::string>& arguments) {
    if (!arguments.empty()) {
        return {1, "Usage: zolex-sim show\n"};
    }
    std::string text = formatted("Machine type %s, serial number %s\n", server.machineType.c_str(),
                                 server.serialNumber.c_str());
    std::size_t number = 1;
    for (const Controller* controller : server.controllersInPciOrder()) {
        text += controllerLine(*controller, number++);
        for (const Drive& drive : controller->drives) {
            text += driveLine(drive);
        }
        for (std::size_t i = 0; i < controller->arrays.size(); ++i) {
            text += arrayLine(*controller, i);
        }
        for (std::size_t i = 0; i < controller->logicalDrives.size(); ++i) {
            text += logicalDriveLine(controller->logicalDrives[i], controller->numberOf(i));
        }
        std::size_t foreign = 0;
        for (const ForeignGroup& group : controller->foreignGroups()) {
            text += foreignLine(*controller, group, foreign++);
        }
    }
    for (const storcli::Controller* controller : server.storcliInPciOrder()) {
        text += storcliText(*controller, number++);
    }
    return {0, text};
}

} // namespace zolex_sim
