#include "companion/execution/Apply.h"

#include "companion/execution/ApplyCodes.h"
#include "companion/execution/PlanRun.h"
#include "companion/execution/RunCodes.h"
#include "companion/planning/Steps.h"
#include "companion/text/Terminal.h"

#include <algorithm>
#include <utility>

namespace zolex::companion {

namespace {

/// What of the plan itself keeps it from being carried out.
std::optional<RunFault> planFault(const MachinePlan& plan, const ApplyTerms& terms) {
    if (!plan.isApplicable()) {
        RunFault fault{apply_code::notPossible,
                       "the plan cannot be carried out as it stands",
                       {},
                       {planAgainHelp(plan)},
                       std::string(run_problem::planNotApplicable)};
        for (const std::vector<Finding>* const findings :
             {&plan.policiesFindings, &plan.diagnostics}) {
            for (const Finding& finding : *findings) {
                if (finding.severity == Severity::error) {
                    fault.details.push_back(printable(finding.summary) + " [" + finding.code + "]");
                }
            }
        }
        for (const ControllerPlanning& planning : plan.controllers) {
            if (planning.disposition == Disposition::refused) {
                fault.details.push_back("controller " + std::to_string(planning.controller.number) +
                                        ": " + printable(planning.because));
            }
        }
        return fault;
    }
    for (const std::int32_t number : terms.controllers) {
        if (controllersAskedFor(plan, {number}).empty()) {
            return RunFault{apply_code::notPossible,
                            "the plan has no controller " + std::to_string(number),
                            {},
                            {planAgainHelp(plan)},
                            std::string(run_problem::planNotApplicable)};
        }
    }
    return std::nullopt;
}

std::optional<RunFault> skippedFault(const PlanRun& run) {
    RunFault fault;
    for (const ControllerProgress& progress : run.controllers) {
        const ControllerPlanning& planning = *progress.planning;
        if (planning.disposition == Disposition::skipped && !run.terms.allowSkipped) {
            fault.details.push_back("controller " + std::to_string(planning.controller.number) +
                                    " is skipped: " + printable(planning.because));
        }
    }
    if (fault.details.empty()) {
        return std::nullopt;
    }
    fault.exitCode = apply_code::refused;
    fault.what = "not every controller would be configured";
    fault.code = run_problem::controllersSkipped;
    fault.help = {"leave it out with --controller N, or let it pass with --allow-skipped"};
    return fault;
}

RunFault interruptedEarly() {
    return {apply_code::refused,
            "interrupted: nothing was changed",
            {},
            {},
            std::string(run_problem::runInterrupted)};
}

bool isInterrupted(PlanRun& run) {
    return run.system.interruption() != Interruption::none;
}

/// Looks at the machine and compares; the fault that ends the run. Warnings are told.
std::optional<RunFault> guard(PlanRun& run, Snapshot& snapshot, std::vector<std::string>& told) {
    try {
        snapshot = run.capture(CapturePurpose::guard);
    } catch (const NoSuchController& missing) {
        if (missing.count() == 0) {
            return captureFault(Snapshot());
        }
        return RunFault{apply_code::refused,
                        "this is another machine than the one planned for",
                        {missing.what()},
                        {planAgainHelp(run.plan)},
                        std::string(run_problem::anotherMachine)};
    }
    if (isInterrupted(run)) {
        return interruptedEarly();
    }
    std::vector<std::string> warnings;
    std::optional<RunFault> fault = captureFault(snapshot);
    if (!fault) {
        fault = identityFault(snapshot, run.plan);
    }
    if (!fault) {
        fault = stateFault(snapshot, run.plan, run.terms.controllers, warnings);
    }
    if (!fault) {
        fault = run.standingFault(snapshot);
    }
    for (const std::string& warning : warnings) {
        if (std::find(told.begin(), told.end(), warning) == told.end()) {
            run.listener.note("warning: " + warning);
        }
    }
    told = std::move(warnings);
    return fault ? fault : skippedFault(run);
}

JournalBegin beginOf(const PlanRun& run, const ProcessIdentity& process) {
    JournalBegin begin;
    begin.planId = run.plan.id;
    begin.planHash = run.terms.planHash;
    begin.planFile = run.terms.planFile;
    begin.planText = run.terms.planText;
    begin.fingerprint = run.plan.fingerprint;
    begin.toolVersion = run.terms.toolVersion;
    begin.process = process;
    begin.consent = consentCode(run.plan.fingerprint.identity, lossesAskedFor(run.plan, run.terms));
    begin.steps = run.totalSteps();
    begin.controllers = run.terms.controllers;
    begin.allowSkipped = run.terms.allowSkipped;
    return begin;
}

RunFault noJournal(const PlanRun& run) {
    return {apply_code::notPossible,
            "the journal " + printable(run.terms.journalFile) +
                " cannot be written: nothing was changed",
            {},
            {"make room for it, or name another place: --journal FILE"},
            std::string(run_problem::journalNotWritten)};
}

ApplyEnd apply(PlanRun& run) {
    if (std::optional<RunFault> fault = planFault(run.plan, run.terms)) {
        return run.refuse(std::move(*fault));
    }
    if (std::optional<RunFault> fault = run.lock()) {
        return run.refuse(std::move(*fault));
    }
    if (const std::uint64_t pid = run.locks().oldChild().pid; pid != 0) {
        return run.refuse(
            {apply_code::refused,
             "a utility of an interrupted run is still running (pid " + std::to_string(pid) + ")",
             {},
             {"wait until it has ended, or go on with that run: zolexctl apply "
              "--resume JOURNAL"},
             std::string(run_problem::anotherRun)});
    }
    if (isInterrupted(run)) {
        return run.refuse(interruptedEarly());
    }
    Snapshot snapshot;
    std::vector<std::string> warnings;
    if (std::optional<RunFault> fault = guard(run, snapshot, warnings)) {
        return run.refuse(std::move(*fault));
    }
    run.listener.isAsPlannedFor(snapshot);
    if (stepsAskedFor(run.plan, run.terms).empty()) {
        return run.already(snapshot);
    }
    if (std::optional<RunFault> fault = run.agree()) {
        return run.refuse(std::move(*fault));
    }
    if (isInterrupted(run)) {
        return run.refuse(interruptedEarly());
    }
    // Whatever happened while somebody was to agree, it is this machine that loses something.
    if (run.hasWaitedForConsent()) {
        if (std::optional<RunFault> fault = guard(run, snapshot, warnings)) {
            return run.refuse(std::move(*fault));
        }
    }
    if (!run.openJournal() || !run.write(beginOf(run, run.system.ownProcess())) ||
        !run.writeCapture(CapturePurpose::guard, snapshot) || !run.writeAgreed()) {
        return run.refuse(noJournal(run));
    }
    return run.carryOut();
}

} // namespace

std::vector<PlanStep> stepsAskedFor(const MachinePlan& plan, const ApplyTerms& terms) {
    std::vector<PlanStep> steps;
    if (plan.isApplicable()) {
        for (const ControllerPlanning* const planning :
             controllersAskedFor(plan, terms.controllers)) {
            steps.insert(steps.end(), planning->steps.begin(), planning->steps.end());
        }
    }
    return steps;
}

std::vector<Loss> lossesAskedFor(const MachinePlan& plan, const ApplyTerms& terms) {
    std::vector<Loss> losses;
    if (plan.isApplicable()) {
        for (const ControllerPlanning* const planning :
             controllersAskedFor(plan, terms.controllers)) {
            losses.insert(losses.end(), planning->losses.begin(), planning->losses.end());
        }
    }
    return losses;
}

ApplyEnd applyPlan(Platform& machine, const CaptureRequest& capture, ExecutionSystem& system,
                   const MachinePlan& plan, const ApplyTerms& terms, ApplyListener& listener) {
    return carriedOut(machine, capture, system, plan, terms, listener, apply);
}

Certificate certificateOf(const MachinePlan& plan, const ApplyEnd& end, const ApplyTerms& terms) {
    Certificate certificate;
    certificate.planId = plan.id;
    certificate.planHash = terms.planHash;
    certificate.policiesFile = plan.policiesFile;
    certificate.journalFile = terms.journalFile;
    certificate.results = end.results;
    if (!end.captured) {
        return certificate;
    }
    certificate.fingerprint = fingerprintOf(*end.captured);
    for (const ControllerPlanning* const planning : controllersAskedFor(plan, terms.controllers)) {
        const ControllerSnapshot* const found =
            capturedController(*end.captured, planning->controller.number);
        if (found != nullptr && planning->disposition != Disposition::skipped) {
            Certificate::Controller& controller = certificate.controllers.emplace_back();
            controller.number = found->number;
            controller.model = found->model;
            controller.utility = found->utility;
            controller.facts = found->facts;
            controller.layout = capturedLayout(found->facts);
            nameCovers(controller.layout, found->facts);
            controller.layoutHash = layoutHash(found->facts);
        }
    }
    return certificate;
}

} // namespace zolex::companion
