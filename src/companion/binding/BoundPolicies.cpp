#include "companion/binding/BoundPolicies.h"

#include "companion/binding/DriveChoice.h"
#include "companion/binding/FamilyTypes.h"
#include "companion/binding/KindEntries.h"
#include "companion/binding/KindFile.h"
#include "companion/facts/Bytes.h"
#include "companion/rewriting/PlanComparison.h"
#include "engine/ConfigClasses.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
#include "policies/PolicyFile.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace zolex::companion {

namespace {

bool isSpares(const KindFileEntry& entry) {
    return text::equalsNoCase(entry.keyword.text, "Spares");
}

bool isDrives(const KindFileEntry& entry) {
    return text::lower(entry.keyword.text.front()) == 'd';
}

std::string logicalKeyword(std::int32_t number) {
    return keyword::logical + std::to_string(number);
}

/// The number behind the last `Logical.<n>` that zolex looks up.
std::int32_t nextLogical(const KindFileSection& section) {
    for (std::int32_t n = keyword::lastLogical; n > 0; --n) {
        if (section.find(logicalKeyword(n)) != nullptr) {
            return n + 1;
        }
    }
    return 1;
}

/// What stands in the place of entries that are not bound, by the index of their line.
void putAside(const KindFileSection& section, std::map<std::size_t, std::string>& lines) {
    std::int32_t logical = nextLogical(section);
    for (const KindFileEntry& entry : section.entries) {
        if (!isKindKeyword(entry.keyword.text)) {
            continue;
        }
        if (isSpansKeyword(entry.keyword.text)) {
            lines[entry.line] = ";";
            continue;
        }
        const std::string letter(1, entry.letter());
        lines[entry.line] = isSpares(entry) ? std::string(keyword::hotspares) + " = 999"
                            : isDrives(entry)
                                ? std::string(keyword::array) + letter + " = 999"
                                : logicalKeyword(logical++) + " = " + letter + ":FILL:AUTO";
    }
}

std::string pairOf(const MachineDrive& drive) {
    const DrivePosition at = drive.policyPosition.value_or(DrivePosition());
    return std::to_string(at.channel) + ":" + std::to_string(at.id);
}

std::string pairsOf(const std::vector<ChosenDrive>& drives) {
    std::string text;
    for (const ChosenDrive& chosen : drives) {
        text += (text.empty() ? "" : ",") + pairOf(*chosen.drive);
    }
    return text;
}

std::vector<BoundDrive> boundDrives(const std::vector<ChosenDrive>& drives) {
    std::vector<BoundDrive> bound;
    bound.reserve(drives.size());
    for (const ChosenDrive& chosen : drives) {
        bound.push_back({chosen.drive->facts.location, chosen.code, chosen.why});
    }
    return bound;
}

/// How many bytes the drive is known to have.
std::uint64_t bytesOf(const MachineDrive& drive, const RAIDController& record) {
    if (drive.facts.capacityBytes) {
        return *drive.facts.capacityBytes;
    }
    const DrivePosition at = drive.policyPosition.value_or(DrivePosition());
    const std::int32_t mb = record.size(at.channel, at.id);
    return mb < 1 ? 0 : static_cast<std::uint64_t>(mb) * bytesOfMb;
}

/// Whether the planner of zolex takes the drive, and it is good.
bool isGood(const MachineDrive& drive, const RAIDController& record, const BindingTerms& terms) {
    if (!drive.policyNumber || !drive.policyPosition) {
        return false;
    }
    const DriveFacts& facts = drive.facts;
    const bool isGone = facts.state == DriveState::failed || facts.state == DriveState::missing;
    const bool isMember = isGone && !drive.array.empty();
    if (terms.failedMembersStay && isMember) {
        return true;
    }
    const bool doesItsWork = facts.state == DriveState::free || facts.state == DriveState::member ||
                             facts.state == DriveState::hotspare ||
                             facts.state == DriveState::rebuilding;
    return doesItsWork && facts.health != Health::critical && !facts.isForeign &&
           record.usable(*drive.policyPosition) &&
           record.size(drive.policyPosition->channel, drive.policyPosition->id) > 0;
}

/// Binds one section of a file.
class Binder {
  public:
    Binder(const KindFile& file, std::size_t section, const ControllerSnapshot& controller,
           const RAIDController& record, const BindingTerms& terms)
        : file_(file), section_(file.sections[section]), controller_(controller), record_(record) {
        kinds_ = readKindSection(section_, result_.faults);
        if (result_.faults.empty()) {
            const DriveUse use{
                [&](const MachineDrive& drive) { return isGood(drive, record, terms); },
                [&](const MachineDrive& drive) { return bytesOf(drive, record); }};
            choice_ = chooseDrives(kinds_, controller, use);
            result_.faults = std::move(choice_.faults);
        }
        for (std::size_t i = 0; i < file.sections.size(); ++i) {
            if (i != section || !result_.faults.empty()) {
                putAside(file.sections[i], lines_);
            }
        }
    }

