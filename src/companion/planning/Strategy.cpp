#include "companion/planning/Strategy.h"

#include "companion/families/Family.h"
#include "companion/machine/ProblemCodes.h"
#include "foundation/Text.h"
#include "model/TypeTraits.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace zolex::companion {

namespace {

// Columns: utility; removes singly, adds beside, letters arrays, clears foreign, names drives, sets
// caches.
// HYPERWIN makes one array of all free drives, and nothing beside it.
// clang-format off
constexpr std::array<UtilityAbilities, 9> abilityRows = {{
    {"MEGACLI",       true,  true,  false, true,  true,  false},
    {"ARCCONF",       true,  true,  false, false, true,  true},
    {"HRCONF",        false, true,  false, false, true,  false},
    {"QTCSEND",       false, true,  true,  false, true,  false},
    {"CFGGEN",        false, true,  false, false, true,  false},
    {"CFGGEN1.02.02", false, true,  false, false, true,  false},
    {"HYPERWIN",      false, false, false, false, false, true},
    {"STORCLI",       true,  true,  false, true,  true,  true},
    {"MD",            true,  true,  false, false, true,  false},
}};
// clang-format on
constexpr UtilityAbilities otherUtility = {"", false, false, false, false, true, false};

bool holds(const std::vector<std::string>& locations, const std::string& location) {
    return std::find(locations.begin(), locations.end(), location) != locations.end();
}

bool overlap(const std::vector<std::string>& one, const std::vector<std::string>& other) {
    return std::any_of(one.begin(), one.end(),
                       [&](const std::string& location) { return holds(other, location); });
}

/// "A: RAID5" of a wanted group.
std::string groupName(const LayoutGroup& group) {
    return "array " + group.id;
}

/// Finds what stays. A part of the captured layout that stands in the place of a wanted one stays,
/// unless its drives are needed by something that is missing.
class Sorter {
  public:
    Sorter(const ControllerPlanning& planning, const UtilityAbilities& abilities)
        : planning_(planning), abilities_(abilities), before_(planning.before),
          after_(planning.after), comparison_(planning.comparison) {}

    /// With `keepsSomething` false nothing is taken as standing.
    StandingParts sort(bool keepsSomething) {
        parts_.volumesKept.assign(before_.groups.size(), 0);
        parts_.sparesKept.assign(before_.spares.size(), false);
        parts_.standsOn.assign(after_.groups.size(), std::nullopt);
        spareOf_.assign(after_.spares.size(), std::nullopt);
        if (keepsSomething) {
            keepGroups();
            keepSpares();
            while (releaseNeeded()) {
            }
        }
        listMissing();
        return std::move(parts_);
    }

  private:
    void keepGroups() {
        for (std::size_t wanted = 0;
             wanted < std::min(after_.groups.size(), comparison_.groups.size()); ++wanted) {
            const StandingGroup& standing = comparison_.groups[wanted];
            if (!standing.captured || *standing.captured >= before_.groups.size()) {
                continue;
            }
            const LayoutGroup& captured = before_.groups[*standing.captured];
            const std::size_t stay =
                canBeSet(captured) ? standing.volumesButForCaches : standing.volumesThatStand;
            if (stay > 0) {
                parts_.standsOn[wanted] = standing.captured;
                parts_.volumesKept[*standing.captured] =
                    std::min({stay, after_.groups[wanted].volumes.size(), captured.volumes.size()});
            }
        }
    }

    /// Whether each logical drive of the group can be told other cache modes.
    [[nodiscard]] bool canBeSet(const LayoutGroup& captured) const {
        return abilities_.setsCaches &&
               std::all_of(captured.volumes.begin(), captured.volumes.end(),
                           [this](const LayoutVolume& volume) {
                               return commandNumberOf(planning_, volume.id).has_value();
                           });
    }

