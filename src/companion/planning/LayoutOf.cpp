#include "companion/families/Family.h"
#include "companion/planning/Plan.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

/// Whether the policy names the very drive.
bool namesDrive(const PlanReason& reason) {
    return reason.code == "listed" || reason.code == "by-slot" || reason.code == "by-serial";
}

/// Whether it does so by its place, as pairs of channel and id do.
bool namesPlace(const PlanReason& reason) {
    return reason.code == "by-slot" ||
           (reason.code == "listed" && reason.as.find(':') != std::string::npos);
}

LayoutVolume volumeOf(const PlannedVolume& planned) {
    LayoutVolume volume;
    volume.id = planned.id;
    volume.raidType = planned.raidType;
    volume.capacityBytes = planned.capacityBytes;
    volume.toleranceBytes = planned.toleranceBytes;
    volume.fills = planned.fills;
    volume.stripSizeBytes = planned.stripSizeBytes;
    volume.writeCache = planned.writeCache;
    volume.readCache = planned.readCache;
    return volume;
}

std::vector<std::string> sorted(std::vector<std::string> drives) {
    std::sort(drives.begin(), drives.end(), locationStandsBefore);
    return drives;
}

/// The drives span by span; in one where nothing is said of spans.
std::vector<std::vector<std::string>> spansOf(std::vector<std::string> drives, std::size_t each) {
    if (each == 0 || each >= drives.size()) {
        return {std::move(drives)};
    }
    std::vector<std::vector<std::string>> spans;
    for (std::size_t i = 0; i < drives.size(); ++i) {
        if (i % each == 0) {
            spans.emplace_back();
        }
        spans.back().push_back(std::move(drives[i]));
    }
    return spans;
}

/// Arrays of the same drives are one group: so some utilities make further logical drives.
class Groups {
  public:
    /// The group that the array becomes, or is a part of.
    LayoutGroup& add(const PlannedArray& array) {
        std::vector<std::string> drives;
        bool isListed = false;
        bool isByPairs = false;
        for (const PlannedDrive& drive : array.drives) {
            drives.push_back(drive.location);
            isListed = isListed || namesDrive(drive.reason);
            isByPairs = isByPairs || namesPlace(drive.reason);
        }
        std::vector<std::string> key = sorted(drives);
        const auto known = std::find(keys_.begin(), keys_.end(), key);
        if (known != keys_.end()) {
            return groups_[static_cast<std::size_t>(known - keys_.begin())];
        }
        keys_.push_back(std::move(key));
        LayoutGroup& group = groups_.emplace_back();
        group.id = array.id;
        group.spans = spansOf(std::move(drives), array.drivesPerSpan);
        group.isListed = isListed;
        group.isByPairs = isByPairs;
        return group;
    }

    std::vector<LayoutGroup> take() { return std::move(groups_); }

  private:
    std::vector<std::vector<std::string>> keys_;
    std::vector<LayoutGroup> groups_;
};

} // namespace

Layout layoutOf(const ControllerPlanning& planning) {
    Groups groups;
    for (const PlannedArray& array : planning.arrays) {
        LayoutGroup& group = groups.add(array);
        for (const PlannedVolume& volume : planning.volumes) {
            if (volume.array == array.id) {
                group.volumes.push_back(volumeOf(volume));
            }
        }
    }
    Layout layout;
    if (const Family* const family = findFamily(planning.controller.utility)) {
        layout.deepMirrors = family->limits(planning.controller.facts).deepMirrors;
    }
    layout.groups = groups.take();
    for (const PlannedSpare& planned : planning.spares) {
        LayoutSpare spare;
        spare.location = planned.location;
        spare.covers = planned.covers;
        spare.isDedicated = planned.isDedicated;
        spare.isListed = namesDrive(planned.reason);
        layout.spares.push_back(std::move(spare));
    }
    normalize(layout);
    return layout;
}

} // namespace zolex::companion
