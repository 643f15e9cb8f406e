#include "companion/binding/DriveChoice.h"

#include "companion/text/Sizes.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

/// A good drive, and what is asked of it.
struct Candidate {
    const MachineDrive* drive = nullptr;
    std::uint64_t bytes = 0;
    std::uint64_t shown = 0; ///< its size as show prints it
};

/// "SSD, 447.1 GB"
std::string driveKind(const Candidate& candidate) {
    const DriveFacts& facts = candidate.drive->facts;
    std::string words = facts.protocol;
    words += words.empty() || facts.mediaType.empty() ? facts.mediaType : " " + facts.mediaType;
    return words + (words.empty() ? "" : ", ") + sizeText(candidate.bytes);
}

/// "32:0 (447.1 GB), 32:1 (447.1 GB) and 3 more"; with their kinds "32:0 (SAS SSD, 447.1 GB)".
std::string driveList(const std::vector<Candidate>& candidates, bool withKinds = false) {
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(candidates.size(), most); ++i) {
        text += (i == 0 ? "" : ", ") + candidates[i].drive->facts.location + " (" +
                (withKinds ? driveKind(candidates[i]) : sizeText(candidates[i].bytes)) + ")";
    }
    return candidates.size() > most
               ? text + " and " + std::to_string(candidates.size() - most) + " more"
               : text;
}

std::string stateWords(const MachineDrive& drive) {
    if (drive.facts.isForeign || drive.facts.state == DriveState::foreign) {
        return "carries arrays of another controller";
    }
    return drive.facts.reportedState.empty() ? "is in no state that is known"
                                             : "is " + drive.facts.reportedState;
}

/// Whether nothing that stands is made of the drive; what is there may be a hot spare.
bool isFreeNow(const Candidate& candidate) {
    const DriveFacts& facts = candidate.drive->facts;
    return candidate.drive->array.empty() &&
           (facts.state == DriveState::free || facts.state == DriveState::hotspare);
}

/// The drives of a controller, and to which entry each has gone.
class DrivePool {
  public:
    DrivePool(const ControllerSnapshot& controller, const DriveUse& use)
        : controller_(controller), use_(use) {
        for (const MachineDrive& drive : controller.drives) {
            if (use.isUsable(drive)) {
                const std::uint64_t bytes = sizeOf(drive);
                good_.push_back({&drive, bytes, shownSize(bytes)});
            }
        }
    }

    [[nodiscard]] const std::vector<MachineDrive>& all() const { return controller_.drives; }
    [[nodiscard]] bool isFree(const Candidate& candidate) const {
        return taken_.find(candidate.drive) == taken_.end();
    }
    [[nodiscard]] std::vector<Candidate> free() const {
        std::vector<Candidate> result;
        std::copy_if(good_.begin(), good_.end(), std::back_inserter(result),
                     [this](const Candidate& candidate) { return isFree(candidate); });
        return result;
    }
    [[nodiscard]] const Candidate* candidate(const MachineDrive& drive) const {
        const auto found =
            std::find_if(good_.begin(), good_.end(),
                         [&drive](const Candidate& each) { return each.drive == &drive; });
        return found == good_.end() ? nullptr : &*found;
    }
    void take(const MachineDrive& drive, const std::string& keyword) {
        taken_.emplace(&drive, keyword);
    }
    /// The entry that has the drive; empty without one.
    [[nodiscard]] std::string ownerOf(const MachineDrive& drive) const {
        const auto found = taken_.find(&drive);
        return found == taken_.end() ? std::string() : found->second;
    }
    [[nodiscard]] std::string whatToDo(const MachineDrive& drive) const {
        return use_.whatToDo ? use_.whatToDo(drive) : "replace it, or name another drive";
    }
    [[nodiscard]] std::size_t mostDrives() const { return use_.mostDrives; }
    [[nodiscard]] std::uint64_t sizeOf(const MachineDrive& drive) const {
        return use_.bytes(drive);
    }

  private:
    const ControllerSnapshot& controller_;
    const DriveUse& use_;
    std::vector<Candidate> good_; ///< in the order of their numbers
    std::map<const MachineDrive*, std::string> taken_;
};

bool fits(const DrivesWish& wish, const DriveFacts& facts, std::uint64_t shown) {
    return (wish.media.empty() || wish.media == facts.mediaType) &&
           (wish.protocol.empty() || wish.protocol == facts.protocol) &&
           (!wish.size || (shown > 0 && wish.size->holds(shown)));
}