    void keepSpares() {
        for (std::size_t wanted = 0;
             wanted < std::min(after_.spares.size(), comparison_.spares.size()); ++wanted) {
            for (std::size_t captured = 0; captured < before_.spares.size(); ++captured) {
                if (before_.spares[captured].location == comparison_.spares[wanted] &&
                    !parts_.sparesKept[captured]) {
                    parts_.sparesKept[captured] = true;
                    spareOf_[wanted] = captured;
                    break;
                }
            }
        }
    }

    /// The drives that nothing which stays may hold.
    [[nodiscard]] std::vector<std::string> neededDrives() const {
        std::vector<std::string> needed;
        for (std::size_t wanted = 0; wanted < after_.groups.size(); ++wanted) {
            if (!parts_.standsOn[wanted]) {
                const std::vector<std::string> drives = groupDrives(after_.groups[wanted]);
                needed.insert(needed.end(), drives.begin(), drives.end());
            }
        }
        for (std::size_t wanted = 0; wanted < after_.spares.size(); ++wanted) {
            if (!spareOf_[wanted]) {
                needed.push_back(after_.spares[wanted].location);
            }
        }
        return needed;
    }

    /// Gives up one thing that stays and holds a needed drive; false when there is none.
    bool releaseNeeded() {
        const std::vector<std::string> needed = neededDrives();
        for (std::optional<std::size_t>& captured : parts_.standsOn) {
            if (captured && overlap(groupDrives(before_.groups[*captured]), needed)) {
                parts_.volumesKept[*captured] = 0;
                captured.reset();
                return true;
            }
        }
        for (std::optional<std::size_t>& captured : spareOf_) {
            if (captured && (holds(needed, before_.spares[*captured].location) ||
                             (before_.spares[*captured].isDedicated &&
                              someGroupGoes(before_.spares[*captured].location)))) {
                parts_.sparesKept[*captured] = false;
                captured.reset();
                return true;
            }
        }
        return false;
    }

    /// A dedicated spare goes with its group, and some listings do not tell which that is.
    [[nodiscard]] bool someGroupGoes(const std::string& spare) const {
        const DriveFacts* const drive = planning_.controller.facts.drive(spare);
        for (std::size_t group = 0; group < parts_.volumesKept.size(); ++group) {
            const bool isItsOwn = drive == nullptr || drive->covers.empty() ||
                                  holds(drive->covers, before_.groups[group].id);
            if (parts_.volumesKept[group] == 0 && isItsOwn) {
                return true;
            }
        }
        return false;
    }

    void listMissing() {
        for (std::size_t group = 0; group < after_.groups.size(); ++group) {
            const std::optional<std::size_t>& captured = parts_.standsOn[group];
            const std::size_t kept = captured ? parts_.volumesKept[*captured] : 0;
            for (std::size_t volume = comparison_.groups[group].volumesThatStand; volume < kept;
                 ++volume) {
                const std::string& id = before_.groups[*captured].volumes[volume].id;
                if (!cacheDifferences(comparison_, id).empty()) {
                    parts_.volumesToSet.push_back({group, volume});
                }
            }
            for (std::size_t volume = kept; volume < after_.groups[group].volumes.size();
                 ++volume) {
                parts_.missingVolumes.push_back({group, volume});
            }
        }
        for (std::size_t spare = 0; spare < after_.spares.size(); ++spare) {
            if (!spareOf_[spare]) {
                parts_.missingSpares.push_back(spare);
            }
        }
    }

    const ControllerPlanning& planning_;
    const UtilityAbilities& abilities_;
    const Layout& before_;
    const Layout& after_;
    const Comparison& comparison_;
    StandingParts parts_;
    std::vector<std::optional<std::size_t>> spareOf_; ///< captured one that does a wanted one's job
};

/// Makes the choice for one controller.
class Chooser {
  public:
    Chooser(const UtilityAbilities& abilities, StrategyWish wish,
            const ControllerPlanning& planning)
        : abilities_(abilities), wish_(wish), planning_(planning) {}

