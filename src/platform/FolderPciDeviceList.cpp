#include "platform/FolderPciDeviceList.h"

#include "platform/PciText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace zolex {

std::uint32_t FolderPciDeviceList::numberIn(const std::string& file, std::uint32_t highest) {
    constexpr std::size_t most = 64;
    return pci::fileNumber(folders_->start(file, most), highest);
}

std::uint16_t FolderPciDeviceList::shortNumberIn(const std::string& file) {
    return static_cast<std::uint16_t>(numberIn(file, 0xFFFF));
}

std::vector<PciDevice> FolderPciDeviceList::enumerate() {
    std::vector<std::string> names = folders_->entries(root_);
    std::sort(names.begin(), names.end());
    std::vector<PciDevice> devices;
    for (const std::string& name : names) {
        PciDevice device;
        if (!pci::parseFolderName(name, device)) {
            continue;
        }
        std::string folder = root_;
        folder.append("/").append(name).append("/");
        device.vendorId = shortNumberIn(folder + "vendor");
        device.deviceId = shortNumberIn(folder + "device");
        device.subsystemVendorId = shortNumberIn(folder + "subsystem_vendor");
        device.subsystemId = shortNumberIn(folder + "subsystem_device");
        device.classCode = numberIn(folder + "class", 0xFFFFFFFF);
        device.revision = shortNumberIn(folder + "revision");
        devices.push_back(device);
    }
    return devices;
}

std::string namedPciRoot() {
    const char* const named = std::getenv("ZOLEX_PCI_ROOT");
    return named == nullptr ? std::string() : std::string(named);
}

} // namespace zolex
