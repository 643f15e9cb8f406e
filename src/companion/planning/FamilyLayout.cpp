#include "companion/planning/FamilyLayout.h"

#include "companion/binding/DriveChoice.h"
#include "companion/facts/Bytes.h"
#include "companion/families/SpanRules.h"
#include "companion/lint/Entries.h"
#include "companion/machine/Join.h"
#include "companion/planning/FamilyDrives.h"
#include "companion/planning/IdleVolumes.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/PlannedLayout.h"
#include "companion/planning/Refusals.h"
#include "companion/text/Sizes.h"
#include "model/Codes.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

constexpr std::uint64_t percentOfAll = 100;
/// From so many drives on there is one hot spare where the policy does not say.
constexpr std::size_t drivesForASpare = 4;
constexpr std::size_t mostAutomaticDrives = 32;

/// The level of an array whose level no entry gives.
std::int32_t usualLevel(std::size_t drives) {
    constexpr std::size_t forParity = 3;
    return drives >= forParity ? raid_level::raid5
           : drives == 2       ? raid_level::raid1
                               : raid_level::raid0;
}

bool isRedundant(std::string_view raidType) {
    return raidType != "RAID0" && raidType != "None";
}

/// One logical drive as a policy asks for it.
struct VolumeAsk {
    std::size_t array = 0;
    DriveSize size;
    std::int32_t level = raid_level::notGiven;
    std::int32_t writeCache = write_cache::notGiven;
    const LogicalView* view = nullptr;         ///< the entry that gives it; or null
    const KindFileEntry* levelEntry = nullptr; ///< `Level.<x>`
    std::string levelWord;
};

class LayoutMaker {
  public:
    LayoutMaker(const FamilyCase& planned, ControllerPlanning& planning)
        : planned_(planned), planning_(planning), view_(planned.view),
          limits_(planned.family.limits(planned.detail.facts)),
          drives_(planned.detail, planned.family, planned.failedMembersStay) {}

    std::vector<Finding> make() {
        if (planned_.kinds != nullptr && !planned_.kinds->drives.empty()) {
            takeKinds();
        } else if (view_.customArrays) {
            takeLists();
        } else {
            takeSpares();
            takeAlike();
        }
        if (hasErrors(findings_)) {
            return std::move(findings_);
        }
        checkDrives();
        readSettings();
        makeVolumes();
        coverBySpares();
        return std::move(findings_);
    }

  private:
    // What is said.

    Finding& add(Finding finding, const Piece* piece) {
        finding.file = planned_.file;
        if (piece != nullptr && !planned_.file.empty()) {
            finding.start = piece->start;
            finding.end = piece->end;
        } else {
            finding.file.clear();
        }
        findings_.push_back(std::move(finding));
        return findings_.back();
    }
    /// Of a rule, refused as the plan is made.
    Finding& fault(const char* code, const Piece* piece, std::string summary, std::string help) {
        Finding finding;
        finding.code = code;
        finding.refusedBy = RefusedBy::plan;
        finding.summary = std::move(summary);
        finding.help.push_back(std::move(help));
        return add(std::move(finding), piece);
    }
    Finding& problem(std::string_view code, const Piece* piece, std::string summary,
                     std::string help) {
        return add(planFault(code, std::move(summary), {std::move(help)}), piece);
    }

    // Drives.

    [[nodiscard]] bool isTaken(const MachineDrive& drive) const {
        return takenBy_.contains(drive.facts.location);
    }
    /// False when something has it already, which is told.
    bool take(const MachineDrive& drive, const std::string& keyword, const Piece* piece) {
        const auto [found, isNew] = takenBy_.emplace(drive.facts.location, keyword);
        if (isNew) {
            return true;
        }
        const bool isOfSpares =
            keyword == keyword::hotspares || found->second == keyword::hotspares;
        fault(found->second == keyword ? "ZX301"
              : isOfSpares             ? "ZX502"
                                       : "ZX302",
              piece,
              drive.facts.location + " is in " + keyword +
                  (found->second == keyword ? " twice" : " and in " + found->second),
              "name each drive once");
        return false;
    }

    /// A member that no drive of the list is: it was pulled, or answers no more.
    [[nodiscard]] bool isMemberMissing() const {
        const std::vector<LogicalDriveFacts>& all = planned_.detail.facts.logicalDrives;
        return std::any_of(all.begin(), all.end(), [this](const LogicalDriveFacts& volume) {
            const std::vector<std::string> drives = volume.drives();
            return std::any_of(drives.begin(), drives.end(), [this](const std::string& member) {
                return planned_.detail.facts.drive(member) == nullptr;
            });
        });
    }

    /// Whether a logical drive on that drive is offline; of an empty location, whether any is.
    [[nodiscard]] bool isOffline(const std::string& location) const {
        const std::vector<LogicalDriveFacts>& all = planned_.detail.facts.logicalDrives;
        return std::any_of(all.begin(), all.end(), [&location](const LogicalDriveFacts& each) {
            return each.health == Health::critical && (location.empty() || each.isOn(location));
        });
    }