    StepChoice choose() {
        const bool isAsked = wish_ == StrategyWish::rebuild;
        choice_.parts = Sorter(planning_, abilities_).sort(!isAsked);
        if (!isAsked && planning_.comparison.result != Sameness::different) {
            return std::move(choice_);
        }
        if (isAsked) {
            choice_.strategy = Strategy::rebuild;
            choice_.clearsAll = true;
            because("asked", "--strategy rebuild removes all and makes it anew");
        } else {
            weigh();
        }
        chooseForeign();
        if (wish_ == StrategyWish::add && choice_.strategy == Strategy::rebuild) {
            refuseAdding();
        }
        return std::move(choice_);
    }

  private:
    void weigh() {
        const bool isBlank = planning_.before.groups.empty() && planning_.before.spares.empty();
        const bool removes = removesSomething();
        if (isBlank) {
            choice_.strategy = needsForeign() ? Strategy::rebuild : Strategy::add;
            because("blank", "nothing stands on the controller");
            return;
        }
        const bool isMissingSomething =
            !choice_.parts.missingVolumes.empty() || !choice_.parts.missingSpares.empty();
        const bool isSet = !choice_.parts.volumesToSet.empty();
        if (!removes && (isMissingSomething ? canAdd() : isSet)) {
            choice_.strategy = needsForeign() ? Strategy::rebuild : Strategy::add;
            tellMissing();
            tellSet();
            return;
        }
        choice_.strategy = Strategy::rebuild;
        tellInTheWay();
        if (choice_.parts.keepsSomething() && canStay(removes) && (removes || isMissingSomething)) {
            tellSet();
            return;
        }
        if (choice_.parts.keepsSomething()) {
            if (!removes && abilities_.lettersArrays && !lettersHold()) {
                because("only-whole-clear",
                        "a new array gets the next free letter beside those that stand, and the "
                        "command lines call it by another");
            }
            tellWholeClear();
        }
        choice_.clearsAll = true;
        choice_.parts = Sorter(planning_, abilities_).sort(false);
    }

    /// Whether what stands as wanted can stay when the rest goes.
    [[nodiscard]] bool canStay(bool removes) const {
        return canAdd() && (!removes || (abilities_.removesSingly && namesWhatGoes()));
    }

    [[nodiscard]] bool removesSomething() const {
        const StandingParts& parts = choice_.parts;
        for (std::size_t group = 0; group < planning_.before.groups.size(); ++group) {
            if (parts.volumesKept[group] < planning_.before.groups[group].volumes.size()) {
                return true;
            }
        }
        return std::find(parts.sparesKept.begin(), parts.sparesKept.end(), false) !=
               parts.sparesKept.end();
    }

    /// Whether the utility can be told each logical drive that goes.
    [[nodiscard]] bool namesWhatGoes() const {
        if (findFamily(planning_.controller.utility) != nullptr) {
            return true; // each by its id, whatever that is
        }
        for (std::size_t group = 0; group < planning_.before.groups.size(); ++group) {
            const std::vector<LayoutVolume>& volumes = planning_.before.groups[group].volumes;
            for (std::size_t volume = choice_.parts.volumesKept[group]; volume < volumes.size();
                 ++volume) {
                if (!commandNumberOf(planning_, volumes[volume].id)) {
                    return false;
                }
            }
        }
        return true;
    }

    /// Whether the lines of what is missing say the same beside what stands.
    [[nodiscard]] bool canAdd() const {
        return abilities_.addsBeside && (!abilities_.lettersArrays || lettersHold());
    }

    /// Whether each array that a line names by its letter has it: arrays are lettered in the order
    /// in which they are made.
    [[nodiscard]] bool lettersHold() const {
        std::size_t letter = planning_.before.groups.size();
        for (const PlannedArray& array : planning_.arrays) {
            const auto group =
                std::find_if(planning_.after.groups.begin(), planning_.after.groups.end(),
                             [&](const LayoutGroup& each) { return each.id == array.id; });
            if (group == planning_.after.groups.end()) {
                return false;
            }
            const auto index = static_cast<std::size_t>(group - planning_.after.groups.begin());
            const std::optional<std::size_t>& captured = choice_.parts.standsOn[index];
            const bool isNamed =
                (captured && choice_.parts.misses({index, group->volumes.size() - 1})) ||
                (!captured && group->volumes.size() > 1);
            const std::string has =
                captured ? planning_.before.groups[*captured].id
                         : std::string(1, static_cast<char>('A' + static_cast<char>(letter)));
            letter += captured ? 0 : 1;
            if (isNamed && has != array.id) {
                return false;
            }
        }
        return true;
    }

