#include "companion/planning/FamilySteps.h"

#include "companion/lint/Entries.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/Exchange.h"
#include "companion/planning/FamilyLines.h"
#include "companion/planning/Losses.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/Strategy.h"
#include "foundation/Text.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

class StepMaker {
  public:
    StepMaker(const Family& family, ControllerPlanning& planning, const StepChoice& choice)
        : family_(family), planning_(planning), choice_(choice) {}

    void make() {
        // A run that is gone on with looks at it.
        nameCovers(planning_.before, planning_.controller.facts);
        removeSpares();
        makeSparesOfStanding();
        removeVolumes();
        clearForeign();
        for (std::size_t array = 0; array < planning_.arrays.size(); ++array) {
            makeArray(array);
        }
        makeSpares();
        setRebuildRate();
        if (!faults_.empty()) {
            planning_.steps.clear();
            planning_.losses.clear();
        }
        for (Finding& fault : faults_) {
            planning_.diagnostics.push_back(std::move(fault));
        }
        std::int32_t number = 0;
        for (PlanStep& step : planning_.steps) {
            step.step = ++number;
        }
    }

  private:
    PlanStep& add(const char* action, std::string command, std::string summary) {
        PlanStep step;
        step.controller = planning_.controller.number;
        step.action = action;
        step.command = std::move(command);
        step.argv = splitCommandLine(step.command);
        step.acceptedExitCodes = {0};
        step.summary = std::move(summary);
        if (step.command.empty()) {
            faults_.push_back(planFault(problem::lineNotMade,
                                        "the utility has no command for this: " + step.summary,
                                        {"zolexctl plan POLICIES"}));
        }
        planning_.steps.push_back(std::move(step));
        return planning_.steps.back();
    }
    PlanStep& addDeleting(const char* action, std::string command, std::string summary) {
        PlanStep& step = add(action, std::move(command), std::move(summary));
        step.deletes = true;
        return step;
    }
    void lose(PlanStep& step, Loss loss) {
        step.destroys.push_back(loss.id);
        planning_.losses.push_back(std::move(loss));
    }
    [[nodiscard]] std::int32_t adapter() const { return planning_.controller.adapter; }

    // What goes.

    void removeSpares() {
        for (std::size_t index = planning_.before.spares.size(); index-- > 0;) {
            if (choice_.parts.sparesKept[index]) {
                continue;
            }
            const LayoutSpare& spare = planning_.before.spares[index];
            const DriveFacts* const facts = planning_.controller.facts.drive(spare.location);
            PlanStep& step = addDeleting(
                "remove-spare",
                family_.removeSpare(adapter(), spare.location,
                                    facts == nullptr ? std::vector<std::string>() : facts->covers),
                "remove the spare " + spare.location);
            lose(step, spareLoss(planning_, spare));
        }
    }

    void removeVolumes() {
        struct Going {
            const LayoutGroup* group;
            const LayoutVolume* volume;
            std::int32_t number;
        };
        std::vector<Going> going;
        for (std::size_t index = 0; index < planning_.before.groups.size(); ++index) {
            const LayoutGroup& group = planning_.before.groups[index];
            for (std::size_t volume = choice_.parts.volumesKept[index];
                 volume < group.volumes.size(); ++volume) {
                going.push_back({&group, &group.volumes[volume],
                                 commandNumberOf(planning_, group.volumes[volume].id).value_or(0)});
            }
        }
        std::stable_sort(going.begin(), going.end(),
                         [](const Going& a, const Going& b) { return a.number > b.number; });
        for (const Going& each : going) {
            const LogicalDriveFacts* const facts = factsOf(each.volume->id);
            const std::string why = facts == nullptr ? "" : whyNotLost(family_, *facts);
            if (facts != nullptr && !facts->usedAs.empty()) {
                faults_.push_back(inUse(*facts));
                continue;
            }
            if (!why.empty()) {
                faults_.push_back(planFault(problem::lineNotMade,
                                            "LD " + each.volume->id + " stays: " + why,
                                            {"end what uses it, and plan again"}));
                continue;
            }
            PlanStep& step =
                addDeleting("delete-logical-drive",
                            facts == nullptr ? "" : family_.deleteVolume(adapter(), *facts),
                            "delete LD " + each.volume->id + ": " +
                                (each.volume->raidType.empty() ? "" : each.volume->raidType + " ") +
                                "on " + driveList(groupDrives(*each.group)));
            lose(step, volumeLoss(planning_, *each.group, *each.volume));
        }
    }

