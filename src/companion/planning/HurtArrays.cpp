#include "companion/planning/HurtArrays.h"

#include "companion/lint/Entries.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/IdleVolumes.h"
#include "companion/planning/PlanFaults.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace zolex::companion {

namespace {

class HurtArrays {
  public:
    HurtArrays(const ControllerPlanning& planning, const StepChoice& choice)
        : planning_(planning), choice_(choice), before_(planning.before), after_(planning.after) {}

    [[nodiscard]] std::string whyChanged() const {
        if (!choice_.faults.empty()) {
            return choice_.faults.front().summary;
        }
        if (choice_.clearsAll) {
            return "all that stands would go";
        }
        if (choice_.clearsForeign) {
            return "layouts of other controllers would be cleared";
        }
        for (std::size_t group = 0; group < before_.groups.size(); ++group) {
            std::string why = isHurtGroup(group) ? whyChanged(group) : std::string();
            if (!why.empty()) {
                return why;
            }
        }
        return {};
    }

  private:
    [[nodiscard]] bool isHurtGroup(std::size_t group) const {
        const std::vector<std::string> members = groupDrives(before_.groups[group]);
        return std::any_of(members.begin(), members.end(), [this](const std::string& member) {
            const DriveFacts* const drive = planning_.controller.facts.drive(member);
            return drive == nullptr || isHurt(*drive);
        });
    }

    [[nodiscard]] std::string whyChanged(std::size_t group) const {
        const auto wanted = std::find(choice_.parts.standsOn.begin(), choice_.parts.standsOn.end(),
                                      std::optional<std::size_t>(group));
        const auto index = static_cast<std::size_t>(wanted - choice_.parts.standsOn.begin());
        if (wanted == choice_.parts.standsOn.end() || !isWhole(group, index) || isSet(index)) {
            const std::vector<LayoutVolume>& volumes = before_.groups[group].volumes;
            return (volumes.empty() ? "what stands there" : "LD " + volumes.front().id) +
                   " would not stay as it is";
        }
        return whySparesChange(group, after_.groups[index].id);
    }

    [[nodiscard]] bool isWhole(std::size_t group, std::size_t wanted) const {
        const LayoutGroup& captured = before_.groups[group];
        return choice_.parts.volumesKept[group] == captured.volumes.size() &&
               after_.groups[wanted].volumes.size() == captured.volumes.size() &&
               after_.groups[wanted].drives() == captured.drives();
    }

    [[nodiscard]] bool isSet(std::size_t wanted) const {
        const std::vector<StandingParts::Volume>& all = choice_.parts.volumesToSet;
        return std::any_of(all.begin(), all.end(),
                           [wanted](const auto& each) { return each.group == wanted; });
    }

    /// A spare that the array is rebuilt on would come or go.
    [[nodiscard]] std::string whySparesChange(std::size_t group, const std::string& letter) const {
        for (std::size_t spare = 0; spare < before_.spares.size(); ++spare) {
            const LayoutSpare& each = before_.spares[spare];
            const DriveFacts* const drive = planning_.controller.facts.drive(each.location);
            const bool isOfOthers = each.isDedicated && drive != nullptr &&
                                    !drive->covers.empty() &&
                                    !holds(drive->covers, before_.groups[group].id);
            if (!choice_.parts.sparesKept[spare] && !isOfOthers) {
                return "its spare " + each.location + " would go";
            }
        }
        for (const std::size_t spare : choice_.parts.missingSpares) {
            const LayoutSpare& each = after_.spares[spare];
            if (!each.isDedicated || holds(each.covers, letter)) {
                return "it would be rebuilt on the new spare " + each.location;
            }
        }
        return {};
    }

    static bool holds(const std::vector<std::string>& all, const std::string& one) {
        return std::find(all.begin(), all.end(), one) != all.end();
    }

