#include "companion/execution/CertificateDiff.h"

#include "companion/machine/ProblemCodes.h"
#include "companion/text/Sizes.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

using Drives = std::vector<DriveFacts>;

/// Drives by their serial numbers, those of one number alone.
std::map<std::string_view, const DriveFacts*> bySerialNumber(const Drives& drives) {
    std::map<std::string_view, const DriveFacts*> result;
    std::set<std::string_view> several;
    for (const DriveFacts& drive : drives) {
        if (!isPlaceholder(drive.serialNumber) &&
            !result.emplace(drive.serialNumber, &drive).second) {
            several.insert(drive.serialNumber);
        }
    }
    for (const std::string_view serialNumber : several) {
        result.erase(serialNumber);
    }
    return result;
}

const DriveFacts* driveAt(const Drives& drives, const std::string& location) {
    const auto found = std::find_if(drives.begin(), drives.end(), [&](const DriveFacts& drive) {
        return drive.location == location;
    });
    return found == drives.end() ? nullptr : &*found;
}

/// Finds what became of each drive.
class ChangeSearch {
  public:
    ChangeSearch(const Drives& before, const Drives& now)
        : before_(before), now_(now), knownBefore_(bySerialNumber(before)),
          knownNow_(bySerialNumber(now)) {}

    std::vector<DriveDrift> search() {
        for (const DriveFacts& drive : before_) {
            look(drive);
        }
        for (const DriveFacts& drive : now_) {
            if (!taken_.contains(&drive)) {
                changes_.push_back({DriveDrift::Kind::added, nullptr, &drive});
            }
        }
        return std::move(changes_);
    }

  private:
    [[nodiscard]] bool isKnown(const DriveFacts& drive) const {
        const auto found = knownBefore_.find(drive.serialNumber);
        return found != knownBefore_.end() && found->second == &drive;
    }

    void look(const DriveFacts& drive) {
        const auto same = isKnown(drive) ? knownNow_.find(drive.serialNumber) : knownNow_.end();
        if (same != knownNow_.end()) {
            taken_.insert(same->second);
            if (same->second->location != drive.location) {
                changes_.push_back({DriveDrift::Kind::moved, &drive, same->second});
            }
            return;
        }
        const DriveFacts* const there = driveAt(now_, drive.location);
        // Another drive of the same list may have come there.
        if (there == nullptr || (knownNow_.contains(there->serialNumber) &&
                                 knownBefore_.contains(there->serialNumber))) {
            changes_.push_back({DriveDrift::Kind::gone, &drive, nullptr});
            return;
        }
        taken_.insert(there);
        if (isAnother(drive, *there)) {
            changes_.push_back({DriveDrift::Kind::replaced, &drive, there});
        }
    }

    /// Whether what is told of the two cannot be of one drive.
    static bool isAnother(const DriveFacts& before, const DriveFacts& now) {
        const auto differ = [](const std::string& a, const std::string& b) {
            return !a.empty() && !b.empty() && a != b;
        };
        const bool areTold =
            !isPlaceholder(before.serialNumber) && !isPlaceholder(now.serialNumber);
        return (areTold && before.serialNumber != now.serialNumber) ||
               differ(before.model, now.model) || differ(before.manufacturer, now.manufacturer) ||
               (before.capacityBytes && now.capacityBytes &&
                *before.capacityBytes != *now.capacityBytes);
    }

    const Drives& before_;
    const Drives& now_;
    std::map<std::string_view, const DriveFacts*> knownBefore_;
    std::map<std::string_view, const DriveFacts*> knownNow_;
    std::set<const DriveFacts*> taken_;
    std::vector<DriveDrift> changes_;
};

std::string numbered(const DriveFacts& drive) {
    return isPlaceholder(drive.serialNumber) ? std::string()
                                             : " (serial number " + drive.serialNumber + ")";
}

