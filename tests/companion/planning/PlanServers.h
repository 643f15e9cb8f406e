#pragma once

#include <string>
#include <string_view>

/// Definitions of virtual servers, and policies for them.
namespace zolex::companion::test {

/// A server with one LSI-MegaRAID-8480 with these drives, virtual disks and foreign configurations.
inline std::string megaPlanServer(std::string_view drives, std::string_view disks = "",
                                  std::string_view foreign = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{"utility": "MEGACLI",
        "model": "LSI-MegaRAID-8480", "serialNumber": "1122334455",
        "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           std::string(drives) + R"(], "virtualDisks": [)" + std::string(disks) +
           R"(], "foreignConfigurations": [)" + std::string(foreign) + "]}]}";
}

/// The same with one Kestrix-B7 of ARCCONF.
inline std::string arcPlanServer(std::string_view drives) {
    return R"({"machineType": "8840", "serialNumber": "KQ52A1R", "controllers": [{
        "utility": "ARCCONF", "model": "Kestrix-B7", "serialNumber": "1000001",
        "pci": {"bus": 4, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
        "drives": [)" +
           std::string(drives) + "]}]}";
}

inline constexpr std::string_view eightDrives =
    R"({"enclosure": 32, "slot": 0, "count": 8, "sizeMB": 69376, "serial": "3L"})";

/// A policy for LSI-MegaRAID-8480 with CUSTOM modes and these lines.
inline std::string customPolicy(std::string_view lines) {
    return "[Policy.web]\nAppliesTo.1 = t:LSI-MegaRAID-8480\nArray_Mode = CUSTOM\n"
           "Logical_Mode = CUSTOM\n" +
           std::string(lines);
}

} // namespace zolex::companion::test
