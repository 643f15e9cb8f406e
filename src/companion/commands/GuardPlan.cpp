#include "companion/commands/GuardPlan.h"

#include "commands/CommandLines.h"
#include "companion/commands/GuardCodes.h"
#include "companion/picture/Changes.h"
#include "companion/planning/ResetPlan.h"
#include "companion/planning/Strategy.h"
#include "companion/text/Terminal.h"
#include "driver/CommandList.h"
#include "foundation/Report.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

bool isIn(const std::vector<std::string>& list, const std::string& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// Judges a run, controller by controller.
class GuardPlanner {
  public:
    GuardPlanner(const Snapshot& snapshot, const GuardedRun& run, const GuardTerms& terms)
        : snapshot_(snapshot), run_(run), terms_(terms) {}

    GuardPlan plan() {
        result_.findings = run_.notes;
        result_.erased.fingerprint = fingerprintOf(snapshot_);
        if (run_.resets) {
            planErasing();
        }
        if (run_.plans) {
            planPolicies();
        }
        letPass(result_.findings, terms_);
        return std::move(result_);
    }

  private:
    void planErasing() {
        std::vector<std::int32_t> numbers;
        if (run_.resetNumber != GuardedRun::everyController) {
            numbers.push_back(run_.resetNumber);
        }
        result_.erased = planReset(snapshot_, numbers, "");
        add(result_.erased.diagnostics, 0);
        for (const ControllerPlanning& controller : result_.erased.controllers) {
            const std::int32_t number = controller.controller.number;
            add(controller.diagnostics, number);
            result_.ends[number] = controller.after;
            if (!run_.plans) {
                say(controller, "is erased");
            }
        }
    }

    void planPolicies() {
        PlanRequest request;
        request.policiesFile = run_.policiesFile;
        request.policiesText = terms_.policiesText;
        request.classDefaults = run_.classDefaults;
        request.strategy = StrategyWish::rebuild; // what stands is no matter to zolex's planning
        request.accept = terms_.accept;
        request.command = "zolexctl guard";
        const MachinePlan wanted = planMachine(snapshot_, request);
        add(wanted.policiesFindings, 0);
        if (!run_.resets) {
            add(wanted.diagnostics, 0);
        }
        for (const ControllerPlanning& controller : wanted.controllers) {
            judge(controller);
        }
        countLines(wanted);
    }

    void judge(const ControllerPlanning& controller) {
        const std::int32_t number = controller.controller.number;
        const bool isErased = run_.resetsController(number);
        switch (controller.disposition) {
        case Disposition::skipped:
            skip(controller);
            break;
        case Disposition::refused:
            add(controller.diagnostics, number);
            return;
        case Disposition::already:
        case Disposition::planned:
            add(controller.diagnostics, number);
            break;
        }
        addWarnings(controller);
        if (controller.disposition != Disposition::skipped && run_.deploys) {
            tellOtherLines(controller);
            if (!isErased) {
                tellDrivesInUse(controller);
            }
            expect(controller, isErased);
        }
        say(controller, std::string(isErased ? "is erased" : "stays as it is") +
                            (controller.disposition == Disposition::skipped || !run_.deploys ? ""
                             : isErased ? ", and configured by " + policyOf(controller)
                                        : ", and gets what " + policyOf(controller) + " adds"));
    }

    [[nodiscard]] std::string policyOf(const ControllerPlanning& controller) const {
        return run_.classDefaults ? "the defaults of zolex" : printable(controller.policy);
    }

    /// zolex passes over it, and over whatever it has erased on it.
    void skip(const ControllerPlanning& controller) {
        const std::int32_t number = controller.controller.number;
        const RAIDController* const record =
            snapshot_.controllers.controller(controller.controller.index);
        const bool hasDrives = record != nullptr && record->numberOfDrives() > 0;
        const bool endsRun = hasDrives ? run_.needsPolicy : run_.needsDrives;
        Finding finding = guardFinding(
            guard_problem::skippedController,
            "zolex would skip it: " + printable(controller.because),
            endsRun ? std::vector<std::string>{"add a policy for it, or take the switch out"}
                    : std::vector<std::string>{"add a policy for it: AppliesTo.1 = c:" +
                                               std::to_string(number)});
        if (endsRun) {
            finding.detail =
                hasDrives ? "with /e1 zolex ends with 1 when the others have been configured"
                          : "with /e3 zolex ends with 3 when the others have been configured";
        } else {
            finding.refusedBy = RefusedBy::nobody;
        }
        add({finding}, number);
    }

    /// Warnings of a plan that are faults of zolex's run.
    void addWarnings(const ControllerPlanning& controller) {
        std::vector<Finding> warnings = controller.warnings;
        for (Finding& finding : warnings) {
            if (finding.code == "ZX405" && run_.deploys) {
                finding.severity = Severity::error;
                finding.refusedBy = RefusedBy::plan;
            }
        }
        add(warnings, controller.controller.number);
    }

    /// Lines by which zolex names other drives than planned.
    void tellOtherLines(const ControllerPlanning& controller) {
        for (const PlanStep& step : controller.steps) {
            const bool creates = step.action.starts_with("create-");
            if (creates && !step.deletes && !step.differsFromZolex.empty() &&
                step.action != "create-logical-drive") {
                add({guardFinding(guard_problem::endsElsewhere,
                                  "zolex's own command is another than " + step.command,
                                  {"zolexctl plan makes the right one"})},
                    controller.controller.number);
                result_.findings.back().detail = step.differsFromZolex;
            }
        }
    }

    void tellDrivesInUse(const ControllerPlanning& controller) {
        const Layout& before = controller.before;
        std::vector<std::string> inUse = before.foreignDrives;
        for (const LayoutGroup& group : before.groups) {
            const std::vector<std::string> drives = groupDrives(group);
            inUse.insert(inUse.end(), drives.begin(), drives.end());
        }
        for (const LayoutSpare& spare : before.spares) {
            inUse.push_back(spare.location);
        }
        std::vector<std::string> needed;
        const auto need = [&](const std::string& location) {
            if (isIn(inUse, location) && !isIn(needed, location)) {
                needed.push_back(location);
            }
        };
        for (const PlannedArray& array : controller.arrays) {
            for (const PlannedDrive& drive : array.drives) {
                need(drive.location);
            }
        }
        for (const PlannedSpare& spare : controller.spares) {
            need(spare.location);
        }
        if (needed.empty()) {
            return;
        }
        std::vector<std::string> help;
        CompareTerms terms;
        terms.utility = controller.controller.utility;
        const bool standsAlready =
            compareLayouts(controller.controller.facts, before, controller.after, terms).result !=
            Sameness::different;
        if (standsAlready) {
            help.emplace_back("there is nothing to do: the controller stands as the policies say");
        } else {
            help.emplace_back("zolexctl plan " + planned() + " removes no more than is needed");
            help.emplace_back("with /r zolex erases every controller first, or one: /r:" +
                              std::to_string(controller.controller.number));
        }
        add({guardFinding(guard_problem::drivesInUse,
                          "zolex would stop with 11: " + withRanges(driveList(needed)) +
                              (needed.size() == 1 ? " is in use" : " are in use"),
                          std::move(help))},
            controller.controller.number);
    }

    [[nodiscard]] std::string planned() const {
        return run_.classDefaults ? "--default" : printable(run_.policiesFile);
    }

    void expect(const ControllerPlanning& controller, bool isErased) {
        Layout end = controller.after;
        if (!isErased) {
            const Layout& before = controller.before;
            end.groups.insert(end.groups.end(), before.groups.begin(), before.groups.end());
            end.spares.insert(end.spares.end(), before.spares.begin(), before.spares.end());
            end.foreignDrives = before.foreignDrives;
        }
        result_.ends[controller.controller.number] = std::move(end);
    }

    /// zolex runs the first commands of all controllers together, and says nothing of the rest.
    void countLines(const MachinePlan& wanted) {
        std::vector<std::string> lines;
        for (const ControllerPlanning& controller : wanted.controllers) {
            const RAIDController* const record =
                snapshot_.controllers.controller(controller.controller.index);
            if (!controller.configuration || record == nullptr) {
                continue;
            }
            SilentReport silent;
            const CommandLines made = commandLines(*record, controller.controller.number,
                                                   *controller.configuration, {}, silent);
            for (const CString& line : made.lines) {
                lines.emplace_back(text::trim(line.view()));
            }
        }
        if (!run_.deploys || lines.size() <= CommandList::fetchable) {
            return;
        }
        Finding finding;
        finding.code = "ZX601";
        finding.refusedBy = RefusedBy::plan;
        finding.summary = "zolex runs " + std::to_string(CommandList::fetchable) + " commands of " +
                          std::to_string(lines.size()) + ", and says that all succeeded";
        for (std::size_t i = CommandList::fetchable; i < lines.size(); ++i) {
            finding.detail += (finding.detail.empty() ? "left out: " : "\nleft out: ") + lines[i];
        }
        finding.help.push_back("zolexctl plan " + planned() + " makes all of them");
        result_.findings.push_back(std::move(finding));
    }

    /// Adds findings of a controller, with its number where there are more.
    void add(const std::vector<Finding>& findings, std::int32_t number) {
        const bool isOneOfMany = number > 0 && snapshot_.details.size() > 1;
        for (Finding finding : findings) {
            if (isOneOfMany) {
                finding.summary.insert(0, "controller " + std::to_string(number) + ": ");
            }
            const bool isTold = std::any_of(
                result_.findings.begin(), result_.findings.end(), [&finding](const Finding& each) {
                    return each.code == finding.code && each.summary == finding.summary &&
                           each.start == finding.start;
                });
            if (!isTold) {
                result_.findings.push_back(std::move(finding));
            }
        }
    }

    void say(const ControllerPlanning& controller, const std::string& what) {
        result_.lines.push_back("controller " + std::to_string(controller.controller.number) +
                                "  " + printable(controller.controller.model) + "  " + what);
    }

    const Snapshot& snapshot_;
    const GuardedRun& run_;
    const GuardTerms& terms_;
    GuardPlan result_;
};

} // namespace