    /// A logical drive that is well on as many drives, of which the list names some: a hot spare
    /// took the place of the others.
    [[nodiscard]] const LogicalDriveFacts* standsElsewhere(const DriveListView& list,
                                                           const MachineDrive& bad) const {
        const std::vector<LogicalDriveFacts>& all = planned_.detail.facts.logicalDrives;
        const auto found = std::find_if(all.begin(), all.end(), [&](const LogicalDriveFacts& each) {
            return each.health == Health::ok && each.drives().size() == list.drives.size() &&
                   !each.isOn(bad.facts.location) &&
                   std::any_of(list.drives.begin(), list.drives.end(), [&](const DriveView& view) {
                       const MachineDrive* const drive = drives_.find(view);
                       return drive != nullptr && each.isOn(drive->facts.location);
                   });
        });
        return found == all.end() ? nullptr : &*found;
    }

    [[nodiscard]] std::string driveHelp(const DriveListView& list,
                                        const MachineDrive& drive) const {
        if (const LogicalDriveFacts* const well = standsElsewhere(list, drive)) {
            return "LD " + well->id + " is well without it, on " + joinWords(well->drives()) +
                   ": name these in its place, for another list deletes it";
        }
        return driveHelp(drive);
    }
    [[nodiscard]] std::string driveHelp(const MachineDrive& drive) const {
        if (isOffline(drive.facts.location)) {
            return offlineHelp().front() + "; " + offlineHelp().back();
        }
        if (!drive.array.empty() && drive.facts.state != DriveState::rebuilding) {
            const bool isGone =
                drive.facts.state == DriveState::failed || drive.facts.state == DriveState::missing;
            return std::string(isGone ? "replace it, and wait until it is rebuilt"
                                      : "look at what its utility tells of it, and wait until the "
                                        "controller is done with it") +
                   ": a policy without it deletes array " + drive.array;
        }
        const std::string makeGood = planned_.family.makeGood(planned_.detail.adapter, drive.facts);
        switch (drive.facts.state) {
        case DriveState::jbod:
            if (makeGood.empty()) {
                return "take it out of the policy; or, if nobody needs it, clear it with what "
                       "made it (or wipefs), and plan again";
            }
            return "take it out of the policy; or make it good, which loses all that is on it: " +
                   typedLine(planned_.family, planned_.detail, makeGood);
        case DriveState::failed:
        case DriveState::missing:
            return "replace the drive, or take it out of the policy";
        case DriveState::rebuilding:
            return "wait until it is rebuilt";
        default:
            return "take it out of the policy: zolexctl show lists the drives";
        }
    }

    /// The drives of a list; those that cannot be used are told.
    std::vector<PlannedDrive> listed(const DriveListView& list) {
        std::vector<PlannedDrive> chosen;
        const std::string keyword = list.entry->keyword.text;
        for (const DriveView& view : list.drives) {
            const MachineDrive* const drive = drives_.find(view);
            if (view.number > 0 && !hasShifted_ && isMemberMissing()) {
                hasShifted_ = true;
                fault("ZX701", &view.piece,
                      keyword + " counts drives, and a drive of an array is missing: the numbers "
                                "behind it are others",
                      isOffline({}) ? offlineHelp().front()
                                    : "put the drive back, or replace it and wait until it is "
                                      "rebuilt");
            }
            if (view.number <= 0 && drives_.isAmbiguous(view)) {
                fault("ZX303", &view.piece,
                      view.piece.text +
                          " is a drive in the enclosure of that id, or one in another "
                          "enclosure by its position",
                      "write the number of the drive: zolexctl show lists it");
                continue;
            }
            if (drive == nullptr) {
                fault(view.number > 0 ? "ZX304" : "ZX303", &view.piece,
                      view.number > 0
                          ? "there is no drive " + view.piece.text + ": the controller has " +
                                countOf(drives_.all().size(), "drive")
                          : "there is no drive at " + view.piece.text,
                      "zolexctl show lists the drives, their numbers and places");
                continue;
            }
            if (!take(*drive, keyword, &view.piece)) {
                continue;
            }
            if (drives_.useOf(*drive) == FamilyDrives::Use::bad) {
                Finding& finding = fault("ZX702", &view.piece,
                                         keyword + " names " + drive->facts.location + ": " +
                                             drives_.whyNot(*drive),
                                         driveHelp(list, *drive));
                finding.refusedBy = RefusedBy::plan;
                continue;
            }
            chosen.push_back(
                {drive->facts.location, {"listed", keyword, lineOf(list.entry), view.piece.text}});
        }
        return chosen;
    }

    [[nodiscard]] std::int32_t lineOf(const DocumentEntry* entry) const {
        return entry == nullptr || planned_.file.empty() ? 0 : entry->keyword.start.line;
    }

    PlannedArray& addArray(std::size_t letter) {
        PlannedArray& array = planning_.arrays.emplace_back();
        array.id = arrayLetters(letter);
        letters_.push_back(letter);
        return array;
    }

    void takeLists() {
        // What is named comes first, so that nothing else takes it.
        std::map<std::size_t, std::vector<PlannedDrive>> lists;
        for (const DriveListView& list : view_.arrays) {
            if (!list.isAll) {
                lists[list.index] = listed(list);
            }
        }
        if (view_.hotspares) {
            takeListedSpares();
        } else {
            takeSpares();
        }
        for (const DriveListView& list : view_.arrays) {
            if (list.isAll) {
                lists[list.index] = allThatAreLeft(list);
            }
        }
        for (const DriveListView& list : view_.arrays) {
            PlannedArray& array = addArray(list.index);
            array.drives = std::move(lists[list.index]);
            if (array.drives.empty() && !hasErrors(findings_)) {
                fault("ZX304", &list.entry->value,
                      list.entry->keyword.text + " finds no good drive that is free for it",
                      "zolexctl show lists the drives");
            }
        }
    }

