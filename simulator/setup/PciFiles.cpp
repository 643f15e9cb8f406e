#include "model/Text.h"
#include "setup/ServerFiles.h"

#include <algorithm>
#include <string_view>

namespace zolex_sim {
namespace {

std::vector<PciFunction> functionsOf(const Server& server) {
    std::vector<PciFunction> functions = server.otherDevices;
    for (const Controller& controller : server.controllers) {
        functions.push_back(controller.identity.pci);
    }
    for (const storcli::Controller& controller : server.storcliControllers) {
        functions.push_back(controller.pci);
    }
    std::sort(functions.begin(), functions.end(), standsBefore);
    return functions;
}

/// A multi-string in the file's way: the bytes of the texts, each with a NUL, and one more NUL.
std::string multiString(const std::vector<std::string>& texts) {
    std::vector<std::string> bytes;
    for (const std::string& text : texts) {
        for (const char c : text) {
            bytes.push_back(
                formatted("%02x", static_cast<unsigned>(static_cast<unsigned char>(c))));
        }
        bytes.emplace_back("00");
    }
    bytes.emplace_back("00");
    return "hex(7):" + join(bytes, ",");
}

std::string registryText(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result + "\"";
}

/// The parts of the texts that tell a function in the registry.
struct RegistryNames {
    explicit RegistryNames(const PciFunction& pci)
        : device(formatted("PCI\\VEN_%04X&DEV_%04X", pci.vendorId, pci.deviceId)),
          full(formatted("%s&SUBSYS_%08X", device.c_str(),
                         (static_cast<unsigned>(pci.subsystemId) << 16) | pci.subsystemVendorId)),
          revised(formatted("%s&REV_%02X", full.c_str(), pci.revision)),
          key(formatted(
              "HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\%s\\4&1a2b3c4d&0&%02X%02X",
              revised.c_str(), pci.bus, pci.device * 8 + pci.function)) {}

    std::string device;
    std::string full;
    std::string revised;
    std::string key;
};

std::string registryKey(const PciFunction& pci) {
    const RegistryNames names(pci);
    const unsigned baseClass = pci.classCode >> 8;
    const char* const device = names.device.c_str();
    return "[" + names.key + "]\r\n\"DeviceDesc\"=" + registryText(pci.description) +
           "\r\n\"HardwareID\"=" +
           multiString({names.revised, names.full, formatted("%s&CC_%06X", device, pci.classCode),
                        formatted("%s&CC_%04X", device, baseClass)}) +
           "\r\n\"CompatibleIDs\"=" +
           multiString({formatted("%s&REV_%02X", device, pci.revision), names.device,
                        formatted("PCI\\CC_%06X", pci.classCode),
                        formatted("PCI\\CC_%04X", baseClass)}) +
           "\r\n\"LocationInformation\"=" +
           registryText(
               formatted("@System32\\drivers\\pci.sys,#65536;PCI bus %%1, device %%2, function "
                         "%%3;(%d,%d,%d)",
                         pci.bus, pci.device, pci.function)) +
           "\r\n\r\n";
}

constexpr std::string_view registryHead = "REGEDIT4\r\n\r\n";

constexpr std::string_view enteringComment =
    "; Enters the PCI devices of the virtual server among those of this machine, where ZOLEX "
    "finds\r\n"
    "; them when ZOLEX_PCI_ROOT is not set. For tests in an emulator and machines to throw away: "
    "Windows\r\n"
    "; itself reads these keys, and lets nobody but the system write them. ZOLEX needs none of "
    "this\r\n"
    "; when ZOLEX_PCI_ROOT names the folder pci. pci-remove.reg takes the keys away again.\r\n\r\n";

constexpr std::string_view removingComment = "; Removes the keys that pci.reg entered, one "
                                             "instance of a device each, and nothing else.\r\n\r\n";

} // namespace

std::vector<ServerFile> pciTree(const Server& server, Target target) {
    std::vector<ServerFile> files;
    const char mark = target == Target::windows ? '-' : ':';
    for (const PciFunction& pci : functionsOf(server)) {
        const std::string folder =
            formatted("pci/%04x%c%02x%c%02x.%d/", static_cast<unsigned>(pci.domain), mark, pci.bus,
                      mark, pci.device, pci.function);
        files.push_back({folder + "vendor", formatted("0x%04x\n", pci.vendorId)});
        files.push_back({folder + "device", formatted("0x%04x\n", pci.deviceId)});
        files.push_back(
            {folder + "subsystem_vendor", formatted("0x%04x\n", pci.subsystemVendorId)});
        files.push_back({folder + "subsystem_device", formatted("0x%04x\n", pci.subsystemId)});
        files.push_back({folder + "class", formatted("0x%06x\n", pci.classCode)});
        files.push_back({folder + "revision", formatted("0x%02x\n", pci.revision)});
    }
    return files;
}

ServerFile pciRegistry(const Server& server) {
    std::string text = std::string(registryHead) + std::string(enteringComment);
    for (const PciFunction& pci : functionsOf(server)) {
        text += registryKey(pci);
    }
    return {"pci.reg", text};
}

ServerFile pciRegistryRemoval(const Server& server) {
    std::string text = std::string(registryHead) + std::string(removingComment);
    for (const PciFunction& pci : functionsOf(server)) {
        text += "[-" + RegistryNames(pci).key + "]\r\n\r\n";
    }
    return {"pci-remove.reg", text};
}

} // namespace zolex_sim
