#include "companion/families/ModelTexts.h"
#include "companion/lint/Effects.h"
#include "companion/lint/Entries.h"
#include "companion/lint/FindingSink.h"
#include "companion/lint/Levels.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/RuleGroups.h"
#include "engine/ConfigClasses.h"
#include "foundation/Text.h"
#include "model/Codes.h"
#include "model/TypeTraits.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

std::string levelName(std::int32_t level) {
    const bool isNumber = level != raid_level::volume && level != raid_level::simpleVolume;
    return std::string(isNumber ? "RAID " : "") + raidLevelWord(level);
}

/// "2 drives", "3 or more drives", "6 or more drives, an even number".
std::string countWords(const std::string& possible) {
    constexpr std::string_view even = ", even";
    const std::size_t end = possible.size() - even.size();
    if (possible.size() > even.size() && possible.substr(end) == even) {
        return possible.substr(0, end) + " drives, an even number";
    }
    return possible + " drives";
}

/// Checks the logical drives of one policy.
class LogicalChecks {
  public:
    LogicalChecks(const PolicyView& policy, Models& models, FindingSink& sink)
        : policy_(policy), models_(models), sink_(sink), drives_(plannedDrives(policy)) {}

    void check() {
        checkLevels();
        for (const AskedDrive& drive : drives_) {
            checkCount(drive);
            checkSpans(drive);
        }
        checkStripeSize();
        checkSharedArrays();
        checkUnused();
        checkStriping();
        checkCache();
    }

  private:
    /// The levels that are asked for, each at its place.
    void checkLevels() {
        if (policy_.customLogicalDrives) {
            for (const LogicalView& view : policy_.logicalDrives) {
                checkLevel(view, true);
            }
        } else if (policy_.logicalDefaults) {
            checkLevel(*policy_.logicalDefaults, false);
        }
    }

    void checkLevel(const LogicalView& view, bool isPlanned) {
        const std::int32_t level = view.given.raidLevel;
        if (level == raid_level::notGiven) {
            return;
        }
        if (tellFamilies(view)) {
            return;
        }
        const Verdict wordless =
            judgeKinds(policy_, [&](const Kind& kind) { return !models_.hasCommand(kind, level); });
        if (!isPlanned && wordless.severity()) {
            tellWordless(view, wordless);
            return;
        }
        const Verdict verdict = judgeKinds(
            policy_, [level](const Kind& kind) { return !kind.rules->raidLevels.contains(level); });
        const auto severity = verdict.severity();
        if (!severity) {
            return;
        }
        const EntryView& entry = *verdict.faulty().front();
        const std::string model = entry.given.controllerType.c_str();
        Finding& finding = sink_.add("ZX401", view.level,
                                     levelName(level) + " is not possible on " + verdict.models(),
                                     {model + " has " + levelWords(kindsOf(model).front()),
                                      placeOf(entry) + " names this model"});
        finding.severity = *severity;
        if (!isPlanned) {
            finding.refusedBy = RefusedBy::utility;
        }
    }

    /// Levels that no controller of a family has. True when it is told.
    bool tellFamilies(const LogicalView& view) {
        const std::int32_t level = view.given.raidLevel;
        const Verdict verdict = judgeEntries(policy_, [level](const EntryView& entry) {
            const std::string_view type = entry.given.controllerType.view();
            return !isFamilyType(type)                  ? Answer::notGiven
                   : familyLevels(type).contains(level) ? Answer::fine
                                                        : Answer::faulty;
        });
        const auto severity = verdict.severity();
        if (!severity) {
            return false;
        }
        const EntryView& entry = *verdict.faulty().front();
        const std::string type = entry.given.controllerType.c_str();
        std::vector<std::string> words;
        for (std::int32_t code = raid_level::raid0; code < raid_level::notGiven; ++code) {
            if (familyLevels(type).contains(code)) {
                words.emplace_back(raidLevelWord(code));
            }
        }
        Finding& finding = sink_.add(
            "ZX401", view.level, levelName(level) + " is not possible on t:" + type,
            {"such controllers have " + joinWords(words, ", "), placeOf(entry) + " names them"});
        finding.severity = *severity;
        return true;
    }

    /// The levels that controllers of a type can have at all.
    static CodeSet familyLevels(std::string_view type) {
        return text::equalsNoCase(type, "MD") || text::equalsNoCase(type, "LINUX-MD")
                   ? CodeSet{raid_level::raid0, raid_level::raid1, raid_level::raid1E,
                             raid_level::raid5, raid_level::raid6, raid_level::raid10}
                   : CodeSet{raid_level::raid0, raid_level::raid1,  raid_level::raid5,
                             raid_level::raid6, raid_level::raid10, raid_level::raid50,
                             raid_level::raid60};
    }

