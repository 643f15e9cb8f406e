#include "companion/planning/CreateLines.h"

#include "commands/CommandLines.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/LineFaults.h"
#include "companion/planning/RemovalLines.h"
#include "foundation/Report.h"
#include "model/TypeTraits.h"
#include "platform/CommandLineSplit.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

/// The layout's settings with none of its contents.
RAIDConfiguration settingsOf(const RAIDConfiguration& layout) {
    RAIDConfiguration settings;
    settings.rebuildRate = layout.rebuildRate;
    settings.readAhead = layout.readAhead;
    settings.stripeSize = layout.stripeSize;
    settings.init = layout.init;
    settings.policyName = layout.policyName;
    return settings;
}

/// What a line that sets a cache mode says, for people.
struct CacheWord {
    std::string_view word;
    std::string_view text;
};
// clang-format off
constexpr std::array<CacheWord, 7> cacheWords = {{
    {"ron",  "read-ahead on"},
    {"roff", "read-ahead off"},
    {"wb",   "write-back"},
    {"wbb",  "write-back when protected by a battery"},
    {"wt",   "write-through"},
    {"/OW",  "write-back"},
    {"/OWR", "write-through"},
}};
// clang-format on

constexpr const char* changedPlaces = "equal drives have changed places";

std::string cacheText(const std::vector<std::string>& argv) {
    for (const CacheWord& row : cacheWords) {
        if (std::find(argv.begin(), argv.end(), row.word) != argv.end()) {
            return std::string(row.text);
        }
    }
    return "its cache mode";
}

/// Makes the creating steps of one controller.
class Creator {
  public:
    Creator(const RAIDController& record, const ControllerPlanning& planning,
            const StepChoice& choice, const RAIDConfiguration& byZolex)
        : record_(record), planning_(planning), choice_(choice), layout_(*planning.configuration),
          byZolex_(byZolex), dialect_(traitsOf(record.type()).dialect) {}

    Creation make() {
        readOldLines();
        findMissing();
        takeNumbers();
        if (!creation_.faults.empty()) {
            return std::move(creation_);
        }
        for (std::size_t array = 0; array < layout_.arrays().size(); ++array) {
            makeArray(array);
        }
        makeSpares();
        return std::move(creation_);
    }

  private:
    [[nodiscard]] std::vector<std::string> linesOf(const RAIDConfiguration& layout) {
        SilentReport silent;
        const CommandLines made =
            commandLines(record_, planning_.controller.number, layout, {}, silent);
        std::vector<std::string> lines;
        for (const CString& line : made.lines) {
            lines.emplace_back(line.c_str());
        }
        fault_ = made.fault;
        return lines;
    }

    /// zolex's own lines, and where those of each array begin: the lines of the first arrays alone
    /// are the beginning of those of all.
    void readOldLines() {
        oldLines_ = linesOf(byZolex_);
        newLines_ = linesOf(layout_);
        if (fault_) {
            creation_.faults.push_back(lineFault(*fault_));
            return;
        }
        if (dialect_ == Dialect::hyperwin) {
            oldEnds_.assign(layout_.arrays().size(), oldLines_.size());
            return;
        }
        RAIDConfiguration part = settingsOf(layout_);
        for (const LogicalDrive& drive : layout_.logicalDrives()) {
            part.addLogicalDrive(drive);
        }
        for (const RaidArray& array : layout_.arrays()) {
            part.addArray(array);
            oldEnds_.push_back(linesOf(part).size());
        }
    }

    /// Index of a wanted logical drive in the plan of the core.
    [[nodiscard]] std::optional<std::size_t> indexOf(const std::string& id) const {
        for (std::size_t index = 0; index < planning_.volumes.size(); ++index) {
            if (planning_.volumes[index].id == id) {
                return index;
            }
        }
        return std::nullopt;
    }

    void findMissing() {
        for (std::size_t group = 0; group < planning_.after.groups.size(); ++group) {
            const LayoutGroup& wanted = planning_.after.groups[group];
            for (std::size_t volume = 0; volume < wanted.volumes.size(); ++volume) {
                const std::optional<std::size_t> index = indexOf(wanted.volumes[volume].id);
                if (!index || *index >= layout_.logicalDrives().size()) {
                    continue;
                }
                if (choice_.parts.misses({group, volume})) {
                    missing_.insert(*index);
                } else if (choice_.parts.standsOn[group]) {
                    const std::size_t captured = *choice_.parts.standsOn[group];
                    const LayoutGroup& standing = planning_.before.groups[captured];
                    standing_[*index] = standing.volumes[volume].id;
                    if (choice_.parts.sets({group, volume})) {
                        toSet_.insert(*index);
                    }
                }
                isBesideOthers_[*index] = volume > 0;
            }
        }
        for (const std::size_t spare : choice_.parts.missingSpares) {
            missingSpares_.insert(planning_.after.spares[spare].location);
        }
    }