    std::vector<PlannedDrive> allThatAreLeft(const DriveListView& list) {
        std::vector<PlannedDrive> chosen;
        for (const MachineDrive* const drive : drives_.all()) {
            if (!isTaken(*drive) && drives_.isGood(*drive)) {
                takenBy_.emplace(drive->facts.location, list.entry->keyword.text);
                chosen.push_back(
                    {drive->facts.location,
                     {"all-remaining", list.entry->keyword.text, lineOf(list.entry), "ALL"}});
            }
        }
        return chosen;
    }

    void takeListedSpares() {
        for (PlannedDrive& drive : listed(*view_.hotspares)) {
            PlannedSpare& spare = planning_.spares.emplace_back();
            spare.location = std::move(drive.location);
            spare.reason = std::move(drive.reason);
        }
    }

    /// Hot spares that no entry names: the largest good drives, of equal ones the last.
    void takeSpares() {
        PlanReason reason{"largest-last", "", 0, ""};
        std::int32_t count = 0;
        if (view_.arrayDefaults && view_.arrayDefaults->given.hotspareCount != notGiven) {
            count = std::max(view_.arrayDefaults->given.hotspareCount, 0);
            reason.keyword = view_.arrayDefaults->entry->keyword.text;
            reason.line = lineOf(view_.arrayDefaults->entry);
        } else if (!view_.isGenerated()) {
            count = goodDrives() >= drivesForASpare ? 1 : 0;
        }
        for (std::int32_t made = 0; made < count; ++made) {
            const MachineDrive* best = nullptr;
            for (const MachineDrive* const drive : drives_.all()) {
                const bool isBetter = best == nullptr ||
                                      FamilyDrives::bytesOf(*drive) >= FamilyDrives::bytesOf(*best);
                best = !isTaken(*drive) && drives_.isGood(*drive) && isBetter ? drive : best;
            }
            if (best == nullptr) {
                // A default one is not missed where every drive has its job.
                if (!reason.keyword.empty()) {
                    fault("ZX503", &view_.arrayDefaults->hotspares,
                          std::to_string(count) +
                              (count == 1 ? " hot spare is" : " hot spares are") +
                              " asked for, and " + std::to_string(made) + " can be had",
                          "ask for fewer, or leave drives for them");
                }
                return;
            }
            takenBy_.emplace(best->facts.location, keyword::hotspares);
            PlannedSpare& spare = planning_.spares.emplace_back();
            spare.location = best->facts.location;
            spare.reason = reason;
        }
    }

    [[nodiscard]] std::size_t goodDrives() const {
        return static_cast<std::size_t>(
            std::count_if(drives_.all().begin(), drives_.all().end(),
                          [this](const MachineDrive* drive) { return drives_.isGood(*drive); }));
    }

    /// Automatic arrays: the first free drive, and those that are like it.
    void takeAlike() {
        const std::int32_t variance =
            view_.arrayDefaults ? view_.arrayDefaults->given.variancePercent : 0;
        for (std::size_t first = 0; first < drives_.all().size(); ++first) {
            const MachineDrive& leader = *drives_.all()[first];
            if (isTaken(leader) || !drives_.isGood(leader)) {
                continue;
            }
            PlannedArray& array = addArray(planning_.arrays.size());
            for (std::size_t i = first;
                 i < drives_.all().size() && array.drives.size() < mostAutomaticDrives; ++i) {
                const MachineDrive& drive = *drives_.all()[i];
                if (isTaken(drive) || !drives_.isGood(drive) || !isLike(leader, drive, variance)) {
                    continue;
                }
                takenBy_.emplace(drive.facts.location, "array " + array.id);
                PlanReason reason{"first-free", "", 0, ""};
                if (i != first) {
                    reason = {"like-first", "", 0, std::to_string(variance) + "%"};
                }
                array.drives.push_back({drive.facts.location, std::move(reason)});
            }
        }
    }

    [[nodiscard]] bool isLike(const MachineDrive& leader, const MachineDrive& drive,
                              std::int32_t variance) const {
        const std::uint64_t size = FamilyDrives::bytesOf(leader);
        const std::uint64_t other = FamilyDrives::bytesOf(drive);
        // Sizes are listed in MB by older utilities: what is off by less is the same size.
        const std::uint64_t tolerance =
            size / percentOfAll * static_cast<std::uint64_t>(variance) + bytesOfMb - 1;
        return leader.facts.mediaType == drive.facts.mediaType &&
               leader.facts.protocol == drive.facts.protocol &&
               leader.facts.blockSizeBytes == drive.facts.blockSizeBytes &&
               other + tolerance >= size && other <= size + tolerance;
    }

