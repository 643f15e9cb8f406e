#pragma once

#include "LintText.h"

#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// The definition of a server with one LSI-MegaRAID-8480 with these drives, and virtual disks.
inline std::string megaServer(std::string_view drives, std::string_view disks = "",
                              std::string_view serial = "KQ10Z7V") {
    return R"({"machineType": "8837", "serialNumber": ")" + std::string(serial) +
           R"(", "controllers": [{"utility": "MEGACLI", "model": "LSI-MegaRAID-8480",
        "pci": {"bus": 2, "device": 14, "vendorId": "0x1000", "deviceId": "0x0411",
                "subsystemVendorId": "0x1000", "subsystemId": "0x1002"},
        "drives": [)" +
           std::string(drives) + R"(], "virtualDisks": [)" + std::string(disks) + "]}]}";
}

/// The same with a Kestrix-B7.
inline std::string arcServer(std::string_view drives) {
    return R"({"machineType": "8840", "serialNumber": "KQ52A1R", "controllers": [{
        "utility": "ARCCONF", "model": "Kestrix-B7", "serialNumber": "1000001",
        "pci": {"bus": 4, "device": 1, "vendorId": "0x9005", "deviceId": "0x0286"},
        "drives": [)" +
           std::string(drives) + "]}]}";
}

/// The findings with the machine, beyond those that the file alone gives.
inline std::string machineText(const std::string& definition, std::string_view policies) {
    SimulatedPlatform platform(definition);
    const Snapshot snapshot = captureMachine(platform, {});
    const PolicyDocument document = scanPolicies("p.ini", std::string(policies));
    std::vector<Finding> all = lint(document, {&snapshot}, {});
    const std::vector<Finding> known = lint(document, {});
    std::erase_if(all, [&known](const Finding& finding) {
        return std::find(known.begin(), known.end(), finding) != known.end();
    });
    return textOf(all);
}

} // namespace zolex::companion::test