    BoundPolicies run() {
        if (kinds_.spansEntry != nullptr) {
            fail("ZX313", *kinds_.spansEntry, kinds_.spansEntry->keyword,
                 controller_.model + " makes its spans by itself",
                 "take the line out, or have a policy of its own for this controller");
        }
        if (result_.faults.empty()) {
            bindDrives();
            bindSpares();
            bindLevels();
        }
        write();
        if (result_.faults.empty()) {
            checkText();
        }
        std::stable_sort(result_.bindings.begin(), result_.bindings.end(),
                         [](const Binding& a, const Binding& b) { return a.line < b.line; });
        std::stable_sort(result_.faults.begin(), result_.faults.end(),
                         [](const BindingFault& a, const BindingFault& b) {
                             return std::pair(a.line, a.column) < std::pair(b.line, b.column);
                         });
        return std::move(result_);
    }

  private:
    void bind(const KindFileEntry& entry, std::string becomes,
              const std::vector<ChosenDrive>& drives, std::string why = {}) {
        lines_[entry.line] = becomes;
        result_.bindings.push_back({entry.keyword.text, static_cast<std::int32_t>(entry.line) + 1,
                                    entry.value, std::move(becomes), boundDrives(drives),
                                    std::move(why)});
    }

    void bindDrives() {
        for (const KindSection::Drives& drives : kinds_.drives) {
            const std::vector<ChosenDrive>& chosen = choice_.arrays[drives.letter];
            bind(*drives.entry,
                 keyword::array + std::string(1, drives.letter) + " = " + pairsOf(chosen), chosen);
        }
        if (!kinds_.drives.empty() && section_.find(keyword::arrayMode) == nullptr) {
            insert(std::string(keyword::arrayMode) + " = CUSTOM", *kinds_.drives.front().entry);
        }
    }

    /// Without a word on hot spares there are none: a default one could be a drive of an array.
    void bindSpares() {
        if (kinds_.sparesEntry != nullptr) {
            bind(*kinds_.sparesEntry,
                 std::string(keyword::hotspares) + " = " + pairsOf(choice_.spares), choice_.spares);
            result_.uncovered = uncovered();
        } else if (!kinds_.drives.empty()) {
            insert(std::string(keyword::arrayDefaults) + " = 0%:0", *kinds_.drives.front().entry);
        }
    }

    [[nodiscard]] std::string uncovered() const {
        std::string letters;
        const auto coversIt = [](const SpareGroup& group, char letter) {
            return group.covers.empty() ||
                   std::any_of(group.covers.begin(), group.covers.end(),
                               [letter](const KindWord& word) { return word.text[0] == letter; });
        };
        const std::vector<SpareGroup>& groups = kinds_.spares->groups;
        for (const KindSection::Drives& drives : kinds_.drives) {
            const bool isCovered =
                groups.empty() ||
                std::any_of(groups.begin(), groups.end(), [&](const SpareGroup& group) {
                    return coversIt(group, drives.letter);
                });
            letters += isCovered ? std::string() : std::string(1, drives.letter);
        }
        return letters;
    }

