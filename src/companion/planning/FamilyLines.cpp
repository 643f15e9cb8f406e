#include "companion/planning/FamilyLines.h"

#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

bool isAmong(const std::vector<std::string>& list, const std::string& word) {
    return std::find(list.begin(), list.end(), word) != list.end();
}

std::vector<std::string> inOrder(std::vector<std::string> words) {
    std::sort(words.begin(), words.end());
    return words;
}

/// Members of what is deleted may be named in any order.
bool isSameButForOrder(const std::string& line, const std::string& other) {
    constexpr std::size_t fixed = 3; // program, action or path, and what it is done to
    const std::vector<std::string> one = splitCommandLine(line);
    const std::vector<std::string> two = splitCommandLine(other);
    return one.size() > fixed - 1 && one.size() == two.size() &&
           std::equal(one.begin(), one.begin() + fixed, two.begin()) &&
           inOrder(one) == inOrder(two);
}

/// Whether what stands lies on a drive of a planned array.
bool liesOn(const ControllerPlanning& planning, const std::vector<std::string>& drives,
            const std::string& letter) {
    return std::any_of(
        planning.arrays.begin(), planning.arrays.end(), [&](const PlannedArray& array) {
            return array.id == letter && std::any_of(array.drives.begin(), array.drives.end(),
                                                     [&](const PlannedDrive& drive) {
                                                         return isAmong(drives, drive.location);
                                                     });
        });
}

/// The planned spare that a step makes by itself; or null.
const PlannedSpare* spareOf(const ControllerPlanning& planning, const PlanStep& step) {
    const auto spare =
        std::find_if(planning.spares.begin(), planning.spares.end(), [&](const PlannedSpare& each) {
            return step.creates == std::vector<std::string>{each.location};
        });
    return step.action != "create-spare" || spare == planning.spares.end() ? nullptr : &*spare;
}

/// The lines that a family may write for a step.
class StepLines {
  public:
    StepLines(const Family& family, const ControllerPlanning& planning, const PlanStep& step)
        : family_(family), planning_(planning), step_(step) {}

    [[nodiscard]] bool hasCommand() const {
        const std::string& action = step_.action;
        if (step_.command.empty()) {
            return false;
        }
        if (action == "delete-logical-drive") {
            return step_.creates.empty() && step_.destroys.size() == 1 && isDeletion();
        }
        if (action == "remove-spare") {
            return step_.creates.empty() && step_.destroys.size() == 1 && isRemoval();
        }
        if (action == "clear-foreign") {
            return step_.creates.empty() &&
                   inOrder(step_.destroys) == inOrder(planning_.before.foreignDrives) &&
                   is(family_.clearForeign(adapter()));
        }
        if (!step_.destroys.empty()) {
            return false;
        }
        return action == "create-array" || action == "create-logical-drive" ? isCreation()
               : action == "create-spare"                                   ? isSpare()
                                          : action == "set" && (isRate() || isCache());
    }

  private:
    [[nodiscard]] std::int32_t adapter() const { return planning_.controller.adapter; }
    [[nodiscard]] bool is(const std::string& line) const { return line == step_.command; }

    /// Plans of earlier versions do not tell ids that stay.
    [[nodiscard]] bool isDeletion() const {
        const std::vector<LogicalDriveFacts>& all = planning_.controller.facts.logicalDrives;
        return std::any_of(all.begin(), all.end(), [this](LogicalDriveFacts volume) {
            const auto isWritten = [this, &volume] {
                return isSameButForOrder(family_.deleteVolume(adapter(), volume), step_.command);
            };
            if (volume.id != step_.destroys.front() || isWritten()) {
                return volume.id == step_.destroys.front();
            }
            volume.uniqueId.clear();
            return isWritten();
        });
    }

    [[nodiscard]] bool isRemoval() const {
        const std::vector<LayoutSpare>& all = planning_.before.spares;
        return std::any_of(all.begin(), all.end(), [this](const LayoutSpare& spare) {
            const DriveFacts* const drive = planning_.controller.facts.drive(spare.location);
            return spare.location == step_.destroys.front() &&
                   (is(family_.removeSpare(adapter(), spare.location, spare.covers)) ||
                    (drive != nullptr &&
                     is(family_.removeSpare(adapter(), spare.location, drive->covers))));
        });
    }

