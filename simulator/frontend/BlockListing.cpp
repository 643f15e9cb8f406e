#include "frontend/BlockListing.h"

#include "model/Text.h"

#include <algorithm>
#include <array>

namespace zolex_sim {

namespace {

// In the order of the enumeration of drive statuses.
constexpr std::array<std::string_view, 9> driveStates = {
    "Ready (RDY)",     // good
    "Missing (MIS)",   // bad
    "Defunct (DDD)",   // failed
    "Ready (RDY)",     // foreign: these utilities know nothing of other controllers
    "Hot Spare (HSP)", // hotspare
    "Online (ONL)",    // online
    "Rebuild (RBL)",   // rebuild
    "Ready (RDY)",     // jbod: no controller of these utilities has one
    "Missing (MIS)",   // missing
};
static_assert(driveStates.size() == static_cast<std::size_t>(DriveStatus::missing) + 1);

bool hasMember(const Controller& controller, const LogicalDrive& drive, DriveStatus status) {
    for (const std::vector<DriveLocation>& span : controller.arrays[drive.array].spans) {
        if (std::any_of(span.begin(), span.end(), [&](const DriveLocation& location) {
                return controller.driveAt(location)->status == status;
            })) {
            return true;
        }
    }
    return false;
}

} // namespace

const std::string_view blockSeparator =
    "------------------------------------------------------------------------\n";

std::string blockTitle(std::string_view title) {
    return std::string(blockSeparator) + std::string(title) + "\n" + std::string(blockSeparator);
}

std::string keyLine(std::size_t indent, std::string_view key, std::size_t column,
                    std::string_view value) {
    std::string line(indent, ' ');
    line += key;
    line.resize(std::max(line.size(), column), ' ');
    return line + ": " + std::string(value) + "\n";
}

std::string_view driveStateText(DriveStatus status) {
    return driveStates[static_cast<std::size_t>(status)];
}

std::string_view logicalDriveStateText(const Controller& controller, const LogicalDrive& drive) {
    switch (controller.stateOf(drive)) {
    case LogicalDriveState::optimal:
        return "Okay (OKY)";
    case LogicalDriveState::offline:
        return "Offline (OFL)";
    case LogicalDriveState::partiallyDegraded:
    case LogicalDriveState::degraded:
        break;
    }
    const bool rebuilding = hasMember(controller, drive, DriveStatus::rebuild) &&
                            !hasMember(controller, drive, DriveStatus::failed);
    return rebuilding ? "Rebuilding (RBL)" : "Degraded (DGD)";
}

std::string sizesText(const Drive& drive) {
    return formatted("%lld/%lld", static_cast<long long>(drive.sizeMb),
                     static_cast<long long>(drive.rawSectors));
}

std::string slotText(const ControllerIdentity& identity) {
    return identity.block.slot ? std::to_string(*identity.block.slot) : "Unknown";
}

} // namespace zolex_sim
