// Going on with a run that was interrupted, or that stopped.

#include "companion/execution/Apply.h"

#include "companion/execution/ApplyCodes.h"
#include "companion/execution/PlanRun.h"
#include "companion/execution/ResumeDecision.h"
#include "companion/execution/RunCodes.h"
#include "companion/text/Terminal.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace zolex::companion {

namespace {

/// What a journal says of one step.
struct StepHistory {
    LastEvent last = LastEvent::none;
    std::int32_t attempts = 0;
    bool mayHaveRun = false; ///< its command was started, or may have been
    ProcessIdentity child;   ///< of the last attempt, when its end was not seen
};

/// What a journal says of all steps, by their numbers.
class StepHistories {
  public:
    StepHistories(const JournalHistory& history, std::int32_t steps)
        : steps_(static_cast<std::size_t>(std::max(steps, 0)) + 1) {
        for (const JournalEntry& entry : history.entries) {
            std::visit([this](const auto& event) { take(event); }, entry.event);
        }
    }

    [[nodiscard]] const StepHistory& of(const PlanStep& step) const {
        return steps_.at(static_cast<std::size_t>(step.step));
    }
    [[nodiscard]] bool hasAgreed() const { return hasAgreed_; }
    [[nodiscard]] bool changedSomething() const {
        return std::any_of(steps_.begin(), steps_.end(),
                           [](const StepHistory& step) { return step.mayHaveRun; });
    }

  private:
    void take(const JournalAgreed& /*event*/) { hasAgreed_ = true; }
    void take(const JournalStepStarted& event) {
        if (StepHistory* const step = stepAt(event.step)) {
            step->last = LastEvent::started;
            step->child = {};
            ++step->attempts;
            isOpenSince_ = step->mayHaveRun;
            step->mayHaveRun = true;
        }
    }
    void take(const JournalChild& event) {
        if (StepHistory* const step = stepAt(event.step)) {
            step->child = event.process;
        }
    }
    void take(const JournalStepEnded& event) {
        StepHistory* const step = stepAt(event.step);
        if (step == nullptr || event.outcome == ChildOutcome::stillRunning) {
            return; // how it ended was not seen
        }
        const bool wasStarted =
            event.outcome == ChildOutcome::ended || event.outcome == ChildOutcome::notClosed;
        step->last = event.accepted ? LastEvent::done : LastEvent::refused;
        step->child = {};
        step->mayHaveRun = wasStarted || isOpenSince_;
    }
    void take(const JournalStepFoundDone& event) {
        if (StepHistory* const step = stepAt(event.step)) {
            step->last = LastEvent::done;
            step->child = {};
        }
    }
    template <typename Other>
    void take(const Other& /*event*/) {}

    StepHistory* stepAt(std::int32_t number) {
        const auto index = static_cast<std::size_t>(number);
        return number > 0 && index < steps_.size() ? &steps_[index] : nullptr;
    }

    std::vector<StepHistory> steps_;
    bool hasAgreed_ = false;
    bool isOpenSince_ = false; ///< an earlier attempt of the step may have run
};

/// Whether of the layout in front of a step some is gone, and nothing is new.
bool isPartOf(const Layout& before, const ControllerPlanning& planning, const Facts& facts) {
    Layout whole = before;
    for (LayoutGroup& group : whole.groups) {
        group.isListed = true;
    }
    for (LayoutSpare& spare : whole.spares) {
        spare.isListed = true;
    }
    const Layout found = capturedLayout(facts);
    const Comparison comparison =
        compareLayouts(facts, found, whole, {planning.controller.utility});
    return comparison.equivalences.empty() &&
           std::includes(before.foreignDrives.begin(), before.foreignDrives.end(),
                         found.foreignDrives.begin(), found.foreignDrives.end(),
                         locationStandsBefore) &&
           std::all_of(comparison.differences.begin(), comparison.differences.end(),
                       [](const Difference& each) { return each.attribute == "missing"; });
}

class Resumption {
  public:
    Resumption(PlanRun& run, const JournalHistory& history)
        : run_(run), history_(history), steps_(history, run.totalSteps()) {
        run_.isResumed = true;
        run_.changedSomething = steps_.changedSomething();
        for (ControllerProgress& progress : run_.controllers) {
            const std::vector<PlanStep>& steps = progress.planning->steps;
            for (std::size_t i = 0; i < steps.size(); ++i) {
                const StepHistory& step = steps_.of(steps[i]);
                progress.attempts[i] = step.attempts;
                if (step.last != LastEvent::none) {
                    progress.isBegun = true;
                    progress.next = step.last == LastEvent::done ? i + 1 : i;
                }
            }
        }
    }

