#include "commands/CommandLines.h"
#include "companion/binding/BoundPolicies.h"
#include "companion/lint/Effects.h"
#include "companion/lint/Entries.h"
#include "companion/lint/MachineCase.h"
#include "companion/lint/RuleGroups.h"
#include "companion/machine/Fingerprint.h"
#include "driver/CommandList.h"
#include "engine/PlanController.h"
#include "foundation/Report.h"
#include "foundation/Text.h"
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

/// Checks the policies of a good file against a machine.
class OneMachine {
  public:
    OneMachine(const Snapshot& snapshot, FindingSink& sink) : snapshot_(snapshot), sink_(&sink) {
        checkMachine(snapshot);
    }

    /// All controllers, by the same policies.
    void check(const std::vector<PolicyView>& views, const PolicyList& policies) {
        for (const ControllerSnapshot& detail : snapshot_.details) {
            check(detail, views, policies);
        }
    }

    /// One controller; what is found goes to `sink`.
    void check(const ControllerSnapshot& detail, const std::vector<PolicyView>& views,
               const PolicyList& policies, FindingSink& sink) {
        FindingSink* const own = std::exchange(sink_, &sink);
        check(detail, views, policies);
        sink_ = own;
    }

    /// The rules on what all controllers need together.
    void finish() {
        if (isPlanned_) {
            checkLines(snapshot_, lines_);
        }
    }

    /// Nothing can be said of what a controller of it needs.
    void leaveOut() { isPlanned_ = false; }

  private:
    void check(const ControllerSnapshot& detail, const std::vector<PolicyView>& views,
               const PolicyList& policies) {
        const RAIDController* controller = snapshot_.controllers.controller(detail.index);
        if (detail.failed || controller == nullptr) {
            leaveOut();
            return;
        }
        SilentReport silent;
        const ControllerPlan plan = planController(*controller, detail.number, policies,
                                                   snapshot_.machine, PlanOptions(), silent);
        MachineCase machine{snapshot_, detail, *controller, plan, views, nullptr};
        if (plan.policyIndex >= 0) {
            machine.policy = &views.at(static_cast<std::size_t>(plan.policyIndex));
        }
        checkController(machine);
        addLines(machine, lines_);
    }

