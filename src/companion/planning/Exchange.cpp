#include "companion/planning/Exchange.h"

#include "companion/layout/DriveClasses.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

using Locations = std::vector<std::string>;

Locations without(const Locations& a, const Locations& b) {
    Locations rest;
    std::set_difference(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(rest),
                        locationStandsBefore);
    return rest;
}

class Exchange {
  public:
    explicit Exchange(ControllerPlanning& planning)
        : planning_(planning), classes_(planning.controller.facts) {}

    bool run() {
        for (std::size_t group = 0; group < planning_.after.groups.size(); ++group) {
            pairGroup(group);
        }
        for (std::size_t spare = 0; spare < planning_.after.spares.size(); ++spare) {
            const LayoutSpare& wanted = planning_.after.spares[spare];
            const std::string& found = planning_.comparison.spares[spare];
            if (!found.empty() && found != wanted.location) {
                pair({{wanted.location, found}});
            }
        }
        return !others_.empty() && apply();
    }

  private:
    using Pairs = std::vector<std::pair<std::string, std::string>>;

    void pairGroup(std::size_t group) {
        const StandingGroup& standing = planning_.comparison.groups[group];
        if (!standing.captured || standing.volumesThatStand == 0) {
            return;
        }
        const Locations wanted = planning_.after.groups[group].drives();
        const Locations found = planning_.before.groups[*standing.captured].drives();
        Locations come = without(found, wanted);
        Pairs pairs;
        for (const std::string& gone : without(wanted, found)) {
            const auto equal = std::find_if(come.begin(), come.end(), [&](const auto& each) {
                return classes_.areInterchangeable(gone, each, false);
            });
            if (equal == come.end()) {
                return;
            }
            pairs.emplace_back(gone, *equal);
            come.erase(equal);
        }
        pair(pairs);
    }

    /// All of the pairs, or none when one is named by a list or has another one already.
    void pair(const Pairs& pairs) {
        for (const auto& [one, other] : pairs) {
            const bool isUnplaced =
                planning_.configuration && (!positionOf(one) || !positionOf(other));
            if (isListed(one) || isListed(other) || others_.count(one) != 0 ||
                others_.count(other) != 0 || isUnplaced) {
                return;
            }
        }
        for (const auto& [one, other] : pairs) {
            others_[one] = other;
            others_[other] = one;
        }
    }

    [[nodiscard]] bool isListed(const std::string& location) const {
        const Layout& after = planning_.after;
        return std::any_of(after.groups.begin(), after.groups.end(),
                           [&](const LayoutGroup& group) {
                               const Locations drives = group.drives();
                               return group.isListed && std::find(drives.begin(), drives.end(),
                                                                  location) != drives.end();
                           }) ||
               std::any_of(after.spares.begin(), after.spares.end(), [&](const LayoutSpare& spare) {
                   return spare.isListed && spare.location == location;
               });
    }

    [[nodiscard]] std::optional<DrivePosition> positionOf(const std::string& location) const {
        for (const MachineDrive& drive : planning_.controller.drives) {
            if (drive.facts.location == location) {
                return drive.policyPosition;
            }
        }
        return std::nullopt;
    }

    /// The location that takes the place of this one; itself when there is none.
    [[nodiscard]] const std::string& otherOf(const std::string& location) const {
        const auto found = others_.find(location);
        return found == others_.end() ? location : found->second;
    }

    bool apply() {
        if (!planning_.configuration) {
            exchangeLocations();
            compare();
            return true;
        }
        const RAIDConfiguration& old = *planning_.configuration;
        if (old.arrays().size() != planning_.arrays.size() ||
            old.hotspares().size() != planning_.spares.size()) {
            return false;
        }
        RAIDConfiguration layout;
        layout.rebuildRate = old.rebuildRate;
        layout.readAhead = old.readAhead;
        layout.stripeSize = old.stripeSize;
        layout.init = old.init;
        layout.policyName = old.policyName;
        for (std::size_t array = 0; array < old.arrays().size(); ++array) {
            RaidArray members = old.arrays()[array];
            std::vector<PlannedDrive>& drives = planning_.arrays[array].drives;
            for (std::size_t i = 0; i < std::min(drives.size(), members.drives().size()); ++i) {
                move(drives[i].location, [&](DrivePosition to) { members.setDrive(i, to); });
            }
            layout.addArray(std::move(members));
        }
        for (const LogicalDrive& drive : old.logicalDrives()) {
            layout.addLogicalDrive(drive);
        }
        for (std::size_t i = 0; i < old.hotspares().size(); ++i) {
            Hotspare hotspare = old.hotspares()[i];
            move(planning_.spares[i].location, [&](DrivePosition to) {
                hotspare.channelNumber = to.channel;
                hotspare.id = to.id;
            });
            layout.addHotspare(hotspare);
        }
        planning_.configuration = std::move(layout);
        compare();
        return true;
    }

    /// Of a controller that zolex does not know.
    void exchangeLocations() {
        for (PlannedArray& array : planning_.arrays) {
            for (PlannedDrive& drive : array.drives) {
                drive.location = otherOf(drive.location);
            }
        }
        for (PlannedSpare& spare : planning_.spares) {
            spare.location = otherOf(spare.location);
        }
    }

    void compare() {
        planning_.after = layoutOf(planning_);
        planning_.comparison = compareLayouts(planning_.controller.facts, planning_.before,
                                              planning_.after, {planning_.controller.utility});
    }

    template <typename Take>
    void move(std::string& location, const Take& take) {
        const std::string& other = otherOf(location);
        if (const auto position = positionOf(other); other != location && position) {
            take(*position);
            location = other;
        }
    }

    ControllerPlanning& planning_;
    DriveClasses classes_;
    std::map<std::string, std::string> others_; ///< both ways
};

} // namespace

bool planForStandingDrives(ControllerPlanning& planning) {
    const bool isComparable = planning.comparison.groups.size() == planning.after.groups.size() &&
                              planning.comparison.spares.size() == planning.after.spares.size();
    return isComparable && Exchange(planning).run();
}

} // namespace zolex::companion