    void tellWordless(const LogicalView& view, const Verdict& verdict) {
        const EntryView& entry = *verdict.faulty().front();
        const std::string model = entry.given.controllerType.c_str();
        const Kind kind = kindsOf(model).front();
        sink_
            .add("ZX407", view.level,
                 utilityOf(kind.type) + " has no command for " + levelName(view.given.raidLevel),
                 {"zolex writes ERROR in its place, and the utility refuses the line",
                  model + " has " + levelWords(kind), placeOf(entry) + " names this model"})
            .severity = *verdict.severity();
    }

    /// What an entry's controllers say to so many drives; those without the level are told of
    /// elsewhere.
    std::optional<LevelRefusal> refusalOf(const EntryView& entry, std::int32_t level,
                                          std::size_t drives) {
        std::vector<Kind> kinds = kindsOf(entry.given.controllerType.view());
        if (kinds.empty()) {
            kinds = allKinds();
        }
        std::optional<LevelRefusal> refusal;
        for (const Kind& kind : kinds) {
            const std::int32_t made = Models::levelOf(kind, level, drives);
            if (policy_.customLogicalDrives && made >= 0 &&
                !kind.rules->raidLevels.contains(made)) {
                continue;
            }
            const std::optional<LevelRefusal>& answer = models_.refusal(kind, level, drives);
            if (!answer) {
                return std::nullopt;
            }
            refusal = refusal ? refusal : answer;
        }
        return refusal;
    }

    void checkCount(const AskedDrive& drive) {
        if (drive.array == nullptr) {
            return;
        }
        std::optional<LevelRefusal> refusal;
        std::size_t drives = drive.drives;
        const Verdict verdict = judgeEntries(policy_, [&](const EntryView& entry) {
            const auto answer = drive.array->isAll ? refusalOfRest(entry, drive.level, drives)
                                                   : refusalOf(entry, drive.level, drives);
            refusal = refusal ? refusal : answer;
            return answer ? Answer::faulty : Answer::fine;
        });
        if (const auto severity = verdict.severity(); severity && refusal) {
            tellCount(drive, *refusal, drives, *verdict.faulty().front(), *severity);
        }
    }

    /// The same for what is left of the drives that the entry asks for. Bad drives and default hot
    /// spares make it fewer, so it is refused only when no smaller number would be taken.
    std::optional<LevelRefusal> refusalOfRest(const EntryView& entry, std::int32_t level,
                                              std::size_t& drives) {
        if (entry.given.numberOfDrives <= 0) {
            return std::nullopt;
        }
        const std::size_t most =
            mostRemaining(policy_, static_cast<std::size_t>(entry.given.numberOfDrives));
        std::optional<LevelRefusal> refusal;
        for (std::size_t count = std::min(most, RaidArray::maxDrives); count > 0; --count) {
            const auto answer = refusalOf(entry, level, count);
            if (!answer) {
                return std::nullopt;
            }
            refusal = refusal ? refusal : answer;
        }
        drives = refusal ? most : drives;
        return refusal;
    }

    /// What the entry's model can make of so many drives, where it names one.
    std::vector<std::string> possibleLevels(const EntryView& entry, std::size_t drives) {
        const std::string model = entry.given.controllerType.c_str();
        const std::vector<Kind> kinds = kindsOf(model);
        std::vector<std::string> words;
        for (std::int32_t level = raid_level::raid0; level <= raid_level::volume; ++level) {
            if (!kinds.empty() && kinds.front().rules->raidLevels.contains(level) &&
                !models_.refusal(kinds.front(), level, drives)) {
                words.emplace_back(raidLevelWord(level));
            }
        }
        if (words.empty()) {
            return {"change the list of drives, or the level"};
        }
        return {model + " makes " + joinWords(words, " or ") + " of " + countOf(drives, "drive")};
    }

    void tellCount(const AskedDrive& drive, const LevelRefusal& refusal, std::size_t drives,
                   const EntryView& entry, Severity severity) {
        const Piece& place = drive.view == nullptr ? drive.array->entry->value : drive.view->level;
        const std::string array = drive.array->entry->keyword.text;
        const bool isAll = drive.array->isAll;
        const std::string has = array + (isAll ? " gets " : " has ") + countOf(drives, "drive") +
                                (isAll ? " at most" : "");
        const std::string summary =
            refusal.level < 0 ? "no RAID level fits " + countOf(drives, "drive") + " of " + array
                              : levelName(refusal.level) + " takes " +
                                    countWords(refusal.possible) + ", and " + has;
        Finding& finding = sink_.add("ZX402", place, summary, possibleLevels(entry, drives));
        finding.severity = severity;
        if (drive.view != nullptr) {
            pointTo(finding, drive.array->entry->value,
                    isAll ? "the drives that remain" : countOf(drives, "drive"));
        }
    }