    void bindLevels() {
        if (kinds_.levels.empty()) {
            return;
        }
        const KindFileEntry& first = *kinds_.levels.front().entry;
        if (section_.find(keyword::logicalMode) == nullptr) {
            insert(std::string(keyword::logicalMode) + " = CUSTOM", first);
        }
        std::int32_t number = nextLogical(section_);
        const bool isAlone = number == 1; // arrays without a level need their logical drive, too
        for (const KindSection::Drives& drives : kinds_.drives) {
            const auto level = std::find_if(
                kinds_.levels.begin(), kinds_.levels.end(),
                [&](const KindSection::Level& row) { return row.letter == drives.letter; });
            if (level != kinds_.levels.end()) {
                bindLevel(*level, number++);
            } else if (isAlone) {
                insert(logicalLine(number++, drives.letter, defaultLevel()), first);
            }
        }
        if (number - 1 > keyword::lastLogical) {
            fail("ZX312", first, first.keyword,
                 "this makes more than " + std::to_string(keyword::lastLogical) + " logical drives",
                 "make fewer Logical.<n>");
        }
    }

    void bindLevel(const KindSection::Level& level, std::int32_t number) {
        std::string why;
        for (const LevelWish::Choice& choice : level.wish.choices) {
            const std::string against = objection(choice, choice_.arrays[level.letter]);
            if (against.empty()) {
                bind(*level.entry, logicalLine(number, level.letter, choice.word.text), {}, why);
                return;
            }
            why += (why.empty() ? "" : "; ") + against;
        }
        const LevelWish::Choice& first = level.wish.choices.front();
        const LevelWish::Choice& last = level.wish.choices.back();
        fail("ZX313", *level.entry, {"", first.word.column, last.word.endColumn},
             (level.wish.choices.size() == 1 ? "this level is not possible: "
                                             : "none of these levels is possible: ") +
                 why,
             "add another level, or change the number of drives of Drives." +
                 std::string(1, level.letter));
    }

    /// Why the controller does not take the level for these drives; empty when it does.
    [[nodiscard]] std::string objection(const LevelWish::Choice& choice,
                                        const std::vector<ChosenDrive>& drives) const {
        Policy policy;
        policy.name = "Policy.level";
        policy.customArrays = true;
        policy.customLogicalDrives = true;
        policy.arrayDefaults.hotspareCount = 0;
        RaidArray array;
        for (const ChosenDrive& chosen : drives) {
            array.addDrive(chosen.drive->policyPosition.value_or(DrivePosition()));
        }
        policy.arrays.push_back(std::move(array));
        LogicalSpecification logical;
        logical.arrayIndex = 0;
        logical.raidLevel = choice.level;
        policy.logicalDrives.push_back(logical);
        SilentReport silent;
        const ControllerPlan plan =
            planByPolicy(record_, controller_.number, policy, {.reasons = false}, silent);
        const std::string level = "RAID " + choice.word.text;
        if (plan.fault && plan.fault->kind == FaultKind::planRaidLevelUnsupported) {
            return level + " is not of " + controller_.model + ", which has " +
                   plan.fault->possible.c_str();
        }
        if (plan.fault && plan.fault->kind == FaultKind::planRaidLevelDriveCount) {
            return level + " takes " + plan.fault->possible.c_str() +
                   " drives, and the array has " + std::to_string(drives.size());
        }
        return plan.outcome == Outcome::tooFewDrives ? "the controller has too few drives"
               : plan.fault                          ? faultLine(*plan.fault)
                                                     : "";
    }

    /// The fields of Logical_Defaults; empty without it.
    [[nodiscard]] std::vector<std::string_view> defaultFields() const {
        const KindFileEntry* const entry = section_.find(keyword::logicalDefaults);
        return entry == nullptr ? std::vector<std::string_view>()
                                : policy_value::splitAndTrim(entry->value, ':');
    }

    [[nodiscard]] std::string defaultLevel() const {
        const auto fields = defaultFields();
        return fields.size() > 1 ? std::string(fields[1]) : "AUTO";
    }

    /// A logical drive of size and write cache as automatic ones have them.
    [[nodiscard]] std::string logicalLine(std::int32_t number, char letter,
                                          const std::string& level) const {
        const auto fields = defaultFields();
        const ConfigDefaults* const rules = rulesFor(record_.type(), record_.subtype());
        std::string line = logicalKeyword(number) + " = " + letter + ":" +
                           (fields.empty() ? "FILL" : std::string(fields[0])) + ":" + level;
        if (fields.size() > 2) {
            line += ":" + std::string(fields[2]);
        } else if (rules != nullptr && rules->writeCache == write_cache::on) {
            line += ":ON";
        }
        return line;
    }

