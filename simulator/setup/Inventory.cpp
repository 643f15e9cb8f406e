#include "model/Text.h"
#include "model/Utility.h"
#include "setup/ServerFiles.h"

#include <algorithm>
#include <map>

namespace zolex_sim {
namespace {

constexpr std::size_t maxChannels = 4;
constexpr int maxId = 35;

std::map<std::optional<int>, std::size_t> channelsOf(const Controller& controller) {
    const UtilityTraits* utility = utilityNamed(controller.identity.utility);
    const bool numbered = utility != nullptr && utility->firstChannel >= 0;
    std::map<std::optional<int>, std::size_t> channels;
    for (const std::optional<int>& enclosure : controller.enclosures()) {
        channels.emplace(enclosure, numbered ? static_cast<std::size_t>(enclosure.value_or(0) -
                                                                        utility->firstChannel + 1)
                                             : channels.size() + 1);
    }
    return channels;
}

std::string drivesSection(const Controller& controller, std::size_t number) {
    const std::vector<const Drive*> drives = countedDrives(controller);
    std::map<std::optional<int>, std::size_t> channels = channelsOf(controller);
    std::string text = formatted("[RAIDController.%zu.Physical]\nTotal_Number_Of_Physicals=%zu\n",
                                 number, drives.size());
    for (std::size_t i = 0; i < drives.size(); ++i) {
        const Drive& drive = *drives[i];
        text += formatted("Channel.%zu=%zu\nID.%zu=%d\nSize.%zu=%lld\nType.%zu=%s\n", i + 1,
                          channels[drive.location.enclosure], i + 1, drive.location.slot, i + 1,
                          static_cast<long long>(drive.sizeMb), i + 1, drive.interface.c_str());
    }
    return text + "\n";
}

} // namespace

std::vector<const Drive*> countedDrives(const Controller& controller) {
    const UtilityTraits* utility = utilityNamed(controller.identity.utility);
    const bool failedToo = utility != nullptr && utility->numbersFailedDrives;
    const bool badToo = utility == nullptr || utility->drives.numbersBad;
    std::map<std::optional<int>, std::size_t> channels = channelsOf(controller);
    std::vector<const Drive*> drives;
    for (const Drive& drive : controller.drives) {
        const std::size_t channel = channels[drive.location.enclosure];
        if (channel >= 1 && channel <= maxChannels && drive.location.slot <= maxId &&
            (failedToo || drive.status != DriveStatus::failed) &&
            (badToo || drive.status != DriveStatus::bad)) {
            drives.push_back(&drive);
        }
    }
    std::sort(drives.begin(), drives.end(), [&](const Drive* a, const Drive* b) {
        return std::pair(channels[a->location.enclosure], a->location.slot) <
               std::pair(channels[b->location.enclosure], b->location.slot);
    });
    return drives;
}

ServerFile inventory(const Server& server) {
    const std::vector<const Controller*> controllers = server.controllersInPciOrder();
    std::string text = formatted("; Inventory of the server of machine type %s.\n"
                                 "[System]\nTotal_Number_Of_Controllers=%zu\n\n",
                                 server.machineType.c_str(), controllers.size());
    for (std::size_t i = 0; i < controllers.size(); ++i) {
        const ControllerIdentity& identity = controllers[i]->identity;
        text += formatted("[RAIDController.%zu]\nModel=%s\nBIOSVersion=%s\nFirmwareVersion=%s\n\n"
                          "[RAIDController.%zu.Array]\nTotal_Number_Of_Arrays=0\n\n",
                          i + 1, identity.model.c_str(), identity.bios.c_str(),
                          identity.firmware.c_str(), i + 1);
        text += drivesSection(*controllers[i], i + 1);
    }
    return {"contlist.ini", text};
}

} // namespace zolex_sim
