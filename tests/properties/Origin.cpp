#include "properties/Origin.h"

#include <algorithm>
#include <set>
#include <utility>

namespace zolex::properties {

namespace {

constexpr double closeMb = 139; // what is left of an array counts as none

bool asksForAll(const DriveSize& size) {
    return size.kind == DriveSize::Kind::rest || size == DriveSize{DriveSize::Kind::percent, 100};
}

} // namespace

bool Origin::isListed(std::size_t array) const {
    return policy_.customArrays && array < policy_.arrays.size() &&
           !policy_.arrays[array].allRemaining;
}

bool Origin::hasAsManyAsListed(std::size_t array) const {
    return isListed(array) &&
           plan_.arrays().at(array).drives().size() == policy_.arrays[array].driveCount();
}

std::size_t Origin::entriesOn(std::size_t array) const {
    return static_cast<std::size_t>(
        std::count_if(policy_.logicalDrives.begin(), policy_.logicalDrives.end(),
                      [array](const LogicalSpecification& entry) {
                          return entry.arrayIndex == static_cast<std::int32_t>(array);
                      }));
}

// Each entry makes one logical drive, in order.
const LogicalSpecification& Origin::entryOf(const LogicalDrive& drive) const {
    return policy_.customLogicalDrives ? policy_.logicalDrives.at(static_cast<std::size_t>(
                                             &drive - plan_.logicalDrives().data()))
                                       : *policy_.logicalDefaults;
}

// The level of the array's drives is the class's choice, and so is how many drives an array takes
// that the policy does not list.
bool Origin::isLeftToTheClass(std::size_t array) const {
    const auto entry = std::find_if(policy_.logicalDrives.begin(), policy_.logicalDrives.end(),
                                    [array](const LogicalSpecification& each) {
                                        return each.arrayIndex == static_cast<std::int32_t>(array);
                                    });
    const bool listsAll = policy_.customArrays && !isListed(array);
    if (listsAll && policy_.customLogicalDrives && entry != policy_.logicalDrives.end()) {
        return entry->raidLevel == raid_level::notGiven;
    }
    return !policy_.logicalDefaults || policy_.logicalDefaults->raidLevel == raid_level::notGiven;
}

bool Origin::asksForHotspares(int more) const {
    const auto most = static_cast<std::size_t>(more);
    return policy_.hotspares ? policy_.hotspares->driveCount() > most
                             : policy_.arrayDefaults.hotspareCount > more;
}

bool Origin::hasNoFreeDrive() const {
    bool found = false;
    planned_.forEachDrive([&](std::int32_t channel, std::int32_t id) {
        const bool spare = std::any_of(plan_.hotspares().begin(), plan_.hotspares().end(),
                                       [channel, id](const Hotspare& each) {
                                           return each.channelNumber == channel && each.id == id;
                                       });
        found = found || (channel > 0 && forecast_.isShownAsFree(channel, id) && !spare);
    });
    return !found;
}

// Hot spares are planned before the arrays.
bool Origin::repeatsOnlyWhatIsListed() const {
    std::set<std::pair<int, int>> named;
    for (const Hotspare& hotspare : plan_.hotspares()) {
        if (!named.insert({hotspare.channelNumber, hotspare.id}).second && !policy_.hotspares) {
            return false;
        }
    }
    for (std::size_t array = 0; array < plan_.arrays().size(); ++array) {
        for (const DrivePosition& drive : plan_.arrays()[array].drives()) {
            if (!named.insert({drive.channel, drive.id}).second && !isListed(array)) {
                return false;
            }
        }
    }
    return true;
}

bool Origin::takesOnlyWhatIsFreeOrListed() const {
    const auto isShownAsFree = [this](std::int32_t channel, std::int32_t id) {
        return forecast_.isShownAsFree(channel, id);
    };
    for (const Hotspare& hotspare : plan_.hotspares()) {
        if (!policy_.hotspares && !isShownAsFree(hotspare.channelNumber, hotspare.id)) {
            return false;
        }
    }
    for (std::size_t array = 0; array < plan_.arrays().size(); ++array) {
        for (const DrivePosition& drive : plan_.arrays()[array].drives()) {
            if (!isListed(array) && !isShownAsFree(drive.channel, drive.id)) {
                return false;
            }
        }
    }
    return true;
}

bool Origin::explains(Cause generatorCause) const {
    switch (generatorCause) {
    case Cause::noArray:
        // A list makes an array of its drives.
        return !isListed(0) && hasNoFreeDrive();
    case Cause::arrayWithoutLogicalDrive: {
        bool found = false;
        for (std::size_t array = 0; array < plan_.arrays().size(); ++array) {
            found = found || entriesOn(array) == 0;
        }
        return policy_.customLogicalDrives && found;
    }
    case Cause::severalOnArray: {
        bool found = false;
        for (std::size_t array = 0; array < plan_.arrays().size(); ++array) {
            found = found || entriesOn(array) > 1;
        }
        return policy_.customLogicalDrives && found;
    }
    case Cause::hyperwinSeveral:
        return policy_.customLogicalDrives ? policy_.logicalDrives.size() > 1 || entriesOn(0) == 0
                                           : policy_.customArrays && policy_.arrays.size() > 1;
    case Cause::hyperwinSize:
        return (policy_.customLogicalDrives || policy_.logicalDefaults) &&
               !asksForAll(entryOf(plan_.logicalDrives().front()).size);
    case Cause::hyperwinMirrorSpare:
        return asksForHotspares(0);
    case Cause::hyperwinSecondSpare:
        return asksForHotspares(1);
    default:
        return false;
    }
}

bool Origin::explains(Cause cause, const Forecast::Step& step) const {
    constexpr int mostOfCfggen = 2;
    const bool explicitLevel = step.drive != nullptr &&
                               (policy_.customLogicalDrives || policy_.logicalDefaults) &&
                               entryOf(*step.drive).raidLevel == step.drive->raidLevel;
    switch (cause) {
    case Cause::level:
        // One of `Logical_Defaults` is planned whether or not the class has it, a listed one is
        // not.
        return explicitLevel && !policy_.customLogicalDrives;
    case Cause::namedTwice:
    case Cause::taken:
        // By repeatsOnlyWhatIsListed().
        return true;
    case Cause::failed:
    case Cause::foreign:
        // By takesOnlyWhatIsFreeOrListed().
        return true;
    case Cause::missing:
        // The command names hot spares in an enclosure where the controller has none.
        return step.drive == nullptr && planned_.type() == controller_type::megaRaid &&
               !planned_.channelReassignment();
    case Cause::sizeOfShared:
        // By repeatsOnlyWhatIsListed().
        return isListed(step.array);
    case Cause::tooFewDrives:
        // HYPERWIN has one drive only, and the list has it twice, or as a hot spare too.
        return planned_.type() == controller_type::lsiIde && planned_.numberOfDrives() == 1 &&
               (isListed(0) || policy_.hotspares);
    case Cause::tooManyDrives:
        return hasAsManyAsListed(step.array);
    case Cause::odd10:
        return explicitLevel;
    case Cause::tooManySpans:
        // Up to 32 drives are one array where the class chooses the level.
        return hasAsManyAsListed(step.array) ||
               (planned_.type() == controller_type::megaRaid && isLeftToTheClass(step.array));
    case Cause::size:
    case Cause::sizeOfLeftOut:
    case Cause::sizeOfFurther:
        return asksForTooMuch(step);
    case Cause::tooManyLogicalDrives:
        return policy_.customArrays && policy_.arrays.size() > mostOfCfggen;
    case Cause::tooManyHotspares:
        return asksForHotspares(mostOfCfggen);
    default:
        return false;
    }
}

double Origin::usableMb(const LogicalDrive& drive) const {
    const RaidArray& array = plan_.arrays().at(static_cast<std::size_t>(drive.arrayIndex));
    return static_cast<double>(partOf(drive.raidLevel, array.drives().size())) *
           static_cast<double>(array.capacityMb);
}

// The part of its array that the policy asks for, at least.
double Origin::shareOf(const LogicalDrive& drive) const {
    const DriveSize& size = entryOf(drive).size;
    return size.kind == DriveSize::Kind::rest      ? 1
           : size.kind == DriveSize::Kind::percent ? size.value / 100.0
                                                   : size.value / usableMb(drive);
}

bool Origin::asksForTooMuch(const Forecast::Step& step) const {
    if (step.drive == nullptr || (!policy_.customLogicalDrives && !policy_.logicalDefaults)) {
        return false;
    }
    const DriveSize& size = entryOf(*step.drive).size;
    if (step.first) {
        // A number of MB is planned as it is written; a percentage counts the odd drive, too.
        return size.kind == DriveSize::Kind::mb
                   ? size.value > step.roomMb
                   : step.leftOut && size.kind != DriveSize::Kind::rest;
    }
    // The logical drives of the array up to this one ask for more than there is, but for what is
    // too little to be left. The one that is to take the rest leaves room for those that follow.
    const bool rest = step.drive->sizeMb == sizeFill;
    double asked = 0;
    double closeShare = 0;
    for (const LogicalDrive& drive : plan_.logicalDrives()) {
        if (drive.arrayIndex == step.drive->arrayIndex && (rest || &drive <= step.drive)) {
            asked += rest && &drive == step.drive ? 0 : shareOf(drive);
            closeShare = std::max(closeShare, closeMb / usableMb(drive));
        }
    }
    return asked + closeShare > 1;
}

} // namespace zolex::properties