bool GuardPlan::isRefused() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.severity == Severity::error; });
}

GuardPlan planGuardedRun(const Snapshot& snapshot, const GuardedRun& run, const GuardTerms& terms) {
    return GuardPlanner(snapshot, run, terms).plan();
}

void letPass(std::vector<Finding>& findings, const GuardTerms& terms) {
    constexpr std::string_view begin = "to let it pass: ";
    for (Finding& finding : findings) {
        std::erase_if(finding.help,
                      [&](const std::string& help) { return help.starts_with(begin); });
        const bool isAcceptable =
            finding.refusedBy == RefusedBy::nobody || finding.refusedBy == RefusedBy::utility;
        if (finding.severity != Severity::error || !isAcceptable) {
            continue;
        }
        if (std::any_of(terms.accept.begin(), terms.accept.end(), [&](const std::string& id) {
                return text::equalsNoCase(id, finding.code);
            })) {
            finding.severity = Severity::warning;
            finding.detail += finding.detail.empty() ? "accepted" : "; accepted";
            continue;
        }
        std::string ids;
        for (const std::string& id : terms.accept) {
            ids += id + ",";
        }
        finding.help.push_back(std::string(begin) + "zolexctl guard --accept " + ids +
                               finding.code + " -- " + typedRun(terms.zolexWords));
    }
}

} // namespace zolex::companion
