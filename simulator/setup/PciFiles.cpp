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

std::string registryKey(const PciFunction& pci) {
    const unsigned subsystem =
        (static_cast<unsigned>(pci.subsystemId) << 16) | pci.subsystemVendorId;
    const std::string device = formatted("PCI\\VEN_%04X&DEV_%04X", pci.vendorId, pci.deviceId);
    const std::string full = formatted("%s&SUBSYS_%08X", device.c_str(), subsystem);
    const std::string revised = formatted("%s&REV_%02X", full.c_str(), pci.revision);
    const unsigned baseClass = pci.classCode >> 8;
    const std::string key = formatted(
        "[HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Enum\\%s\\4&1a2b3c4d&0&%02X%02X]\r\n",
        revised.c_str(), pci.bus, pci.device * 8 + pci.function);
    return key + "\"DeviceDesc\"=" + registryText(pci.description) + "\r\n\"HardwareID\"=" +
           multiString({revised, full, formatted("%s&CC_%06X", device.c_str(), pci.classCode),
                        formatted("%s&CC_%04X", device.c_str(), baseClass)}) +
           "\r\n\"CompatibleIDs\"=" +
           multiString({formatted("%s&REV_%02X", device.c_str(), pci.revision), device,
                        formatted("PCI\\CC_%06X", pci.classCode),
                        formatted("PCI\\CC_%04X", baseClass)}) +
           "\r\n\"LocationInformation\"=" +
           registryText(
               formatted("@System32\\drivers\\pci.sys,#65536;PCI bus %%1, device %%2, function "
                         "%%3;(%d,%d,%d)",
                         pci.bus, pci.device, pci.function)) +
           "\r\n\r\n";
}

} // namespace

std::vector<ServerFile> pciTree(const Server& server, Target target) {
    std::vector<ServerFile> files;
    if (target == Target::windows) {
        return files;
    }
    for (const PciFunction& pci : functionsOf(server)) {
        const std::string folder =
            formatted("pci/0000:%02x:%02x.%d/", pci.bus, pci.device, pci.function);
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
    std::string text = "REGEDIT4\r\n\r\n";
    for (const PciFunction& pci : functionsOf(server)) {
        text += registryKey(pci);
    }
    return {"pci.reg", text};
}

} // namespace zolex_sim
