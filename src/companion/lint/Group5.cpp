#include "companion/lint/Entries.h"
#include "companion/lint/Levels.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/RuleGroups.h"
#include "model/Codes.h"
#include "policies/Policy.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// How many automatic hot spares the least of an entry's controllers gets; nothing when the entry
/// does not tell what it takes to know.
std::optional<std::int32_t> automaticCount(const PolicyView& policy, const EntryView& entry) {
    const std::int32_t drives = entry.given.numberOfDrives;
    if (drives <= 0) {
        return std::nullopt;
    }
    if (policy.arrayDefaults) {
        return policy.arrayDefaults->given.hotspareCount;
    }
    if (policy.isGenerated()) {
        return 0;
    }
    std::optional<std::int32_t> least;
    for (const Kind& kind : kindsOf(entry.given.controllerType.view())) {
        const std::int32_t count = kind.rules->defaultHotspareCount(drives);
        least = least ? std::min(*least, count) : count;
    }
    return least;
}

/// The drives that the arrays of a policy list, each once.
struct Listed {
    std::vector<std::int32_t> numbers;
    std::size_t positions = 0;

    [[nodiscard]] bool has(std::int32_t number) const {
        return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
    }
    /// Of `drives` drives. A number and a position may be the same drive.
    [[nodiscard]] std::size_t countUpTo(std::int32_t drives) const {
        const auto counted =
            std::count_if(numbers.begin(), numbers.end(),
                          [drives](std::int32_t number) { return number <= drives; });
        return std::max(static_cast<std::size_t>(counted), positions);
    }
};

Listed listedDrives(const PolicyView& policy) {
    Listed listed;
    std::vector<const DriveView*> positions;
    for (const DriveListView& array : policy.countingArrays()) {
        for (const DriveView& drive : array.drives) {
            if (drive.number > 0) {
                if (!listed.has(drive.number)) {
                    listed.numbers.push_back(drive.number);
                }
            } else if (std::none_of(positions.begin(), positions.end(), [&](const DriveView* each) {
                           return each->isSameDrive(drive);
                       })) {
                positions.push_back(&drive);
            }
        }
    }
    listed.positions = positions.size();
    return listed;
}

/// Checks the hot spares of one policy.
class HotspareChecks {
  public:
    HotspareChecks(const PolicyView& policy, Models& models, FindingSink& sink)
        : policy_(policy), models_(models), sink_(sink) {}

    void check() {
        const bool isListed = policy_.policy->effective("Hotspares") != nullptr;
        if (!isListed && policy_.isWhole) {
            checkAutomatic();
            checkCaptured();
        }
        checkMembers();
        checkNumber(isListed);
        checkUse();
    }

  private:
    void checkAutomatic() {
        const Listed listed = listedDrives(policy_);
        if (listed.numbers.empty() && listed.positions == 0) {
            return;
        }
        bool isCertain = true;
        std::int32_t taken = 0; // number of a drive that is probably taken
        const Verdict verdict = judgeEntries(policy_, [&](const EntryView& entry) {
            const std::optional<std::int32_t> count = automaticCount(policy_, entry);
            if (!count) {
                return Answer::notGiven;
            }
            const std::int32_t drives = entry.given.numberOfDrives;
            // Fewer drives are left than are taken: whatever their sizes, a listed one is.
            const bool mustBe =
                *count > 0 && *count <= drives &&
                listed.countUpTo(drives) > static_cast<std::size_t>(drives - *count);
            std::int32_t likely = 0;
            for (std::int32_t number = drives; number > drives - *count && number > 0; --number) {
                likely = likely == 0 && listed.has(number) ? number : likely;
            }
            if (!mustBe && likely == 0) {
                return Answer::fine;
            }
            isCertain = isCertain && mustBe;
            taken = taken == 0 ? likely : taken;
            return Answer::faulty;
        });
        if (const auto severity = verdict.severity()) {
            tellAutomatic(taken, isCertain ? *severity : Severity::warning);
        }
    }

    void tellAutomatic(std::int32_t taken, Severity severity) {
        const std::string drive =
            taken > 0 ? "drive " + std::to_string(taken) : std::string("a drive");
        std::string array = "an array";
        for (const DriveListView& list : policy_.countingArrays()) {
            if (std::any_of(list.drives.begin(), list.drives.end(), [taken](const DriveView& each) {
                    return taken > 0 && each.number == taken;
                })) {
                array = list.entry->keyword.text;
                break;
            }
        }
        const std::string what = " and is listed in " + array;
        std::vector<std::string> help = {
            "the spare is the largest drive, of equal ones the last; the utility refuses it",
            taken > 0 ? "add Hotspares = " + std::to_string(taken) + " and take " +
                            std::to_string(taken) + " out, or Array_Defaults = 0%:0 for none"
                      : "add Hotspares, or Array_Defaults = 0%:0 for none"};
        Finding& finding =
            policy_.arrayDefaults
                ? sink_.add("ZX501", policy_.arrayDefaults->hotspares,
                            "Array_Defaults asks for a hot spare: " + drive + " is taken," + what,
                            std::move(help))
                : sink_.add("ZX501", *policy_.policy,
                            "no Hotspares: " + drive + " becomes the hot spare," + what,
                            std::move(help));
        finding.severity = severity;
    }

