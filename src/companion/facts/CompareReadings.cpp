#include "companion/facts/CompareReadings.h"

#include "companion/facts/FactValues.h"
#include "model/Codes.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace zolex::companion {

namespace {

using enum DifferenceKind;

struct LevelRow {
    std::int32_t code;
    std::string_view raidType;
};

// Columns: level code, RAID type. The order does not matter.
// clang-format off
constexpr std::array<LevelRow, 12> levels = {{
    {raid_level::raid0,        "RAID0"},
    {raid_level::raid1,        "RAID1"},
    {raid_level::raid1E,       "RAID1E"},
    {raid_level::raid5,        "RAID5"},
    {raid_level::raid5E,       "RAID5E"},
    {raid_level::raid5EE,      "RAID5EE"},
    {raid_level::raid6,        "RAID6"},
    {raid_level::raid10,       "RAID10"},
    {raid_level::raid50,       "RAID50"},
    {raid_level::raid60,       "RAID60"},
    {raid_level::volume,       "None"},
    {raid_level::simpleVolume, "None"},
}};
// clang-format on

std::string_view raidTypeOfCode(std::int32_t code) {
    const auto row = std::find_if(levels.begin(), levels.end(),
                                  [code](const LevelRow& each) { return each.code == code; });
    return row == levels.end() ? std::string_view() : row->raidType;
}

bool isCounted(std::optional<DrivePosition> position) {
    return position && position->channel >= RAIDController::firstChannel &&
           RAIDController::isPosition(position->channel, position->id);
}

std::string placeText(DrivePosition position) {
    return std::to_string(position.channel) + ":" + std::to_string(position.id);
}

/// Channels belong to enclosures in the order in which the drive listing names them; drives in none
/// are taken for those of enclosure 0.
class EnclosureChannels {
  public:
    std::optional<std::int32_t> channelOf(std::optional<std::int32_t> enclosure) {
        const std::int32_t id = enclosure.value_or(0);
        const auto known = std::find(ids_.begin(), ids_.end(), id);
        const auto at = static_cast<std::int32_t>(known - ids_.begin());
        if (known == ids_.end() && ids_.size() + 1 < RAIDController::channels) {
            ids_.push_back(id);
        } else if (known == ids_.end()) {
            return std::nullopt;
        }
        return RAIDController::firstChannel + at;
    }

  private:
    std::vector<std::int32_t> ids_;
};

std::optional<DrivePosition> positionOf(std::int32_t type, const DriveFacts& drive,
                                        EnclosureChannels& channels) {
    const TypeTraits& traits = traitsOf(type);
    std::optional<std::int32_t> channel = drive.channel;
    std::optional<std::int32_t> id = drive.id;
    if (traits.dialect == Dialect::megaCli) {
        channel = channels.channelOf(drive.enclosure);
        id = drive.slot;
    } else if (type == controller_type::lsiSas) {
        channel = drive.enclosure;
        id = drive.slot;
    } else if (traits.dialect == Dialect::conf && type != controller_type::family && channel) {
        channel = *channel + 1; // their channel 0 is the first
    }
    return channel && id ? std::optional(DrivePosition{*channel, *id}) : std::nullopt;
}

/// How far a size in MB that zolex read may be from the one that was told: it rounds.
std::uint64_t allowance(std::uint64_t bytes, std::uint64_t tolerance, Dialect dialect) {
    constexpr std::uint64_t bytesPerGb = bytesPerMb * 1024;
    constexpr std::uint64_t bytesPerTb = bytesPerGb * 1024;
    std::uint64_t text = 0; // that zolex read where this reading has the sectors
    if (dialect == Dialect::megaCli) {
        text = (bytes >= bytesPerTb ? bytesPerTb : bytes >= bytesPerGb ? bytesPerGb : 0) / 1000;
    }
    return std::max(text, tolerance) + bytesPerMb;
}

bool isNear(std::uint64_t bytes, std::int32_t sizeMb, std::uint64_t allowed) {
    const std::uint64_t other = static_cast<std::uint64_t>(std::max(sizeMb, 0)) * bytesPerMb;
    return std::max(bytes, other) - std::min(bytes, other) <= allowed;
}

std::string inMb(std::uint64_t bytes) {
    return std::to_string(bytes / bytesPerMb) + " MB";
}

class Comparison {
  public:
    Comparison(const Facts& facts, const RAIDController& core)
        : facts_(facts), core_(core), dialect_(traitsOf(core.type()).dialect),
          positions_(corePositions(core.type(), facts)) {
        for (std::size_t i = 0; i < facts.drives.size(); ++i) {
            byLocation_.emplace(facts.drives[i].location, i);
            if (positions_[i]) {
                ++drivesAt(*positions_[i]);
            }
        }
    }

