#include "platform/RegistryPciDeviceList.h"

#include <algorithm>
#include <cstdint>

namespace zolex {

namespace {

constexpr const char* pciKeyPath = "SYSTEM\\CurrentControlSet\\Enum\\PCI";

/// Whether the values that follow a value with this result can be asked for.
bool goesOn(long result) {
    return result == registry_result::success || result == registry_result::moreData;
}

/// Size in bytes of the largest value of the key.
std::size_t largestValue(RegistryKey& key) {
    std::size_t largest = 0;
    for (std::uint32_t index = 0;; ++index) {
        const RegistryValue value = key.value(index, {});
        if (!goesOn(value.result)) {
            return largest;
        }
        largest = std::max(largest, value.dataSize);
    }
}

/// Where the record keeps the value of this name; null when it does not.
std::string* rawValue(PciDevice& device, const std::string& name) {
    if (name == "HardwareID") {
        return &device.hardwareId;
    }
    if (name == "LocationInformation") {
        return &device.locationInformation;
    }
    if (name == "DeviceDesc") {
        return &device.deviceDescription;
    }
    return name == "CompatibleIDs" ? &device.compatibleIds : nullptr;
}

void readValues(RegistryKey& key, PciDevice& device) {
    std::vector<char> buffer(device.largestValue);
    for (std::uint32_t index = 0;; ++index) {
        const RegistryValue value = key.value(index, buffer);
        if (!goesOn(value.result)) {
            return;
        }
        std::string* const kept =
            value.result == registry_result::success ? rawValue(device, value.name) : nullptr;
        if (kept != nullptr) {
            kept->assign(buffer.data(), std::min(value.dataSize, buffer.size()));
        }
        std::fill(buffer.begin(), buffer.end(), '\0');
    }
}

} // namespace

std::vector<PciDevice> RegistryPciDeviceList::enumerate() {
    std::vector<PciDevice> devices;
    const auto root = registry_->open(pciKeyPath);
    if (!root) {
        return devices;
    }
    for (std::uint32_t index = 0; const auto deviceName = root->subkeyName(index); ++index) {
        const std::string devicePath = std::string(pciKeyPath) + "\\" + *deviceName;
        const auto deviceKey = registry_->open(devicePath);
        if (!deviceKey) {
            continue;
        }
        for (std::uint32_t i = 0; const auto instanceName = deviceKey->subkeyName(i); ++i) {
            devices.push_back(readInstance(devicePath + "\\" + *instanceName));
        }
    }
    return devices;
}

PciDevice RegistryPciDeviceList::readInstance(const std::string& path) {
    PciDevice device;
    if (const auto key = registry_->open(path)) {
        device.largestValue = largestValue(*key);
        readValues(*key, device);
        parseHardwareIds(device);
        parseLocation(device);
    }
    return device;
}

} // namespace zolex
