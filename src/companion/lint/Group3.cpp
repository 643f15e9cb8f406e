#include "companion/lint/Entries.h"
#include "companion/lint/FindingSink.h"
#include "companion/lint/Levels.h"
#include "companion/lint/PolicyView.h"
#include "companion/lint/RuleGroups.h"
#include "model/Codes.h"
#include "model/RAIDController.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// "Array.B".
std::string nameOf(const DriveListView& list) {
    return list.entry->keyword.text;
}

bool hasSameDrives(const DriveListView& one, const DriveListView& other) {
    const auto isIn = [](const DriveListView& list) {
        return [&list](const DriveView& drive) {
            return std::any_of(list.drives.begin(), list.drives.end(),
                               [&](const DriveView& each) { return each.isSameDrive(drive); });
        };
    };
    return one.drives.size() == other.drives.size() &&
           std::all_of(one.drives.begin(), one.drives.end(), isIn(other)) &&
           std::all_of(other.drives.begin(), other.drives.end(), isIn(one));
}

/// Checks the drives and arrays of one policy.
class DriveChecks {
  public:
    DriveChecks(const PolicyView& policy, Models& models, FindingSink& sink)
        : policy_(policy), models_(models), sink_(sink) {}

    void check() {
        checkMode();
        for (const DriveListView* list : countingLists()) {
            checkRepeats(*list);
            checkPositions(*list);
            checkNumbers(*list);
        }
        for (const DriveListView& array : policy_.countingArrays()) {
            checkLength(array);
            checkRest(array);
        }
        checkSharedDrives();
        checkLogicalDrives();
        checkOrdinals();
        checkVariance();
    }

  private:
    /// The lists that zolex uses: the arrays, and then the hot spares.
    [[nodiscard]] std::vector<const DriveListView*> countingLists() const {
        std::vector<const DriveListView*> lists;
        for (const DriveListView& array : policy_.countingArrays()) {
            lists.push_back(&array);
        }
        if (policy_.hotspares) {
            lists.push_back(&*policy_.hotspares);
        }
        return lists;
    }

    void checkMode() {
        if (policy_.customArrays || policy_.arrays.empty() ||
            policy_.policy->effective("Array_Mode") != nullptr) {
            return;
        }
        const DriveListView& first = policy_.arrays.front();
        const bool isOne = policy_.arrays.size() == 1;
        const std::string names =
            isOne ? nameOf(first) : nameOf(first) + " to " + nameOf(policy_.arrays.back());
        sink_.add("ZX307", first.entry->keyword,
                  names + (isOne ? " has" : " have") +
                      " no effect: zolex chooses the drives itself",
                  {"add Array_Mode = CUSTOM"});
    }

    /// "MEGACLI" where each entry names a model of one utility, else "the utility".
    [[nodiscard]] std::string utilityWords() const {
        const std::vector<Kind> kinds = kindsOfAll(policy_);
        const auto isSame = [&](const Kind& kind) {
            return utilityOf(kind.type) == utilityOf(kinds.front().type);
        };
        return !kinds.empty() && std::all_of(kinds.begin(), kinds.end(), isSame)
                   ? utilityOf(kinds.front().type)
                   : "the utility";
    }

    void checkRepeats(const DriveListView& list) {
        for (std::size_t i = 1; i < list.drives.size(); ++i) {
            const DriveView& drive = list.drives[i];
            const auto earlier = std::find_if(
                list.drives.begin(), list.drives.begin() + static_cast<std::ptrdiff_t>(i),
                [&](const DriveView& each) { return each.isSameDrive(drive); });
            if (earlier == list.drives.begin() + static_cast<std::ptrdiff_t>(i)) {
                continue;
            }
            Finding& finding = sink_.add(
                "ZX301", drive.piece, driveWords(drive) + " is listed twice in " + nameOf(list),
                {"zolex takes it twice, and " + utilityWords() + " refuses the command"});
            pointTo(finding, earlier->piece, "first here");
        }
    }

    void checkPositions(const DriveListView& list) {
        for (const DriveView& drive : list.drives) {
            const DrivePosition at = drive.position;
            const bool isPosition =
                drive.number > 0 || (at.channel >= RAIDController::firstChannel &&
                                     RAIDController::isPosition(at.channel, at.id));
            if (!isPosition) {
                sink_.add("ZX303", drive.piece, "no drive can be at " + drive.piece.text,
                          {"channels are 1 to " + std::to_string(RAIDController::channels - 1) +
                           ", ids 0 to " + std::to_string(RAIDController::ids - 1)});
            }
        }
    }

