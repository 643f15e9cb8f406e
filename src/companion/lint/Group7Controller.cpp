#include "companion/lint/Effects.h"
#include "companion/lint/Entries.h"
#include "companion/lint/MachineCase.h"
#include "companion/lint/RuleGroups.h"
#include "engine/ControllerPlan.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

/// Faults of planning and the rules that tell them. A fault that is not here needs none: it cannot
/// come of a policy.
struct FaultRule {
    FaultKind kind;
    std::string_view rule;
};
// clang-format off
constexpr std::array<FaultRule, 11> faultRules = {{
    {FaultKind::planHotspareShortage,      "ZX503"},
    {FaultKind::planTooManyHotspares,      "ZX503"},
    {FaultKind::planHotspareDriveMissing,  "ZX304"},
    {FaultKind::planArrayDriveMissing,     "ZX304"},
    {FaultKind::planTooManyArrays,         "ZX305"},
    {FaultKind::planTooManyArrayDrives,    "ZX305"},
    {FaultKind::planArrayUnknown,          "ZX402"},
    {FaultKind::planRaidLevelUnsupported,  "ZX401"},
    {FaultKind::planRaidLevelDriveCount,   "ZX402"},
    {FaultKind::planTooManyLogicalDrives,  "ZX402"},
    {FaultKind::planStripeSizeUnsupported, "ZX403"},
}};
// clang-format on

/// Those of group 4 that ask for a model and that planning does not tell.
constexpr std::array<std::string_view, 6> modelRules = {"ZX401", "ZX404", "ZX405",
                                                        "ZX407", "ZX408", "ZX412"};

/// The rule's own words for a fault that only this machine has.
std::string faultWords(const Fault& fault, std::size_t drives) {
    const std::string wanted = fault.wanted.c_str();
    const std::string number = std::to_string(fault.number);
    switch (fault.kind) {
    case FaultKind::planHotspareShortage:
        return "there are not " + number + " free drives for hot spares";
    case FaultKind::planTooManyHotspares:
        return "a controller has " + number + " hot spares at most";
    case FaultKind::planHotspareDriveMissing:
    case FaultKind::planArrayDriveMissing:
        return fault.place.channel >= 0
                   ? "there is no drive at " + wanted
                   : "there is no drive " + wanted + " among " + std::to_string(drives);
    case FaultKind::planTooManyArrays:
        return "this makes more than " + number + " arrays";
    case FaultKind::planTooManyArrayDrives:
        return "an array holds " + number + " drives at most";
    case FaultKind::planArrayUnknown:
        return "no drive remains for Array." + wanted;
    case FaultKind::planRaidLevelUnsupported:
        return "RAID level " + wanted + " is not possible";
    case FaultKind::planRaidLevelDriveCount:
        return wanted.empty() ? "no RAID level fits an array of " +
                                    countOf(static_cast<std::size_t>(fault.number), "drive")
                              : "RAID level " + wanted + " takes " + fault.possible.c_str() +
                                    " drives, and the array has " + number;
    case FaultKind::planTooManyLogicalDrives:
        return "this makes more than " + number + " logical drives";
    default:
        return "a strip size of " + wanted + " KB is not possible";
    }
}

/// Checks one controller.
class ControllerChecks {
  public:
    ControllerChecks(const std::vector<PolicyView>& policies, Models& models, FindingSink& sink)
        : views_(policies), models_(models), sink_(sink) {}

    void check(const MachineCase& machine) {
        if (machine.isOfPlan) {
            checkPlan(machine);
            return;
        }
        checkForeign(machine);
        switch (machine.plan.outcome) {
        case Outcome::noPolicy:
            tellUnmatched(machine);
            break;
        case Outcome::tooFewDrives:
            tellTooFew(machine);
            break;
        case Outcome::refused:
            tellFault(machine);
            break;
        case Outcome::planned:
            checkModel(machine);
            break;
        }
        checkDrives(machine, sink_);
    }

  private:
    /// The policy as it would be for this model and number of drives alone.
    static PolicyView narrow(const MachineCase& machine) {
        PolicyView narrowed = *machine.policy;
        narrowed.entries.resize(1);
        EntryView& entry = narrowed.entries.front();
        entry.isReadable = true;
        entry.given.controllerType = CString(machine.detail.model);
        entry.given.numberOfDrives = machine.controller.numberOfDrives();
        return narrowed;
    }

    /// What drives and plan show first, then what the policy shows.
    void checkPlan(const MachineCase& machine) {
        if (machine.plan.outcome == Outcome::refused) {
            tellFault(machine);
        }
        checkDrives(machine, sink_);
        if (machine.policy == nullptr || machine.policy->entries.empty()) {
            return;
        }
        const PolicyView narrowed = narrow(machine);
        FindingSink own{std::string()};
        checkDriveRules(narrowed, models_, own);
        checkLogicalRules(narrowed, models_, own);
        checkHotspareRules(narrowed, models_, own);
        checkLimitRules(narrowed, own);
        for (const Finding& finding : own.findings()) {
            if (!isTold(finding) && !isSettled(machine, finding)) {
                addOfModel(machine, finding, placeOf(narrowed.entries.front()));
            }
        }
    }

