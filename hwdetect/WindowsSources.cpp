#include "WindowsSources.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace hwdetect {

namespace {

constexpr const char* driverKey = "SYSTEM\\CurrentControlSet\\Services\\mssmbios\\Data";
constexpr const char* driverValue = "SMBiosData";
constexpr const char* biosKey = "HARDWARE\\DESCRIPTION\\System\\BIOS";
constexpr const char* biosValue = "SystemProductName";

bool goesOn(long result) {
    return result == zolex::registry_result::success || result == zolex::registry_result::moreData;
}

} // namespace

std::optional<std::string> registryValue(zolex::Registry& registry, const std::string& key,
                                         std::string_view name) {
    const auto opened = registry.open(key);
    if (!opened) {
        return std::nullopt;
    }
    for (std::uint32_t index = 0;; ++index) {
        const zolex::RegistryValue size = opened->value(index, {});
        if (!goesOn(size.result)) {
            return std::nullopt;
        }
        std::vector<char> data(size.dataSize);
        const zolex::RegistryValue value = opened->value(index, data);
        if (value.result == zolex::registry_result::success && value.name == name) {
            return std::string(data.data(), data.size());
        }
    }
}

FirmwareAnswer readWindowsSources(std::string_view table, zolex::Registry& registry) {
    std::optional<MachineNames> names = readRawSmbiosData(table);
    if (!names) {
        if (const auto copy = registryValue(registry, driverKey, driverValue)) {
            names = readRawSmbiosData(*copy);
        }
    }
    FirmwareAnswer answer;
    if (names) {
        answer.names = *names;
    } else {
        answer.serialFault = "Windows shows no SMBIOS table of this machine";
    }
    if (answer.names.machineType.empty()) {
        const std::string name = registryValue(registry, biosKey, biosValue).value_or("");
        answer.names.machineType = name.substr(0, name.find('\0'));
    }
    if (!names && answer.names.machineType.empty()) {
        answer.typeFault = "Windows shows neither an SMBIOS table nor the name of this machine";
    }
    return answer;
}

} // namespace hwdetect