    ApplyEnd resume() {
        if (const JournalEnd* const end = history_.end();
            end != nullptr && end->exitCode == apply_code::done) {
            ApplyEnd refused = run_.refuse(
                {apply_code::refused,
                 "this run ended as planned, at " + printable(history_.entries.back().at),
                 {},
                 {planAgainHelp(run_.plan)},
                 std::string(run_problem::appliedBefore)});
            refused.results = end->results;
            return refused;
        }
        if (std::optional<RunFault> fault = prepare()) {
            return run_.refuse(std::move(*fault));
        }
        if (!run_.openJournal() || !run_.writeCapture(CapturePurpose::resume, snapshot_)) {
            return run_.refuse(noJournal());
        }
        takeUpOutput();
        for (ControllerProgress& progress : run_.controllers) {
            judge(progress);
        }
        if (!steps_.hasAgreed() && !run_.isStopped()) {
            if (std::optional<RunFault> fault = run_.agree()) {
                return run_.refuse(std::move(*fault));
            }
            if (std::optional<RunFault> fault = changeSinceAsked()) {
                return run_.refuse(std::move(*fault));
            }
            if (!run_.writeAgreed()) {
                return run_.refuse(noJournal());
            }
        }
        return run_.carryOut();
    }

  private:
    /// Everything before the journal is written to.
    std::optional<RunFault> prepare() {
        if (std::optional<RunFault> fault = historyFault()) {
            return fault;
        }
        if (std::optional<RunFault> fault = run_.lock()) {
            return fault;
        }
        if (std::optional<RunFault> fault = waitForChildren()) {
            return fault;
        }
        try {
            if (std::optional<RunFault> fault = waitForRest()) {
                return fault;
            }
        } catch (const NoSuchController& missing) {
            return RunFault{apply_code::refused,
                            "this is another machine than the one planned for",
                            {missing.what()},
                            {planAgainHelp(run_.plan)},
                            std::string(run_problem::anotherMachine)};
        }
        if (std::optional<RunFault> fault = identityFault(snapshot_, run_.plan)) {
            return fault;
        }
        if (std::optional<RunFault> fault =
                drivesFault(snapshot_, run_.plan, run_.terms.controllers)) {
            return fault;
        }
        return run_.standingFault(snapshot_);
    }

    /// What was judged is no longer there when somebody had to be waited for.
    std::optional<RunFault> changeSinceAsked() {
        if (!run_.hasWaitedForConsent()) {
            return std::nullopt;
        }
        const std::string before = fingerprintOf(snapshot_).state;
        snapshot_ = run_.capture(CapturePurpose::resume);
        if (std::optional<RunFault> fault = captureFault(snapshot_)) {
            return fault;
        }
        if (std::optional<RunFault> fault = identityFault(snapshot_, run_.plan)) {
            return fault;
        }
        if (fingerprintOf(snapshot_).state != before) {
            return RunFault{apply_code::refused,
                            "the machine has changed while it was asked for consent",
                            {},
                            {run_.resumeHelp("looks again and goes on")},
                            std::string(run_problem::machineChanged)};
        }
        return run_.standingFault(snapshot_);
    }

    [[nodiscard]] std::optional<RunFault> historyFault() const {
        const JournalBegin& begin = history_.begin();
        if (begin.planHash != run_.terms.planHash || begin.planId != run_.plan.id) {
            return RunFault{apply_code::refused,
                            "the journal is of another plan than the file has now",
                            {"the journal is of " + planText(begin.planId, begin.planHash),
                             "the file has " + planText(run_.plan.id, run_.terms.planHash)},
                            {"name the plan that was begun, or plan again"},
                            std::string(run_problem::anotherPlan)};
        }
        return std::nullopt;
    }

    static std::string planText(const std::string& id, const std::string& hash) {
        return printable(id) + ", SHA-256 " + printable(hash);
    }

