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
            checkController(machine, models_, sink_);
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