    void checkCaptured() {
        if (!policy_.isGenerated() || policy_.arrayDefaults) {
            return;
        }
        const Verdict verdict = judgeEntries(policy_, [](const EntryView& entry) {
            std::vector<Kind> kinds = kindsOf(entry.given.controllerType.view());
            if (kinds.empty() || entry.given.numberOfDrives <= 0) {
                return Answer::notGiven;
            }
            return std::all_of(kinds.begin(), kinds.end(),
                               [&](const Kind& kind) {
                                   return kind.rules->defaultHotspareCount(
                                              entry.given.numberOfDrives) > 0;
                               })
                       ? Answer::faulty
                       : Answer::fine;
        });
        if (verdict.severity()) {
            sink_.add("ZX505", *policy_.policy,
                      policy_.name() + " gets no hot spare: its name says that it was captured",
                      {"add Hotspares, or Array_Defaults = 0%:0 to say that there is none"});
        }
    }

    void checkMembers() {
        if (!policy_.hotspares) {
            return;
        }
        for (const DriveView& spare : policy_.hotspares->drives) {
            for (const DriveListView& array : policy_.countingArrays()) {
                const auto member =
                    std::find_if(array.drives.begin(), array.drives.end(),
                                 [&](const DriveView& each) { return each.isSameDrive(spare); });
                if (member == array.drives.end()) {
                    continue;
                }
                const std::string name = array.entry->keyword.text;
                Finding& finding = sink_.add(
                    "ZX502", spare.piece, driveWords(spare) + " is a hot spare and in " + name,
                    {name + " is made, and then the utility refuses the spare"});
                finding.otherStart = member->piece.start;
                finding.otherEnd = member->piece.end;
                finding.other = "in " + name;
                break;
            }
        }
    }

    void checkNumber(bool isListed) {
        constexpr std::size_t most = RAIDConfiguration::maxHotspares;
        const std::string mostWords = "a controller has " + std::to_string(most) + " at most";
        if (policy_.hotspares && policy_.hotspares->drives.size() > most) {
            const std::vector<DriveView>& drives = policy_.hotspares->drives;
            const bool isRefused = drives.size() > Policy::maxHotspares;
            Finding& finding =
                sink_.add("ZX503", drives[isRefused ? Policy::maxHotspares : most].piece,
                          "Hotspares lists " + std::to_string(drives.size()) + " drives",
                          {isRefused ? "zolex refuses the file; " + mostWords : mostWords});
            finding.refusedBy = isRefused ? RefusedBy::zolex : RefusedBy::plan;
        }
        if (isListed || !policy_.arrayDefaults) {
            return;
        }
        const std::int32_t count = policy_.arrayDefaults->given.hotspareCount;
        const std::string summary =
            "Array_Defaults asks for " + std::to_string(count) + " hot spares";
        if (count > static_cast<std::int32_t>(most)) {
            sink_.add("ZX503", policy_.arrayDefaults->hotspares, summary, {mostWords});
            return;
        }
        const Verdict verdict = judgeEntries(policy_, [count](const EntryView& entry) {
            return entry.given.numberOfDrives <= 0      ? Answer::notGiven
                   : count > entry.given.numberOfDrives ? Answer::faulty
                                                        : Answer::fine;
        });
        if (const auto severity = verdict.severity()) {
            const EntryView& entry = *verdict.faulty().front();
            sink_
                .add("ZX503", policy_.arrayDefaults->hotspares, summary,
                     {placeOf(entry) + " asks for d:" + std::to_string(entry.given.numberOfDrives)})
                .severity = *severity;
        }
    }

    /// Whether hot spares are asked for, and where.
    [[nodiscard]] const Piece* asked() const {
        if (policy_.hotspares) {
            return &policy_.hotspares->entry->value;
        }
        const bool isCounted = policy_.policy->effective("Hotspares") == nullptr &&
                               policy_.arrayDefaults &&
                               policy_.arrayDefaults->given.hotspareCount > 0;
        return isCounted ? &policy_.arrayDefaults->hotspares : nullptr;
    }

    void checkUse() {
        const Piece* place = asked();
        const std::vector<AskedDrive> drives = plannedDrives(policy_);
        if (place == nullptr || drives.empty() || !policy_.isWhole) {
            return;
        }
        for (const AskedDrive& drive : drives) {
            const Verdict refused = judgeKinds(policy_, [&](const Kind& kind) {
                const std::int32_t level =
                    Models::levelOf(kind, drive.level, std::max<std::size_t>(drive.drives, 2));
                return level >= 0 && kind.rules->raidLevels.contains(level) &&
                       !models_.takesHotspare(kind, level);
            });
            if (refused.severity()) {
                Finding& finding = sink_.add(
                    "ZX504", *place, refused.models() + " takes no hot spare beside a mirror",
                    {"zolex ends with 11 here, and controllers before are configured"});
                finding.severity = *refused.severity();
                finding.refusedBy = RefusedBy::plan;
                return;
            }
        }
        const std::vector<Kind> kinds = kindsOfAll(policy_);
        const bool isIde = std::any_of(kinds.begin(), kinds.end(), [](const Kind& kind) {
            return kind.type == controller_type::lsiIde;
        });
        // HYPERWIN makes a stripe set with a spare of a kind of its own.
        if (!isIde && std::none_of(drives.begin(), drives.end(), [](const AskedDrive& drive) {
                return canRebuild(drive.level);
            })) {
            sink_.add("ZX504", *place, "the hot spare can cover no array: none has redundancy",
                      {"use the drive in an array, or take a level such as 1, 5 or 10"});
        }
    }

    const PolicyView& policy_;
    Models& models_;
    FindingSink& sink_;
};

} // namespace

void checkHotspareRules(const PolicyView& policy, Models& models, FindingSink& sink) {
    HotspareChecks(policy, models, sink).check();
}

void checkGroup5(const PolicyDocument& document, FindingSink& sink) {
    Models models;
    for (const PolicyView& policy : viewPolicies(document)) {
        if (!policy.policy->isQuiet) {
            checkHotspareRules(policy, models, sink);
        }
    }
}

} // namespace zolex::companion