    /// The numbers that commands have for what stands when the first new one is made.
    void takeNumbers() {
        if (choice_.clearsAll) {
            return;
        }
        for (std::size_t group = 0; group < planning_.before.groups.size(); ++group) {
            const std::vector<LayoutVolume>& volumes = planning_.before.groups[group].volumes;
            for (std::size_t volume = 0; volume < choice_.parts.volumesKept[group]; ++volume) {
                numbers_.insert(commandNumberOf(planning_, volumes[volume].id).value_or(0));
            }
        }
    }
    /// The lowest free number, which the next logical drive gets.
    std::int32_t takeNumber() {
        std::int32_t number = 1; // cache modes are set by numbers from 1
        while (!numbers_.insert(number).second) {
            ++number;
        }
        return number;
    }

    [[nodiscard]] std::vector<std::size_t> drivesOf(std::size_t array) const {
        std::vector<std::size_t> drives;
        for (std::size_t index = 0; index < layout_.logicalDrives().size(); ++index) {
            if (layout_.logicalDrives()[index].arrayIndex == static_cast<std::int32_t>(array)) {
                drives.push_back(index);
            }
        }
        return drives;
    }

    /// zolex's lines of the logical drive that is number `place` on its array, as indices.
    [[nodiscard]] std::vector<std::size_t> linesOf(std::size_t array, std::size_t place) const {
        const std::size_t begin = array == 0 ? 0 : oldEnds_[array - 1];
        if (abilitiesOf(record_).lettersArrays) {
            return {begin + place};
        }
        std::vector<std::size_t> lines;
        for (std::size_t line = begin; place == 0 && line < oldEnds_[array]; ++line) {
            lines.push_back(line);
        }
        return lines;
    }

    void makeArray(std::size_t array) {
        const std::vector<std::size_t> drives = drivesOf(array);
        for (std::size_t place = 0; place < drives.size(); ++place) {
            const std::vector<std::size_t> lines = linesOf(array, place);
            if (missing_.count(drives[place]) == 0) {
                leaveStanding(drives[place], lines);
                continue;
            }
            makeVolume(array, drives[place], lines);
        }
    }

