#include "companion/planning/FamilyDrives.h"

#include "companion/layout/Layout.h"
#include "companion/planning/HurtArrays.h"

#include <algorithm>
#include <limits>

namespace zolex::companion {

FamilyDrives::FamilyDrives(const ControllerSnapshot& controller, const Family& family,
                           bool failedMembersStay)
    : family_(family), failedMembersStay_(failedMembersStay) {
    for (const MachineDrive& drive : controller.drives) {
        drives_.push_back(&drive);
    }
    const auto numberOf = [](const MachineDrive& drive) {
        return drive.policyNumber.value_or(std::numeric_limits<std::int32_t>::max());
    };
    std::stable_sort(drives_.begin(), drives_.end(),
                     [&numberOf](const MachineDrive* a, const MachineDrive* b) {
                         return numberOf(*a) != numberOf(*b)
                                    ? numberOf(*a) < numberOf(*b)
                                    : locationStandsBefore(a->facts.location, b->facts.location);
                     });
    for (const MachineDrive* const drive : drives_) {
        const DriveFacts& facts = drive->facts;
        if (facts.slot) {
            channels_.push_back(facts.enclosure);
            bySlot_.emplace(std::pair(facts.enclosure, *facts.slot), drive);
        }
    }
    std::sort(channels_.begin(), channels_.end()); // nothing stands before any number
    channels_.erase(std::unique(channels_.begin(), channels_.end()), channels_.end());
}

const MachineDrive* FamilyDrives::find(const DriveView& view) const {
    if (view.number > 0) {
        const auto index = static_cast<std::size_t>(view.number) - 1;
        return index < drives_.size() ? drives_[index] : nullptr;
    }
    const auto place = std::find_if(drives_.begin(), drives_.end(), [&](const MachineDrive* each) {
        return each->policyPosition == view.position;
    });
    if (place != drives_.end()) {
        return *place;
    }
    // An enclosure may be named by its own id, too.
    const auto channel = static_cast<std::size_t>(view.position.channel);
    std::optional<std::int32_t> enclosure = view.position.channel;
    if (channel >= 1 && channel <= channels_.size()) {
        enclosure = channels_[channel - 1];
    }
    const auto found = bySlot_.find(std::pair(enclosure, view.position.id));
    return found == bySlot_.end() ? nullptr : found->second;
}

bool FamilyDrives::isAmbiguous(const DriveView& view) const {
    const auto byId =
        bySlot_.find(std::pair(std::optional(view.position.channel), view.position.id));
    return view.number <= 0 && byId != bySlot_.end() && find(view) != byId->second;
}

FamilyDrives::Use FamilyDrives::useOf(const MachineDrive& drive) const {
    const DriveFacts& facts = drive.facts;
    if (failedMembersStay_ && isHurt(facts) && !drive.array.empty()) {
        return Use::good;
    }
    if (family_.whyNotUsable(facts).empty()) {
        return Use::good;
    }
    DriveFacts cleared = facts;
    cleared.isForeign = false;
    cleared.state = DriveState::free;
    const bool isForeign = facts.isForeign || facts.state == DriveState::foreign;
    const bool isSound = facts.state == DriveState::foreign || facts.state == DriveState::free;
    return isForeign && isSound && family_.whyNotUsable(cleared).empty() ? Use::foreign : Use::bad;
}

std::string FamilyDrives::whyNot(const MachineDrive& drive) const {
    return family_.whyNotUsable(drive.facts);
}

} // namespace zolex::companion