    /// A line of its own, before the one of an entry.
    void insert(std::string line, const KindFileEntry& entry) {
        inserted_[entry.line].push_back(std::move(line));
    }

    void fail(const char* code, const KindFileEntry& entry, const KindWord& word, std::string what,
              std::string help) {
        result_.faults.push_back({code, entry.keyword.text,
                                  static_cast<std::int32_t>(entry.line) + 1, word.column,
                                  word.endColumn, std::move(what), std::move(help)});
    }

    void write() {
        for (std::size_t i = 0; i < file_.lines.size(); ++i) {
            const std::string_view end = file_.lineEnds[i];
            if (const auto found = inserted_.find(i); found != inserted_.end()) {
                for (const std::string& line : found->second) {
                    addLine(line, end.empty() ? "\n" : end, i);
                }
            }
            const auto changed = lines_.find(i);
            addLine(changed == lines_.end() ? file_.lines[i] : changed->second, end, i);
        }
    }

    void addLine(std::string_view line, std::string_view end, std::size_t source) {
        result_.text.append(line).append(end);
        result_.lineOf.push_back(static_cast<std::int32_t>(source) + 1);
    }

    /// What else of the file zolex does not take, or of what it has become.
    void checkText() {
        SilentReport silent;
        const PolicyFile read = readPolicies(withoutFamilyTypes(result_.text),
                                             ControllerCatalogue(), PolicyOptions(), silent);
        if (read.policies) {
            return;
        }
        BindingFault fault;
        fault.code = "ZX312";
        if (!read.faults.empty()) {
            const Fault& found = read.faults.front();
            const auto line = static_cast<std::size_t>(std::max(found.place.line, 1)) - 1;
            fault.line = line < result_.lineOf.size() ? result_.lineOf[line] : 1;
            fault.what = "zolex refuses what these policies become: " + faultLine(found);
        } else {
            fault.line = 1;
            fault.what = "zolex refuses what these policies become";
        }
        fault.column = 1;
        fault.endColumn = 1;
        fault.help = "zolexctl check tells all faults of the file";
        result_.faults.push_back(std::move(fault));
    }

    const KindFile& file_;
    const KindFileSection& section_;
    const ControllerSnapshot& controller_;
    const RAIDController& record_;
    KindSection kinds_;
    DriveChoice choice_;
    std::map<std::size_t, std::string> lines_; ///< in the place of others, by index
    std::map<std::size_t, std::vector<std::string>> inserted_;
    BoundPolicies result_;
};

} // namespace

bool hasKindEntries(std::string_view text) {
    const KindFile file = readKindFile(text);
    return std::any_of(file.sections.begin(), file.sections.end(),
                       [](const KindFileSection& section) { return section.hasKindEntries(); });
}

std::string withoutKindEntries(std::string_view text) {
    const KindFile file = readKindFile(text);
    std::map<std::size_t, std::string> lines;
    for (const KindFileSection& section : file.sections) {
        putAside(section, lines);
    }
    std::string result;
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        const auto found = lines.find(i);
        result.append(found == lines.end() ? file.lines[i] : found->second)
            .append(file.lineEnds[i]);
    }
    return result;
}

std::vector<BindingFault> kindEntryFaults(std::string_view text) {
    const KindFile file = readKindFile(text);
    std::vector<BindingFault> faults;
    for (const KindFileSection& section : file.sections) {
        if (section.hasKindEntries()) {
            static_cast<void>(readKindSection(section, faults));
        }
    }
    std::stable_sort(faults.begin(), faults.end(),
                     [](const BindingFault& a, const BindingFault& b) {
                         return std::pair(a.line, a.column) < std::pair(b.line, b.column);
                     });
    return faults;
}

BoundPolicies bindPolicy(std::string_view text, std::size_t policy,
                         const ControllerSnapshot& controller, const RAIDController& record,
                         const BindingTerms& terms) {
    const KindFile file = readKindFile(text);
    if (policy >= file.sections.size()) {
        BoundPolicies none;
        none.faults.push_back({"ZX312", "", 1, 1, 1,
                               "there is no policy " + std::to_string(policy + 1) + " in the file",
                               ""});
        return none;
    }
    return Binder(file, policy, controller, record, terms).run();
}

} // namespace zolex::companion