    const ControllerPlanning& planning_;
    const StepChoice& choice_;
    const Layout& before_;
    const Layout& after_;
};

/// "LD 237, Optl, and LD 236, Dgrd".
std::string volumesOf(const ControllerPlanning& planning, const PlannedArray& array) {
    std::vector<std::string> words;
    for (const LogicalDriveFacts& volume : planning.controller.facts.logicalDrives) {
        const bool isOfArray =
            std::any_of(array.drives.begin(), array.drives.end(),
                        [&volume](const auto& drive) { return volume.isOn(drive.location); });
        if (isOfArray) {
            words.push_back("LD " + volume.id + ", " + volume.reportedState);
        }
    }
    return joinWords(words);
}

Finding warningOf(const ControllerPlanning& planning, const PlannedArray& array,
                  const DriveFacts& drive) {
    const bool isRebuilding = drive.state == DriveState::rebuilding;
    return planWarning(
        problem::degraded,
        "array " + array.id + " (" + volumesOf(planning, array) + ") stays as it is: drive " +
            drive.location +
            (drive.serialNumber.empty() ? "" : ", serial " + drive.serialNumber + ",") +
            (isRebuilding ? " is being rebuilt" : " has failed"),
        {isRebuilding
             ? "wait until drive " + drive.location + " is rebuilt"
             : "replace drive " + drive.location + " while the others of the array are well"});
}

} // namespace

bool isHurt(const DriveFacts& drive) {
    return drive.state == DriveState::failed || drive.state == DriveState::missing ||
           drive.state == DriveState::rebuilding;
}

std::string whyHurtArraysChange(const ControllerPlanning& planning, const StepChoice& choice) {
    return HurtArrays(planning, choice).whyChanged();
}

namespace {

Finding offlineFault(const Facts& facts, const LogicalDriveFacts& volume) {
    std::vector<std::string> hurt;
    for (const std::string& member : volume.drives()) {
        const DriveFacts* const drive = facts.drive(member);
        if (drive == nullptr || isHurt(*drive)) {
            hurt.push_back(member);
        }
    }
    return planFault("ZX702",
                     "LD " + volume.id +
                         (volume.reportedState.empty() ? "" : " (" + volume.reportedState + ")") +
                         " is offline, and nothing is changed beside it" +
                         (hurt.empty() ? std::string() : "; not at work: " + joinWords(hurt)),
                     offlineHelp());
}

/// Of the first that is offline and not lost.
std::optional<Finding> faultOfFirst(const Facts& facts, const IdleVolumes& idle,
                                    const std::vector<Loss>& losses) {
    const auto isMeant = [&](const LogicalDriveFacts& each) {
        const auto isIt = [&each](const Difference& one) { return one.logicalDrive == each.id; };
        const auto isLost = [&each](const Loss& loss) {
            return loss.kind == "logical_drive" && loss.id == each.id;
        };
        return each.health == Health::critical &&
               std::any_of(idle.differences.begin(), idle.differences.end(), isIt) &&
               std::none_of(losses.begin(), losses.end(), isLost);
    };
    const auto volume =
        std::find_if(facts.logicalDrives.begin(), facts.logicalDrives.end(), isMeant);
    return volume == facts.logicalDrives.end() ? std::nullopt
                                               : std::optional(offlineFault(facts, *volume));
}

} // namespace

std::optional<Finding> offlineArrayFault(const std::string& utility, const Facts& facts,
                                         const Comparison& comparison) {
    return faultOfFirst(facts, idleVolumes(utility, facts, comparison), {});
}

std::optional<Finding> offlineArrayFault(const ControllerPlanning& planning) {
    const Facts& facts = planning.controller.facts;
    return faultOfFirst(facts, idleVolumes(planning.controller.utility, facts, planning.comparison),
                        planning.losses);
}

std::optional<Finding> offlineArrayFault(const Facts& facts) {
    return faultOfFirst(facts, idleVolumes({}, facts), {});
}

std::vector<Finding> hurtArrayWarnings(const ControllerPlanning& planning) {
    std::vector<Finding> findings;
    for (const PlannedArray& array : planning.arrays) {
        for (const PlannedDrive& planned : array.drives) {
            const DriveFacts* const drive = planning.controller.facts.drive(planned.location);
            if (drive != nullptr && isHurt(*drive)) {
                findings.push_back(warningOf(planning, array, *drive));
            }
        }
    }
    return findings;
}

} // namespace zolex::companion
