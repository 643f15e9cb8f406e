#include "companion/execution/CertifiedDrives.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

constexpr const char* orAgree = ", or agree by the code";

std::string driveText(const DriveFacts& drive) {
    return "drive " + drive.location +
           (isPlaceholder(drive.serialNumber) ? std::string()
                                              : " (serial number " + drive.serialNumber + ")");
}

/// "free", "a hot spare": what a drive is.
std::string stateText(const DriveFacts& drive) {
    switch (drive.state) {
    case DriveState::free:
        return "free";
    case DriveState::member:
        return "a member of an array";
    case DriveState::hotspare:
        return drive.hotspare == HotspareKind::dedicated ? "a dedicated hot spare" : "a hot spare";
    case DriveState::rebuilding:
        return "being rebuilt";
    case DriveState::failed:
        return "failed";
    case DriveState::missing:
        return "missing";
    case DriveState::foreign:
        return "of another controller";
    case DriveState::jbod:
        return "shown to the system as it is";
    case DriveState::unknown:
        break;
    }
    return "in an unknown state";
}

bool hasOwnNumber(const Facts& facts, const DriveFacts& drive) {
    return !isPlaceholder(drive.serialNumber) &&
           std::count_if(facts.drives.begin(), facts.drives.end(), [&](const DriveFacts& each) {
               return each.serialNumber == drive.serialNumber;
           }) == 1;
}

const DriveFacts* driveOfNumber(const Facts& facts, const std::string& serialNumber) {
    const auto found =
        std::find_if(facts.drives.begin(), facts.drives.end(), [&](const DriveFacts& each) {
            return each.serialNumber == serialNumber && each.state != DriveState::missing;
        });
    return found == facts.drives.end() ? nullptr : &*found;
}

/// Holds the drives of a controller against the certified ones.
class DriveSearch {
  public:
    DriveSearch(const Facts& certified, const Facts& facts, const std::string& planId)
        : certified_(certified), facts_(facts), planId_(planId) {}

    [[nodiscard]] std::string firstDifference() const {
        for (const DriveFacts& drive : certified_.drives) {
            if (std::string why = whyOther(drive); !why.empty()) {
                return why;
            }
        }
        for (const DriveFacts& drive : facts_.drives) {
            if (std::string why = whyNew(drive); !why.empty()) {
                return why;
            }
        }
        return {};
    }

  private:
    [[nodiscard]] std::string whyOther(const DriveFacts& certified) const {
        const DriveFacts* const there = facts_.drive(certified.location);
        if (certified.state == DriveState::missing) {
            return there == nullptr || there->state == DriveState::missing ? std::string()
                                                                           : added(*there);
        }
        if (!hasOwnNumber(certified_, certified)) {
            return there == nullptr || there->state == DriveState::missing ? gone(certified)
                                                                           : unknown(certified);
        }
        const DriveFacts* const now = driveOfNumber(facts_, certified.serialNumber);
        if (now == nullptr) {
            // A failed drive may tell nothing of itself any more.
            const bool mayBeIt = there != nullptr && there->state != DriveState::missing &&
                                 isPlaceholder(there->serialNumber);
            return !mayBeIt                          ? gone(certified)
                   : there->state != certified.state ? changed(certified, *there)
                                                     : unknown(*there);
        }
        if (!hasOwnNumber(facts_, *now)) {
            return unknown(*now);
        }
        if (now->location != certified.location) {
            return "the drive with serial number " + certified.serialNumber + " is in " +
                   now->location + ", it was in " + certified.location + " at " + planId_ +
                   ": put it back" + orAgree;
        }
        return whyChanged(certified, *now);
    }

    [[nodiscard]] std::string whyChanged(const DriveFacts& certified, const DriveFacts& now) const {
        const bool isRebuilt =
            certified.state == DriveState::rebuilding && now.state == DriveState::member;
        if ((now.state != certified.state && !isRebuilt) || now.hotspare != certified.hotspare ||
            now.isForeign != certified.isForeign) {
            return changed(certified, now);
        }
        const bool isUnwell = now.health == Health::warning || now.health == Health::critical;
        if (isUnwell && now.health > certified.health) {
            return driveText(now) + " is not well any more since " + planId_ + ": replace it" +
                   orAgree;
        }
        if (now.barred.empty() != certified.barred.empty()) {
            return driveText(now) +
                   (now.barred.empty() ? " was not to be used at " : " is not to be used since ") +
                   planId_ + " (" + (now.barred.empty() ? certified.barred : now.barred) +
                   "): put it right" + orAgree;
        }
        return {};
    }

    [[nodiscard]] std::string whyNew(const DriveFacts& now) const {
        if (now.state == DriveState::missing) {
            const DriveFacts* const certified = certified_.drive(now.location);
            return certified != nullptr ? std::string() : changed(now);
        }
        const bool isCertified = std::any_of(
            certified_.drives.begin(), certified_.drives.end(), [&](const DriveFacts& each) {
                return each.serialNumber == now.serialNumber && each.location == now.location;
            });
        return isCertified ? std::string() : added(now);
    }

    [[nodiscard]] std::string gone(const DriveFacts& drive) const {
        return driveText(drive) + " is gone since " + planId_ + ": put it back" + orAgree;
    }

    [[nodiscard]] std::string added(const DriveFacts& drive) const {
        return driveText(drive) + " is new since " + planId_ + ": take it out" + orAgree;
    }

    [[nodiscard]] std::string changed(const DriveFacts& certified, const DriveFacts& now) const {
        return driveText(now) + " is " + stateText(now) + ", it was " + stateText(certified) +
               " at " + planId_ + ": put it right" + orAgree;
    }

    [[nodiscard]] std::string changed(const DriveFacts& now) const {
        return driveText(now) + " is " + stateText(now) + " since " + planId_ + ": put it right" +
               orAgree;
    }

    [[nodiscard]] static std::string unknown(const DriveFacts& drive) {
        return "drive " + drive.location +
               " tells no serial number of its own, so that it may be another one: agree by the "
               "code";
    }

    const Facts& certified_;
    const Facts& facts_;
    const std::string& planId_;
};

} // namespace

std::string whyDrivesDiffer(const Certificate::Controller& certified, const Facts& facts,
                            const std::string& planId) {
    return DriveSearch(certified.facts, facts, planId).firstDifference();
}

} // namespace zolex::companion