    std::vector<ReadingDifference> run(bool isRead) {
        if (!isRead) {
            tell(layout, "listing", "refused by zolex");
            return std::move(found_);
        }
        compareDrives();
        compareNames();
        compareLayout();
        return std::move(found_);
    }

  private:
    void tell(DifferenceKind kind, std::string subject, std::string what) {
        found_.push_back({kind, std::move(subject), std::move(what)});
    }

    std::size_t& drivesAt(DrivePosition position) {
        return drivesAt_.at(static_cast<std::size_t>(position.channel))
            .at(static_cast<std::size_t>(position.id));
    }

    void compareDrives() {
        for (std::size_t i = 0; i < facts_.drives.size(); ++i) {
            compareDrive(i);
        }
        core_.forEachDrive([this](std::int32_t channel, std::int32_t id) {
            const DrivePosition position = {channel, id};
            if (drivesAt(position) == 0) {
                tell(drive, "position " + placeText(position),
                     "zolex has a drive there that is not listed");
            }
        });
    }

    void compareDrive(std::size_t index) {
        const DriveFacts& each = facts_.drives[index];
        const std::optional<DrivePosition> position = positions_[index];
        if (!isCounted(position)) {
            tell(driveLeftOut, each.location,
                 "left out by zolex: outside its 4 channels of 36 drives");
            return;
        }
        const std::int32_t sizeMb = core_.size(position->channel, position->id);
        if (drivesAt(*position) > 1) {
            tell(drivesAtOnePlace, each.location,
                 "one of several drives at " + placeText(*position) + ", where zolex keeps one");
        } else if (sizeMb == RAIDController::noDrive) {
            const std::string why = whyLeftOut(each);
            tell(why.empty() ? drive : driveLeftOut, each.location,
                 "left out by zolex" +
                     (why.empty() ? ", though it is \"" + each.reportedState + "\"" : ": " + why));
        } else if (each.capacityBytes &&
                   !isNear(*each.capacityBytes, sizeMb,
                           allowance(*each.capacityBytes, each.capacityTolerance, dialect_))) {
            tell(driveSize, each.location,
                 inMb(*each.capacityBytes) + ", and " + std::to_string(sizeMb) + " MB to zolex");
        }
    }

    [[nodiscard]] std::string whyLeftOut(const DriveFacts& each) const {
        switch (each.state) {
        case DriveState::failed:
            return "failed";
        case DriveState::missing:
            return "missing";
        case DriveState::unknown:
        case DriveState::jbod:
            return "its state is \"" + each.reportedState + "\"";
        default:
            return each.capacityBytes.value_or(0) / bytesPerMb == 0 && dialect_ != Dialect::hyperwin
                       ? "without a size"
                       : "";
        }
    }

    /// As soon as one drive is in no enclosure, zolex's command lines name drives by slot alone.
    void compareNames() {
        if (dialect_ != Dialect::megaCli) {
            return;
        }
        const bool hasLoose = std::any_of(facts_.drives.begin(), facts_.drives.end(),
                                          [](const DriveFacts& each) { return !each.enclosure; });
        for (const DriveFacts& each : facts_.drives) {
            if (!hasLoose || !each.slot) {
                continue;
            }
            const std::string name = locationText(std::nullopt, *each.slot);
            if (each.enclosure) {
                tell(namedOtherwise, each.location,
                     "zolex's command lines say " + name +
                         (byLocation_.contains(name) ? ", which is another drive" : ""));
            } else {
                tell(namedOtherwise, each.location,
                     "zolex's hot-spare line says 0" + name + ", which is in enclosure 0");
            }
        }
    }