    [[nodiscard]] bool isTold(const Finding& finding) const {
        return std::any_of(sink_.findings().begin(), sink_.findings().end(),
                           [&finding](const Finding& told) {
                               return told.code == finding.code && told.start == finding.start;
                           });
    }

    /// Whether the plan itself answers what the policy alone lets expect.
    static bool isSettled(const MachineCase& machine, const Finding& finding) {
        const bool isPlanned = machine.plan.outcome == Outcome::planned;
        const bool isOfPlanning =
            finding.severity == Severity::error && finding.refusedBy == RefusedBy::plan &&
            std::any_of(faultRules.begin(), faultRules.end(),
                        [&finding](const FaultRule& row) { return row.rule == finding.code; });
        return isPlanned && (finding.code == "ZX501" || isOfPlanning);
    }

    /// The rules that ask for a model, for the one that is here: AppliesTo need not name it.
    void checkModel(const MachineCase& machine) {
        if (machine.policy == nullptr || machine.policy->entries.empty()) {
            return;
        }
        const PolicyView narrowed = narrow(machine);
        const EntryView& entry = narrowed.entries.front();
        FindingSink own{std::string()};
        checkLogicalRules(narrowed, models_, own);
        for (const Finding& finding : own.findings()) {
            if (std::find(modelRules.begin(), modelRules.end(), finding.code) != modelRules.end()) {
                addOfModel(machine, finding, placeOf(entry));
            }
        }
    }

    /// Whether it says no more than that a setting has no effect here. Policies for several models
    /// give what some of them take.
    static bool isIdleSetting(const MachineCase& machine, const Finding& finding) {
        const std::vector<DriveListView>& arrays = machine.policy->arrays;
        return finding.code == "ZX408" && finding.severity == Severity::warning &&
               std::none_of(arrays.begin(), arrays.end(), [&finding](const DriveListView& list) {
                   return list.entry->value.start == finding.start;
               });
    }

    void addOfModel(const MachineCase& machine, const Finding& finding, const std::string& entry) {
        std::vector<std::string> help;
        for (const std::string& line : finding.help) {
            constexpr std::string_view end = "zolex ends with ";
            const bool isOfEntry = line.compare(0, entry.size(), entry) == 0;
            const bool isOfZolex = machine.isOfPlan && line.compare(0, end.size(), end) == 0;
            if (!isOfEntry && !isOfZolex) {
                help.push_back(line);
            }
        }
        Finding& added = sink_.add(finding.code, finding.start, finding.end,
                                   machine.told(finding.summary), std::move(help));
        added.severity = isIdleSetting(machine, finding) ? Severity::note : finding.severity;
        added.refusedBy = finding.refusedBy;
        added.otherStart = finding.otherStart;
        added.otherEnd = finding.otherEnd;
        added.other = finding.other;
        if (machine.isOfPlan && finding.code == "ZX405") {
            tellFurther(finding, added);
        }
    }

    /// ZX405 in a plan: zolexctl makes what zolex leaves out.
    static void tellFurther(const Finding& finding, Finding& added) {
        if (finding.severity == Severity::error) {
            added.help = {"give each array one logical drive: Logical.1 = A:FILL:AUTO"};
            return;
        }
        added.summary = "zolex leaves out " + finding.summary.substr(0, finding.summary.find(' ')) +
                        finding.summary.substr(finding.summary.find(':'));
        added.help = {"zolexctl makes it; zolex makes the first of an array alone"};
    }

    /// ZX707: of each policy why it does not fit.
    void tellUnmatched(const MachineCase& machine) {
        constexpr std::size_t mostReasons = 8;
        if (machine.controller.numberOfDrives() == 0) {
            tellTooFew(machine);
            return;
        }
        std::vector<std::string> help;
        std::size_t more = 0;
        for (const Reason& reason : machine.plan.reasons) {
            const bool isTold = reason.kind == Reason::Kind::entryDiffers && reason.policy >= 0;
            if (!isTold) {
                continue;
            }
            if (help.size() == mostReasons) {
                ++more;
                continue;
            }
            const PolicyView& policy = views_.at(static_cast<std::size_t>(reason.policy));
            help.push_back(policy.name() + ", " + reason.keyword.c_str() + ": " +
                           std::string(1, reason.specifier) + ":" + reason.wanted.c_str() +
                           ", and it is " +
                           (reason.actual.isEmpty() ? "not known" : reason.actual.c_str()));
        }
        if (more > 0) {
            help.push_back(std::to_string(more) + " more entries do not fit");
        }
        machine.add(
            sink_, "ZX707", nullptr,
            "no policy fits (" + machine.detail.model + ", " +
                countOf(static_cast<std::size_t>(machine.controller.numberOfDrives()), "drive") +
                ")",
            std::move(help));
    }

