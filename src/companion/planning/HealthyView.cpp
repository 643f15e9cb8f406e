#include "companion/planning/HealthyView.h"

#include "companion/facts/Bytes.h"
#include "companion/facts/CompareReadings.h"
#include "companion/machine/Join.h"
#include "companion/planning/HurtArrays.h"
#include "model/Codes.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// The size of the smallest drive that lies beside this one in a logical drive; for a member whose
/// own size is not told any more.
std::int32_t sizeBeside(const RAIDController& record, const ControllerSnapshot& detail,
                        const std::string& location) {
    std::int32_t smallest = 0;
    for (const LogicalDriveFacts& logical : detail.facts.logicalDrives) {
        for (const std::vector<std::string>& span : logical.spans) {
            if (std::find(span.begin(), span.end(), location) == span.end()) {
                continue;
            }
            for (const MachineDrive& drive : detail.drives) {
                if (!drive.policyPosition ||
                    std::find(span.begin(), span.end(), drive.facts.location) == span.end()) {
                    continue;
                }
                const std::int32_t size =
                    record.size(drive.policyPosition->channel, drive.policyPosition->id);
                smallest = smallest == 0 || size < smallest ? size : smallest;
            }
        }
    }
    return smallest;
}

/// Gives the drive its place in the record again.
bool restore(RAIDController& record, const ControllerSnapshot& detail, const DriveFacts& drive,
             DrivePosition position) {
    std::int32_t size = record.size(position.channel, position.id);
    if (size < 1) {
        size =
            drive.capacityBytes ? static_cast<std::int32_t>(*drive.capacityBytes / bytesOfMb) : 0;
        size = size > 0 ? size : sizeBeside(record, detail, drive.location);
        const std::int32_t target = record.type() == controller_type::megaRaid
                                        ? drive.enclosure.value_or(0)
                                        : record.targetId(position.channel, position.id);
        if (size < 1 || !record.addDrive(position.channel, position.id, size, CString(), target)) {
            return false;
        }
    }
    return record.setUsed(position.channel, position.id, false);
}

} // namespace

ControllerSnapshot withoutListings(const ControllerSnapshot& detail) {
    ControllerSnapshot copy;
    copy.number = detail.number;
    copy.index = detail.index;
    copy.model = detail.model;
    copy.utility = detail.utility;
    copy.adapter = detail.adapter;
    copy.pci = detail.pci;
    copy.pciIds = detail.pciIds;
    copy.commands = detail.commands;
    copy.facts = detail.facts;
    copy.drives = detail.drives;
    copy.arrays = detail.arrays;
    copy.findings = detail.findings;
    copy.failed = detail.failed;
    return copy;
}

std::optional<HealthyView> healthyView(const RAIDController& record,
                                       const ControllerSnapshot& detail) {
    const bool isHealthy =
        std::none_of(detail.facts.drives.begin(), detail.facts.drives.end(), isHurt);
    if (isHealthy) {
        return std::nullopt;
    }
    const auto positions = corePositions(record.type(), detail.facts);
    HealthyView view{record, {}};
    bool isChanged = false;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const DriveFacts& drive = detail.facts.drives[i];
        if (isHurt(drive) && positions[i]) {
            isChanged = restore(view.record, detail, drive, *positions[i]) || isChanged;
        }
    }
    if (!isChanged) {
        return std::nullopt;
    }
    view.detail = withoutListings(detail);
    view.detail.drives = joinDrives(view.record, detail.facts);
    for (MachineDrive& drive : view.detail.drives) {
        const auto known = std::find_if(detail.drives.begin(), detail.drives.end(),
                                        [&drive](const MachineDrive& each) {
                                            return each.facts.location == drive.facts.location;
                                        });
        drive.array = known == detail.drives.end() ? std::string() : known->array;
    }
    return view;
}

} // namespace zolex::companion
