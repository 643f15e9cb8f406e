#pragma once

#include "companion/facts/VirtualListings.h"
#include "companion/planning/PlannedServer.h"

#include <random>

namespace zolex::companion::test {

/// Puts a random controller in the place of those of the server.
inline void makeRandom(PlannedServer& server, std::mt19937& random) {
    server.platform.server = randomServer(random);
    zolex_sim::Controller& controller = server.platform.server.controllers.front();
    if (controller.identity.utility != "MEGACLI") {
        for (zolex_sim::Drive& drive : controller.drives) {
            // No other listing tells of drives that carry something.
            drive.status = drive.status == zolex_sim::DriveStatus::foreign
                               ? zolex_sim::DriveStatus::good
                               : drive.status;
        }
    }
    const zolex_sim::PciFunction& pci = controller.identity.pci;
    PciDevice device;
    device.vendorId = pci.vendorId;
    device.deviceId = pci.deviceId;
    device.subsystemVendorId = pci.subsystemVendorId;
    device.subsystemId = pci.subsystemId;
    device.bus = static_cast<std::uint16_t>(pci.bus);
    device.device = static_cast<std::uint16_t>(pci.device);
    device.function = static_cast<std::uint16_t>(pci.function);
    device.classCode = pci.classCode;
    server.platform.devices = {device};
}

} // namespace zolex::companion::test