    /// Of zolex's lines of a logical drive that stands, those that set what is not as wanted.
    void leaveStanding(std::size_t drive, const std::vector<std::size_t>& lines) {
        const auto found = standing_.find(drive);
        const auto number =
            found == standing_.end() ? std::nullopt : commandNumberOf(planning_, found->second);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string& line = oldLines_[lines[i]];
            if (i > 0 && number && toSet_.count(drive) > 0 &&
                setsWhatDiffers(line, found->second)) {
                addSetting(drive, line, *number);
            } else {
                leaveOut(line, standsText(drive));
            }
        }
    }

    [[nodiscard]] bool setsWhatDiffers(const std::string& line, const std::string& id) const {
        const std::vector<std::string> argv = splitCommandLine(line);
        const bool isOfReading = std::any_of(argv.begin(), argv.end(), [](const std::string& word) {
            return word == "ron" || word == "roff";
        });
        const std::vector<std::string> differ = cacheDifferences(planning_.comparison, id);
        return std::find(differ.begin(), differ.end(),
                         isOfReading ? "read_cache_policy" : "write_cache_policy") != differ.end();
    }

    [[nodiscard]] std::string standsText(std::size_t drive) const {
        const auto found = standing_.find(drive);
        return planning_.volumes[drive].id + " stands already" +
               (found == standing_.end() ? "" : " as LD " + found->second);
    }

    void makeVolume(std::size_t array, std::size_t drive, const std::vector<std::size_t>& lines) {
        const std::int32_t number = takeNumber();
        if (lines.empty()) {
            PlanStep step = createStep(array, drive, lineAlone(array, drive));
            step.differsFromZolex =
                "zolex makes the first logical drive of array " + letterOf(array) + " alone";
            creation_.oldDifferences.push_back("zolex does not run " + step.command + ": " +
                                               step.differsFromZolex);
            creation_.steps.push_back(std::move(step));
            return;
        }
        const std::string& old = oldLines_[lines.front()];
        PlanStep step = createStep(array, drive, newLines_[lines.front()]);
        if (step.command != old) {
            step.differsFromZolex = changedPlaces;
            change(old, step);
        }
        creation_.steps.push_back(std::move(step));
        for (std::size_t i = 1; i < lines.size(); ++i) {
            addSetting(drive, oldLines_[lines[i]], number);
        }
    }

    [[nodiscard]] std::string letterOf(std::size_t array) const {
        return array < planning_.arrays.size() ? planning_.arrays[array].id : "?";
    }

    /// The line of a logical drive as if it were the only one.
    std::string lineAlone(std::size_t array, std::size_t drive) {
        RAIDConfiguration part = settingsOf(layout_);
        part.addArray(layout_.arrays().at(array));
        LogicalDrive alone = layout_.logicalDrives().at(drive);
        alone.arrayIndex = 0;
        part.addLogicalDrive(alone);
        const std::vector<std::string> lines = linesOf(part);
        return lines.empty() ? "" : lines.front();
    }

    PlanStep createStep(std::size_t array, std::size_t drive, std::string line) {
        const PlannedVolume& volume = planning_.volumes[drive];
        const bool isFirst = !isBesideOthers_[drive];
        const std::string letter = letterOf(array);
        PlanStep step = stepOf(record_, planning_,
                               isFirst ? "create-array" : "create-logical-drive", std::move(line));
        if (isFirst) {
            step.creates.push_back(letter);
        }
        step.creates.push_back(volume.id);
        const std::vector<std::string> drives = locationsOf(array);
        step.summary = "create " + (isFirst ? letter : volume.id + " on " + letter) + ": " +
                       volume.raidType + " on " + driveList(drives);
        const bool namesDrives = abilitiesOf(record_).namesDrives;
        if (!namesDrives) {
            for (const PlannedSpare& spare : planning_.spares) {
                step.creates.push_back(spare.location);
                step.summary += ", spare " + spare.location;
            }
        }
        if (auto fault = unmadeLine(step, volume)) {
            creation_.faults.push_back(std::move(*fault));
        } else if (!namesDrives) {
            checkAllDrives(drives);
        } else if (abilitiesOf(record_).lettersArrays && !isFirst) {
            checkLetter(step, letter);
        } else if (!namesItsDrives(dialect_, step, drives)) {
            creation_.faults.push_back(misnamed(step, drives));
        }
        return step;
    }

    [[nodiscard]] std::vector<std::string> locationsOf(std::size_t array) const {
        std::vector<std::string> locations;
        if (array < planning_.arrays.size()) {
            for (const PlannedDrive& drive : planning_.arrays[array].drives) {
                locations.push_back(drive.location);
            }
        }
        return locations;
    }

    void checkLetter(const PlanStep& step, const std::string& letter) {
        if (std::find(step.argv.begin(), step.argv.end(), letter) == step.argv.end()) {
            creation_.faults.push_back(misnamed(step, {letter}));
        }
    }

    /// A line that names no drives takes all that are free, and the last of them for the spare.
    void checkAllDrives(const std::vector<std::string>& members) {
        std::vector<std::string> planned = members;
        for (const PlannedSpare& spare : planning_.spares) {
            planned.push_back(spare.location);
        }
        std::vector<std::string> all;
        for (const MachineDrive& drive : planning_.controller.drives) {
            if (drive.facts.state != DriveState::failed &&
                drive.facts.state != DriveState::missing) {
                all.push_back(drive.facts.location);
            }
        }
        std::sort(planned.begin(), planned.end());
        std::sort(all.begin(), all.end());
        const bool spareIsLast =
            planning_.spares.empty() || planning_.spares.front().location == all.back();
        if (planned != all || !spareIsLast) {
            Finding finding = problemFinding(problem::takesAllDrives,
                                             "the array is planned on " + driveList(members) +
                                                 ", and the command takes " + driveList(all));
            finding.refusedBy = RefusedBy::utility;
            creation_.faults.push_back(std::move(finding));
        }
    }

    /// Cache modes are set by the number of the logical drive, which zolex takes to be that of its
    /// array.
    void addSetting(std::size_t drive, const std::string& old, std::int32_t number) {
        constexpr std::string_view word = "LOGICALDRIVE ";
        std::string line = old;
        const std::size_t found = line.find(word);
        if (found != std::string::npos) {
            const std::size_t begin = found + word.size();
            line.replace(begin, line.find(' ', begin) - begin, std::to_string(number));
        }
        PlanStep step = stepOf(record_, planning_, "set", std::move(line));
        step.isRepeatable = true;
        step.summary = "set " + planning_.volumes[drive].id + ": " + cacheText(step.argv);
        if (step.command != old) {
            step.differsFromZolex = "the logical drive gets number " + std::to_string(number) +
                                    " beside those that stand";
            change(old, step);
        }
        creation_.steps.push_back(std::move(step));
    }

    void makeSpares() {
        const std::size_t begin = oldEnds_.empty() ? 0 : oldEnds_.back();
        if (dialect_ == Dialect::hyperwin || begin >= oldLines_.size()) {
            return;
        }
        if (dialect_ == Dialect::megaCli) {
            makeSpareLine(oldLines_[begin]);
            return;
        }
        for (std::size_t spare = 0; begin + spare < oldLines_.size(); ++spare) {
            const std::string location =
                spare < planning_.spares.size() ? planning_.spares[spare].location : std::string();
            if (missingSpares_.count(location) == 0) {
                leaveOut(oldLines_[begin + spare], "the spare " + location + " stands already");
                continue;
            }
            addSpares(newLines_[begin + spare], oldLines_[begin + spare], {location},
                      changedPlaces);
        }
    }

    /// All spares are in one line.
    void makeSpareLine(const std::string& old) {
        std::vector<std::string> missing;
        bool isOutsideEnclosures = false;
        for (const PlannedSpare& spare : planning_.spares) {
            if (missingSpares_.count(spare.location) > 0) {
                missing.push_back(spare.location);
                isOutsideEnclosures = isOutsideEnclosures || spare.location.starts_with(':');
            }
        }
        if (missing.empty()) {
            leaveOut(old, "the spares stand already");
            return;
        }
        std::string list;
        for (const std::string& location : missing) {
            list += (list.empty() ? "" : ",") + location;
        }
        std::string line = old;
        const std::size_t open = line.find("[ ");
        const std::size_t close = line.find(" ]");
        if (open != std::string::npos && close != std::string::npos && open < close) {
            line.replace(open + 2, close - open - 2, list);
        }
        std::string why;
        if (line != old) {
            why = isOutsideEnclosures ? "a drive in no enclosure is " + missing.front() : "";
            if (missing.size() < planning_.spares.size()) {
                why += std::string(why.empty() ? "" : "; ") + "the other spares stand already";
            }
            why = why.empty() ? changedPlaces : why;
        }
        addSpares(std::move(line), old, missing, why);
    }

    void addSpares(std::string line, const std::string& old,
                   const std::vector<std::string>& locations, const std::string& why) {
        PlanStep step = stepOf(record_, planning_, "create-spare", std::move(line));
        step.creates = locations;
        step.summary = locations.size() == 1 ? "make " + locations.front() + " a spare"
                                             : "make " + driveList(locations) + " spares";
        if (step.command != old) {
            step.differsFromZolex = why;
            change(old, step);
        }
        if (!namesItsDrives(dialect_, step, locations)) {
            creation_.faults.push_back(misnamed(step, locations));
        }
        creation_.steps.push_back(std::move(step));
    }

    void change(const std::string& old, const PlanStep& step) {
        creation_.oldDifferences.push_back("zolex runs " + old + " instead of " + step.command +
                                           ": " + step.differsFromZolex);
    }
    void leaveOut(const std::string& line, const std::string& why) {
        creation_.oldDifferences.push_back("zolex also runs " + line + ": " + why);
    }

    const RAIDController& record_;
    const ControllerPlanning& planning_;
    const StepChoice& choice_;
    const RAIDConfiguration& layout_;
    const RAIDConfiguration& byZolex_;
    const Dialect dialect_;
    std::optional<Fault> fault_;                  ///< of the lines that were made last
    std::vector<std::string> oldLines_;           ///< of zolex
    std::vector<std::string> newLines_;           ///< the same with the drives that do the work
    std::vector<std::size_t> oldEnds_;            ///< behind the lines of each array
    std::set<std::size_t> missing_;               ///< indices of logical drives
    std::map<std::size_t, std::string> standing_; ///< id of the captured one, by index
    std::set<std::size_t> toSet_;                 ///< indices of those that stand but for caches
    std::map<std::size_t, bool> isBesideOthers_;
    std::set<std::string> missingSpares_;
    std::set<std::int32_t> numbers_; ///< of logical drives that are there
    Creation creation_;
};

} // namespace

Creation makeCreation(const RAIDController& record, const ControllerPlanning& planning,
                      const StepChoice& choice, const RAIDConfiguration& byZolex) {
    return Creator(record, planning, choice, byZolex).make();
}

} // namespace zolex::companion