    /// Its utility may refuse this one when others are gone already.
    static Finding inUse(const LogicalDriveFacts& volume) {
        return planFault(problem::volumeInUse,
                         volumeNameText(volume.id, volume.name, volume.device) +
                             " stays: " + volume.usedAs,
                         {howToEndUse(volume.usedAs)});
    }

    [[nodiscard]] const LogicalDriveFacts* factsOf(const std::string& id) const {
        const std::vector<LogicalDriveFacts>& all = planning_.controller.facts.logicalDrives;
        const auto found =
            std::find_if(all.begin(), all.end(), [&id](const auto& each) { return each.id == id; });
        return found == all.end() ? nullptr : &*found;
    }

    void clearForeign() {
        const std::vector<std::string>& drives = planning_.before.foreignDrives;
        if (!choice_.clearsForeign || drives.empty()) {
            return;
        }
        std::string told;
        for (const std::string& line : planning_.controller.facts.foreignConfigurations) {
            told += (told.empty() ? " (" : "; ") + line;
        }
        PlanStep& step =
            addDeleting("clear-foreign", family_.clearForeign(adapter()),
                        "clear the layouts of other controllers: " + driveList(drives) + told +
                            (told.empty() ? "" : ")"));
        // Where there are none any more it is refused.
        for (const std::string& drive : drives) {
            Loss loss = foreignLoss(planning_, drive);
            loss.raidType = foreignLevels();
            lose(step, std::move(loss));
        }
    }

    /// "RAID1", "RAID0/RAID5": which drives a layout of another controller has is not told.
    [[nodiscard]] std::string foreignLevels() const {
        std::set<std::string> levels;
        for (const std::string& line : planning_.controller.facts.foreignConfigurations) {
            const std::size_t begin = line.find("RAID");
            if (begin != std::string::npos) {
                levels.insert(line.substr(begin, line.find(',', begin) - begin));
            }
        }
        std::string text;
        for (const std::string& level : levels) {
            text += (text.empty() ? "" : "/") + level;
        }
        return text;
    }

    // What comes.

    /// Index of the wanted group of an array.
    [[nodiscard]] std::optional<std::size_t> groupOf(const std::string& array) const {
        for (std::size_t group = 0; group < planning_.after.groups.size(); ++group) {
            if (planning_.after.groups[group].id == array) {
                return group;
            }
        }
        return std::nullopt;
    }

    void makeArray(std::size_t index) {
        const PlannedArray& array = planning_.arrays[index];
        const auto group = groupOf(array.id);
        std::size_t place = 0;
        for (const PlannedVolume& volume : planning_.volumes) {
            if (volume.array != array.id || !group) {
                continue;
            }
            const StandingParts::Volume at{*group, place++};
            if (choice_.parts.misses(at)) {
                makeVolume(array, volume, at.volume == 0);
            } else if (choice_.parts.sets(at)) {
                setCaches(volume, at);
            }
        }
    }

    void makeVolume(const PlannedArray& array, const PlannedVolume& volume, bool isFirst) {
        const VolumeWish wish =
            wishFor(array, volume, isFirst ? sparesWith(array.id) : std::vector<std::string>());
        std::vector<std::string> drives;
        for (const PlannedDrive& drive : array.drives) {
            drives.push_back(drive.location);
        }
        std::string summary = "create " + (isFirst ? array.id : volume.id + " on " + array.id) +
                              ": " + volume.raidType + " on " + driveList(drives);
        for (const std::string& spare : wish.spares) {
            summary += ", spare " + spare;
        }
        const std::string why = family_.whyNotMade(wish, planning_.controller.facts);
        if (!why.empty()) {
            faults_.push_back(
                planFault(problem::lineNotMade, array.id + " cannot be made: " + why,
                          {"give array " + array.id + " other drives or another level"}));
            return;
        }
        PlanStep& step = add(isFirst ? "create-array" : "create-logical-drive",
                             family_.createVolume(adapter(), wish), std::move(summary));
        if (isFirst) {
            step.creates.push_back(array.id);
        }
        step.creates.push_back(volume.id);
        step.creates.insert(step.creates.end(), wish.spares.begin(), wish.spares.end());
    }