    std::optional<RunFault> waitForChildren() {
        for (const ControllerProgress& progress : run_.controllers) {
            for (const PlanStep& step : progress.planning->steps) {
                if (std::optional<RunFault> fault = run_.waitForOld(
                        step, progress.planning->controller.utility, steps_.of(step).child)) {
                    return fault;
                }
            }
        }
        // One that is not in the journal any more, or not yet.
        PlanStep step;
        std::string utility;
        for (const ControllerProgress& progress : run_.controllers) {
            for (const PlanStep& each : progress.planning->steps) {
                if (steps_.of(each).last == LastEvent::started) {
                    step = each;
                    utility = progress.planning->controller.utility;
                }
            }
        }
        const ProcessIdentity other = run_.locks().oldChild();
        std::optional<RunFault> fault = run_.waitForOld(step, utility, other);
        if (!fault) {
            run_.locks().note({});
        }
        return fault;
    }

    /// Captures until two captures are equal.
    std::optional<RunFault> waitForRest() {
        constexpr int most = 5;
        std::string state;
        for (int i = 0; i < most; ++i) {
            if (i > 0) {
                run_.system.sleep(run_.terms.settle);
            }
            snapshot_ = run_.capture(CapturePurpose::resume);
            if (run_.system.interruption() != Interruption::none) {
                return RunFault{run_.changedSomething ? apply_code::stopped : apply_code::refused,
                                "interrupted before anything more was done",
                                {},
                                {run_.resumeHelp("goes on")},
                                std::string(run_problem::runInterrupted)};
            }
            if (std::optional<RunFault> fault = captureFault(snapshot_)) {
                return fault;
            }
            const std::string now = fingerprintOf(snapshot_).state;
            if (now == state) {
                return std::nullopt;
            }
            state = now;
        }
        return RunFault{apply_code::notPossible,
                        "the controller is still at work: what stands changes from one look to "
                        "the next",
                        {},
                        {run_.resumeHelp("looks again")},
                        std::string(run_problem::notAtRest)};
    }

    [[nodiscard]] RunFault noJournal() const {
        return {run_.changedSomething ? apply_code::stopped : apply_code::notPossible,
                "the journal " + printable(run_.terms.journalFile) +
                    " cannot be written: nothing more was done",
                {},
                {"make room for it; then " + run_.resumeHelp("goes on")},
                std::string(run_problem::journalNotWritten)};
    }

    /// What a command wrote whose end nobody has seen.
    void takeUpOutput() {
        for (const ControllerProgress& progress : run_.controllers) {
            for (const PlanStep& step : progress.planning->steps) {
                if (steps_.of(step).last != LastEvent::started) {
                    continue;
                }
                std::optional<std::string> output = run_.takeOutput(mostJournalOutput);
                if (!output || output->empty()) {
                    run_.removeOutput();
                    return;
                }
                JournalStepEnded ended;
                ended.step = step.step;
                ended.outcome = ChildOutcome::stillRunning;
                ended.outputBytes = output->size();
                ended.output = std::move(*output);
                if (run_.write(ended)) {
                    run_.removeOutput();
                }
                return;
            }
        }
        run_.removeOutput(); // the journal has it
    }

    /// Where the run goes on with one controller.
    void judge(ControllerProgress& progress) {
        const ControllerPlanning& planning = *progress.planning;
        const ControllerSnapshot* const found =
            capturedController(snapshot_, planning.controller.number);
        if (planning.steps.empty() || found == nullptr) {
            return;
        }
        ResumeCase at;
        std::size_t k = 0;
        for (std::size_t i = 0; i < planning.steps.size(); ++i) {
            const StepHistory& step = steps_.of(planning.steps[i]);
            if (step.last != LastEvent::none) {
                k = i;
                at.last = step.last;
            }
        }
        const PlanStep& step = planning.steps[k];
        at.isLastStep = k + 1 == planning.steps.size();
        at.isRepeatable = step.isRepeatable;
        at.isClear = step.action == "clear";
        at.standsBefore = standsAfterSteps(run_.plan, planning, k, found->facts);
        at.standsAfter = standsAfterSteps(run_.plan, planning, k + 1, found->facts);
        at.isPartOfBefore = isPartOf(layoutAfterSteps(planning, k), planning, found->facts);
        const ResumeAction action = resumeAction(at);
        const bool isAgain = action == ResumeAction::begin || action == ResumeAction::again;
        if (action != ResumeAction::stop &&
            isNumberedOtherwise(progress, isAgain ? k : k + 1, found->facts)) {
            return;
        }
        carryOn(progress, k, action, at, *found);
    }