    /// Drives are counted from those that are there: another one would take the place of the one
    /// that is not, and its array would go.
    void refuseCounting(const KindFileEntry& entry) {
        Finding& finding = fault("ZX701", nullptr,
                                 entry.keyword.text + " counts drives, and a drive of an array is "
                                                      "missing: another would take its place",
                                 "put the drive back, or replace it and wait until it is rebuilt");
        finding.refusedBy = RefusedBy::nobody;
        finding.file = planned_.file;
        const auto line = static_cast<std::int32_t>(entry.line) + 1;
        finding.start = {line, entry.valueColumn, 0};
        finding.end = {line, entry.endColumn(), 0};
    }

    void refuseCountedKinds(const KindSection& kinds) {
        for (const KindSection::Drives& drives : kinds.drives) {
            if (drives.wish.form == KindForm::kind) {
                refuseCounting(*drives.entry);
                return;
            }
        }
        if (kinds.spares && kinds.spares->form == KindForm::kind) {
            refuseCounting(*kinds.sparesEntry);
        }
    }

    void takeKinds() {
        const KindSection& kinds = *planned_.kinds;
        if (isMemberMissing()) {
            refuseCountedKinds(kinds);
        }
        const DriveUse use{[this](const MachineDrive& drive) { return drives_.isGood(drive); },
                           [](const MachineDrive& drive) { return FamilyDrives::bytesOf(drive); },
                           [this](const MachineDrive& drive) { return driveHelp(drive); },
                           limits_.mostDrives > 0 ? limits_.mostDrives
                                                  : static_cast<std::size_t>(mostKindDrives)};
        DriveChoice choice = chooseDrives(kinds, planned_.detail, use);
        for (const BindingFault& each : choice.faults) {
            Finding& finding = fault(each.code.c_str(), nullptr, each.keyword + ": " + each.what,
                                     each.help.empty() ? "zolexctl show" : each.help);
            finding.file = planned_.file;
            finding.start = {each.line, each.column, 0};
            finding.end = {each.line, each.endColumn, 0};
        }
        if (!choice.faults.empty()) {
            return;
        }
        for (const KindSection::Drives& drives : kinds.drives) {
            PlannedArray& array = addArray(static_cast<std::size_t>(drives.letter - 'A'));
            for (const ChosenDrive& chosen : choice.arrays[drives.letter]) {
                array.drives.push_back(
                    {chosen.drive->facts.location, reasonOf(chosen, *drives.entry)});
            }
            bind(*drives.entry, choice.arrays[drives.letter], "array " + array.id);
        }
        if (kinds.sparesEntry != nullptr) {
            for (const ChosenDrive& chosen : choice.spares) {
                PlannedSpare& spare = planning_.spares.emplace_back();
                spare.location = chosen.drive->facts.location;
                spare.reason = reasonOf(chosen, *kinds.sparesEntry);
            }
            bind(*kinds.sparesEntry, choice.spares, "hot spares");
            dedicateSpares(*kinds.spares);
        }
    }

    static PlanReason reasonOf(const ChosenDrive& chosen, const KindFileEntry& entry) {
        return {chosen.code, entry.keyword.text, static_cast<std::int32_t>(entry.line) + 1,
                chosen.why};
    }

    void bind(const KindFileEntry& entry, const std::vector<ChosenDrive>& chosen,
              const std::string& what) {
        Binding binding;
        binding.keyword = entry.keyword.text;
        binding.line = static_cast<std::int32_t>(entry.line) + 1;
        binding.value = entry.value;
        binding.becomes = what + ":";
        for (const ChosenDrive& each : chosen) {
            binding.becomes += " " + each.drive->facts.location;
            binding.drives.push_back({each.drive->facts.location, each.code, each.why});
        }
        planning_.bindings.push_back(std::move(binding));
    }

    /// Whether a drive is a spare of these arrays already, and of them alone.
    [[nodiscard]] bool isSpareOf(const std::string& location,
                                 const std::vector<std::string>& letters) const {
        const DriveFacts& spare = factsOf(location);
        const auto isCovered = [&](const PlannedArray& array) {
            const std::vector<LogicalDriveFacts>& all = planned_.detail.facts.logicalDrives;
            return std::any_of(all.begin(), all.end(), [&](const LogicalDriveFacts& each) {
                return !array.drives.empty() && each.isOn(array.drives.front().location) &&
                       std::find(spare.covers.begin(), spare.covers.end(), each.array) !=
                           spare.covers.end();
            });
        };
        const auto covered = std::count_if(
            planning_.arrays.begin(), planning_.arrays.end(), [&](const PlannedArray& array) {
                return std::find(letters.begin(), letters.end(), array.id) != letters.end() &&
                       isCovered(array);
            });
        return spare.hotspare == HotspareKind::dedicated && spare.covers.size() == letters.size() &&
               static_cast<std::size_t>(covered) == letters.size();
    }

    /// Spares that cover some arrays are theirs alone; those that cover all are everybody's, where
    /// they do not stand as dedicated ones of all.
    void dedicateSpares(const SparesWish& wish) {
        std::size_t spare = 0;
        for (const SpareGroup& group : wish.groups) {
            std::vector<std::string> letters;
            for (const KindWord& word : group.covers) {
                letters.push_back(word.text);
            }
            const bool isForAll = letters.empty() || letters.size() >= planning_.arrays.size();
            for (std::int32_t i = 0; i < group.count && spare < planning_.spares.size(); ++i) {
                const bool isOwn =
                    !isForAll ||
                    (!letters.empty() && isSpareOf(planning_.spares[spare].location, letters));
                planning_.spares[spare].isDedicated = isOwn && limits_.hasDedicatedSpares;
                planning_.spares[spare].covers =
                    planning_.spares[spare].isDedicated ? letters : std::vector<std::string>();
                ++spare;
            }
        }
    }