    void checkNumbers(const DriveListView& list) {
        for (const DriveView& drive : list.drives) {
            const Verdict verdict = judgeEntries(policy_, [&](const EntryView& entry) {
                const std::int32_t drives = entry.given.numberOfDrives;
                return drives <= 0             ? Answer::notGiven
                       : drive.number > drives ? Answer::faulty
                                               : Answer::fine;
            });
            if (const auto severity = verdict.severity()) {
                const EntryView& entry = *verdict.faulty().front();
                sink_
                    .add("ZX304", drive.piece,
                         "there is no drive " + std::to_string(drive.number) + " among " +
                             std::to_string(entry.given.numberOfDrives),
                         {placeOf(entry) +
                          " asks for d:" + std::to_string(entry.given.numberOfDrives)})
                    .severity = *severity;
            }
        }
    }

    void checkLength(const DriveListView& list) {
        if (list.drives.size() > RaidArray::maxDrives) {
            sink_.add("ZX305", list.drives[RaidArray::maxDrives].piece,
                      nameOf(list) + " lists " + std::to_string(list.drives.size()) +
                          " drives, and an array holds " + std::to_string(RaidArray::maxDrives),
                      {"make two arrays of it"});
        }
    }

    /// An array of all that remain which leaves some over. What a default hot spare takes is none
    /// of them; what a bad drive does is not known.
    void checkRest(const DriveListView& array) {
        if (!array.isAll) {
            return;
        }
        std::size_t rest = 0;
        std::size_t taken = 0;
        const Verdict verdict = judgeEntries(policy_, [&](const EntryView& entry) {
            if (entry.given.numberOfDrives <= 0) {
                return Answer::notGiven;
            }
            const std::size_t spares = mostAutomaticHotspares(policy_, entry);
            const std::size_t most =
                mostRemaining(policy_, static_cast<std::size_t>(entry.given.numberOfDrives));
            const std::size_t left = most > spares ? most - spares : 0;
            const std::size_t used = mostTaken(entry, array, left);
            if (used >= left) {
                return Answer::fine;
            }
            if (taken == 0) {
                rest = left;
                taken = used;
            }
            return Answer::faulty;
        });
        if (verdict.severity()) {
            Finding& finding = sink_.add(
                "ZX305", array.entry->value,
                nameOf(array) + " takes " + std::to_string(taken) + " of " + std::to_string(rest) +
                    " drives that remain",
                {std::to_string(rest - taken) + " are left over, and zolex does not say so",
                 "list the drives, in two arrays"});
            finding.severity = Severity::warning;
            finding.refusedBy = RefusedBy::nobody;
        }
    }

    /// The most that any controller of the entry takes for the array.
    std::size_t mostTaken(const EntryView& entry, const DriveListView& array, std::size_t left) {
        std::vector<Kind> kinds = kindsOf(entry.given.controllerType.view());
        if (kinds.empty()) {
            kinds = allKinds();
        }
        std::size_t most = 0;
        for (const Kind& kind : kinds) {
            most = std::max(most, models_.takenOfAll(kind, levelOfAll(array), left));
        }
        return most;
    }

    /// The level that decides how many drives ALL takes.
    [[nodiscard]] std::int32_t levelOfAll(const DriveListView& array) const {
        for (const LogicalView& view : policy_.logicalDrives) {
            if (policy_.customLogicalDrives &&
                view.given.arrayIndex == static_cast<std::int32_t>(array.index)) {
                return view.given.raidLevel;
            }
        }
        return policy_.logicalDefaults ? policy_.logicalDefaults->given.raidLevel
                                       : raid_level::notGiven;
    }

    void checkSharedDrives() {
        const std::vector<DriveListView>& arrays = policy_.countingArrays();
        for (std::size_t later = 1; later < arrays.size(); ++later) {
            std::optional<Severity> severity = Severity::error;
            if (std::any_of(arrays.begin(), arrays.begin() + static_cast<std::ptrdiff_t>(later),
                            [&](const DriveListView& each) {
                                return hasSameDrives(each, arrays[later]);
                            })) {
                // MEGACLI makes a further logical drive of the same drives in this way.
                severity = judgeKinds(policy_, [](const Kind& kind) {
                               return kind.type != controller_type::megaRaid;
                           }).severity();
            }
            if (severity) {
                tellShared(arrays, later, *severity);
            }
        }
    }