/// Whether the two may stand in one array.
bool areAlike(const DrivesWish& wish, const Candidate& a, const Candidate& b) {
    return a.drive->facts.mediaType == b.drive->facts.mediaType &&
           a.drive->facts.protocol == b.drive->facts.protocol &&
           (wish.anySize || a.shown == b.shown);
}

class Chooser {
  public:
    Chooser(const KindSection& section, const ControllerSnapshot& controller, const DriveUse& use)
        : section_(section), pool_(controller, use) {}

    DriveChoice run() {
        for (const KindSection::Drives& drives : section_.drives) {
            if (drives.wish.form != KindForm::kind) {
                if (isTooMany(*drives.entry, drives.wish.names.size())) {
                    continue;
                }
                choice_.arrays[drives.letter] =
                    named(*drives.entry, drives.wish.form, drives.wish.names);
            }
        }
        if (section_.spares && section_.spares->form != KindForm::kind) {
            choice_.spares =
                named(*section_.sparesEntry, section_.spares->form, section_.spares->names);
        }
        forEachOf(false, [this](const KindSection::Drives& drives) { counted(drives); });
        if (section_.spares && section_.spares->form == KindForm::kind) {
            chooseSpares();
        }
        forEachOf(true, [this](const KindSection::Drives& drives) { counted(drives); });
        if (choice_.faults.empty()) {
            checkCovers();
        }
        return std::move(choice_);
    }

  private:
    template <typename Visit>
    void forEachOf(bool rest, const Visit& visit) {
        for (const KindSection::Drives& drives : section_.drives) {
            const bool isRest = drives.wish.amount == DrivesWish::Amount::rest;
            if (drives.wish.form == KindForm::kind && isRest == rest) {
                visit(drives);
            }
        }
    }

    void add(const KindFileEntry& entry, const KindWord& word, std::string what, std::string help) {
        choice_.faults.push_back({"ZX313", entry.keyword.text,
                                  static_cast<std::int32_t>(entry.line) + 1, word.column,
                                  word.endColumn, std::move(what), std::move(help)});
    }
    void addAtValue(const KindFileEntry& entry, std::string what, std::string help) {
        add(entry, {entry.value, entry.valueColumn, entry.endColumn()}, std::move(what),
            std::move(help));
    }

    // Drives by slot or serial number.

    std::vector<ChosenDrive> named(const KindFileEntry& entry, KindForm form,
                                   const std::vector<KindWord>& names) {
        std::vector<ChosenDrive> chosen;
        for (const KindWord& name : names) {
            const MachineDrive* const drive = find(entry, form, name);
            if (drive == nullptr) {
                continue;
            }
            pool_.take(*drive, entry.keyword.text);
            chosen.push_back(
                {drive, form == KindForm::slots ? "by-slot" : "by-serial",
                 form == KindForm::slots ? "slot " + name.text : "serial number " + name.text});
        }
        return chosen;
    }

    /// The good drive of this name that no entry has; null after a fault.
    const MachineDrive* find(const KindFileEntry& entry, KindForm form, const KindWord& name) {
        const std::string said =
            form == KindForm::slots ? "at " + name.text : "with serial number " + name.text;
        const MachineDrive* found = nullptr;
        for (const MachineDrive& drive : pool_.all()) {
            const std::string& own =
                form == KindForm::slots ? drive.facts.location : drive.facts.serialNumber;
            if (!text::equalsNoCase(own, name.text)) {
                continue;
            }
            if (found != nullptr) {
                add(entry, name, "there are two drives " + said,
                    "name them by slot: " + found->facts.location + "," + drive.facts.location);
                return nullptr;
            }
            found = &drive;
        }
        if (found == nullptr) {
            add(entry, name, "there is no drive " + said,
                form == KindForm::slots ? "zolexctl show lists the slots"
                                        : "zolexctl show --as json lists the serial numbers");
            return nullptr;
        }
        if (const std::string owner = pool_.ownerOf(*found); !owner.empty()) {
            add(entry, name, found->facts.location + " is in " + owner + " already",
                "name each drive once");
            return nullptr;
        }
        if (pool_.candidate(*found) == nullptr) {
            tellUnusable(entry, name, *found);
            return nullptr;
        }
        return found;
    }

    void tellUnusable(const KindFileEntry& entry, const KindWord& name, const MachineDrive& drive) {
        if (!drive.policyNumber) {
            add(entry, name,
                drive.facts.location + " " + stateWords(drive) +
                    " and has no number: policies cannot name it",
                pool_.whatToDo(drive));
        } else {
            add(entry, name, drive.facts.location + " " + stateWords(drive) + ": no good drive",
                pool_.whatToDo(drive));
        }
    }