    /// Whether what stands is what was foreseen, but for the numbers by which the commands of a
    /// family name it, or for logical drives that were made anew by somebody else.
    bool isNumberedOtherwise(ControllerProgress& progress, std::size_t done, const Facts& facts) {
        const ControllerPlanning& planning = *progress.planning;
        std::optional<NumbersFault> found = numbersFault(run_.plan, planning, done, facts);
        if (!found) {
            return false;
        }
        progress.next = done;
        progress.failedStep = planning.steps[std::min(done, planning.steps.size() - 1)].step;
        run_.failController(progress, std::move(found->why), std::move(found->fault));
        return true;
    }

    void carryOn(ControllerProgress& progress, std::size_t k, ResumeAction action,
                 const ResumeCase& at, const ControllerSnapshot& found) {
        switch (action) {
        case ResumeAction::begin:
        case ResumeAction::again:
            progress.next = k;
            return;
        case ResumeAction::foundDone:
            run_.write(JournalStepFoundDone{progress.planning->steps[k].step,
                                            "what stands is what was foreseen behind it"});
            progress.next = k + 1;
            return;
        case ResumeAction::behind:
        case ResumeAction::verify:
            progress.next = k + 1;
            return;
        case ResumeAction::stop:
            break;
        }
        progress.next = at.last == LastEvent::done ? k + 1 : k;
        tellElsewhere(progress, k, at, found);
    }

    /// What stands is none of the layouts that were foreseen there.
    void tellElsewhere(ControllerProgress& progress, std::size_t k, const ResumeCase& at,
                       const ControllerSnapshot& found) {
        const ControllerPlanning& planning = *progress.planning;
        const std::string step = "step " + std::to_string(planning.steps[k].step);
        const std::string name = "controller " + std::to_string(planning.controller.number);
        RunFault fault;
        fault.exitCode = apply_code::stopped;
        fault.code = run_problem::standsElsewhere;
        fault.what =
            at.last == LastEvent::done ? "something else has changed " + name + " since " + step
            : at.last == LastEvent::none
                ? "something else has changed " + name + " since it was planned for"
                : "what stands on " + name + " is foreseen neither before nor after " + step;
        tellNearest(planning, found.facts, progress.next, fault);
        fault.help = {planAgainHelp(run_.plan)};
        progress.failedStep = at.last == LastEvent::none ? 0 : planning.steps[k].step;
        run_.failController(progress, "what stands is not what the plan foresaw there",
                            std::move(fault));
    }

    /// `expected`: behind how many steps the run is to be.
    static void tellNearest(const ControllerPlanning& planning, const Facts& facts,
                            std::size_t expected, RunFault& fault) {
        const Layout found = capturedLayout(facts);
        const auto differencesAt = [&](std::size_t steps) {
            return compareLayouts(facts, found, layoutAfterSteps(planning, steps),
                                  {planning.controller.utility})
                .differences;
        };
        std::size_t nearest = expected;
        std::vector<Difference> fewest = differencesAt(expected);
        for (std::size_t i = 0; i <= planning.steps.size(); ++i) {
            std::vector<Difference> differences = differencesAt(i);
            if (differences.size() < fewest.size()) {
                nearest = i;
                fewest = std::move(differences);
            }
        }
        fault.details.push_back(
            "nearest to what the plan foresees " +
            (nearest == 0 ? "before its first step"
                          : "after step " + std::to_string(planning.steps[nearest - 1].step)) +
            (fewest.empty() ? "" : ", but for:"));
        for (const Difference& difference : fewest) {
            fault.details.push_back(differenceText(difference));
        }
    }

    PlanRun& run_;
    const JournalHistory& history_;
    const StepHistories steps_;
    Snapshot snapshot_;
};

/// What is asked for is what the run was begun with.
ApplyTerms termsOf(const ApplyTerms& terms, const JournalBegin& begin) {
    ApplyTerms same = terms;
    same.controllers = begin.controllers;
    same.allowSkipped = begin.allowSkipped;
    return same;
}

} // namespace

ApplyEnd resumePlan(Platform& machine, const CaptureRequest& capture, ExecutionSystem& system,
                    const MachinePlan& plan, const JournalHistory& history, const ApplyTerms& terms,
                    ApplyListener& listener) {
    try {
        const ApplyTerms same = termsOf(terms, history.begin());
        return carriedOut(machine, capture, system, plan, same, listener,
                          [&](PlanRun& run) { return Resumption(run, history).resume(); });
    } catch (const std::exception&) {
        return noMemoryEnd(false);
    }
}

} // namespace zolex::companion