    [[nodiscard]] std::vector<std::string> missingDrives() const {
        std::vector<std::string> drives;
        for (const StandingParts::Volume& missing : choice_.parts.missingVolumes) {
            if (!choice_.parts.standsOn[missing.group]) {
                for (const std::string& drive :
                     groupDrives(planning_.after.groups[missing.group])) {
                    if (!holds(drives, drive)) {
                        drives.push_back(drive);
                    }
                }
            }
        }
        for (const std::size_t spare : choice_.parts.missingSpares) {
            drives.push_back(planning_.after.spares[spare].location);
        }
        return drives;
    }

    [[nodiscard]] std::vector<std::string> neededForeignDrives() const {
        std::vector<std::string> needed;
        for (const std::string& drive : missingDrives()) {
            if (holds(planning_.before.foreignDrives, drive)) {
                needed.push_back(drive);
            }
        }
        return needed;
    }
    [[nodiscard]] bool needsForeign() const { return !neededForeignDrives().empty(); }

    /// Foreign layouts are cleared where the plan needs one of their drives, and beside a whole
    /// clear where there are none, as a matter of form.
    void chooseForeign() {
        const std::vector<std::string> needed = neededForeignDrives();
        if (needed.empty()) {
            choice_.clearsForeign = choice_.clearsAll && abilities_.clearsForeign &&
                                    planning_.before.foreignDrives.empty() &&
                                    planning_.controller.index != ControllerSnapshot::noRecord;
            return;
        }
        because("foreign",
                driveList(needed) + (needed.size() == 1 ? " carries" : " carry") +
                    " a layout of another controller; clearing takes all of them",
                {}, needed);
        if (abilities_.clearsForeign) {
            choice_.clearsForeign = true;
            return;
        }
        choice_.faults.push_back(
            problemFinding(problem::foreignNotCleared,
                           driveList(needed) + (needed.size() == 1 ? " carries" : " carry") +
                               " a layout of another controller, which " +
                               std::string(abilities_.utility) + " cannot clear"));
        choice_.faults.back().refusedBy = RefusedBy::utility;
    }

    void tellMissing() {
        for (const StandingParts::Volume& missing : choice_.parts.missingVolumes) {
            const LayoutGroup& group = planning_.after.groups[missing.group];
            because("missing", group.volumes[missing.volume].id + " is missing",
                    group.volumes[missing.volume].id, groupDrives(group));
        }
        for (const std::size_t spare : choice_.parts.missingSpares) {
            const std::string& location = planning_.after.spares[spare].location;
            because("missing", "the spare " + location + " is missing", {}, {location});
        }
    }

    /// Tells of each logical drive that stays what is set.
    void tellSet() {
        for (const StandingParts::Volume& each : choice_.parts.volumesToSet) {
            const std::optional<std::size_t>& captured = choice_.parts.standsOn[each.group];
            const LayoutGroup& group = planning_.before.groups[*captured];
            const std::string& id = group.volumes[each.volume].id;
            because("set", "LD " + id + " stays and gets another cache mode" + whatDiffers(id), id,
                    groupDrives(group));
        }
    }