    // Drives by kind.

    /// Those that fit, in the order that is asked for.
    [[nodiscard]] std::vector<Candidate> fitting(const DrivesWish& wish,
                                                 std::vector<Candidate> candidates) const {
        std::erase_if(candidates, [&wish](const Candidate& candidate) {
            return !fits(wish, candidate.drive->facts, candidate.shown);
        });
        if (wish.order == DrivesWish::Order::smallest) {
            std::stable_sort(
                candidates.begin(), candidates.end(),
                [](const Candidate& a, const Candidate& b) { return a.shown < b.shown; });
        } else if (wish.order == DrivesWish::Order::largest) {
            std::stable_sort(
                candidates.begin(), candidates.end(),
                [](const Candidate& a, const Candidate& b) { return a.shown > b.shown; });
        }
        return candidates;
    }

    /// The drives of the first one's kind of which there are enough; none when there are not.
    static std::vector<Candidate> alike(const DrivesWish& wish,
                                        const std::vector<Candidate>& fitting) {
        const std::size_t least =
            wish.amount == DrivesWish::Amount::count ? static_cast<std::size_t>(wish.count) : 1;
        std::vector<Candidate> leaders; // one of each kind that has too few
        for (const Candidate& leader : fitting) {
            const auto isLike = [&](const Candidate& other) {
                return areAlike(wish, leader, other);
            };
            if (std::any_of(leaders.begin(), leaders.end(), isLike)) {
                continue;
            }
            std::vector<Candidate> kind;
            std::copy_if(fitting.begin(), fitting.end(), std::back_inserter(kind), isLike);
            if (kind.size() >= least) {
                if (wish.amount == DrivesWish::Amount::count) {
                    kind.resize(least);
                }
                return kind;
            }
            leaders.push_back(leader);
        }
        return {};
    }

    /// Tells it, too.
    bool isTooMany(const KindFileEntry& entry, std::size_t count) {
        if (count > pool_.mostDrives()) {
            const std::string most = std::to_string(pool_.mostDrives());
            addAtValue(entry,
                       "these are " + std::to_string(count) + " drives, and an array holds " + most,
                       "write a number: " + most + " x ...");
        }
        return count > pool_.mostDrives();
    }

    void counted(const KindSection::Drives& drives) {
        const DrivesWish& wish = drives.wish;
        const std::vector<Candidate> candidates = fitting(wish, pool_.free());
        std::vector<Candidate> kind = alike(wish, candidates);
        if (kind.empty()) {
            tellTooFew(*drives.entry, wish, candidates);
            return;
        }
        if (wish.amount == DrivesWish::Amount::all && kind.size() < candidates.size()) {
            tellMixed(*drives.entry, wish, candidates);
            return;
        }
        if (isTooMany(*drives.entry, kind.size())) {
            return;
        }
        std::vector<ChosenDrive>& chosen = choice_.arrays[drives.letter];
        const std::string code = wish.amount == DrivesWish::Amount::rest ? "rest" : "by-kind";
        for (std::size_t i = 0; i < kind.size(); ++i) {
            pool_.take(*kind[i].drive, drives.entry->keyword.text);
            chosen.push_back({kind[i].drive, code,
                              driveKind(kind[i]) + ": " + placeWords(wish, i, kind.size())});
        }
    }

    /// "the first of 2", "number 2 of 2", "the only one".
    static std::string placeWords(const DrivesWish& wish, std::size_t index, std::size_t count) {
        const std::string of = wish.amount == DrivesWish::Amount::rest     ? " that are left"
                               : wish.order == DrivesWish::Order::smallest ? " from the smallest"
                               : wish.order == DrivesWish::Order::largest  ? " from the largest"
                                                                           : "";
        return "drive " + std::to_string(index + 1) + " of " + std::to_string(count) + of;
    }

