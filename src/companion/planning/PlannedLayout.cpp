#include "companion/planning/PlannedLayout.h"

#include "companion/facts/Bytes.h"
#include "companion/machine/Join.h"
#include "companion/planning/Reasons.h"
#include "companion/planning/Strategy.h"
#include "companion/planning/ToldSettings.h"
#include "model/Codes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// What planning takes for the rest of an array, in MB.
constexpr std::uint64_t fillMarginMb = 139;

bool isVolumeLevel(std::int32_t level) {
    return level == raid_level::volume || level == raid_level::simpleVolume;
}

bool canRebuild(std::int32_t level) {
    return level != raid_level::raid0 && !isVolumeLevel(level);
}

/// The part of an array that holds data: 0.5 for a mirror. Where single precision is enough for
/// planning, bytes want more.
double dataPart(std::int32_t level, std::size_t drives) {
    const auto count = static_cast<double>(drives);
    const auto without = [count](double kept) {
        return count > kept ? (count - kept) / count : 0.0;
    };
    switch (level) {
    case raid_level::raid1:
    case raid_level::raid1E:
    case raid_level::raid10:
        return 1.0 / 2;
    case raid_level::raid5:
        return without(1);
    case raid_level::raid5E:
    case raid_level::raid5EE:
    case raid_level::raid6:
    case raid_level::raid50:
        return without(2);
    case raid_level::raid60:
        return without(4);
    default:
        return 1.0;
    }
}

/// Fills the layout of one controller.
class LayoutFiller {
  public:
    LayoutFiller(const PlannedCase& planned, ControllerPlanning& planning)
        : planned_(planned), planning_(planning), reasons_(planned) {}

    void fill() {
        for (std::size_t i = 0; i < layout().arrays().size(); ++i) {
            addArray(i);
        }
        for (std::size_t i = 0; i < layout().logicalDrives().size(); ++i) {
            addVolume(i);
        }
        for (std::size_t i = 0; i < layout().hotspares().size(); ++i) {
            addSpare(i);
        }
        planning_.rebuildRate = layout().rebuildRate == rebuild_rate::high     ? "HIGH"
                                : layout().rebuildRate == rebuild_rate::medium ? "MEDIUM"
                                                                               : "LOW";
        if (tellsInit(planned_.record, planned_.detail.number, layout())) {
            planning_.initializeType = layout().init == init_choice::quick ? "Fast" : "Slow";
        }
        planning_.configuration = layout();
    }

  private:
    [[nodiscard]] const RAIDConfiguration& layout() const { return *planned_.plan.layout; }

    [[nodiscard]] const MachineDrive* driveAt(DrivePosition position) const {
        const auto found =
            std::find_if(planned_.detail.drives.begin(), planned_.detail.drives.end(),
                         [&](const MachineDrive& each) { return each.policyPosition == position; });
        return found == planned_.detail.drives.end() ? nullptr : &*found;
    }
    [[nodiscard]] std::string locationAt(DrivePosition position) const {
        const MachineDrive* const drive = driveAt(position);
        return drive == nullptr ? locationOf(planned_.record, position) : drive->facts.location;
    }
    [[nodiscard]] std::uint64_t bytesAt(DrivePosition position) const {
        const MachineDrive* const drive = driveAt(position);
        if (drive != nullptr && drive->facts.capacityBytes && *drive->facts.capacityBytes > 0) {
            return *drive->facts.capacityBytes;
        }
        return static_cast<std::uint64_t>(
                   std::max(planned_.record.size(position.channel, position.id), 0)) *
               bytesOfMb;
    }
    [[nodiscard]] std::uint64_t toleranceAt(DrivePosition position) const {
        const MachineDrive* const drive = driveAt(position);
        return drive == nullptr ? 0 : drive->facts.capacityTolerance;
    }

    /// The level of the first logical drive of an array; none without one.
    [[nodiscard]] std::int32_t levelOf(std::size_t array) const {
        for (const LogicalDrive& logical : layout().logicalDrives()) {
            if (logical.arrayIndex == static_cast<std::int32_t>(array)) {
                return logical.raidLevel;
            }
        }
        return raid_level::none;
    }

    /// The drives that the command line names: MEGACLI is told pairs, and an odd drive is left out.
    [[nodiscard]] std::vector<DrivePosition> membersOf(std::size_t array) const {
        std::vector<DrivePosition> members = layout().arrays()[array].drives();
        if (planned_.record.type() == controller_type::megaRaid &&
            levelOf(array) == raid_level::raid10 && members.size() % 2 != 0) {
            members.pop_back();
        }
        return members;
    }

