#include "companion/planning/Losses.h"

#include "companion/planning/Strategy.h"
#include "companion/text/TypedWord.h"

#include <string_view>

namespace zolex::companion {

namespace {

Loss lossOf(const ControllerPlanning& planning, const char* kind, const std::string& id) {
    Loss loss;
    loss.controller = planning.controller.number;
    loss.kind = kind;
    loss.id = id;
    return loss;
}

Loss driveLoss(const ControllerPlanning& planning, const char* kind, const std::string& location) {
    Loss loss = lossOf(planning, kind, location);
    loss.drives = {location};
    if (const DriveFacts* const drive = planning.controller.facts.drive(location)) {
        loss.status = drive->reportedState;
    }
    return loss;
}

} // namespace

Loss volumeLoss(const ControllerPlanning& planning, const LayoutGroup& group,
                const LayoutVolume& volume) {
    Loss loss = lossOf(planning, "logical_drive", volume.id);
    loss.raidType = volume.raidType;
    loss.drives = groupDrives(group);
    loss.capacityBytes = volume.capacityBytes.value_or(0);
    loss.status = volume.reportedState;
    loss.name = volume.name;
    loss.device = volume.device;
    loss.uniqueId = volume.uniqueId;
    return loss;
}

std::string howToEndUse(const std::string& usedAs) {
    constexpr std::string_view mounted = "mounted at ";
    if (usedAs.starts_with(mounted)) {
        return "umount " + typedWord(usedAs.substr(mounted.size()));
    }
    if (usedAs.find("root") != std::string::npos) {
        return "start the server from another system, or leave this logical drive in the policy";
    }
    return usedAs.find("swap") != std::string::npos ? "swapoff -a" : "lsblk tells what lies on it";
}

Loss spareLoss(const ControllerPlanning& planning, const LayoutSpare& spare) {
    return driveLoss(planning, "hotspare", spare.location);
}

Loss foreignLoss(const ControllerPlanning& planning, const std::string& location) {
    Loss loss = driveLoss(planning, "foreign", location);
    if (const DriveFacts* const drive = planning.controller.facts.drive(location)) {
        loss.capacityBytes = drive->capacityBytes.value_or(0);
    }
    return loss;
}

} // namespace zolex::companion