    // What is held against the limits.

    [[nodiscard]] const DriveFacts& factsOf(const std::string& location) const {
        return *planned_.detail.facts.drive(location);
    }
    [[nodiscard]] const Piece* placeOf(const PlannedArray& array) const {
        for (const DriveListView& list : view_.arrays) {
            if (view_.customArrays && arrayLetters(list.index) == array.id) {
                return &list.entry->value;
            }
        }
        return nullptr;
    }

    void checkDrives() {
        for (const PlannedArray& array : planning_.arrays) {
            if (limits_.mostDrives > 0 && array.drives.size() > limits_.mostDrives) {
                fault("ZX305", placeOf(array),
                      "array " + array.id + " has " + std::to_string(array.drives.size()) +
                          " drives, and the controller takes " + std::to_string(limits_.mostDrives),
                      "make several arrays of them");
            }
            std::set<std::string> protocols;
            std::set<std::string> media;
            std::set<std::string> sectors;
            for (const PlannedDrive& drive : array.drives) {
                const DriveFacts& facts = factsOf(drive.location);
                protocols.insert(facts.protocol);
                media.insert(facts.mediaType);
                sectors.insert(facts.blockSizeBytes ? std::to_string(*facts.blockSizeBytes) : "");
            }
            tellUnlike(array, sectors, false, " bytes to the sector");
            const bool mayMix = limits_.mixesNvme || protocols.count("NVMe") == 0;
            tellUnlike(array, protocols, limits_.mixesProtocols && mayMix, "");
            tellUnlike(array, media, limits_.mixesMedia, "");
        }
    }

    void tellUnlike(const PlannedArray& array, std::set<std::string> kinds, bool mayMix,
                    const char* unit) {
        kinds.erase("");
        if (kinds.size() < 2 || mayMix) {
            return;
        }
        std::vector<std::string> words;
        words.reserve(kinds.size());
        for (const std::string& kind : kinds) {
            words.push_back(kind + unit);
        }
        problem(problem::drivesUnlike, placeOf(array),
                "array " + array.id + " has drives of " + joinWords(words) +
                    ", which the controller does not put together",
                "name drives of one kind: zolexctl show lists them");
    }

    // Settings.

    void readSettings() {
        if (view_.stripeSize) {
            strip_ =
                (std::uint64_t{8} << static_cast<unsigned>(view_.stripeSize->code)) * bytesOfKb;
            const bool isTooSmall = strip_ < limits_.leastStripBytes;
            const bool isTooLarge = limits_.mostStripBytes > 0 && strip_ > limits_.mostStripBytes;
            if (isTooSmall || isTooLarge) {
                fault("ZX403", &view_.stripeSize->entry->value,
                      "a strip size of " + stripSizeLine(*strip_) + " is not of " +
                          planned_.detail.model + ", which takes " +
                          stripSizeLine(limits_.leastStripBytes) + " to " +
                          stripSizeLine(limits_.mostStripBytes),
                      "take the line out for the controller's own");
            }
        }
        if (view_.readAhead && limits_.setsCaches) {
            readCache_ = view_.readAhead->code == read_ahead::off ? "Off" : "ReadAhead";
        }
        if (view_.init) {
            Finding finding;
            finding.code = "ZX408";
            finding.severity = Severity::warning;
            finding.summary = std::string(keyword::init) +
                              " has no effect: " + planned_.detail.utility +
                              " is not told how to initialise";
            finding.help = {"take the line out"};
            add(std::move(finding), &view_.init->entry->keyword);
        }
        if (view_.rebuildRate) {
            planning_.rebuildRate = view_.rebuildRate->code == rebuild_rate::high     ? "HIGH"
                                    : view_.rebuildRate->code == rebuild_rate::medium ? "MEDIUM"
                                                                                      : "LOW";
        }
    }

    static PlanReason given(const DocumentEntry* entry, std::string as, std::int32_t line) {
        return {"given", entry->keyword.text, line, std::move(as)};
    }
    [[nodiscard]] PlanReason settingReason(const std::optional<SettingView>& setting) const {
        return setting ? given(setting->entry, setting->entry->value.text, lineOf(setting->entry))
                       : PlanReason{"left-to-controller", "", 0, ""};
    }

    // Logical drives.

    [[nodiscard]] const KindSection::Level* levelOf(const PlannedArray& array) const {
        if (planned_.kinds == nullptr) {
            return nullptr;
        }
        const auto found =
            std::find_if(planned_.kinds->levels.begin(), planned_.kinds->levels.end(),
                         [&](const auto& each) { return std::string(1, each.letter) == array.id; });
        return found == planned_.kinds->levels.end() ? nullptr : &*found;
    }

    [[nodiscard]] VolumeAsk usualAsk(std::size_t array) const {
        VolumeAsk ask;
        ask.array = array;
        if (view_.logicalDefaults) {
            ask.view = &*view_.logicalDefaults;
            ask.size = ask.view->given.size;
            ask.level = ask.view->given.raidLevel;
            ask.writeCache = ask.view->given.writeCache;
        }
        return ask;
    }