    [[nodiscard]] std::uint64_t smallestOf(const std::vector<DrivePosition>& members) const {
        std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
        for (const DrivePosition position : members) {
            smallest = std::min(smallest, bytesAt(position));
        }
        return members.empty() ? 0 : smallest;
    }

    static std::string letterOf(std::size_t array) { return arrayLetters(array); }

    void addArray(std::size_t index) {
        PlannedArray array;
        array.id = letterOf(index);
        const std::vector<DrivePosition> members = membersOf(index);
        for (const DrivePosition position : members) {
            PlannedDrive drive;
            drive.location = locationAt(position);
            drive.reason =
                reasons_.ofDrive(Reason::Subject::array, index, position, drive.location);
            array.drives.push_back(std::move(drive));
        }
        array.capacityBytes = smallestOf(members) * members.size();
        planning_.arrays.push_back(std::move(array));
    }

    /// What is taken of drives, by drives: arrays of the same drives share their room.
    [[nodiscard]] std::vector<std::string> keyOf(std::size_t array) const {
        std::vector<std::string> key;
        for (const PlannedDrive& drive : planning_.arrays[array].drives) {
            key.push_back(drive.location);
        }
        std::sort(key.begin(), key.end());
        return key;
    }

    void addVolume(std::size_t index) {
        const LogicalDrive& logical = layout().logicalDrives()[index];
        const auto array = static_cast<std::size_t>(logical.arrayIndex);
        const auto number = static_cast<std::int32_t>(index);
        PlannedVolume volume;
        volume.id = "Logical." + std::to_string(index + 1);
        volume.array = letterOf(array);
        volume.raidType = plannedRaidType(logical.raidLevel);
        const Reason* const size = reasons_.find(Reason::Subject::size, number);
        volume.sizePolicy = size == nullptr ? "FILL" : sizeWords(size->askedSize);
        volume.fills = logical.sizeMb == sizeFill;
        const ToldSettings told =
            toldSettings(planned_.record, planned_.detail.number, layout(), index);
        volume.stripSizeBytes = told.stripSizeBytes;
        volume.writeCache = told.writeCache;
        volume.readCache = told.readCache;
        measure(logical, array, volume);
        volume.reasons["raid_type"] = reasons_.ofValue(Reason::Subject::raidLevel, number);
        volume.reasons["size"] = reasons_.ofValue(Reason::Subject::size, number);
        volume.reasons["write_cache_policy"] =
            reasonOf(!volume.writeCache.empty(), Reason::Subject::writeCache, number);
        volume.reasons["strip_size_bytes"] =
            reasonOf(volume.stripSizeBytes.has_value(), Reason::Subject::stripeSize, -1);
        volume.reasons["read_cache_policy"] =
            reasonOf(!volume.readCache.empty(), Reason::Subject::readAhead, -1);
        planning_.volumes.push_back(std::move(volume));
    }

    /// What no command line tells is the controller's own, whatever the policy says.
    [[nodiscard]] PlanReason reasonOf(bool isTold, Reason::Subject subject,
                                      std::int32_t index) const {
        return isTold
                   ? reasons_.ofValue(subject, index)
                   : PlanReason{std::string(reasonCode(Reason::Kind::leftToController)), "", 0, ""};
    }

    /// Capacity, and how far it may be off: a full stripe, a MB, and for one that takes what is
    /// left what controllers keep for themselves.
    void measure(const LogicalDrive& logical, std::size_t array, PlannedVolume& volume) {
        constexpr std::uint64_t perMille = 1000;
        constexpr std::uint64_t metadata = 2; // of a thousand
        constexpr std::uint64_t usualStrip = 65536;
        const std::vector<DrivePosition> members = membersOf(array);
        const double fraction = dataPart(logical.raidLevel, members.size());
        double& used = used_[keyOf(array)];
        const std::uint64_t stripe = volume.stripSizeBytes.value_or(usualStrip) * members.size();
        const double kept = volume.fills && fraction > 0.0 ? keptForLater(logical, array) : 0.0;
        if (kept > 0.0) {
            // The line tells how many MB these leave, and they are no longer all that is left.
            const auto all = static_cast<double>(planning_.arrays[array].capacityBytes);
            volume.fills = false;
            volume.capacityBytes = static_cast<std::uint64_t>(
                std::llround(std::max(all - used - kept, 0.0) * fraction));
            volume.toleranceBytes = stripe + bytesOfMb;
            used += static_cast<double>(volume.capacityBytes) / fraction;
            return;
        }
        if (!volume.fills) {
            volume.capacityBytes = static_cast<std::uint64_t>(logical.sizeMb) * bytesOfMb;
            volume.toleranceBytes = stripe + bytesOfMb;
            used += fraction > 0.0 ? static_cast<double>(volume.capacityBytes) / fraction : 0.0;
            return;
        }
        auto raw = static_cast<double>(planning_.arrays[array].capacityBytes);
        std::uint64_t tolerance = 0;
        if (isVolumeLevel(logical.raidLevel)) { // one drive behind the other
            raw = 0.0;
            for (const DrivePosition position : members) {
                raw += static_cast<double>(bytesAt(position));
            }
        }
        for (const DrivePosition position : members) {
            tolerance += toleranceAt(position);
        }
        volume.capacityBytes =
            static_cast<std::uint64_t>(std::llround(std::max(raw - used, 0.0) * fraction));
        volume.toleranceBytes = stripe + tolerance + fillMarginMb * bytesOfMb +
                                volume.capacityBytes / perMille * metadata;
        used = raw;
    }