    /// Tells of each logical drive and spare that goes why it cannot stay.
    void tellInTheWay() {
        for (std::size_t index = 0; index < planning_.before.groups.size(); ++index) {
            const LayoutGroup& group = planning_.before.groups[index];
            for (std::size_t volume = choice_.parts.volumesKept[index];
                 volume < group.volumes.size(); ++volume) {
                if (volume > choice_.parts.volumesKept[index] &&
                    !isChanged(group.volumes[volume])) {
                    because("different",
                            "LD " + group.volumes[volume].id + " lies behind LD " +
                                group.volumes[volume - 1].id + " on the same drives",
                            group.volumes[volume].id, groupDrives(group));
                    continue;
                }
                tellVolumeInTheWay(group, group.volumes[volume]);
            }
        }
        for (std::size_t index = 0; index < planning_.before.spares.size(); ++index) {
            if (!choice_.parts.sparesKept[index]) {
                tellSpareInTheWay(planning_.before.spares[index].location);
            }
        }
    }

    /// Whether the comparison tells of the logical drive.
    [[nodiscard]] bool isChanged(const LayoutVolume& volume) const {
        const std::vector<Difference>& differences = planning_.comparison.differences;
        return std::any_of(differences.begin(), differences.end(),
                           [&](const Difference& each) { return each.logicalDrive == volume.id; });
    }

    void tellSpareInTheWay(const std::string& location) {
        const bool isWanted =
            std::any_of(planning_.after.spares.begin(), planning_.after.spares.end(),
                        [&](const LayoutSpare& spare) { return spare.location == location; });
        const std::string users = isWanted ? std::string() : usersOf({location});
        if (users.empty()) {
            because("different",
                    "the spare " + location +
                        (isWanted ? " is not wanted as it is" : " is not wanted"),
                    {}, {location});
            return;
        }
        because("drives-in-use", users + ", which is a spare", {}, {location});
    }

    void tellVolumeInTheWay(const LayoutGroup& group, const LayoutVolume& volume) {
        const std::vector<std::string> drives = groupDrives(group);
        const auto same =
            std::find_if(planning_.after.groups.begin(), planning_.after.groups.end(),
                         [&](const LayoutGroup& each) { return each.spans == group.spans; });
        if (same != planning_.after.groups.end()) {
            because("different",
                    "LD " + volume.id + " on " + driveList(drives) + " is not as wanted" +
                        whatDiffers(volume.id),
                    volume.id, drives);
            return;
        }
        const std::string users = usersOf(drives);
        if (users.empty()) {
            because("different", "LD " + volume.id + " on " + driveList(drives) + " is not wanted",
                    volume.id, drives);
            return;
        }
        because("drives-in-use", users + ", and LD " + volume.id + " lies on " + driveList(drives),
                volume.id, drives);
    }

    /// "array B needs 32:2 32:3": what the wanted layout does with these drives; or empty.
    [[nodiscard]] std::string usersOf(const std::vector<std::string>& drives) const {
        std::string users;
        const auto add = [&](const std::string& user, const std::vector<std::string>& wanted) {
            std::vector<std::string> common;
            std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(common),
                         [&](const std::string& location) { return holds(drives, location); });
            if (!common.empty()) {
                users += (users.empty() ? "" : ", ") + user + " needs " + driveList(common);
            }
        };
        for (const LayoutGroup& group : planning_.after.groups) {
            add(groupName(group), groupDrives(group));
        }
        for (const LayoutSpare& spare : planning_.after.spares) {
            add("a spare", {spare.location});
        }
        return users;
    }

    /// ": strip_size_bytes ..." for people; empty when nothing is told of the logical drive.
    [[nodiscard]] std::string whatDiffers(const std::string& id) const {
        std::string text;
        for (const Difference& difference : planning_.comparison.differences) {
            if (difference.logicalDrive == id && !difference.wanted.empty()) {
                text += (text.empty() ? ": " : "; ") + difference.wanted + " wanted, " +
                        (difference.found.empty() ? "nothing" : difference.found) + " found";
            }
        }
        return text;
    }