/// "serial number A1 instead of A0, 136.7 GB instead of 67.8 GB".
std::string replacementText(const DriveFacts& before, const DriveFacts& now) {
    std::string text;
    const auto tell = [&](std::string_view name, const std::string& was, const std::string& is) {
        if (!was.empty() && !is.empty() && was != is) {
            text += (text.empty() ? "" : ", ") + std::string(name) + is + " instead of " + was;
        }
    };
    tell("serial number ", before.serialNumber, now.serialNumber);
    tell("", before.manufacturer, now.manufacturer);
    tell("", before.model, now.model);
    if (before.capacityBytes && now.capacityBytes) {
        tell("", sizeText(before.capacityBytes), sizeText(now.capacityBytes));
    }
    return text.empty() ? "another size" : text;
}

/// For people.
std::string changeText(const DriveDrift& change) {
    switch (change.kind) {
    case DriveDrift::Kind::replaced:
        return "drive " + change.now->location +
               " was replaced: " + replacementText(*change.before, *change.now);
    case DriveDrift::Kind::moved:
        return "drive " + change.before->location + numbered(*change.before) + " is at " +
               change.now->location + " now";
    case DriveDrift::Kind::gone:
        return "drive " + change.before->location + numbered(*change.before) + " is gone";
    case DriveDrift::Kind::added:
        break;
    }
    return "drive " + change.now->location + numbered(*change.now) + " is new";
}

/// What became of logical drives under the number of a certified one that has an id.
struct VolumeDrifts {
    std::vector<std::string> madeAnew;
    std::vector<std::string> untold; ///< which may have been made anew, or not
};

VolumeDrifts volumeDrifts(const Layout& certified, const Facts& facts) {
    VolumeDrifts drifts;
    for (const LayoutGroup& group : certified.groups) {
        for (const LayoutVolume& volume : group.volumes) {
            const auto now = std::find_if(
                facts.logicalDrives.begin(), facts.logicalDrives.end(),
                [&volume](const LogicalDriveFacts& each) { return each.id == volume.id; });
            if (now == facts.logicalDrives.end() || volume.uniqueId.empty() ||
                now->uniqueId == volume.uniqueId) {
                continue;
            }
            if (now->uniqueId.empty()) {
                drifts.untold.push_back("LD " + volume.id +
                                        " may have been made anew: its id is not told, it was " +
                                        volume.uniqueId);
            } else {
                drifts.madeAnew.push_back("LD " + volume.id + " was made anew: its id is " +
                                          now->uniqueId + " instead of " + volume.uniqueId);
            }
        }
    }
    return drifts;
}

ControllerDiff headOf(const Certificate::Controller& controller) {
    ControllerDiff diff;
    diff.number = controller.number;
    diff.model = controller.model;
    diff.wanted = controller.layout;
    return diff;
}

ControllerDiff controllerDiff(const Snapshot& snapshot, const Certificate::Controller& controller) {
    ControllerDiff diff = headOf(controller);
    const auto details =
        std::find_if(snapshot.details.begin(), snapshot.details.end(),
                     [&](const ControllerSnapshot& each) { return each.number == diff.number; });
    if (details == snapshot.details.end() || details->failed) {
        diff.because = "it could not be captured";
        if (details != snapshot.details.end()) {
            diff.diagnostics = details->findings;
        }
        return diff;
    }
    const std::vector<DriveDrift> changes =
        driveDrifts(controller.facts.drives, details->facts.drives);
    Layout layout = controller.layout; // a document does not tell what its mirrors are
    layout.deepMirrors = details->facts.deepMirrors;
    Layout wanted = layoutBehind(layout, changes);
    for (LayoutGroup& group : wanted.groups) {
        group.isListed = true;
    }
    for (LayoutSpare& spare : wanted.spares) {
        spare.isListed = true;
    }
    compareStanding(diff, *details, std::move(wanted));
    for (const DriveDrift& change : changes) {
        diff.comparison.equivalences.push_back(changeText(change));
    }
    const VolumeDrifts volumes = volumeDrifts(controller.layout, details->facts);
    for (const std::vector<std::string>* const lines : {&volumes.madeAnew, &volumes.untold}) {
        diff.comparison.equivalences.insert(diff.comparison.equivalences.end(), lines->begin(),
                                            lines->end());
    }
    diff.hasVolumesMadeAnew = !volumes.madeAnew.empty();
    diff.hasVolumesUntold = !volumes.untold.empty();
    diff.hasOtherDrives = !changes.empty() || diff.result == ControllerDiff::Result::equivalent;
    if (diff.result == ControllerDiff::Result::same &&
        (!changes.empty() || diff.hasVolumesMadeAnew || diff.hasVolumesUntold)) {
        diff.result = ControllerDiff::Result::equivalent;
        diff.comparison.result = Sameness::equivalent;
    }
    return diff;
}

} // namespace