    /// ZX708
    void tellTooFew(const MachineCase& machine) {
        const auto drives = static_cast<std::size_t>(machine.controller.numberOfDrives());
        machine.add(sink_, "ZX708", nullptr,
                    drives == 0 ? "it has no drives"
                                : "it has " + countOf(drives, "drive") + ", too few for " +
                                      machine.detail.model,
                    {"it is skipped, and zolex ends with 0 unless it was started with /e3"});
    }

    void tellFault(const MachineCase& machine) {
        const Fault& fault = *machine.plan.fault;
        const auto rule =
            std::find_if(faultRules.begin(), faultRules.end(),
                         [&fault](const FaultRule& row) { return row.kind == fault.kind; });
        if (rule == faultRules.end()) {
            return;
        }
        const bool isPosition = fault.place.channel >= 0;
        const std::string_view id =
            isPosition && rule->rule == "ZX304" ? std::string_view("ZX303") : rule->rule;
        Finding& finding = machine.add(
            sink_, id, placeOfFault(machine, fault),
            faultWords(fault, static_cast<std::size_t>(std::count_if(
                                  machine.detail.drives.begin(), machine.detail.drives.end(),
                                  [](const MachineDrive& drive) {
                                      return drive.policyNumber.has_value();
                                  }))),
            helpOf(machine, fault));
        finding.severity = Severity::error;
        finding.refusedBy = RefusedBy::plan;
        if (machine.isOfPlan && finding.help.empty()) {
            finding.help.emplace_back("what there is: zolexctl show");
        }
    }

    static bool isOfLevel(const Fault& fault) {
        return fault.kind == FaultKind::planRaidLevelUnsupported ||
               fault.kind == FaultKind::planRaidLevelDriveCount;
    }

    static std::vector<std::string> helpOf(const MachineCase& machine, const Fault& fault) {
        const std::string possible = fault.possible.c_str();
        if (fault.kind == FaultKind::planRaidLevelUnsupported) {
            return {machine.detail.model + " has " + possible};
        }
        if (fault.kind == FaultKind::planStripeSizeUnsupported) {
            return {machine.detail.model + " takes " + possible};
        }
        if (isOfLevel(fault)) {
            return {"change the list of drives, or the level"};
        }
        return numberlessDrives(machine);
    }

    /// The drives that the planner does not see, where one is missing.
    static std::vector<std::string> numberlessDrives(const MachineCase& machine) {
        std::vector<std::string> help;
        for (const MachineDrive& drive : machine.detail.drives) {
            if (!drive.policyNumber) {
                help.push_back(driveWords(drive) + " has no number");
            }
        }
        return help;
    }

    static const Piece* placeOfFault(const MachineCase& machine, const Fault& fault) {
        const DocumentEntry* entry =
            fault.place.keyword.isEmpty()
                ? nullptr
                : machine.policy->policy->effective(fault.place.keyword.view());
        if (entry == nullptr) {
            return nullptr;
        }
        if (isOfLevel(fault)) {
            return placeOfLevel(*machine.policy, *entry);
        }
        const std::string wanted = fault.wanted.c_str();
        for (const DriveListView& list : machine.policy->arrays) {
            if (list.entry == entry) {
                return pieceOf(list, wanted);
            }
        }
        return machine.policy->hotspares && machine.policy->hotspares->entry == entry
                   ? pieceOf(*machine.policy->hotspares, wanted)
                   : &entry->value;
    }

    static const Piece* placeOfLevel(const PolicyView& policy, const DocumentEntry& entry) {
        const auto found =
            std::find_if(policy.logicalDrives.begin(), policy.logicalDrives.end(),
                         [&entry](const LogicalView& view) { return view.entry == &entry; });
        return found != policy.logicalDrives.end() ? &found->level
               : policy.logicalDefaults && policy.logicalDefaults->entry == &entry
                   ? &policy.logicalDefaults->level
                   : &entry.value;
    }

    static const Piece* pieceOf(const DriveListView& list, const std::string& wanted) {
        const auto found =
            std::find_if(list.drives.begin(), list.drives.end(),
                         [&wanted](const DriveView& view) { return view.piece.text == wanted; });
        return found == list.drives.end() ? &list.entry->value : &found->piece;
    }

    /// ZX710
    void checkForeign(const MachineCase& machine) {
        std::vector<const MachineDrive*> foreign;
        for (const MachineDrive& drive : machine.detail.drives) {
            if (drive.facts.isForeign || drive.facts.state == DriveState::foreign) {
                foreign.push_back(&drive);
            }
        }
        if (foreign.empty() && machine.detail.facts.foreignConfigurations.empty()) {
            return;
        }
        machine.add(
            sink_, "ZX710", nullptr,
            foreign.empty() ? "there is a foreign configuration"
                            : "drives of another server: " + someDrives(foreign),
            {"zolex /r clears their arrays, too; without /r the utility refuses the drives"});
    }

    const std::vector<PolicyView>& views_;
    Models& models_;
    FindingSink& sink_;
};

} // namespace

void checkController(const MachineCase& machine, Models& models, FindingSink& sink) {
    ControllerChecks(machine.policies, models, sink).check(machine);
}

} // namespace zolex::companion