    void tellTooFew(const KindFileEntry& entry, const DrivesWish& wish,
                    const std::vector<Candidate>& candidates) {
        const std::string kind = wish.kindWords();
        if (wish.amount != DrivesWish::Amount::count) {
            addAtValue(entry,
                       wish.amount == DrivesWish::Amount::rest
                           ? "nothing is left of what is wanted: " + kind
                           : "there are none of what is wanted: " + kind,
                       helpFor(wish));
            return;
        }
        const std::string wanted = std::to_string(wish.count) + " " + kind;
        const bool isOne = wish.count == 1;
        const bool areMixed = candidates.size() >= static_cast<std::size_t>(wish.count);
        if (areMixed) {
            addAtValue(entry,
                       wanted +
                           (wish.anySize ? " of one kind are wanted; there are "
                                         : " of one size and kind are wanted; there are ") +
                           driveList(candidates, true),
                       wish.anySize ? "say SSD or HDD, and a protocol"
                                    : "add any size, or say SSD or HDD and a protocol");
            return;
        }
        addAtValue(entry,
                   wanted + (isOne ? " is wanted; there is " : " are wanted; there ") +
                       (candidates.empty()
                            ? (isOne ? "none" : "are none")
                            : (isOne                    ? ""
                               : candidates.size() == 1 ? "is "
                                                        : "are ") +
                                  std::to_string(candidates.size()) + ": " + driveList(candidates)),
                   helpFor(wish));
    }

    void tellMixed(const KindFileEntry& entry, const DrivesWish& wish,
                   const std::vector<Candidate>& candidates) {
        addAtValue(entry,
                   std::string(wish.anySize ? "all these are of different kinds: "
                                            : "all these are of different sizes or kinds: ") +
                       driveList(candidates, true),
                   wish.anySize ? "say SSD or HDD, and a protocol"
                                : "add any size, or say SSD or HDD and a protocol");
    }

    /// Which drives would fit and cannot be had.
    [[nodiscard]] std::string helpFor(const DrivesWish& wish) const {
        for (const MachineDrive& drive : pool_.all()) {
            if (!fits(wish, drive.facts, shownSize(pool_.sizeOf(drive)))) {
                continue;
            }
            if (pool_.candidate(drive) == nullptr) {
                return drive.facts.location + " " + stateWords(drive) + " and is not taken";
            }
            if (const std::string owner = pool_.ownerOf(drive); !owner.empty()) {
                return drive.facts.location + " goes to " + owner;
            }
        }
        return "zolexctl show lists the drives";
    }

    // Hot spares.

    /// What a hot spare must have to stand in for a member of an array.
    struct Need {
        std::uint64_t bytes = 0;                             ///< of the smallest member
        std::set<std::pair<std::string, std::string>> kinds; ///< media types and protocols
    };

    [[nodiscard]] Need needOf(const std::vector<const MachineDrive*>& members) const {
        Need need;
        need.bytes = members.empty() ? 0 : std::numeric_limits<std::uint64_t>::max();
        for (const MachineDrive* drive : members) {
            need.bytes = std::min(need.bytes, pool_.sizeOf(*drive));
            need.kinds.emplace(drive->facts.mediaType, drive->facts.protocol);
        }
        return need;
    }

    [[nodiscard]] static bool covers(const Need& need, const DriveFacts& facts,
                                     std::uint64_t bytes) {
        return bytes >= need.bytes &&
               std::all_of(need.kinds.begin(), need.kinds.end(), [&facts](const auto& kind) {
                   return kind.first == facts.mediaType && kind.second == facts.protocol;
               });
    }

    /// The members of each array as far as they are chosen; of a rest, those that it would have
    /// without hot spares.
    [[nodiscard]] std::map<char, std::vector<const MachineDrive*>> membersBefore() {
        std::map<char, std::vector<const MachineDrive*>> members = membersNow();
        std::vector<Candidate> left = pool_.free();
        forEachOf(true, [&](const KindSection::Drives& drives) {
            for (const Candidate& candidate : alike(drives.wish, fitting(drives.wish, left))) {
                members[drives.letter].push_back(candidate.drive);
                std::erase_if(left, [&candidate](const Candidate& other) {
                    return other.drive == candidate.drive;
                });
            }
        });
        return members;
    }

    [[nodiscard]] std::map<char, std::vector<const MachineDrive*>> membersNow() const {
        std::map<char, std::vector<const MachineDrive*>> members;
        for (const auto& [letter, drives] : choice_.arrays) {
            for (const ChosenDrive& chosen : drives) {
                members[letter].push_back(chosen.drive);
            }
        }
        return members;
    }

    /// Letters of the arrays that a group covers.
    [[nodiscard]] std::string lettersOf(const SpareGroup& group) const {
        std::string letters;
        for (const KindWord& word : group.covers) {
            letters += word.text;
        }
        for (const KindSection::Drives& drives : section_.drives) {
            letters += group.covers.empty() ? std::string(1, drives.letter) : "";
        }
        return letters;
    }