    /// What a logical drive that takes the rest leaves to those behind it, in bytes of drives.
    /// QTCSEND's line for one that is not the first of its array leaves them their sizes; other
    /// lines take all.
    [[nodiscard]] double keptForLater(const LogicalDrive& logical, std::size_t array) const {
        const std::vector<LogicalDrive>& drives = layout().logicalDrives();
        const auto isOfArray = [array](const LogicalDrive& each) {
            return each.arrayIndex == static_cast<std::int32_t>(array);
        };
        const auto first = std::find_if(drives.begin(), drives.end(), isOfArray);
        if (!abilitiesOf(planned_.record).lettersArrays || &*first == &logical) {
            return 0.0;
        }
        double kept = 0.0;
        for (const LogicalDrive* each = &logical + 1; each != drives.data() + drives.size();
             ++each) {
            const double part = dataPart(each->raidLevel, membersOf(array).size());
            if (isOfArray(*each) && each->sizeMb != sizeFill && part > 0.0) {
                kept += static_cast<double>(each->sizeMb) * static_cast<double>(bytesOfMb) / part;
            }
        }
        return kept;
    }

    void addSpare(std::size_t index) {
        const Hotspare& hotspare = layout().hotspares()[index];
        const DrivePosition position{hotspare.channelNumber, hotspare.id};
        PlannedSpare spare;
        spare.location = locationAt(position);
        spare.reason = reasons_.ofDrive(Reason::Subject::hotspare, index, position, spare.location);
        for (std::size_t array = 0; array < layout().arrays().size(); ++array) {
            if (covers(position, array)) {
                spare.covers.push_back(letterOf(array));
            }
        }
        planning_.spares.push_back(std::move(spare));
    }

    [[nodiscard]] bool covers(DrivePosition spare, std::size_t array) const {
        // HYPERWIN makes stripe sets with a spare of a kind of its own.
        const bool isOfItsKind = planned_.record.type() == controller_type::lsiIde;
        const bool isRedundant =
            std::any_of(layout().logicalDrives().begin(), layout().logicalDrives().end(),
                        [&](const LogicalDrive& logical) {
                            return logical.arrayIndex == static_cast<std::int32_t>(array) &&
                                   (isOfItsKind || canRebuild(logical.raidLevel));
                        });
        const auto size = [this](DrivePosition position) {
            return planned_.record.size(position.channel, position.id);
        };
        std::int32_t smallest = std::numeric_limits<std::int32_t>::max();
        for (const DrivePosition member : membersOf(array)) {
            smallest = std::min(smallest, size(member));
        }
        return isRedundant && size(spare) >= smallest;
    }

    const PlannedCase& planned_;
    ControllerPlanning& planning_;
    const PlanReasons reasons_;
    std::map<std::vector<std::string>, double> used_;
};

} // namespace

std::string plannedRaidType(std::int32_t level) {
    return isVolumeLevel(level) ? "None" : std::string("RAID") + raidLevelWord(level);
}

std::string sizeWords(const DriveSize& size) {
    switch (size.kind) {
    case DriveSize::Kind::mb:
        return std::to_string(size.value) + " MB";
    case DriveSize::Kind::percent:
        return std::to_string(size.value) + "%";
    case DriveSize::Kind::rest:
        break;
    }
    return "FILL";
}

void fillLayout(const PlannedCase& planned, ControllerPlanning& planning) {
    LayoutFiller(planned, planning).fill();
}

} // namespace zolex::companion