    void checkMachine(const Snapshot& snapshot) {
        const std::string serial = snapshot.machine.serialNumber.c_str();
        if (!snapshot.machineSource.empty() && isPlaceholder(serial)) {
            sink_->addToFile("ZX709",
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
        checkDrives(machine, *sink_);
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
        Finding& added = sink_->add(finding.code, finding.start, finding.end,
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
            const PolicyView& policy = machine.policies.at(static_cast<std::size_t>(reason.policy));
            help.push_back(policy.name() + ", " + reason.keyword.c_str() + ": " +
                           std::string(1, reason.specifier) + ":" + reason.wanted.c_str() +
                           ", and it is " +
                           (reason.actual.isEmpty() ? "not known" : reason.actual.c_str()));
        }
        if (more > 0) {
            help.push_back(std::to_string(more) + " more entries do not fit");
        }
        machine.add(
            *sink_, "ZX707", nullptr,
            "no policy fits (" + machine.detail.model + ", " +
                countOf(static_cast<std::size_t>(machine.controller.numberOfDrives()), "drive") +
                ")",
            std::move(help));
    }

    /// ZX708
    void tellTooFew(const MachineCase& machine) {
        const auto drives = static_cast<std::size_t>(machine.controller.numberOfDrives());
        machine.add(*sink_, "ZX708", nullptr,
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
            *sink_, id, placeOfFault(machine, fault),
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
            *sink_, "ZX710", nullptr,
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
        sink_->addToFile("ZX601",
                         (machine.empty() ? std::string("this machine") : machine) + " needs " +
                             std::to_string(lines.size()) + " commands, and zolex runs " +
                             std::to_string(most),
                         std::move(help));
    }

    const Snapshot& snapshot_;
    Models models_;
    FindingSink* sink_;
    std::vector<CString> lines_;
    bool isPlanned_ = true;
};

/// The findings of bound policies, at the lines that they were made of.
class BoundFindings {
  public:
    BoundFindings(const PolicyDocument& document, const BoundPolicies& bound,
                  const PolicyDocument& boundDocument, FindingSink& sink)
        : document_(document), bound_(bound), boundDocument_(boundDocument), sink_(sink) {}

    /// Of the file alone: those of this policy that drives or logical drives have a part in.
    void addOfPolicy(std::vector<Finding> findings, const DocumentPolicy& policy,
                     std::int32_t lastLine, const std::string& controller) {
        std::erase_if(findings, [&](const Finding& finding) {
            const bool isOfDrives = finding.code >= "ZX3" && finding.code < "ZX7";
            return !isOfDrives || finding.code == "ZX610" ||
                   finding.start.line < policy.header.line || finding.start.line > lastLine;
        });
        for (Finding& finding : findings) {
            finding.summary = controller + ": " + finding.summary;
        }
        add(findings);
    }

    /// All of them but those that the file alone has shown.
    void addOfMachine(std::vector<Finding> findings) {
        std::erase_if(findings, [this](const Finding& finding) {
            return std::any_of(told_.begin(), told_.end(), [&finding](const Finding& told) {
                return told.code == finding.code && told.start == finding.start &&
                       told.severity >= finding.severity;
            });
        });
        add(findings);
    }

  private:
    void add(const std::vector<Finding>& findings) {
        for (const Finding& finding : findings) {
            Finding& added = sink_.add(finding.code, placeOf(finding.start, true),
                                       placeOf(finding.end, false), finding.summary, finding.help);
            added.severity = finding.severity;
            added.refusedBy = finding.refusedBy;
            added.detail = finding.detail;
            if (finding.otherStart.line > 0) {
                added.otherStart = placeOf(finding.otherStart, true);
                added.otherEnd = placeOf(finding.otherEnd, false);
                added.other = finding.other;
            }
            told_.push_back(finding);
        }
    }

    /// A place in a line that was changed is the begin of the line's keyword, or the line's end.
    [[nodiscard]] TextPlace placeOf(const TextPlace& place, bool isStart) const {
        const auto index = static_cast<std::size_t>(std::max(place.line, 1)) - 1;
        if (index >= bound_.lineOf.size()) {
            return {1, 1, 0};
        }
        const std::int32_t line = bound_.lineOf[index];
        const std::string_view written = document_.line(line);
        if (boundDocument_.line(place.line) == written) {
            return placeInLine(document_, line, place.column);
        }
        const std::size_t first = std::min(written.find_first_not_of(" \t"), written.size());
        const std::size_t last = text::trim(written, " \t\r").size() + first;
        return placeInLine(document_, line, static_cast<std::int32_t>(isStart ? first : last) + 1);
    }

    const PolicyDocument& document_;
    const BoundPolicies& bound_;
    const PolicyDocument& boundDocument_;
    FindingSink& sink_;
    std::vector<Finding> told_; ///< with their places in the bound policies
};

/// Checks a file whose policies tell drives by what they are: for each controller they are bound
/// first.
class KindMachines {
  public:
    KindMachines(const PolicyDocument& document, FindingSink& sink)
        : document_(document), sink_(sink),
          aside_(scanPolicies(document.file, withoutKindEntries(document.text))),
          asideViews_(viewPolicies(aside_)) {
        SilentReport silent;
        const PolicyFile file =
            readPolicies(aside_.text, ControllerCatalogue(), PolicyOptions(), silent);
        if (kindEntryFaults(document.text).empty() && file.policies &&
            file.policies->count() == document.policies.size()) {
            asidePolicies_ = *file.policies;
        }
    }

    /// Whether the file can be bound at all.
    [[nodiscard]] bool isGood() const { return asidePolicies_.has_value(); }

    void check(const Snapshot& snapshot) {
        OneMachine machine(snapshot, sink_);
        for (const ControllerSnapshot& detail : snapshot.details) {
            checkController(snapshot, detail, machine);
        }
        machine.finish();
    }

  private:
    void checkController(const Snapshot& snapshot, const ControllerSnapshot& detail,
                         OneMachine& machine) {
        const RAIDController* const record = snapshot.controllers.controller(detail.index);
        std::int32_t index = -1;
        if (!detail.failed && record != nullptr) {
            SilentReport silent;
            index = planController(*record, detail.number, *asidePolicies_, snapshot.machine,
                                   {.reasons = false}, silent)
                        .policyIndex;
        }
        if (index < 0) { // no policy, or no drives
            machine.check(detail, asideViews_, *asidePolicies_, sink_);
            return;
        }
        const BoundPolicies bound =
            bindPolicy(document_.text, static_cast<std::size_t>(index), detail, *record);
        if (!bound.faults.empty()) {
            machine.leaveOut();
            tellFaults(snapshot, detail, bound);
            return;
        }
        SilentReport silent;
        const PolicyDocument boundDocument = scanPolicies(document_.file, bound.text);
        const PolicyFile file =
            readPolicies(bound.text, ControllerCatalogue(), PolicyOptions(), silent);
        FindingSink own(document_.file);
        machine.check(detail, viewPolicies(boundDocument), *file.policies, own);
        BoundFindings findings(document_, bound, boundDocument, sink_);
        const std::vector<DocumentPolicy>& policies = boundDocument.policies;
        const auto next = static_cast<std::size_t>(index) + 1;
        const std::int32_t lastLine = next < policies.size()
                                          ? policies[next].header.line - 1
                                          : static_cast<std::int32_t>(bound.lineOf.size());
        findings.addOfPolicy(lintAll(boundDocument), policies.at(next - 1), lastLine,
                             nameOf(snapshot, detail));
        findings.addOfMachine(own.take());
    }

    static std::string nameOf(const Snapshot& snapshot, const ControllerSnapshot& detail) {
        const std::string machine = machineName(snapshot);
        return "controller " + std::to_string(detail.number) +
               (machine.empty() ? "" : " of " + machine);
    }

    /// ZX313
    void tellFaults(const Snapshot& snapshot, const ControllerSnapshot& detail,
                    const BoundPolicies& bound) {
        for (const BindingFault& fault : bound.faults) {
            Finding& finding =
                sink_.add(fault.code, placeInLine(document_, fault.line, fault.column),
                          placeInLine(document_, fault.line, fault.endColumn),
                          nameOf(snapshot, detail) + ": " + fault.what);
            if (!fault.help.empty()) {
                finding.help.push_back(fault.help);
            }
        }
    }

    const PolicyDocument& document_;
    FindingSink& sink_;
    PolicyDocument aside_; ///< without such entries
    std::vector<PolicyView> asideViews_;
    std::optional<PolicyList> asidePolicies_;
};

} // namespace

void checkGroup7(const PolicyDocument& document, const std::vector<const Snapshot*>& machines,
                 FindingSink& sink) {
    if (hasKindEntries(document.text)) {
        KindMachines checks(document, sink);
        for (const Snapshot* machine : machines) {
            if (checks.isGood()) {
                checks.check(*machine);
            }
        }
        return;
    }
    SilentReport silent;
    const PolicyFile file =
        readPolicies(document.text, ControllerCatalogue(), PolicyOptions(), silent);
    if (!file.policies || file.policies->count() != document.policies.size()) {
        return; // what zolex refuses is told already
    }
    const std::vector<PolicyView> views = viewPolicies(document);
    for (const Snapshot* machine : machines) {
        OneMachine checks(*machine, sink);
        checks.check(views, *file.policies);
        checks.finish();
    }
}

} // namespace zolex::companion
