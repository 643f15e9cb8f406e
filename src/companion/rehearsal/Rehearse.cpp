#include "companion/rehearsal/Rehearse.h"

#include "companion/machine/Fingerprint.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/machine/System.h"
#include "companion/planning/PlanFaults.h"
#include "companion/rehearsal/CopyMaker.h"
#include "companion/rehearsal/FaultDrill.h"
#include "companion/text/Terminal.h"
#include "foundation/Text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

/// The utility's own words, bounded, without blank lines; each line begins with "\n".
std::string wordsOf(std::string_view output) {
    constexpr std::size_t mostLines = 12;
    constexpr std::size_t longest = 200;
    std::string words;
    std::size_t lines = 0;
    while (!output.empty() && lines < mostLines) {
        const std::size_t end = std::min(output.find('\n'), output.size());
        const std::string_view line = text::trim(output.substr(0, end), " \t\r");
        output.remove_prefix(std::min(end + 1, output.size()));
        if (!line.empty()) {
            words += "\n" + printable(line.substr(0, longest));
            ++lines;
        }
    }
    return words;
}

std::string stepText(const PlanStep& step) {
    return "step " + std::to_string(step.step);
}

/// "LD 0, strip_size_bytes: would be 64 KB; planned is 128 KB".
std::string differenceLine(const Difference& difference) {
    const std::string volume =
        difference.logicalDrive.empty() ? "" : "LD " + difference.logicalDrive;
    const std::string where = difference.location.empty() ? volume : difference.location;
    return where + (where.empty() ? "" : ", ") + difference.attribute + ": would be " +
           (difference.found.empty() ? "none" : difference.found) + "; planned is " +
           (difference.wanted.empty() ? "none" : difference.wanted);
}

/// Plays the plan of one controller on its copy.
class ControllerRehearsal {
  public:
    ControllerRehearsal(MadeCopy made, ControllerPlanning& planning, Rehearsal& rehearsal,
                        bool everyFault)
        : copy_(std::move(*made.copy)), planning_(planning), rehearsal_(rehearsal),
          everyFault_(everyFault), facts_(std::move(made.facts)) {}

    /// Whether it ends as planned; what keeps it from that is told with the controller.
    bool run() {
        const bool isPlayed = play(false);
        if (!isPlayed || planning_.steps.empty()) {
            return isPlayed && compareEnd();
        }
        if (!isWhole()) {
            // A listing tells more together than in parts.
            copy_.restore(stages_.front().state);
            facts_ = copy_.capture();
            if (!play(true)) {
                return false;
            }
        }
        return compareEnd() && (!everyFault_ || drill());
    }

  private:
    /// Runs all steps; each time the whole copy is captured, or what has changed.
    bool play(bool isWhole) {
        stages_.clear();
        keepStage();
        for (PlanStep& step : planning_.steps) {
            const PlayedLine played = copy_.play(step.argv);
            if (!isAccepted(step, played)) {
                refuseStep(step, played);
                return false;
            }
            if (const std::string spare = copy_.doubtfulSpare(stages_.back().state);
                !spare.empty()) {
                rehearsal_.notDoneBecause.push_back(
                    "not rehearsed: controller " + std::to_string(planning_.controller.number) +
                    ": the hot spare " + spare + " is for some arrays alone, and may go with " +
                    stepText(step));
                return false;
            }
            facts_ =
                isWhole ? copy_.capture() : copy_.capture(stages_.back().state, std::move(facts_));
            keepStage();
            step.expectedAfter = stages_.back().layout;
            if (!step.isRepeatable && stages_.back().layout == stages_[stages_.size() - 2].layout) {
                refuse(problem::stepWithoutEffect, stepText(step) + " would change nothing",
                       step.command);
                return false;
            }
        }
        return true;
    }

    void keepStage() {
        stages_.push_back({copy_.state(), layoutHash(facts_)});
        const auto [entry, isNew] = rehearsal_.layouts.try_emplace(stages_.back().layout);
        if (isNew) {
            entry->second = layoutLines(capturedLayout(facts_));
        }
    }

    /// Whether the end is the same when all of it is read at once.
    bool isWhole() {
        facts_ = copy_.capture();
        return layoutHash(facts_) == stages_.back().layout;
    }

    bool compareEnd() {
        const Layout reached = capturedLayout(facts_);
        const Comparison comparison =
            compareLayouts(facts_, reached, planning_.after, {planning_.controller.utility});
        if (comparison.result != Sameness::different) {
            return true;
        }
        std::string detail;
        constexpr std::size_t most = 12;
        for (std::size_t i = 0; i < std::min(most, comparison.differences.size()); ++i) {
            detail += (i == 0 ? "" : "\n") + differenceLine(comparison.differences[i]);
        }
        refuse(problem::endsOtherwise, "the commands would end in another layout than planned",
               std::move(detail));
        return false;
    }