    /// Missing spares of this array alone: they are made with it, as its number is not known
    /// before.
    std::vector<std::string> sparesWith(const std::string& array) {
        std::vector<std::string> spares;
        for (const std::size_t index : choice_.parts.missingSpares) {
            const LayoutSpare& spare = planning_.after.spares[index];
            if (spare.isDedicated && spare.covers == std::vector<std::string>{array}) {
                spares.push_back(spare.location);
                made_.insert(spare.location);
            }
        }
        return spares;
    }

    void setCaches(const PlannedVolume& volume, const StandingParts::Volume& at) {
        const std::optional<std::size_t>& captured = choice_.parts.standsOn[at.group];
        if (!captured) {
            return;
        }
        const std::string& id = planning_.before.groups[*captured].volumes[at.volume].id;
        const LogicalDriveFacts* const facts = factsOf(id);
        for (const std::string& attribute : cacheDifferences(planning_.comparison, id)) {
            const bool isWrite = attribute == "write_cache_policy";
            const std::string& value = isWrite ? volume.writeCache : volume.readCache;
            PlanStep& step =
                add("set",
                    facts == nullptr ? "" : family_.setCache(adapter(), *facts, attribute, value),
                    "set " + volume.id + ": " +
                        (isWrite ? writeCacheWords(value) : readCacheWords(value)));
            step.isRepeatable = true;
        }
    }

    /// Dedicated spares of arrays that stand, as long as these have the numbers that were captured:
    /// whether the numbers of the others change when an array goes depends on the utility.
    void makeSparesOfStanding() {
        for (const std::size_t index : choice_.parts.missingSpares) {
            const LayoutSpare& spare = planning_.after.spares[index];
            const std::vector<std::string>& covers = spare.covers;
            const auto stands = [this](const std::string& letter) {
                return !standingId(letter).empty();
            };
            const auto mayChange = [this](const std::string& letter) {
                return numberMayChange(standingId(letter));
            };
            if (!spare.isDedicated || !std::all_of(covers.begin(), covers.end(), stands) ||
                std::none_of(covers.begin(), covers.end(), mayChange)) {
                continue;
            }
            if (isFree(spare.location)) {
                makeSpare(spare);
            } else {
                faults_.push_back(planFault(
                    problem::spareNotMade,
                    "the hot spare " + spare.location + " is to be of " + joinWords(spare.covers) +
                        " alone, whose number may change with the arrays that go before the "
                        "drive is free",
                    {"leave this spare out, apply, and plan once more with it",
                     "or write one for all: Spares = 1"}));
                made_.insert(spare.location);
            }
        }
    }

    /// The utility's id of an array that stands; empty of another.
    [[nodiscard]] std::string standingId(const std::string& letter) const {
        const auto group = groupOf(letter);
        const auto captured = group ? choice_.parts.standsOn[*group] : std::nullopt;
        return captured ? planning_.before.groups[*captured].id : std::string();
    }

    /// Whether an array of a lower number goes. Names do not change.
    [[nodiscard]] bool numberMayChange(const std::string& id) const {
        const auto number = text::wholeNumber(id);
        for (std::size_t index = 0; number && index < planning_.before.groups.size(); ++index) {
            const auto other = text::wholeNumber(planning_.before.groups[index].id);
            if (choice_.parts.volumesKept[index] == 0 && other && *other < *number) {
                return true;
            }
        }
        return false;
    }

    /// Whether the drive is free, or was a spare that has been removed.
    [[nodiscard]] bool isFree(const std::string& location) const {
        const DriveFacts* const drive = planning_.controller.facts.drive(location);
        return drive != nullptr && !drive->isForeign &&
               (drive->state == DriveState::free || drive->state == DriveState::hotspare);
    }

