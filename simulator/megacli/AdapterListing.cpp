#include "megacli/Listings.h"
#include "model/Text.h"

#include <algorithm>

namespace zolex_sim::megacli {
namespace {

std::string section(const char* title, const std::string& body) {
    return formatted("                %s\n                ================\n", title) + body + "\n";
}

std::string versions(const ControllerIdentity& identity) {
    return section("    Versions",
                   formatted("Product Name    : %s\n"
                             "Serial No       : %s\n"
                             "FW Package Build: %s\n",
                             identity.productName.c_str(), identity.serialNumber.c_str(),
                             identity.firmwarePackage.c_str()));
}

std::string manufacture(const ControllerIdentity& identity) {
    return section("    Mfg. Data",
                   formatted("Mfg. Date       : %s\n"
                             "Rework Date     : %s\n"
                             "Revision No     : \n"
                             "Battery FRU     : N/A\n",
                             identity.manufactured.c_str(), identity.manufactured.c_str()));
}

std::string images(const ControllerIdentity& identity) {
    return section("Image Versions In Flash:",
                   formatted("FW Version         : %s\n"
                             "BIOS Version       : %s\n"
                             "WebBIOS Version    : %s\n"
                             "Boot Block Version : %s\n",
                             identity.firmware.c_str(), identity.bios.c_str(),
                             identity.webBios.c_str(), identity.bootBlock.c_str())) +
           section("Pending Images In Flash", "None\n");
}

std::string pciInfo(const PciFunction& pci) {
    return section("PCI Info",
                   formatted("Vendor Id       : %04x\n"
                             "Device Id       : %04x\n"
                             "SubVendorId     : %04x\n"
                             "SubDeviceId     : %04x\n",
                             pci.vendorId, pci.deviceId, pci.subsystemVendorId, pci.subsystemId));
}

std::string abilities(const ControllerIdentity& identity) {
    std::vector<std::string> levels;
    for (const RaidLevel level : identity.levels) {
        levels.emplace_back(rulesOf(level).name);
    }
    return section("Settings", formatted("Rebuild Rate                     : %d%%\n"
                                         "Physical Drive Coercion Mode     : %s\n",
                                         identity.rebuildRate, identity.coercionMode.c_str())) +
           section("Capabilities", "RAID Level Supported             : " + join(levels, ", ") +
                                       "\n"
                                       "Supported Drives                 : SAS, SATA\n") +
           section("Limitations", formatted("Max Arms Per VD         : %d \n"
                                            "Max Spans Per VD        : %d \n"
                                            "Min Stripe Size         : %dkB\n"
                                            "Max Stripe Size         : %dkB\n",
                                            identity.maxDrivesPerSpan, identity.maxSpans,
                                            identity.minStripeKb, identity.maxStripeKb));
}

std::string devices(const Controller& controller) {
    const auto disksInState = [&](bool offline) {
        return std::count_if(controller.logicalDrives.begin(), controller.logicalDrives.end(),
                             [&](const LogicalDrive& drive) {
                                 const LogicalDriveState state = controller.stateOf(drive);
                                 return state != LogicalDriveState::optimal &&
                                        (state == LogicalDriveState::offline) == offline;
                             });
    };
    const auto critical =
        std::count_if(controller.drives.begin(), controller.drives.end(),
                      [](const Drive& drive) { return drive.predictiveFailures > 0; });
    const auto missing =
        std::count_if(controller.drives.begin(), controller.drives.end(),
                      [](const Drive& drive) { return drive.status == DriveStatus::missing; });
    const auto disks = controller.drives.size() - static_cast<std::size_t>(missing);
    const auto failed =
        std::count_if(controller.drives.begin(), controller.drives.end(),
                      [](const Drive& drive) { return drive.status == DriveStatus::failed; });
    const std::vector<std::optional<int>> enclosures = controller.enclosures();
    const auto boxes =
        std::count_if(enclosures.begin(), enclosures.end(),
                      [](const std::optional<int>& enclosure) { return enclosure.has_value(); });
    return section("Device Present",
                   formatted("Virtual Drives    : %zu \n"
                             "  Degraded        : %td \n"
                             "  Offline         : %td \n"
                             "Physical Devices  : %zu \n"
                             "  Disks           : %zu \n"
                             "  Critical Disks  : %td \n"
                             "  Failed Disks    : %td \n",
                             controller.logicalDrives.size(), disksInState(false),
                             disksInState(true), disks + static_cast<std::size_t>(boxes), disks,
                             critical, failed));
}

} // namespace

std::string adapterListing(const Controller& controller, int adapter) {
    const ControllerIdentity& identity = controller.identity;
    return heading(adapter) +
           "==============================================================================\n" +
           versions(identity) + manufacture(identity) + images(identity) + pciInfo(identity.pci) +
           abilities(identity) + devices(controller) + successLine;
}

} // namespace zolex_sim::megacli