    void compareLayout() {
        const RAIDConfiguration* const layoutOfCore = core_.captured();
        if (layoutOfCore == nullptr) {
            tellNoLayout();
            return;
        }
        const std::vector<LogicalDrive>& drives = layoutOfCore->logicalDrives();
        const std::size_t both = std::min(drives.size(), facts_.logicalDrives.size());
        if (drives.size() != facts_.logicalDrives.size()) {
            const bool isLimit = drives.size() == RAIDConfiguration::maxLogicalDrives;
            tell(isLimit ? layoutLimit : layout, "layout",
                 std::to_string(facts_.logicalDrives.size()) + " logical drives, and " +
                     std::to_string(drives.size()) + " to zolex");
        }
        for (std::size_t i = 0; i < both; ++i) {
            compareLogicalDrive(facts_.logicalDrives[i], drives[i], *layoutOfCore);
        }
        compareStripSize(*layoutOfCore);
        compareHotspares(*layoutOfCore);
    }

    void tellNoLayout() {
        const std::size_t count = facts_.logicalDrives.size();
        const bool hasSpare =
            std::any_of(facts_.drives.begin(), facts_.drives.end(),
                        [](const DriveFacts& each) { return each.hotspare != HotspareKind::none; });
        if (count > 0) {
            const bool isWhole =
                std::all_of(facts_.logicalDrives.begin(), facts_.logicalDrives.end(),
                            [this](const LogicalDriveFacts& each) { return isWholeForCore(each); });
            tell(isWhole && facts_.broken.empty() ? layout : layoutLimit, "layout",
                 "zolex captures none of " + std::to_string(count) +
                     (count == 1 ? " logical drive" : " logical drives"));
        } else if (hasSpare) {
            tell(layoutLimit, "layout", "zolex captures no hot spare without a logical drive");
        }
    }

    /// Whether its level and each of its members are known, and zolex has a place for them.
    [[nodiscard]] bool isWholeForCore(const LogicalDriveFacts& each) const {
        const std::vector<std::string> members = each.drives();
        return !members.empty() && !each.raidType.empty() &&
               std::all_of(members.begin(), members.end(), [this](const std::string& member) {
                   return isCounted(positionNamed(member));
               });
    }

    [[nodiscard]] std::optional<DrivePosition> positionNamed(const std::string& location) const {
        const auto found = byLocation_.find(location);
        return found == byLocation_.end() ? std::nullopt : positions_[found->second];
    }

    void compareLogicalDrive(const LogicalDriveFacts& each, const LogicalDrive& other,
                             const RAIDConfiguration& layoutOfCore) {
        const std::string name = "logical drive " + each.id;
        const std::string_view level = raidTypeOfCode(other.raidLevel);
        if (each.raidType != level) {
            tell(raidLevel, name,
                 (each.raidType.empty() ? "unknown level" : each.raidType) + ", and " +
                     (level.empty() ? "unknown" : std::string(level)) + " to zolex");
        }
        if (each.capacityBytes && other.sizeMb > 0 &&
            !isNear(*each.capacityBytes, other.sizeMb,
                    allowance(*each.capacityBytes, each.capacityTolerance, dialect_))) {
            tell(logicalSize, name,
                 inMb(*each.capacityBytes) + ", and " + std::to_string(other.sizeMb) +
                     " MB to zolex");
        }
        compareMembers(name, each, other, layoutOfCore);
    }

    void compareMembers(const std::string& name, const LogicalDriveFacts& each,
                        const LogicalDrive& other, const RAIDConfiguration& layoutOfCore) {
        std::vector<std::pair<std::int32_t, std::int32_t>> ours;
        bool isWhole = true;
        for (const std::string& member : each.drives()) {
            const std::optional<DrivePosition> position = positionNamed(member);
            isWhole = isWhole && isCounted(position);
            if (isCounted(position)) {
                ours.emplace_back(position->channel, position->id);
            }
        }
        std::vector<std::pair<std::int32_t, std::int32_t>> theirs;
        const auto array = static_cast<std::size_t>(other.arrayIndex);
        if (other.arrayIndex >= 0 && array < layoutOfCore.arrays().size()) {
            for (const DrivePosition position : layoutOfCore.arrays()[array].drives()) {
                if (isCounted(position)) {
                    theirs.emplace_back(position.channel, position.id);
                }
            }
        }
        std::sort(ours.begin(), ours.end());
        std::sort(theirs.begin(), theirs.end());
        if (ours != theirs) {
            const bool isLimit =
                theirs.size() == RaidArray::maxDrives && ours.size() > theirs.size();
            tell(isLimit ? layoutLimit : members, name,
                 "its members are not the same to zolex (" + std::to_string(ours.size()) +
                     ", and " + std::to_string(theirs.size()) + ")");
        } else if (!isWhole) {
            tell(layoutLimit, name, "zolex has fewer members: it does not know the others");
        }
    }

