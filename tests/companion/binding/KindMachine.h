#pragma once

#include "companion/binding/BoundPolicies.h"
#include "companion/machine/Capture.h"
#include "companion/support/SimulatedPlatform.h"

#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion::test {

/// A server with one MegaRAID controller that has RAID 6, and these drives.
inline std::string kindServer(std::string_view drives, std::string_view disks = "") {
    return R"({"machineType": "8837", "serialNumber": "KQ10Z7V", "controllers": [{
        "utility": "MEGACLI", "generation": "early", "model": "Kestrix-C1",
        "productName": "Norvik Kestrix C1",
        "pci": {"bus": 2, "device": 14, "function": 0, "vendorId": "0x1000",
                "deviceId": "0x0060", "subsystemVendorId": "0x1F3D", "subsystemId": "0x0364"},
        "drives": [)" +
           std::string(drives) + R"(], "virtualDisks": [)" + std::string(disks) + "]}]}";
}

/// Two solid-state drives of 447.1 GB, two of 894.3 GB, and four disks of 278.9 GB.
inline constexpr std::string_view mixedDrives =
    R"({"enclosure": 32, "slot": 0, "count": 2, "sizeMB": 457862, "model": "NVSSD480", "medium": "ssd", "interface": "SATA", "serial": "S4"},
{"enclosure": 32, "slot": 2, "count": 2, "sizeMB": 915715, "model": "NVSSD960", "medium": "ssd", "interface": "SATA", "serial": "S9"},
{"enclosure": 32, "slot": 4, "count": 4, "sizeMB": 285568, "serial": "H3"})";

inline Snapshot capturedKinds(std::string_view definition) {
    SimulatedPlatform platform(definition);
    return captureMachine(platform, {});
}

/// What the first policy is bound to: its text, then a line for each drive and reason, or a line
/// for each fault.
inline std::string boundTold(const BoundPolicies& bound) {
    std::string text;
    for (const BindingFault& fault : bound.faults) {
        text += std::to_string(fault.line) + ":" + std::to_string(fault.column) + "-" +
                std::to_string(fault.endColumn) + " " + fault.code + " " + fault.keyword + ": " +
                fault.what + "\n  help: " + fault.help + "\n";
    }
    for (const Binding& binding : bound.bindings) {
        text += binding.keyword + " -> " + binding.becomes +
                (binding.why.empty() ? "" : " (" + binding.why + ")") + "\n";
        for (const BoundDrive& drive : binding.drives) {
            text += "  " + drive.location + " " + drive.code + ": " + drive.why + "\n";
        }
    }
    return text;
}

inline BoundPolicies boundTo(const Snapshot& snapshot, std::string_view entries,
                             const BindingTerms& terms = {}) {
    const ControllerSnapshot& controller = snapshot.details.front();
    return bindPolicy("[Policy.a]\nAppliesTo.1 = ALL\n" + std::string(entries), 0, controller,
                      *snapshot.controllers.controller(controller.index), terms);
}

inline std::string boundTold(std::string_view drives, std::string_view entries) {
    return boundTold(boundTo(capturedKinds(kindServer(drives)), entries));
}

} // namespace zolex::companion::test