    [[nodiscard]] std::vector<VolumeAsk> asks() {
        std::vector<VolumeAsk> all;
        const bool isCustom = view_.customLogicalDrives && !view_.logicalDrives.empty();
        if (isCustom) {
            for (const LogicalView& logical : view_.logicalDrives) {
                addGiven(logical, all);
            }
        }
        for (std::size_t array = 0; array < planning_.arrays.size(); ++array) {
            const KindSection::Level* const level = levelOf(planning_.arrays[array]);
            if (level != nullptr) {
                VolumeAsk ask = usualAsk(array);
                if (chooseLevel(*level, planning_.arrays[array], ask)) {
                    all.push_back(std::move(ask));
                }
            } else if (!isCustom) {
                all.push_back(usualAsk(array));
            } else if (std::none_of(all.begin(), all.end(),
                                    [array](const VolumeAsk& ask) { return ask.array == array; })) {
                fault("ZX308", placeOf(planning_.arrays[array]),
                      "no logical drive lies on array " + planning_.arrays[array].id,
                      "write one: Logical." + std::to_string(view_.logicalDrives.size() + 1) +
                          " = " + planning_.arrays[array].id + ":FILL:AUTO");
            }
        }
        return all;
    }

    void addGiven(const LogicalView& logical, std::vector<VolumeAsk>& all) {
        const auto letter = std::find(letters_.begin(), letters_.end(),
                                      static_cast<std::size_t>(logical.given.arrayIndex));
        if (letter == letters_.end()) {
            fault("ZX106", &logical.array,
                  logical.entry->keyword.text + " lies on array " + logical.array.text +
                      ", which there is not",
                  "arrays are " + planning_.arrays.front().id + " to " +
                      planning_.arrays.back().id);
            return;
        }
        VolumeAsk ask;
        ask.array = static_cast<std::size_t>(letter - letters_.begin());
        ask.view = &logical;
        ask.size = logical.given.size;
        ask.level = logical.given.raidLevel;
        ask.writeCache = logical.given.writeCache;
        all.push_back(ask);
    }

    /// Why the array does not take the level; empty when it does.
    [[nodiscard]] SpanChoice spansOf(const std::string& raidType, std::size_t drives) const {
        if (std::find(limits_.raidTypes.begin(), limits_.raidTypes.end(), raidType) ==
            limits_.raidTypes.end()) {
            std::vector<std::string> words;
            for (const std::string& each : limits_.raidTypes) {
                if (each != "RAID00") { // which policies cannot name
                    words.push_back(levelWords(each).substr(sizeof("RAID")));
                }
            }
            return {0,
                    levelWords(raidType) + " is not of " + planned_.detail.model + ", which has " +
                        joinWords(words),
                    "take another level"};
        }
        const std::int32_t wanted = planned_.kinds == nullptr ? 0 : planned_.kinds->spans;
        return chooseSpans(raidType, drives, static_cast<std::size_t>(wanted), limits_);
    }

    bool chooseLevel(const KindSection::Level& level, const PlannedArray& array, VolumeAsk& ask) {
        std::string why;
        for (const LevelWish::Choice& choice : level.wish.choices) {
            const SpanChoice spans = spansOf(plannedRaidType(choice.level), array.drives.size());
            if (spans.fault.empty()) {
                ask.level = choice.level;
                ask.levelEntry = level.entry;
                ask.levelWord = choice.word.text;
                return true;
            }
            why += (why.empty() ? "" : "; ") + spans.fault;
        }
        Finding& finding =
            fault("ZX313", nullptr, level.entry->keyword.text + ": no level is possible: " + why,
                  "add another level, or change the number of drives of Drives." + array.id);
        finding.file = planned_.file;
        finding.start = {static_cast<std::int32_t>(level.entry->line) + 1, level.entry->valueColumn,
                         0};
        finding.end = {finding.start.line, level.entry->endColumn(), 0};
        return false;
    }

    void makeVolumes() {
        const std::vector<VolumeAsk> all = asks();
        std::map<std::size_t, std::string> levels; // of arrays
        for (const VolumeAsk& ask : all) {
            addVolume(ask, levels);
        }
        checkCounts();
    }

    void addVolume(const VolumeAsk& ask, std::map<std::size_t, std::string>& levels) {
        PlannedArray& array = planning_.arrays[ask.array];
        const bool isUsual = ask.level == raid_level::notGiven;
        const std::int32_t level = isUsual ? usualLevel(array.drives.size()) : ask.level;
        PlannedVolume volume;
        volume.id = "Logical." + std::to_string(planning_.volumes.size() + 1);
        volume.array = array.id;
        volume.raidType = plannedRaidType(level);
        const Piece* const levelPiece = ask.view == nullptr ? placeOf(array) : &ask.view->level;
        const auto [first, isFirst] = levels.emplace(ask.array, volume.raidType);
        if (isFirst) {
            const SpanChoice spans = spansOf(volume.raidType, array.drives.size());
            if (!spans.fault.empty()) {
                const bool isUnknown = spans.fault.find(" is not ") != std::string::npos;
                fault(isUnknown ? "ZX401" : "ZX402", levelPiece,
                      "array " + array.id + ": " + spans.fault, spans.help);
                return;
            }
            array.drivesPerSpan = spans.drivesPerSpan;
        } else if (first->second != volume.raidType) {
            fault("ZX405", levelPiece,
                  "array " + array.id + " has " + levelWords(first->second) + " and " +
                      levelWords(volume.raidType) + ": its drives take one level",
                  "give all logical drives of the array one level");
            return;
        }
        volume.sizePolicy = sizeWords(ask.size);
        volume.stripSizeBytes = strip_;
        volume.readCache = readCache_;
        if (limits_.setsCaches) {
            volume.writeCache = ask.writeCache == write_cache::on    ? "UnprotectedWriteBack"
                                : ask.writeCache == write_cache::off ? "WriteThrough"
                                                                     : "";
        }
        measure(ask, array, volume);
        addReasons(ask, isUsual, volume);
        planning_.volumes.push_back(std::move(volume));
    }

