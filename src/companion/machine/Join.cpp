#include "companion/machine/Join.h"

#include "companion/facts/Bytes.h"
#include "companion/facts/CompareReadings.h"
#include "engine/Planning.h"
#include "model/Codes.h"
#include "model/RAIDController.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <map>
#include <utility>

namespace zolex::companion {

namespace {

std::string pairText(std::int32_t first, std::int32_t second) {
    return std::to_string(first) + ":" + std::to_string(second);
}

/// The drive as zolex's own record has it.
DriveFacts factsOfRecord(const RAIDController& controller, DrivePosition position,
                         std::string location) {
    const RaidDisk& record = controller.driveRecord(position.channel, position.id);
    DriveFacts drive;
    drive.location = std::move(location);
    drive.serialNumber = record.serialNumber.view();
    drive.reportedState = record.state.view();
    drive.capacityBytes =
        static_cast<std::uint64_t>(controller.size(position.channel, position.id)) * bytesOfMb;
    return drive;
}

/// Drives of the facts by location, each taken once.
class DrivesByLocation {
  public:
    explicit DrivesByLocation(const Facts& facts) : facts_(facts), taken_(facts.drives.size()) {
        for (std::size_t i = 0; i < facts.drives.size(); ++i) {
            indices_.emplace(facts.drives[i].location, i);
        }
    }

    const DriveFacts* take(const std::string& location) {
        const auto found = indices_.find(location);
        if (found == indices_.end() || taken_[found->second]) {
            return nullptr;
        }
        taken_[found->second] = true;
        return &facts_.drives[found->second];
    }

    template <typename Visit>
    void forEachLeft(Visit visit) const {
        for (std::size_t i = 0; i < taken_.size(); ++i) {
            if (!taken_[i]) {
                visit(facts_.drives[i]);
            }
        }
    }

