#include "companion/planning/Losses.h"

#include "companion/planning/Strategy.h"

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
    return loss;
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