    void addReasons(const VolumeAsk& ask, bool isUsual, PlannedVolume& volume) const {
        const PlanReason left{"left-to-controller", "", 0, ""};
        const auto ofEntry = [&](const std::string& as) {
            return ask.view == nullptr ? PlanReason{"class-default", "", 0, ""}
                                       : given(ask.view->entry, as, lineOf(ask.view->entry));
        };
        volume.reasons["raid_type"] =
            ask.levelEntry != nullptr
                ? PlanReason{"given", ask.levelEntry->keyword.text,
                             static_cast<std::int32_t>(ask.levelEntry->line) + 1, ask.levelWord}
            : isUsual ? PlanReason{"class-default", "", 0, ""}
                      : ofEntry(ask.view->level.text);
        volume.reasons["size"] = ofEntry(ask.view == nullptr ? "" : ask.view->size.text);
        volume.reasons["write_cache_policy"] =
            volume.writeCache.empty() || ask.view == nullptr || !ask.view->cache
                ? left
                : ofEntry(ask.view->cache->text);
        volume.reasons["strip_size_bytes"] = settingReason(view_.stripeSize);
        volume.reasons["read_cache_policy"] =
            volume.readCache.empty() ? left : settingReason(view_.readAhead);
    }

    /// Capacities, as far as they may be off: a full stripe, a MB, and for what takes the rest what
    /// controllers keep for themselves.
    void measure(const VolumeAsk& ask, PlannedArray& array, PlannedVolume& volume) {
        constexpr std::uint64_t usualStrip = 256 * bytesOfKb;
        std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
        std::uint64_t tolerance = 0;
        for (const PlannedDrive& drive : array.drives) {
            const DriveFacts& facts = factsOf(drive.location);
            if (facts.capacityBytes) {
                smallest = std::min(smallest, *facts.capacityBytes);
            }
            tolerance += facts.capacityTolerance;
        }
        smallest = smallest == std::numeric_limits<std::uint64_t>::max() ? 0 : smallest;
        const std::uint64_t drives = array.drives.size();
        const std::uint64_t spans = array.drivesPerSpan == 0 ? 1 : drives / array.drivesPerSpan;
        const std::uint64_t all =
            smallest / 2 * dataHalves(volume.raidType, drives, spans, limits_.deepMirrors);
        array.capacityBytes = smallest * drives;
        const std::uint64_t stripe = volume.stripSizeBytes.value_or(usualStrip) * drives;
        std::uint64_t& used = used_[ask.array];
        const std::uint64_t left = all > used ? all - used : 0;
        volume.fills = ask.size.kind == DriveSize::Kind::rest;
        volume.toleranceBytes = stripe + bytesOfMb;
        const auto value = static_cast<std::uint64_t>(std::max(ask.size.value, 0));
        volume.capacityBytes = ask.size.kind == DriveSize::Kind::mb ? value * bytesOfMb
                               : volume.fills                       ? left
                                                                    : all / percentOfAll * value;
        // What is meant as all that is there takes the rest, too.
        const std::uint64_t end = used + volume.capacityBytes;
        if (!volume.fills && end <= all && all - end < fillMarginBytes) {
            volume.fills = true;
            volume.capacityBytes = left;
        }
        if (volume.fills) {
            volume.toleranceBytes =
                stripe + tolerance + fillMarginBytes + metadataBytes(volume.capacityBytes);
        }
        const bool isTooLarge = volume.capacityBytes > left;
        const bool isNothing = volume.capacityBytes < bytesOfMb;
        if (isTooLarge || isNothing) {
            problem(problem::noRoom, ask.view == nullptr ? nullptr : &ask.view->size,
                    volume.id + " on array " + array.id + " is to have " +
                        (isNothing ? "what is left" : sizeText(volume.capacityBytes)) + ", and " +
                        (left < bytesOfMb ? "nothing" : sizeText(left)) + " is left",
                    "give it less, or the logical drives before it");
        }
        used += volume.capacityBytes;
    }

    void checkCounts() {
        std::map<std::string, std::size_t> counts;
        for (const PlannedVolume& volume : planning_.volumes) {
            ++counts[volume.array];
        }
        for (const auto& [array, count] : counts) {
            if (limits_.mostVolumesPerGroup > 0 && count > limits_.mostVolumesPerGroup) {
                fault("ZX405", nullptr,
                      "array " + array + " has " + countOf(count, "logical drive") +
                          ", and the controller takes " +
                          std::to_string(limits_.mostVolumesPerGroup),
                      "make fewer logical drives on it");
            }
        }
        if (limits_.mostVolumes > 0 && planning_.volumes.size() > limits_.mostVolumes) {
            fault("ZX405", nullptr,
                  countOf(planning_.volumes.size(), "logical drive") +
                      " are planned, and the controller takes " +
                      std::to_string(limits_.mostVolumes),
                  "make fewer logical drives");
        }
    }