    void makeSpares() {
        for (const std::size_t index : choice_.parts.missingSpares) {
            const LayoutSpare& spare = planning_.after.spares[index];
            if (!made_.contains(spare.location)) {
                makeSpare(spare);
            }
        }
    }

    void makeSpare(const LayoutSpare& spare) {
        made_.insert(spare.location);
        std::vector<std::string> arrays;
        if (spare.isDedicated && !findArrays(spare, arrays)) {
            return;
        }
        PlanStep& step = add("create-spare", family_.addSpare(adapter(), spare.location, arrays),
                             "make " + spare.location + " a spare" +
                                 (spare.isDedicated ? " of " + joinWords(spare.covers) : ""));
        step.creates = {spare.location};
    }

    /// The utility's numbers of the arrays that stand; false after a fault.
    bool findArrays(const LayoutSpare& spare, std::vector<std::string>& arrays) {
        for (const std::string& letter : spare.covers) {
            const auto group = groupOf(letter);
            const auto captured = group ? choice_.parts.standsOn[*group] : std::nullopt;
            if (!captured) {
                faults_.push_back(planFault(
                    problem::spareNotMade,
                    "the hot spare " + spare.location + " is to be of " + joinWords(spare.covers) +
                        " alone, and array " + letter + " has no number before it is made",
                    {"write one spare for each array: Spares = 1 covering A and 1 covering B",
                     "or one for all: Spares = 1"}));
                return false;
            }
            arrays.push_back(planning_.before.groups[*captured].id);
        }
        return true;
    }

    void setRebuildRate() {
        if (planning_.rebuildRate.empty() || planning_.strategy == Strategy::none) {
            return;
        }
        const std::string command = family_.setRebuildRate(adapter(), planning_.rebuildRate);
        if (command.empty()) {
            return;
        }
        PlanStep& step = add("set", command, "set the rebuild rate: " + planning_.rebuildRate);
        step.isRepeatable = true;
    }

    const Family& family_;
    ControllerPlanning& planning_;
    const StepChoice& choice_;
    std::vector<Finding> faults_;
    std::set<std::string> made_; ///< spares
};

} // namespace

std::string whyNotLost(const Family& family, const LogicalDriveFacts& volume) {
    if (volume.raidType.empty()) {
        return "its level is not known: " + volume.reportedLevel;
    }
    if (volume.health == Health::unknown && !volume.reportedState.empty()) {
        return "its state is not known: " + volume.reportedState;
    }
    return family.whyNotDeleted(volume);
}

void makeFamilySteps(const Family& family, StrategyWish wish, ControllerPlanning& planning) {
    planning.steps.clear();
    planning.losses.clear();
    planning.strategyBecause.clear();
    if (wish != StrategyWish::rebuild && planning.comparison.result == Sameness::different &&
        planForStandingDrives(planning) && planning.comparison.result != Sameness::different) {
        return;
    }
    StepChoice choice = chooseStrategy(abilitiesOf(planning.controller.utility), wish, planning);
    planning.strategy = choice.strategy;
    planning.strategyBecause = choice.because;
    if (choice.strategy == Strategy::none) {
        return;
    }
    if (!choice.faults.empty()) {
        for (Finding& fault : choice.faults) {
            planning.diagnostics.push_back(std::move(fault));
        }
        return;
    }
    StepMaker(family, planning, choice).make();
}

void makeFamilyReset(const Family& family, ControllerPlanning& planning) {
    StepChoice choice;
    choice.strategy = Strategy::rebuild;
    choice.clearsAll = true;
    choice.clearsForeign = abilitiesOf(planning.controller.utility).clearsForeign;
    choice.because = {{"asked", "a reset is asked for", {}, {}}};
    choice.parts.volumesKept.assign(planning.before.groups.size(), 0);
    choice.parts.sparesKept.assign(planning.before.spares.size(), false);
    planning.disposition = Disposition::planned;
    planning.strategy = choice.strategy;
    planning.strategyBecause = choice.because;
    StepMaker(family, planning, choice).make();
    if (!choice.clearsForeign) {
        planning.after.foreignDrives = planning.before.foreignDrives;
    }
}

} // namespace zolex::companion