    /// zolex keeps one strip size for the controller.
    void compareStripSize(const RAIDConfiguration& layoutOfCore) {
        std::vector<std::uint64_t> sizes;
        for (const LogicalDriveFacts& each : facts_.logicalDrives) {
            if (each.stripSizeBytes &&
                std::find(sizes.begin(), sizes.end(), *each.stripSizeBytes) == sizes.end()) {
                sizes.push_back(*each.stripSizeBytes);
            }
        }
        if (sizes.empty()) {
            return;
        }
        constexpr std::uint64_t least = 8 * bytesPerKb;
        const std::int32_t code = layoutOfCore.stripeSize;
        const bool isKept = code >= 0 && code < stripe::none;
        const std::uint64_t kept = isKept ? least << static_cast<unsigned>(code) : 0;
        if (sizes.size() > 1) {
            tell(layoutLimit, "layout", "several strip sizes: zolex keeps one");
        } else if (!isKept) {
            tell(layoutLimit, "layout",
                 "zolex does not keep strips of " + std::to_string(sizes[0] / bytesPerKb) + " KB");
        } else if (sizes[0] != kept) {
            // QTCSEND tells the controller's own setting too, and zolex keeps that.
            tell(core_.type() == controller_type::family ? layoutLimit : stripSize, "layout",
                 "strips of " + std::to_string(sizes[0] / bytesPerKb) + " KB, and " +
                     std::to_string(kept / bytesPerKb) + " KB to zolex");
        }
    }

    void compareHotspares(const RAIDConfiguration& layoutOfCore) {
        const std::vector<Hotspare>& theirs = layoutOfCore.hotspares();
        std::size_t known = 0;
        for (std::size_t i = 0; i < facts_.drives.size(); ++i) {
            const DriveFacts& each = facts_.drives[i];
            if (each.hotspare == HotspareKind::none) {
                continue;
            }
            const bool isThere =
                isCounted(positions_[i]) &&
                std::any_of(theirs.begin(), theirs.end(), [&](const Hotspare& spare) {
                    return spare.channelNumber == positions_[i]->channel &&
                           spare.id == positions_[i]->id;
                });
            known += isThere ? 1 : 0;
            const bool isLimit =
                theirs.size() == RAIDConfiguration::maxHotspares || !isCounted(positions_[i]);
            if (!isThere) {
                tell(isLimit ? layoutLimit : hotspare, each.location, "no hot spare to zolex");
            }
        }
        const auto counted = static_cast<std::size_t>(
            std::count_if(theirs.begin(), theirs.end(), [](const Hotspare& spare) {
                return isCounted(DrivePosition{spare.channelNumber, spare.id});
            }));
        if (known < counted) {
            tell(hotspare, "layout",
                 std::to_string(counted) + (counted == 1 ? " hot spare" : " hot spares") +
                     " to zolex, of which " + std::to_string(known) + " are listed");
        }
    }

    const Facts& facts_;
    const RAIDController& core_;
    Dialect dialect_;
    std::vector<std::optional<DrivePosition>> positions_;
    std::unordered_map<std::string, std::size_t> byLocation_;
    std::array<std::array<std::size_t, RAIDController::ids>, RAIDController::channels> drivesAt_{};
    std::vector<ReadingDifference> found_;
};

} // namespace

std::vector<std::optional<DrivePosition>> corePositions(std::int32_t controllerType,
                                                        const Facts& facts) {
    EnclosureChannels channels;
    std::vector<std::optional<DrivePosition>> positions;
    positions.reserve(facts.drives.size());
    for (const DriveFacts& drive : facts.drives) {
        const std::optional<DrivePosition> position = positionOf(controllerType, drive, channels);
        positions.push_back(isCounted(position) ? position : std::nullopt);
    }
    return positions;
}

std::vector<ReadingDifference> compareReadings(const Facts& facts, const RAIDController& core,
                                               bool isRead) {
    return Comparison(facts, core).run(isRead);
}

} // namespace zolex::companion