    // Hot spares.

    void coverBySpares() {
        for (PlannedSpare& spare : planning_.spares) {
            const bool isAsked = spare.isDedicated;
            std::vector<std::string> covers;
            for (const PlannedArray& array : planning_.arrays) {
                const bool isMeant = !isAsked || std::find(spare.covers.begin(), spare.covers.end(),
                                                           array.id) != spare.covers.end();
                if (isMeant && canStandIn(spare, array)) {
                    covers.push_back(array.id);
                }
            }
            if (!isAsked) {
                spare.covers = std::move(covers);
            } else if (covers.size() < spare.covers.size()) {
                problem(problem::spareNotMade, nullptr,
                        "the hot spare " + spare.location + " cannot stand in for array " +
                            joinWords(spare.covers),
                        "take a spare that is as large and of the same kind");
            }
            if (!limits_.hasGlobalSpares && limits_.hasDedicatedSpares) {
                spare.isDedicated = true;
                keepOneArray(spare);
            }
        }
    }

    /// A spare is of one array where there are no others: of the first that has none yet.
    void keepOneArray(PlannedSpare& spare) {
        if (spare.covers.empty()) {
            problem(problem::spareNotMade, nullptr,
                    "the hot spare " + spare.location + " can stand in for no array",
                    "use the drive in an array, or have no spare: Array_Defaults = 0%:0");
            return;
        }
        const auto hasOne = [this](const std::string& array) { return spared_.contains(array); };
        const auto first = std::find_if_not(spare.covers.begin(), spare.covers.end(), hasOne);
        const std::string own = first == spare.covers.end() ? spare.covers.front() : *first;
        spared_.insert(own);
        if (spare.covers.size() > 1) {
            std::vector<std::string> others = spare.covers;
            std::erase(others, own);
            Finding& finding = problem(
                problem::spareOfOne, nullptr,
                "the hot spare " + spare.location + " is made one of array " + own +
                    " alone, and not of " + joinWords(others),
                "put spare-group=zolex into the ARRAY lines of mdadm.conf (mdadm --detail --scan), "
                "and mdadm --monitor moves it to where it is needed");
            finding.severity = Severity::warning;
        }
        spare.covers = {own};
    }

    [[nodiscard]] bool mayMixProtocols(const DriveFacts& a, const DriveFacts& b) const {
        return limits_.mixesProtocols &&
               (limits_.mixesNvme || (a.protocol == "NVMe") == (b.protocol == "NVMe"));
    }

    [[nodiscard]] bool canStandIn(const PlannedSpare& spare, const PlannedArray& array) const {
        const DriveFacts& own = factsOf(spare.location);
        const bool isOfUse = std::any_of(
            planning_.volumes.begin(), planning_.volumes.end(), [&](const PlannedVolume& volume) {
                return volume.array == array.id && isRedundant(volume.raidType);
            });
        std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
        bool isLike = true;
        for (const PlannedDrive& drive : array.drives) {
            const DriveFacts& facts = factsOf(drive.location);
            smallest = std::min(smallest, facts.capacityBytes.value_or(0));
            isLike = isLike && facts.blockSizeBytes == own.blockSizeBytes &&
                     (facts.protocol == own.protocol || mayMixProtocols(facts, own)) &&
                     (limits_.mixesMedia || facts.mediaType == own.mediaType);
        }
        return isOfUse && isLike && own.capacityBytes.value_or(0) >= smallest;
    }

    const FamilyCase& planned_;
    ControllerPlanning& planning_;
    const PolicyView& view_;
    const FamilyLimits limits_;
    const FamilyDrives drives_;
    std::vector<Finding> findings_;
    std::map<std::string, std::string> takenBy_; ///< keyword, by location
    bool hasShifted_ = false;                    ///< it is told that numbers are others
    std::set<std::string> spared_;               ///< arrays with a spare of their own
    std::vector<std::size_t> letters_;           ///< of each planned array, 0 for A
    std::map<std::size_t, std::uint64_t> used_;  ///< bytes, by the place of the array
    std::optional<std::uint64_t> strip_;
    std::string readCache_;
};

} // namespace

std::string typedLine(const Family& family, const ControllerSnapshot& controller,
                      std::string line) {
    const std::span<const std::string_view> programs = family.programs();
    const bool isPerc = controller.model.starts_with("PERC");
    const auto own = std::find_if(programs.begin(), programs.end(), [&](std::string_view program) {
        return controller.program.empty() ? program.starts_with("perc") == isPerc
                                          : program == controller.program;
    });
    if (own != programs.end() && line.starts_with(family.name())) {
        line.replace(0, family.name().size(), *own);
    }
    return line;
}

std::vector<Finding> fillFamilyLayout(const FamilyCase& planned, ControllerPlanning& planning) {
    return LayoutMaker(planned, planning).make();
}

} // namespace zolex::companion
