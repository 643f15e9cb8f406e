#include "commands/CommandLines.h"
#include "companion/lint/Effects.h"
#include "companion/lint/Entries.h"
#include "companion/lint/MachineCase.h"
#include "companion/lint/RuleGroups.h"
#include "companion/machine/Fingerprint.h"
#include "driver/CommandList.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "policies/PolicyFile.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
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

/// Checks the policies of a good file against machines.
class Machines {
  public:
    Machines(const PolicyDocument& document, const PolicyList& policies, FindingSink& sink)
        : views_(viewPolicies(document)), policies_(policies), sink_(sink) {}

    void check(const Snapshot& snapshot) {
        checkMachine(snapshot);
        std::vector<CString> lines;
        bool isPlanned = true;
        for (const ControllerSnapshot& detail : snapshot.details) {
            const RAIDController* controller = snapshot.controllers.controller(detail.index);
            if (detail.failed || controller == nullptr) {
                isPlanned = false;
                continue;
            }
            SilentReport silent;
            const ControllerPlan plan = planController(*controller, detail.number, policies_,
                                                       snapshot.machine, PlanOptions(), silent);
            MachineCase machine{snapshot, detail, *controller, plan, views_, nullptr};
            if (plan.policyIndex >= 0) {
                machine.policy = &views_.at(static_cast<std::size_t>(plan.policyIndex));
            }
            checkController(machine);
            addLines(machine, lines);
        }
        if (isPlanned) {
            checkLines(snapshot, lines);
        }
    }

  private:
    void checkMachine(const Snapshot& snapshot) {
        const std::string serial = snapshot.machine.serialNumber.c_str();
        if (!snapshot.machineSource.empty() && isPlaceholder(serial)) {
            sink_.addToFile("ZX709",
                            serial.empty()
                                ? "a machine tells no serial number"
                                : "the serial number \"" + serial + "\" says nothing of a machine",
                            {"s: cannot tell this machine from others"});
        }
    }

    void checkController(const MachineCase& machine) {
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

    /// The rules that ask for a model, for the one that is here: AppliesTo need not name it.
    void checkModel(const MachineCase& machine) {
        if (machine.policy == nullptr || machine.policy->entries.empty()) {
            return;
        }
        PolicyView narrowed = *machine.policy;
        narrowed.entries.resize(1);
        EntryView& entry = narrowed.entries.front();
        entry.isReadable = true;
        entry.given.controllerType = CString(machine.detail.model);
        entry.given.numberOfDrives = machine.controller.numberOfDrives();
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
            const bool isOfEntry = line.compare(0, entry.size(), entry) == 0;
            if (!isOfEntry) {
                help.push_back(line);
            }
        }
        Finding& added = sink_.add(finding.code, finding.start, finding.end,
                                   machine.name() + ": " + finding.summary, std::move(help));
        added.severity = isIdleSetting(machine, finding) ? Severity::note : finding.severity;
        added.refusedBy = finding.refusedBy;
        added.otherStart = finding.otherStart;
        added.otherEnd = finding.otherEnd;
        added.other = finding.other;
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

    void addLines(const MachineCase& machine, std::vector<CString>& lines) {
        if (!machine.plan.layout) {
            return;
        }
        SilentReport silent;
        CommandLines made = commandLines(machine.controller, machine.detail.number,
                                         *machine.plan.layout, {}, silent);
        std::move(made.lines.begin(), made.lines.end(), std::back_inserter(lines));
    }

    /// ZX601
    void checkLines(const Snapshot& snapshot, const std::vector<CString>& lines) {
        constexpr std::size_t most = CommandList::fetchable;
        constexpr std::size_t mostTold = 3;
        if (lines.size() <= most) {
            return;
        }
        const std::string machine = machineName(snapshot);
        std::vector<std::string> help = {std::to_string(lines.size() - most) +
                                         " are left out, and zolex ends with 0"};
        for (std::size_t i = most; i < std::min(lines.size(), most + mostTold); ++i) {
            help.push_back("left out: " + std::string(lines[i].c_str()));
        }
        sink_.addToFile("ZX601",
                        (machine.empty() ? std::string("this machine") : machine) + " needs " +
                            std::to_string(lines.size()) + " commands, and zolex runs " +
                            std::to_string(most),
                        std::move(help));
    }

    const std::vector<PolicyView> views_;
    const PolicyList& policies_;
    Models models_;
    FindingSink& sink_;
};

} // namespace

void checkGroup7(const PolicyDocument& document, const std::vector<const Snapshot*>& machines,
                 FindingSink& sink) {
    SilentReport silent;
    const PolicyFile file =
        readPolicies(document.text, ControllerCatalogue(), PolicyOptions(), silent);
    if (!file.policies || file.policies->count() != document.policies.size()) {
        return; // what zolex refuses is told already
    }
    Machines checks(document, *file.policies, sink);
    for (const Snapshot* machine : machines) {
        checks.check(*machine);
    }
}

} // namespace zolex::companion