    bool drill() {
        const DrillResult result = drillFaults(copy_, planning_.steps, stages_);
        rehearsal_.faultsTried += result.faultsTried;
        rehearsal_.resumesAsPlanned += result.resumesAsPlanned;
        for (const std::int32_t step : result.notResumable) {
            rehearsal_.notResumable.push_back(step);
            planning_.warnings.push_back(problemFinding(
                problem::notResumable,
                "a run that stops at step " + std::to_string(step) + " could not be resumed"));
        }
        return true;
    }

    /// A family's utility says why in a line of its own.
    void refuseStep(const PlanStep& step, const PlayedLine& played) {
        refuse(problem::stepRefused,
               stepText(step) + " would be refused: " +
                   (played.why.empty() ? "exit code " + std::to_string(played.exitCode)
                                       : printable(played.why)),
               step.command + (played.why.empty() ? wordsOf(played.output) : ""));
        std::vector<std::string>& help = planning_.diagnostics.back().help;
        help.insert(help.begin(), played.help.begin(), played.help.end());
    }

    void refuse(std::string_view code, std::string summary, std::string detail) {
        Finding finding = problemFinding(code, std::move(summary), std::move(detail));
        finding.refusedBy = RefusedBy::plan;
        const std::string number = std::to_string(planning_.controller.number);
        finding.help.push_back("look at its drives: zolexctl show --controller " + number);
        planning_.disposition = Disposition::refused;
        planning_.because = finding.summary;
        planning_.diagnostics.push_back(std::move(finding));
    }

    VirtualCopy copy_;
    ControllerPlanning& planning_;
    Rehearsal& rehearsal_;
    bool everyFault_;
    Facts facts_; ///< of the copy as it is
    std::vector<RehearsalStage> stages_;
};

/// The captured controller that the plan is for; null when it is not in the snapshot.
const ControllerSnapshot* capturedOf(const Snapshot& snapshot, std::int32_t number) {
    const auto found =
        std::find_if(snapshot.details.begin(), snapshot.details.end(),
                     [number](const ControllerSnapshot& each) { return each.number == number; });
    return found == snapshot.details.end() ? nullptr : &*found;
}

MadeCopy copyOf(const Snapshot& snapshot, std::int32_t number) {
    const ControllerSnapshot* const captured = capturedOf(snapshot, number);
    const RAIDController* const record =
        captured == nullptr ? nullptr : snapshot.controllers.controller(captured->index);
    if (captured != nullptr && captured->index == ControllerSnapshot::noRecord) {
        return copyController(*captured, 0);
    }
    if (record == nullptr) {
        MadeCopy none;
        none.because = "it was not captured";
        return none;
    }
    const ControllerSnapshot* const first = &*std::find_if(
        snapshot.details.begin(), snapshot.details.end(),
        [&](const ControllerSnapshot& each) { return each.utility == captured->utility; });
    if (captured->utility == "HYPERWIN" && first != captured) {
        MadeCopy none;
        none.because = "HYPERWIN's commands are for the first of its controllers alone";
        return none;
    }
    return copyController(*captured, record->type());
}

void rehearseAll(const Snapshot& snapshot, MachinePlan& plan, bool everyFault) {
    Rehearsal& rehearsal = plan.rehearsal;
    bool endsAsPlanned = true;
    for (ControllerPlanning& planning : plan.controllers) {
        if (planning.disposition != Disposition::planned || planning.steps.empty()) {
            continue;
        }
        MadeCopy made = copyOf(snapshot, planning.controller.number);
        if (!made.copy) {
            rehearsal.notDoneBecause.push_back("not rehearsed: controller " +
                                               std::to_string(planning.controller.number) + ": " +
                                               made.because);
            continue;
        }
        endsAsPlanned =
            ControllerRehearsal(std::move(made), planning, rehearsal, everyFault).run() &&
            endsAsPlanned;
        namePolicies(planning.diagnostics, plan.policiesFile);
        namePolicies(planning.warnings, plan.policiesFile);
    }
    rehearsal.done = rehearsal.notDoneBecause.empty();
    rehearsal.endsAsPlanned = rehearsal.done && endsAsPlanned;
}

} // namespace

void rehearse(const Snapshot& snapshot, MachinePlan& plan, bool everyFault) {
    const std::chrono::milliseconds begin = system::elapsed();
    plan.rehearsal = Rehearsal();
    if (!plan.isApplicable()) {
        plan.rehearsal.notDoneBecause.emplace_back(
            "not rehearsed: the plan cannot be carried out as it stands");
        return;
    }
    if (!plan.changesSomething()) {
        plan.rehearsal.notDoneBecause.emplace_back("not rehearsed: there is nothing to do");
        return;
    }
    rehearseAll(snapshot, plan, everyFault);
    if (!plan.isApplicable()) {
        plan.consent.clear(); // nothing is lost by what cannot be carried out
    }
    plan.rehearsal.durationMs = (system::elapsed() - begin).count();
}

} // namespace zolex::companion