std::vector<DriveDrift> driveDrifts(const std::vector<DriveFacts>& before,
                                    const std::vector<DriveFacts>& now) {
    return ChangeSearch(before, now).search();
}

Layout layoutBehind(const Layout& layout, const std::vector<DriveDrift>& changes) {
    std::map<std::string, std::string> places;
    std::set<std::string> taken;
    for (const DriveDrift& change : changes) {
        if (change.kind == DriveDrift::Kind::moved) {
            places[change.before->location] = change.now->location;
            taken.insert(change.now->location);
        }
    }
    for (const DriveDrift& change : changes) {
        if (change.kind == DriveDrift::Kind::gone && taken.contains(change.before->location)) {
            places[change.before->location] = "(gone) " + change.before->location;
        }
    }
    const auto move = [&](std::string& location) {
        const auto found = places.find(location);
        if (found != places.end()) {
            location = found->second;
        }
    };
    Layout result = layout;
    for (LayoutGroup& group : result.groups) {
        for (std::vector<std::string>& span : group.spans) {
            std::for_each(span.begin(), span.end(), move);
        }
    }
    for (LayoutSpare& spare : result.spares) {
        move(spare.location);
    }
    std::for_each(result.foreignDrives.begin(), result.foreignDrives.end(), move);
    normalize(result);
    return result;
}

MachineDiff diffOf(const Snapshot& snapshot, const Certificate& certificate,
                   const std::vector<std::int32_t>& controllers) {
    MachineDiff diff;
    diff.wantedBy = certificate.planId;
    diff.isByCertificate = true;
    // Of controllers that were asked for alone it cannot be told which machine they are of.
    Fingerprint earlier = certificate.fingerprint;
    const auto isAskedFor = [&](std::int32_t number) {
        return controllers.empty() ||
               std::find(controllers.begin(), controllers.end(), number) != controllers.end();
    };
    std::erase_if(earlier.controllers,
                  [&](const auto& controller) { return !isAskedFor(controller.number); });
    diff.fingerprint = fingerprintFor(snapshot, earlier);
    const bool isOther = controllers.empty()
                             ? diff.fingerprint.identity != certificate.fingerprint.identity
                             : !whatIsOther(diff.fingerprint, earlier, "").empty();
    if (isOther) {
        diff.diagnostics.push_back(
            problemFinding(problem::otherCertifiedMachine, "the certificate is of another machine",
                           whatIsOther(diff.fingerprint, earlier, "the certificate")));
    }
    for (const Certificate::Controller& controller : certificate.controllers) {
        if (!isAskedFor(controller.number)) {
            continue;
        }
        ControllerDiff& row = diff.controllers.emplace_back();
        row = isOther ? headOf(controller) : controllerDiff(snapshot, controller);
        if (isOther) {
            row.because = "the certificate is of another machine";
        }
    }
    diff.result = worstOf(diff.controllers);
    return diff;
}

} // namespace zolex::companion