    void tellWholeClear() {
        for (std::size_t index = 0; index < planning_.before.groups.size(); ++index) {
            const LayoutGroup& group = planning_.before.groups[index];
            for (std::size_t volume = 0; volume < choice_.parts.volumesKept[index]; ++volume) {
                because("only-whole-clear",
                        "LD " + group.volumes[volume].id +
                            " is as planned, but the controller is cleared as a whole",
                        group.volumes[volume].id, groupDrives(group));
            }
        }
        for (std::size_t index = 0; index < planning_.before.spares.size(); ++index) {
            if (choice_.parts.sparesKept[index]) {
                const std::string& location = planning_.before.spares[index].location;
                because("only-whole-clear",
                        "the spare " + location +
                            " is as planned, but the controller is cleared as a whole",
                        {}, {location});
            }
        }
    }

    /// What is wanted needs more than --strategy add allows.
    void refuseAdding() {
        std::string detail;
        for (const StrategyReason& reason : choice_.because) {
            if (reason.code != "blank") {
                detail += (detail.empty() ? "" : "\n") + reason.text;
            }
        }
        Finding finding = problemFinding(problem::addingIsNotEnough,
                                         "adding is not enough: this takes a rebuild", detail);
        finding.refusedBy = RefusedBy::plan;
        choice_.faults.push_back(std::move(finding));
    }

    void because(const char* code, std::string text, std::string logicalDrive = {},
                 std::vector<std::string> drives = {}) {
        choice_.because.push_back(
            {code, std::move(text), std::move(logicalDrive), std::move(drives)});
    }

    const UtilityAbilities& abilities_;
    const StrategyWish wish_;
    const ControllerPlanning& planning_;
    StepChoice choice_;
};

} // namespace

const UtilityAbilities& abilitiesOf(const RAIDController& record) {
    const std::string_view command = traitsOf(record.type()).utilityCommand;
    return abilitiesOf(command.substr(command.find_last_of(' ') + 1));
}

const UtilityAbilities& abilitiesOf(std::string_view utility) {
    const auto* const row =
        std::find_if(abilityRows.begin(), abilityRows.end(),
                     [&](const UtilityAbilities& each) { return each.utility == utility; });
    return row != abilityRows.end() ? *row : otherUtility;
}

bool StandingParts::keepsSomething() const {
    return std::any_of(volumesKept.begin(), volumesKept.end(),
                       [](std::size_t kept) { return kept > 0; }) ||
           std::find(sparesKept.begin(), sparesKept.end(), true) != sparesKept.end();
}

bool StandingParts::sets(const Volume& volume) const {
    return std::find(volumesToSet.begin(), volumesToSet.end(), volume) != volumesToSet.end();
}

bool StandingParts::misses(const Volume& volume) const {
    return std::find(missingVolumes.begin(), missingVolumes.end(), volume) != missingVolumes.end();
}

StepChoice chooseStrategy(const UtilityAbilities& abilities, StrategyWish wish,
                          const ControllerPlanning& planning) {
    return Chooser(abilities, wish, planning).choose();
}

std::optional<std::int32_t> commandNumberOf(const ControllerPlanning& planning,
                                            const std::string& id) {
    for (const LogicalDriveFacts& logical : planning.controller.facts.logicalDrives) {
        if (logical.id == id && logical.commandNumber) {
            return logical.commandNumber;
        }
    }
    return text::wholeNumber(id);
}

std::vector<std::string> cacheDifferences(const Comparison& comparison, const std::string& id) {
    std::vector<std::string> attributes;
    for (const Difference& difference : comparison.differences) {
        if (difference.logicalDrive == id && (difference.attribute == "write_cache_policy" ||
                                              difference.attribute == "read_cache_policy")) {
            attributes.push_back(difference.attribute);
        }
    }
    return attributes;
}

std::string driveList(const std::vector<std::string>& drives) {
    std::string text;
    for (const std::string& drive : drives) {
        text += (text.empty() ? "" : " ") + drive;
    }
    return text;
}

std::vector<std::string> groupDrives(const LayoutGroup& group) {
    std::vector<std::string> drives;
    for (const std::vector<std::string>& span : group.spans) {
        drives.insert(drives.end(), span.begin(), span.end());
    }
    return drives;
}

} // namespace zolex::companion