    void tellShared(const std::vector<DriveListView>& arrays, std::size_t later,
                    Severity severity) {
        std::vector<const DriveView*> told;
        for (const DriveView& drive : arrays[later].drives) {
            const bool isTold = std::any_of(told.begin(), told.end(), [&](const DriveView* each) {
                return each->isSameDrive(drive);
            });
            const DriveListView* owner = isTold ? nullptr : findOwner(arrays, later, drive);
            if (owner == nullptr) {
                continue;
            }
            told.push_back(&drive);
            Finding& finding = sink_.add("ZX302", drive.piece,
                                         driveWords(drive) + " is in " + nameOf(*owner) +
                                             " and in " + nameOf(arrays[later]),
                                         {nameOf(*owner) + " is made, and then " + utilityWords() +
                                          " refuses the command for " + nameOf(arrays[later])});
            finding.severity = severity;
            const auto first =
                std::find_if(owner->drives.begin(), owner->drives.end(),
                             [&](const DriveView& each) { return each.isSameDrive(drive); });
            pointTo(finding, first->piece, "first here");
        }
    }

    static const DriveListView* findOwner(const std::vector<DriveListView>& arrays,
                                          std::size_t before, const DriveView& drive) {
        for (std::size_t i = 0; i < before; ++i) {
            if (std::any_of(arrays[i].drives.begin(), arrays[i].drives.end(),
                            [&](const DriveView& each) { return each.isSameDrive(drive); })) {
                return &arrays[i];
            }
        }
        return nullptr;
    }

    void checkLogicalDrives() {
        if (!policy_.isWhole || !policy_.customLogicalDrives || policy_.logicalDrives.empty() ||
            isForIdeAlone()) {
            return;
        }
        for (const DriveListView& array : policy_.countingArrays()) {
            const auto isOnIt = [&](const LogicalView& drive) {
                return drive.given.arrayIndex == static_cast<std::int32_t>(array.index);
            };
            if (std::any_of(policy_.logicalDrives.begin(), policy_.logicalDrives.end(), isOnIt)) {
                continue;
            }
            const std::string letter(1, static_cast<char>('A' + array.index));
            Finding& finding =
                sink_.add("ZX308", array.entry->keyword, nameOf(array) + " has no logical drive",
                          {"zolex ends with 11 here, and controllers before are configured",
                           "add Logical." + std::to_string(policy_.logicalDrives.size() + 1) +
                               " = " + letter + ":FILL:AUTO"});
            if (array.isAll) {
                finding.severity = Severity::warning; // no drive may remain, and so no array
            }
        }
    }

    /// HYPERWIN makes the first array alone.
    [[nodiscard]] bool isForIdeAlone() const {
        const std::vector<Kind> kinds = kindsOfAll(policy_);
        return !kinds.empty() && std::all_of(kinds.begin(), kinds.end(), [](const Kind& kind) {
            return kind.type == controller_type::lsiIde;
        });
    }

    void checkOrdinals() {
        const auto withoutCount =
            std::find_if(policy_.entries.begin(), policy_.entries.end(), [](const EntryView& each) {
                return each.isReadable && each.given.numberOfDrives <= 0 &&
                       (each.given.all || !each.given.givesNothing());
            });
        const std::vector<const DriveListView*> lists = countingLists();
        const auto list = std::find_if(lists.begin(), lists.end(), [](const DriveListView* each) {
            return each->hasNumbers();
        });
        if (withoutCount == policy_.entries.end() || list == lists.end()) {
            return;
        }
        std::vector<std::string> help = {
            "when a drive is missing, each number behind it is the next drive's",
            "add d: to " + placeOf(*withoutCount) + ", or write channel:id"};
        const AppliesTo& given = withoutCount->given;
        if (given.controllerNumber > 0 && given.controllerType.isEmpty()) {
            const std::string number = "c:" + std::to_string(given.controllerNumber);
            help.push_back(number + " is another controller when a card is added before it");
        }
        sink_.add("ZX309", (*list)->drives.front().piece,
                  nameOf(**list) + " names drives by number, and " +
                      withoutCount->entry->keyword.text + " gives no d:",
                  std::move(help));
    }

    void checkVariance() {
        if (policy_.customArrays && policy_.arrayDefaults &&
            policy_.arrayDefaults->given.variancePercent != 0) {
            sink_.add("ZX310", policy_.arrayDefaults->variance,
                      "a variance of " + policy_.arrayDefaults->variance.text +
                          " has no effect: the arrays are listed",
                      {"only the number of hot spares counts: Array_Defaults = 0%:" +
                       policy_.arrayDefaults->hotspares.text});
        }
    }

    const PolicyView& policy_;
    Models& models_;
    FindingSink& sink_;
};

} // namespace

void checkDriveRules(const PolicyView& policy, Models& models, FindingSink& sink) {
    DriveChecks(policy, models, sink).check();
}

void checkGroup3(const PolicyDocument& document, FindingSink& sink) {
    Models models;
    for (const PolicyView& policy : viewPolicies(document)) {
        if (!policy.policy->isQuiet) {
            checkDriveRules(policy, models, sink);
        }
    }
}

} // namespace zolex::companion