    [[nodiscard]] bool isCreation() const {
        const bool isArray = step_.action == "create-array";
        const std::size_t named = isArray ? 2 : 1; // the array, the logical drive
        if (step_.creates.size() < named) {
            return false;
        }
        std::vector<std::string> spares(step_.creates.begin() + static_cast<std::ptrdiff_t>(named),
                                        step_.creates.end());
        const bool areSpares =
            std::all_of(spares.begin(), spares.end(), [this](const std::string& location) {
                const auto& all = planning_.spares;
                return std::any_of(all.begin(), all.end(), [&](const PlannedSpare& spare) {
                    return spare.location == location && spare.isDedicated;
                });
            });
        for (const PlannedVolume& volume : planning_.volumes) {
            for (const PlannedArray& array : planning_.arrays) {
                if (volume.id == step_.creates[named - 1] && volume.array == array.id &&
                    (!isArray || array.id == step_.creates.front())) {
                    return areSpares && (isArray || spares.empty()) &&
                           is(family_.createVolume(adapter(),
                                                   wishFor(array, volume, std::move(spares))));
                }
            }
        }
        return false;
    }

    [[nodiscard]] bool isSpare() const {
        const PlannedSpare* const spare = spareOf(planning_, step_);
        const auto groups = arraysNamedBy(planning_, step_);
        if (spare == nullptr || !groups) {
            return false;
        }
        std::vector<std::string> arrays;
        for (const LayoutGroup* const group : *groups) {
            arrays.push_back(group->id);
        }
        return is(family_.addSpare(adapter(), spare->location, arrays));
    }

    [[nodiscard]] bool isRate() const {
        return !planning_.rebuildRate.empty() &&
               is(family_.setRebuildRate(adapter(), planning_.rebuildRate));
    }

    [[nodiscard]] bool isCache() const {
        for (const LayoutGroup& group : planning_.before.groups) {
            for (const PlannedVolume& wanted : planning_.volumes) {
                if (liesOn(planning_, group.drives(), wanted.array) && setsOneOf(group, wanted)) {
                    return true;
                }
            }
        }
        return false;
    }

    [[nodiscard]] bool setsOneOf(const LayoutGroup& group, const PlannedVolume& wanted) const {
        const std::vector<LogicalDriveFacts>& all = planning_.controller.facts.logicalDrives;
        return std::any_of(all.begin(), all.end(), [&](const LogicalDriveFacts& volume) {
            return volume.array == group.id &&
                   (is(family_.setCache(adapter(), volume, "write_cache_policy",
                                        wanted.writeCache)) ||
                    is(family_.setCache(adapter(), volume, "read_cache_policy", wanted.readCache)));
        });
    }

    const Family& family_;
    const ControllerPlanning& planning_;
    const PlanStep& step_;
};

} // namespace

std::optional<std::vector<const LayoutGroup*>> arraysNamedBy(const ControllerPlanning& planning,
                                                             const PlanStep& step) {
    std::vector<const LayoutGroup*> arrays;
    const PlannedSpare* const spare = spareOf(planning, step);
    if (spare == nullptr || !spare->isDedicated) {
        return arrays;
    }
    for (const std::string& letter : spare->covers) {
        const auto& groups = planning.before.groups;
        const auto group = std::find_if(groups.begin(), groups.end(), [&](const LayoutGroup& each) {
            return liesOn(planning, each.drives(), letter);
        });
        if (group == groups.end()) {
            return std::nullopt;
        }
        arrays.push_back(&*group);
    }
    return arrays;
}

VolumeWish wishFor(const PlannedArray& array, const PlannedVolume& volume,
                   std::vector<std::string> spares) {
    VolumeWish wish;
    wish.raidType = volume.raidType;
    for (const PlannedDrive& drive : array.drives) {
        const bool isNewSpan =
            wish.spans.empty() ||
            (array.drivesPerSpan > 0 && wish.spans.back().size() == array.drivesPerSpan);
        if (isNewSpan) {
            wish.spans.emplace_back();
        }
        wish.spans.back().push_back(drive.location);
    }
    if (!volume.fills) {
        wish.capacityBytes = volume.capacityBytes;
    }
    wish.stripSizeBytes = volume.stripSizeBytes;
    wish.writeCache = volume.writeCache;
    wish.readCache = volume.readCache;
    wish.spares = std::move(spares);
    return wish;
}

bool isLineOfStep(const Family& family, const ControllerPlanning& planning, const PlanStep& step) {
    return StepLines(family, planning, step).hasCommand();
}

} // namespace zolex::companion