    /// Whether all controllers that the policy names are of MEGACLI.
    [[nodiscard]] bool isFor(Dialect dialect) const {
        const std::vector<Kind> kinds = kindsOfAll(policy_);
        return !kinds.empty() && std::all_of(kinds.begin(), kinds.end(), [&](const Kind& kind) {
            return traitsOf(kind.type).dialect == dialect;
        });
    }
    [[nodiscard]] bool isForMegaCli() const { return isFor(Dialect::megaCli); }

    /// The level of the drive, also where the policy leaves it to the models; -1 when that differs.
    [[nodiscard]] std::int32_t levelOf(const AskedDrive& drive) const {
        if (drive.level != raid_level::notGiven) {
            return drive.level;
        }
        std::optional<std::int32_t> level;
        for (const Kind& kind : kindsOfAll(policy_)) {
            const std::int32_t made = Models::levelOf(kind, drive.level, drive.drives);
            if (level && *level != made) {
                return raid_level::none;
            }
            level = made;
        }
        return level.value_or(raid_level::none);
    }

    void checkSpans(const AskedDrive& drive) {
        // From these numbers on there could be a third span.
        constexpr std::size_t threeSpansOf50 = 9;
        constexpr std::size_t threeSpansOf60 = 12;
        constexpr std::size_t leastOf10 = 4;
        if (drive.array == nullptr || drive.array->isAll) {
            return;
        }
        const std::int32_t level = levelOf(drive);
        const Piece& place = drive.view == nullptr ? drive.array->entry->value : drive.view->level;
        const std::string array = drive.array->entry->keyword.text;
        if (level == raid_level::raid10 && drive.drives > leastOf10 && drive.drives % 2 != 0) {
            const std::string last = driveWords(drive.array->drives.back());
            const bool isRefused = isFor(Dialect::conf);
            Finding& finding = sink_.add(
                "ZX404", place,
                "RAID 10 is made of pairs, and " + array + " has " + countOf(drive.drives, "drive"),
                {isForMegaCli() ? "MEGACLI leaves " + last + " out, without a word"
                 : isRefused ? "the utility refuses the command, exit code 11, when those before "
                               "it are done"
                             : last + " is left out, or the utility refuses it all",
                 isRefused ? "take " + last + " out of " + array : "take it out of " + array});
            if (isRefused) {
                finding.severity = Severity::error;
                finding.refusedBy = RefusedBy::utility;
            }
            pointTo(finding, drive.array->drives.back().piece, "left out");
        }
        const bool isWide = (level == raid_level::raid50 && drive.drives >= threeSpansOf50) ||
                            (level == raid_level::raid60 && drive.drives >= threeSpansOf60);
        if (isWide && drive.drives % 2 == 0 && isForMegaCli()) {
            sink_
                .add("ZX404", place,
                     levelName(level) + " over " + countOf(drive.drives, "drive") +
                         " is made of 2 spans of " + std::to_string(drive.drives / 2),
                     {"policies cannot ask for more spans"})
                .severity = Severity::note;
        }
    }

    void checkStripeSize() {
        if (!policy_.stripeSize) {
            return;
        }
        const std::int32_t code = policy_.stripeSize->code;
        const Verdict verdict = judgeKinds(
            policy_, [code](const Kind& kind) { return !kind.rules->stripeSizes.contains(code); });
        if (const auto severity = verdict.severity()) {
            const EntryView& entry = *verdict.faulty().front();
            const std::string model = entry.given.controllerType.c_str();
            sink_
                .add("ZX403", policy_.stripeSize->entry->value,
                     "a strip size of " + std::string(stripeSizeWord(code)) +
                         " KB is not possible on " + verdict.models(),
                     {model + " takes " + stripeWords(kindsOf(model).front()),
                      placeOf(entry) + " names this model"})
                .severity = *severity;
        }
    }

    void checkSharedArrays() {
        if (!policy_.customLogicalDrives) {
            return;
        }
        const std::vector<LogicalView>& all = policy_.logicalDrives;
        for (std::size_t i = 1; i < all.size(); ++i) {
            const auto isBefore = [&](const LogicalView& each) {
                return each.given.arrayIndex == all[i].given.arrayIndex;
            };
            const auto end = all.begin() + static_cast<std::ptrdiff_t>(i);
            const auto first = std::find_if(all.begin(), end, isBefore);
            const bool isShared = first != end;
            if (isShared && (is5E(first->given.raidLevel) || is5E(all[i].given.raidLevel))) {
                continue; // zolex refuses the file
            }
            checkFurther(isShared ? *first : all.front(), all[i], isShared);
        }
    }