  private:
    const Facts& facts_;
    std::multimap<std::string, std::size_t, std::less<>> indices_;
    std::vector<bool> taken_;
};

bool isMegaCli(const RAIDController& controller) {
    return traitsOf(controller.type()).dialect == Dialect::megaCli;
}

bool isBefore(DrivePosition a, DrivePosition b) {
    return a.channel != b.channel ? a.channel < b.channel : a.id < b.id;
}

std::string stateText(const DriveFacts& drive) {
    return (drive.reportedState.empty() ? "not counted by zolex" : drive.reportedState) +
           (drive.serialNumber.empty() ? "" : ", serial " + drive.serialNumber);
}

/// What is to be said of a drive without a number. `place` is where it would stand in policies,
/// were it counted.
Finding numberless(const DriveFacts& drive, std::optional<DrivePosition> place,
                   const std::vector<MachineDrive>& drives) {
    Finding finding;
    finding.code = "ZX701";
    finding.severity = Severity::warning;
    finding.summary = drive.location + " (" + stateText(drive) + ") has no number in policies";
    finding.help = {"name drives by channel:id, or take this drive out"};
    if (!place) {
        finding.detail = "policies can name drives of " +
                         std::to_string(RAIDController::channels - RAIDController::firstChannel) +
                         " enclosures or channels, with numbers up to " +
                         std::to_string(RAIDController::ids - 1);
    }
    for (const MachineDrive& other : drives) {
        if (place && other.policyPosition && isBefore(*place, *other.policyPosition)) {
            finding.summary += ": drive " + std::to_string(*other.policyNumber) + " is " +
                               other.facts.location + " now";
            finding.detail = "every number from there on names the next drive";
            break;
        }
    }
    return finding;
}

} // namespace

std::string locationOf(const RAIDController& controller, DrivePosition position) {
    const TypeTraits& traits = traitsOf(controller.type());
    switch (traits.dialect) {
    case Dialect::megaCli: {
        const std::int32_t enclosure = controller.targetId(position.channel, position.id);
        return pairText(enclosure, position.id);
    }
    case Dialect::cfggen:
        return traits.drivesByTargetId ? std::to_string(position.id)
                                       : pairText(position.channel, position.id);
    case Dialect::hyperwin:
        return std::to_string(position.id + 1);
    case Dialect::conf:
        return controller.type() == controller_type::family
                   ? pairText(position.channel, position.id)
                   : pairText(position.channel - 1, position.id);
    }
    return {};
}

std::vector<MachineDrive> joinDrives(const RAIDController& controller, const Facts& facts) {
    std::vector<MachineDrive> drives;
    DrivesByLocation byLocation(facts);
    for (const DrivePosition position : planningOrder) {
        if (controller.size(position.channel, position.id) < 1) {
            continue;
        }
        std::string location = locationOf(controller, position);
        const DriveFacts* drive = byLocation.take(location);
        // Drives in no enclosure have the number 0 in the record.
        if (const std::string bare = ":" + std::to_string(position.id);
            drive == nullptr && isMegaCli(controller) && location == "0" + bare) {
            drive = byLocation.take(bare);
            if (drive == nullptr && !controller.channelReassignment()) {
                location = bare;
            }
        }
        MachineDrive joined;
        joined.facts =
            drive != nullptr ? *drive : factsOfRecord(controller, position, std::move(location));
        joined.policyNumber = static_cast<std::int32_t>(drives.size()) + 1;
        joined.policyPosition = position;
        drives.push_back(std::move(joined));
    }
    byLocation.forEachLeft(
        [&drives](const DriveFacts& drive) { drives.emplace_back().facts = drive; });
    return drives;
}

std::string arrayLetters(std::size_t index) {
    constexpr std::size_t letters = 26;
    std::string text;
    for (++index; index > 0; index = (index - 1) / letters) {
        text.insert(text.begin(), static_cast<char>('A' + static_cast<int>((index - 1) % letters)));
    }
    return text;
}

std::vector<MachineArray> joinArrays(const Facts& facts) {
    std::vector<MachineArray> arrays;
    std::map<std::string, std::size_t, std::less<>> byId;
    bool lettered = true;
    for (std::size_t i = 0; i < facts.logicalDrives.size(); ++i) {
        const LogicalDriveFacts& logical = facts.logicalDrives[i];
        // One that names no array lies on one of its own.
        const std::string key = logical.array.empty() ? "\n" + std::to_string(i) : logical.array;
        const auto [entry, isNew] = byId.emplace(key, arrays.size());
        if (isNew) {
            lettered = lettered && logical.array.size() == 1 && logical.array[0] >= 'A' &&
                       logical.array[0] <= 'Z';
            arrays.emplace_back().id = logical.array;
        }
        MachineArray& array = arrays[entry->second];
        array.logicalDrives.push_back(i);
        for (const std::string& drive : logical.drives()) {
            if (std::find(array.drives.begin(), array.drives.end(), drive) == array.drives.end()) {
                array.drives.push_back(drive);
            }
        }
    }
    for (std::size_t i = 0; i < arrays.size(); ++i) {
        arrays[i].letter = lettered ? arrays[i].id : arrayLetters(i);
    }
    return arrays;
}

void join(const RAIDController& controller, ControllerSnapshot& snapshot) {
    snapshot.drives = joinDrives(controller, snapshot.facts);
    snapshot.arrays = joinArrays(snapshot.facts);
    std::map<std::string_view, std::string_view> letters;
    for (const MachineArray& array : snapshot.arrays) {
        for (const std::string& drive : array.drives) {
            letters.emplace(drive, array.letter);
        }
    }
    const auto positions = corePositions(controller.type(), snapshot.facts);
    std::map<std::string_view, std::optional<DrivePosition>> places;
    for (std::size_t i = 0; i < positions.size(); ++i) {
        places.emplace(snapshot.facts.drives[i].location, positions[i]);
    }
    for (MachineDrive& drive : snapshot.drives) {
        if (const auto letter = letters.find(drive.facts.location); letter != letters.end()) {
            drive.array = letter->second;
        }
        if (!drive.policyNumber) {
            snapshot.findings.push_back(
                numberless(drive.facts, places[drive.facts.location], snapshot.drives));
        }
    }
}

} // namespace zolex::companion