    static std::string arrayWords(const std::string& letters) {
        std::string words;
        for (const char letter : letters) {
            words += (words.empty() ? "" : ",") + std::string(1, letter);
        }
        return words;
    }

    void chooseSpares() {
        // What an array lacks is told already; which spare it needs cannot be said.
        if (!choice_.faults.empty()) {
            return;
        }
        const auto members = membersBefore();
        for (const SpareGroup& group : section_.spares->groups) {
            const std::string letters = lettersOf(group);
            const Need need = needOfArrays(members, letters);
            for (std::int32_t i = 0; i < group.count; ++i) {
                if (!chooseSpare(need, letters, group.count, i)) {
                    return;
                }
            }
            groups_.push_back({letters, choice_.spares.size()});
        }
    }

    /// The largest of what the arrays need each.
    [[nodiscard]] Need needOfArrays(const std::map<char, std::vector<const MachineDrive*>>& members,
                                    const std::string& letters) const {
        Need need;
        for (const char letter : letters) {
            const auto found = members.find(letter);
            if (found == members.end()) {
                continue;
            }
            const Need own = needOf(found->second);
            need.bytes = std::max(need.bytes, own.bytes);
            need.kinds.insert(own.kinds.begin(), own.kinds.end());
        }
        return need;
    }

    /// The largest drive that covers, of equal ones the last.
    bool chooseSpare(const Need& need, const std::string& letters, std::int32_t count,
                     std::int32_t found) {
        const std::vector<Candidate> candidates = pool_.free();
        const Candidate* best = nullptr;
        for (const Candidate& candidate : candidates) {
            if (covers(need, candidate.drive->facts, candidate.bytes) &&
                (best == nullptr || candidate.bytes >= best->bytes)) {
                best = &candidate;
            }
        }
        const KindFileEntry& entry = *section_.sparesEntry;
        if (best == nullptr) {
            std::vector<Candidate> freeNow;
            std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(freeNow),
                         isFreeNow);
            addAtValue(entry,
                       std::to_string(count) + (count == 1 ? " hot spare" : " hot spares") +
                           " for " + arrayWords(letters) + " " + (count == 1 ? "is" : "are") +
                           " wanted, " + needWords(need) +
                           (found == 0 ? "" : "; found so far: " + std::to_string(found)) +
                           "; free " + (freeNow.empty() ? "is none" : "are " + driveList(freeNow)),
                       need.kinds.size() > 1
                           ? "write a number for each kind: 1 covering A and 1 covering B"
                           : "take fewer drives into the arrays, or fewer hot spares");
            return false;
        }
        pool_.take(*best->drive, entry.keyword.text);
        choice_.spares.push_back(
            {best->drive, "spare",
             driveKind(*best) + ": the largest, last that covers " + arrayWords(letters)});
        return true;
    }

    static std::string needWords(const Need& need) {
        std::string kinds;
        for (const auto& [media, protocol] : need.kinds) {
            std::string kind = protocol;
            kind.append(protocol.empty() || media.empty() ? "" : " ").append(media);
            kinds.append(kinds.empty() || kind.empty() ? "" : " and ").append(kind);
        }
        return (kinds.empty() ? std::string() : kinds + " ") + "of " + sizeText(need.bytes) +
               " or more";
    }

    /// What became the rest may be larger than what it was without hot spares.
    void checkCovers() {
        const auto members = membersNow();
        std::size_t first = 0;
        for (const auto& [letters, end] : groups_) {
            const Need need = needOfArrays(members, letters);
            for (; first < end; ++first) {
                const MachineDrive& drive = *choice_.spares[first].drive;
                if (!covers(need, drive.facts, pool_.sizeOf(drive))) {
                    addAtValue(*section_.sparesEntry,
                               drive.facts.location +
                                   " would be the hot spare and does not cover " +
                                   arrayWords(letters) + ", " + needWords(need),
                               "name the hot spare: Spares = slots " + drive.facts.location);
                    return;
                }
            }
        }
    }

    const KindSection& section_;
    DrivePool pool_;
    DriveChoice choice_;
    /// Letters of each group of hot spares, and how many there are up to its end.
    std::vector<std::pair<std::string, std::size_t>> groups_;
};

} // namespace

DriveChoice chooseDrives(const KindSection& section, const ControllerSnapshot& controller,
                         const DriveUse& use) {
    return Chooser(section, controller, use).run();
}

} // namespace zolex::companion