    void checkFurther(const LogicalView& first, const LogicalView& further, bool isShared) {
        const Verdict refused = judgeKinds(policy_, [&](const Kind& kind) {
            return (isShared || kind.type == controller_type::lsiIde) &&
                   models_.furtherDrives(kind) == FurtherDrives::refused;
        });
        const Verdict leftOut = judgeKinds(policy_, [&](const Kind& kind) {
            return isShared && models_.furtherDrives(kind) == FurtherDrives::leftOut;
        });
        const std::string name = further.entry->keyword.text;
        const std::string firstName = first.entry->keyword.text;
        const std::string array = "Array." + first.array.text;
        const auto utility = [](const Verdict& verdict) {
            return utilityOf(
                kindsOf(verdict.faulty().front()->given.controllerType.view()).front().type);
        };
        if (refused.severity()) {
            Finding& finding =
                sink_.add("ZX405", further.array,
                          utility(refused) + " makes one logical drive" +
                              (isShared ? " on an array: " + name + " is the second on " + array
                                        : ": " + name + " is one too many"),
                          {"zolex ends with 11 here, and controllers before are configured"});
            finding.severity = *refused.severity();
            pointTo(finding, first.array, "first here");
        } else if (leftOut.severity()) {
            Finding& finding =
                sink_.add("ZX405", further.array,
                          name + " is not made: " + array + " has " + firstName + " already",
                          {utility(leftOut) + " gets a command for " + firstName +
                               " alone, and zolex ends with 0",
                           "list the drives of " + array + " again as a further array"});
            finding.severity = Severity::warning;
            finding.refusedBy = RefusedBy::nobody;
            pointTo(finding, first.array, "first here");
        }
    }

    void checkUnused() {
        const DocumentPolicy& policy = *policy_.policy;
        if (const DocumentEntry* entry = policy.effective(keyword::maxLogicalDriveSize)) {
            sink_.add("ZX409", entry->keyword, "Max_Logical_Drive_Size has no effect",
                      {"give the size in Logical.<n> or Logical_Defaults"});
        }
        if (policy.effective(keyword::logicalMode) != nullptr) {
            return;
        }
        const auto known = std::find_if(policy_.logicalDrives.begin(), policy_.logicalDrives.end(),
                                        [this](const LogicalView& each) {
                                            return policy_.array(each.given.arrayIndex) != nullptr;
                                        });
        if (known == policy_.logicalDrives.end()) {
            return;
        }
        const std::string last = policy_.logicalDrives.back().entry->keyword.text;
        const std::string first = known->entry->keyword.text;
        sink_.add("ZX410", known->entry->keyword,
                  first + (first == last ? " has" : " to " + last + " have") +
                      " no effect: each array gets one logical drive by defaults",
                  {"add Logical_Mode = CUSTOM"});
    }

    void checkStriping() {
        std::vector<const LogicalView*> told;
        for (const AskedDrive& drive : drives_) {
            const bool isStriped =
                drive.view != nullptr && drive.level == raid_level::raid0 &&
                (drive.array == nullptr || drive.array->isAll || drive.drives > 1);
            if (!isStriped || std::find(told.begin(), told.end(), drive.view) != told.end()) {
                continue;
            }
            told.push_back(drive.view);
            sink_.add("ZX411", drive.view->level,
                      drive.drives > 1 ? "RAID 0 over " + countOf(drive.drives, "drive") +
                                             ": one drive's failure loses all data"
                                       : "RAID 0: one drive's failure loses all data",
                      {"no hot spare helps; take 1, 10 or 5 where the data matters"});
        }
    }

    /// Logical.<n> without a cache word where Logical_Defaults without one is written back.
    void checkCache() {
        const Verdict verdict = judgeKinds(
            policy_, [](const Kind& kind) { return kind.rules->writeCache == write_cache::on; });
        if (!verdict.severity() || !policy_.customLogicalDrives) {
            return;
        }
        for (const LogicalView& view : policy_.logicalDrives) {
            if (!view.cache) {
                sink_.add("ZX412", view.entry->value,
                          view.entry->keyword.text + " gives no write cache: " + verdict.models() +
                              " keeps its own mode",
                          {"that is write-through on most; add :ON for write-back, or :OFF"});
            }
        }
    }

    const PolicyView& policy_;
    Models& models_;
    FindingSink& sink_;
    const std::vector<AskedDrive> drives_;
};

} // namespace

void checkLogicalRules(const PolicyView& policy, Models& models, FindingSink& sink) {
    LogicalChecks(policy, models, sink).check();
    checkEffects(policy, models, sink);
}

void checkGroup4(const PolicyDocument& document, FindingSink& sink) {
    Models models;
    for (const PolicyView& policy : viewPolicies(document)) {
        if (!policy.policy->isQuiet) {
            checkLogicalRules(policy, models, sink);
        }
    }
}

} // namespace zolex::companion
