#include "commands/CommandLines.h"
#include "companion/binding/BoundPolicies.h"
#include "companion/binding/FamilyTypes.h"
#include "companion/binding/WrittenPlaces.h"
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

/// Checks the policies of a good file against a machine.
class OneMachine {
  public:
    OneMachine(const Snapshot& snapshot, FindingSink& sink) : snapshot_(snapshot), sink_(&sink) {
        checkMachine(snapshot);
    }

    /// All controllers, by the same policies.
    void check(const std::vector<PolicyView>& views, const PolicyList& policies) {
        for (const ControllerSnapshot& detail : snapshot_.details) {
            check(detail, views, policies, std::string());
        }
    }

    /// One controller; what is found goes to `sink`.
    void check(const ControllerSnapshot& detail, const std::vector<PolicyView>& views,
               const PolicyList& policies, FindingSink& sink, const std::string& uncovered = {}) {
        FindingSink* const own = std::exchange(sink_, &sink);
        check(detail, views, policies, uncovered);
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
               const PolicyList& policies, const std::string& uncovered) {
        const RAIDController* controller = snapshot_.controllers.controller(detail.index);
        if (detail.index == ControllerSnapshot::noRecord) {
            return; // none of those that zolex runs commands on
        }
        if (detail.failed || controller == nullptr) {
            leaveOut();
            return;
        }
        SilentReport silent;
        const ControllerPlan plan = planController(*controller, detail.number, policies,
                                                   snapshot_.machine, PlanOptions(), silent);
        MachineCase machine{snapshot_, detail, *controller, plan, views, nullptr};
        machine.uncovered = uncovered;
        if (plan.policyIndex >= 0) {
            machine.policy = &views.at(static_cast<std::size_t>(plan.policyIndex));
        }
        checkController(machine, models_, *sink_);
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
    BoundFindings(const PolicyDocument& document, const BoundPolicies& bound, FindingSink& sink)
        : places_(document.text, bound), sink_(sink) {}

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
            Finding written = finding;
            places_.move(written);
            Finding& added =
                sink_.add(written.code, written.start, written.end, written.summary, written.help);
            added.severity = written.severity;
            added.refusedBy = written.refusedBy;
            added.detail = written.detail;
            added.otherStart = written.otherStart;
            added.otherEnd = written.otherEnd;
            added.other = written.other;
            told_.push_back(finding);
        }
    }

    WrittenPlaces places_;
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
        const PolicyFile file = readPolicies(withoutFamilyTypes(aside_.text), ControllerCatalogue(),
                                             PolicyOptions(), silent);
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
        const PolicyFile file = readPolicies(withoutFamilyTypes(bound.text), ControllerCatalogue(),
                                             PolicyOptions(), silent);
        FindingSink own(document_.file);
        machine.check(detail, viewPolicies(boundDocument), *file.policies, own, bound.uncovered);
        BoundFindings findings(document_, bound, sink_);
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
    const PolicyFile file = readPolicies(withoutFamilyTypes(document.text), ControllerCatalogue(),
                                         PolicyOptions(), silent);
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
