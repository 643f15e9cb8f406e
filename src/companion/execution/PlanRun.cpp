#include "companion/execution/PlanRun.h"

#include "companion/execution/ApplyCodes.h"
#include "companion/execution/Foreseen.h"
#include "companion/execution/RunCodes.h"
#include "companion/families/storcli/Errors.h"
#include "companion/machine/ProblemCodes.h"
#include "companion/planning/FamilyLines.h"
#include "companion/planning/IdleVolumes.h"
#include "companion/planning/PlanFaults.h"
#include "companion/planning/Steps.h"
#include "companion/text/Terminal.h"
#include "companion/text/TypedWord.h"
#include "foundation/FileSystem.h"
#include "foundation/Text.h"

#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

namespace zolex::companion {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds waitingSlice{30000};
constexpr milliseconds oneSecond{1000};

std::string reasonOf(const std::exception& thrown) {
    return dynamic_cast<const std::bad_alloc*>(&thrown) != nullptr ? "memory ran out"
                                                                   : thrown.what();
}

std::string stepName(const PlanStep& step, std::int32_t total) {
    return "step " + std::to_string(step.step) + " of " + std::to_string(total);
}

std::string utilityText(const std::string& utility, const ProcessIdentity& child) {
    return (utility.empty() ? "the utility" : utility) + " (pid " + std::to_string(child.pid) + ")";
}

bool hasEnded(const ChildResult& result) {
    return result.outcome == ChildOutcome::ended || result.outcome == ChildOutcome::notClosed;
}

/// How helps name the policies of the plan.
constexpr std::string_view policiesPlace = "POLICIES";

/// What the family of a command makes of its end; done for those of zolex, whose exit codes tell.
FamilyVerdict verdictOf(const std::string& command, const ChildResult& result) {
    const Family* const family = findFamily(command);
    if (family == nullptr || !hasEnded(result)) {
        FamilyVerdict verdict;
        verdict.isDone = true;
        return verdict;
    }
    return family->judge(command, result.exitCode, result.output);
}

/// What an exit code of MEGACLI is: the code of the firmware, as STORCLI has it. Null where the
/// utility says in words what it is, and of other utilities.
const storcli::ErrorRow* firmwareError(const std::string& utility, const ChildResult& result) {
    const bool isTold = text::containsNoCase(result.output, "description");
    return utility == "MEGACLI" && !isTold
               ? storcli::findError(static_cast<std::int32_t>(result.exitCode))
               : nullptr;
}

/// Whether the verdict says in words what the output says in JSON.
bool isInWords(const FamilyVerdict& verdict, const ChildResult& result) {
    return !verdict.why.empty() && text::trim(result.output, " \t\r\n").starts_with('{');
}

bool deletesVolume(const PlanStep& step) {
    return step.action == "delete-logical-drive";
}

/// Whether it clears what lies on every foreign drive, and not on those alone that were agreed to.
bool clearsForeign(const PlanStep& step) {
    return step.action == "clear-foreign";
}

/// Whether its command names what may have another number when it is run.
bool isByNumber(const ControllerPlanning& planning, const PlanStep& step) {
    const auto arrays = arraysNamedBy(planning, step);
    return deletesVolume(step) || !arrays || !arrays->empty();
}

/// Whether numbers of others may change with it.
bool changesVolumes(const PlanStep& step) {
    return deletesVolume(step) || step.action == "clear" || step.action == "create-array" ||
           step.action == "create-logical-drive";
}

bool wasStarted(const ChildResult& result) {
    return result.outcome != ChildOutcome::notStarted && result.outcome != ChildOutcome::noPipe;
}

} // namespace

PlanRun::PlanRun(Platform& machineOf, const CaptureRequest& capture, ExecutionSystem& systemOf,
                 const MachinePlan& planOf, const ApplyTerms& termsOf, ApplyListener& listenerOf)
    : machine(machineOf), system{systemOf}, plan(planOf), terms(termsOf), listener(listenerOf),
      capture_(capture), totalSteps_(static_cast<std::int32_t>(planOf.steps().size())) {
    for (const ControllerPlanning* const planning : controllersAskedFor(plan, terms.controllers)) {
        ControllerProgress& progress = controllers.emplace_back();
        progress.planning = planning;
        progress.attempts.assign(planning->steps.size(), 0);
    }
}

// The journal.

bool PlanRun::openJournal() {
    journal_ = terms.openJournal ? terms.openJournal() : nullptr;
    return journal_ != nullptr;
}

bool PlanRun::write(const JournalEvent& event) {
    if (isJournalBroken_ || !journal_) {
        return false;
    }
    try {
        isJournalBroken_ = !journal_->write(event);
    } catch (const std::exception&) {
        isJournalBroken_ = true; // it is not known what stands there
    }
    if (!isJournalBroken_) {
        guarded([&] { listener.happened(event); });
    }
    return !isJournalBroken_;
}

/// Whatever is thrown is kept, and ends the run where nothing is left half done.
template <typename Act>
bool PlanRun::guarded(const Act& act) {
    try {
        act();
        return true;
    } catch (const std::exception& thrown) {
        if (thrown_.empty()) {
            thrown_ = reasonOf(thrown);
        }
    }
    return false;
}

Snapshot PlanRun::capture(CapturePurpose purpose, std::optional<std::int32_t> controller) {
    CaptureRequest request = capture_;
    request.controllers.clear();
    if (controller) {
        request.controllers.push_back(*controller);
    } else {
        for (const Fingerprint::Controller& each : plan.fingerprint.controllers) {
            request.controllers.push_back(each.number);
        }
    }
    Snapshot snapshot = captureMachine(machine, request);
    if (journal_) {
        writeCapture(purpose, snapshot);
    }
    for (const ControllerSnapshot& each : snapshot.details) {
        if (!each.failed) {
            facts_[each.number] = each.facts;
            for (ControllerProgress& progress : controllers) {
                if (progress.planning->controller.number == each.number) {
                    progress.isOutdated = progress.isBehind = progress.isLeft = false;
                }
            }
        }
    }
    captured_ = snapshot;
    return snapshot;
}

bool PlanRun::writeCapture(CapturePurpose purpose, const Snapshot& snapshot) {
    JournalCaptured captured;
    captured.purpose = purpose;
    captured.state = fingerprintOf(snapshot).state;
    for (const ControllerSnapshot& controller : snapshot.details) {
        if (!controller.failed) {
            captured.layouts[controller.number] = layoutHash(controller.facts);
        }
    }
    return write(captured);
}

std::optional<RunFault> PlanRun::agree() {
    const std::vector<Loss> losses = lossesAskedFor(plan, terms);
    if (losses.empty() && plan.fingerprint.strength != Strength::positions) {
        return std::nullopt;
    }
    const ConsentAnswer answer = listener.askConsent(plan, losses);
    if (!answer.isGiven) {
        return RunFault{apply_code::refused,
                        answer.refused.empty() ? "not agreed to" : answer.refused,
                        {},
                        answer.help,
                        std::string(run_problem::lossNotAgreed)};
    }
    hasWaitedForConsent_ = answer.tookTime;
    agreed_ = JournalAgreed{consentCode(plan.fingerprint.identity, losses), answer.how,
                            system.userName()};
    return std::nullopt;
}

/// As in captures: a family that carries out its lines itself looks itself.
bool PlanRun::isAskedOf(const ControllerPlanning& planning) const {
    const Family* const family = findFamily(planning.controller.utility);
    return asker() && family != nullptr && !family->carriesOut();
}

const std::function<void(Facts&)>& PlanRun::asker() const {
    return capture_.noteHolders ? capture_.noteHolders : capture_.noteUses;
}

void PlanRun::askOfLost(Snapshot& snapshot) const {
    for (ControllerSnapshot& found : snapshot.details) {
        for (const ControllerProgress& progress : controllers) {
            const ControllerPlanning& planning = *progress.planning;
            if (planning.controller.number == found.number && !found.failed &&
                capture_.noteHolders && isAskedOf(planning)) {
                companion::askOfLost(planning, nullptr, found.facts, capture_.noteHolders);
            }
        }
    }
}

std::optional<RunFault> PlanRun::offlineFault(const Snapshot& snapshot) const {
    for (const ControllerProgress& progress : controllers) {
        if (std::optional<RunFault> fault =
                companion::offlineFault(snapshot, *progress.planning, progress.next)) {
            if (isResumed) {
                fault->help.push_back(resumeHelp("goes on when it is back"));
            }
            return fault;
        }
    }
    return std::nullopt;
}

std::optional<RunFault> PlanRun::cacheFault(const Snapshot& snapshot) const {
    for (const ControllerProgress& progress : controllers) {
        if (std::optional<RunFault> fault =
                keptCacheFault(snapshot, *progress.planning, progress.next)) {
            return fault;
        }
    }
    return std::nullopt;
}

std::optional<RunFault> PlanRun::standingFault(Snapshot& snapshot) const {
    for (const ControllerProgress& progress : controllers) {
        if (std::optional<RunFault> fault =
                notDeletedFault(snapshot, *progress.planning, progress.next)) {
            return fault;
        }
    }
    if (std::optional<RunFault> fault = offlineFault(snapshot)) {
        return fault;
    }
    askOfLost(snapshot);
    if (std::optional<RunFault> fault = inUseFault(snapshot, plan, terms.controllers)) {
        return fault;
    }
    return cacheFault(snapshot);
}

bool PlanRun::writeAgreed() {
    return !agreed_ || write(*agreed_);
}

// Steps.

ApplyEnd PlanRun::carryOut() {
    ControllerProgress* last = nullptr;
    for (ControllerProgress& progress : controllers) {
        if (!progress.isDone() && !progress.hasFailed()) {
            last = &progress;
        }
    }
    for (ControllerProgress& progress : controllers) {
        if (!progress.isDone() && !progress.hasFailed() && !isStopped_) {
            runController(progress, &progress == last);
        }
    }
    if (!isStopped_) {
        verify();
    }
    return finish();
}

void PlanRun::runController(ControllerProgress& progress, bool isLast) {
    while (!progress.isDone()) {
        if (!mayGoOn(progress) || !lookAgain(progress) || !deletesNothingInUse(progress) ||
            !runStep(progress)) {
            return;
        }
        const bool isEnd = progress.isDone();
        const bool isChecked = isEnd ? !isLast : terms.careful;
        if (isChecked && !check(progress)) {
            return;
        }
    }
}

/// Whether the next step may be begun.
bool PlanRun::mayGoOn(ControllerProgress& progress) {
    const PlanStep& step = progress.planning->steps[progress.next];
    if (isJournalBroken_) {
        stopRun(journalFault());
    } else if (!thrown_.empty()) {
        stopRun({changedSomething ? apply_code::stopped : apply_code::notPossible,
                 "stopped before " + stepName(step, totalSteps_) + ": " + printable(thrown_),
                 {},
                 {}});
    } else if (system.interruption() != Interruption::none) {
        stopRun(interruptedFault(step));
    }
    return !isStopped_;
}

/// Looks again before the next step where what was seen is not enough for it: another controller
/// was worked on since, perhaps for hours; it clears whatever is foreign by now; or it deletes a
/// logical drive, or makes a spare of an array, by its number, when a logical drive was deleted or
/// made since: a controller that is reset behind that may number the others anew.
bool PlanRun::lookAgain(ControllerProgress& progress) {
    const ControllerPlanning& planning = *progress.planning;
    const PlanStep& step = planning.steps[progress.next];
    const Family* const family = findFamily(planning.controller.utility);
    const bool looksItself = family != nullptr && family->carriesOut();
    const bool isWanted = progress.isLeft || (progress.isBehind && clearsForeign(step)) ||
                          (progress.isOutdated && family != nullptr && isByNumber(planning, step));
    if (!isWanted || looksItself) {
        return true;
    }
    if (progress.isLeft && progress.isBegun) { // by an earlier run
        return check(progress) && mayGoOn(progress);
    }
    const Snapshot snapshot = capture(CapturePurpose::step, planning.controller.number);
    return isRead(progress, snapshot, "before " + stepName(step, totalSteps_)) &&
           standsAsForeseen(progress, snapshot) && mayGoOn(progress);
}

/// Whether nothing that was seen keeps the next step from being begun.
bool PlanRun::standsAsForeseen(ControllerProgress& progress, const Snapshot& snapshot) {
    const ControllerPlanning& planning = *progress.planning;
    const PlanStep& step = planning.steps[progress.next];
    const Facts& facts = capturedController(snapshot, planning.controller.number)->facts;
    if (!isNumberedAsPlanned(progress, facts)) {
        return false;
    }
    std::optional<RunFault> fault = progress.isBegun
                                        ? drivesFault(snapshot, plan, {planning.controller.number})
                                        : controllerFault(snapshot, plan, planning);
    if (!fault && clearsForeign(step)) {
        fault = foreignFault(plan, planning, facts);
    }
    if (!fault) {
        fault = notDeletedFault(snapshot, planning, progress.next);
    }
    if (!fault) {
        fault = companion::offlineFault(snapshot, planning, progress.next);
    }
    if (!fault) {
        fault = keptCacheFault(snapshot, planning, progress.next);
    }
    if (fault) {
        notBegun(progress, "it has changed since", std::move(*fault),
                 "goes on when it is as it was");
    }
    return !fault;
}

/// The controller goes no further than to the next step. `when` is behind the help to resume.
void PlanRun::notBegun(ControllerProgress& progress, std::string why, RunFault fault,
                       const std::string& when) {
    const PlanStep& step = progress.planning->steps[progress.next];
    fault.exitCode = apply_code::stopped;
    fault.what = stepName(step, totalSteps_) + " was not begun: " + fault.what;
    fault.help.push_back(resumeHelp(when));
    progress.failedStep = step.step;
    failController(progress, std::move(why), std::move(fault));
}

/// Whether the next step's command reaches what it was written for.
bool PlanRun::isNumberedAsPlanned(ControllerProgress& progress, const Facts& facts) {
    const ControllerPlanning& planning = *progress.planning;
    std::optional<NumbersFault> found = numbersFault(plan, planning, progress.next, facts);
    if (!found) {
        return true;
    }
    notBegun(progress, std::move(found->why), std::move(found->fault),
             "goes on when they are as they were");
    return false;
}

/// Asks the system right before a step that deletes: steps before it may have taken hours.
bool PlanRun::deletesNothingInUse(ControllerProgress& progress) {
    const ControllerPlanning& planning = *progress.planning;
    const auto facts = facts_.find(planning.controller.number);
    if (!isAskedOf(planning) || facts == facts_.end()) {
        return true;
    }
    const PlanStep& step = planning.steps[progress.next];
    std::optional<RunFault> fault = stepInUseFault(planning, step, facts->second, asker());
    if (!fault) {
        return true;
    }
    // Of which controller it is told anyway.
    std::string why = fault->details.front().substr(fault->details.front().find(": ") + 2);
    if (changedSomething || terms.keepGoing) {
        notBegun(progress, std::move(why), std::move(*fault), "goes on when it is used no more");
    } else {
        progress.failedStep = step.step;
        failController(progress, std::move(why), std::move(*fault));
    }
    return false;
}

RunFault PlanRun::journalFault() const {
    RunFault fault;
    fault.exitCode = changedSomething ? apply_code::stopped : apply_code::notPossible;
    fault.code = run_problem::journalNotWritten;
    fault.what = "the journal " + printable(terms.journalFile) +
                 " cannot be written: nothing more is started";
    if (!changedSomething) {
        fault.details.emplace_back("nothing was changed");
    }
    fault.help.push_back(changedSomething
                             ? "make room for it; then " + resumeHelp("goes on")
                             : "make room for it, or name another place: --journal FILE");
    return fault;
}

RunFault PlanRun::interruptedFault(const PlanStep& step) const {
    return {changedSomething ? apply_code::stopped : apply_code::refused,
            "interrupted before " + stepName(step, totalSteps_) +
                (changedSomething ? "" : ": nothing was changed"),
            {},
            {},
            std::string(run_problem::runInterrupted)};
}

void PlanRun::stopRun(RunFault fault) {
    faults_.push_back(std::move(fault));
    isStopped_ = true;
}

/// One controller goes no further; the others do when that is wished.
void PlanRun::failController(ControllerProgress& progress, std::string why, RunFault fault) {
    progress.failure = std::move(why);
    faults_.push_back(std::move(fault));
    isStopped_ = isStopped_ || !terms.keepGoing;
}

bool PlanRun::runStep(ControllerProgress& progress) {
    const std::size_t step = progress.next;
    progress.isOutdated = progress.isOutdated || changesVolumes(progress.planning->steps[step]);
    for (ControllerProgress& each : controllers) {
        each.isBehind = true;
        each.isLeft = each.isLeft || &each != &progress;
    }
    std::optional<std::string> command = progress.planning->steps[step].command;
    constexpr int mostLines = 2;
    for (int line = 0; line < mostLines && command; ++line) {
        command = runLine(progress, *command);
    }
    return progress.next > step;
}

std::optional<std::string> PlanRun::runLine(ControllerProgress& progress,
                                            const std::string& command) {
    const ControllerPlanning& planning = *progress.planning;
    const PlanStep& step = planning.steps[progress.next];
    JournalStepStarted started;
    started.step = step.step;
    started.controller = step.controller;
    started.command = command;
    started.expectedBefore = expectedHash(planning, progress.next);
    started.expectedAfter = step.expectedAfter;
    started.attempt = ++progress.attempts[progress.next];
    if (!write(started)) {
        stopRun(journalFault());
        return std::nullopt;
    }
    progress.isBegun = true;
    ChildResult result;
    if (!pauseBefore(step)) {
        noteEnd(step, result, milliseconds(0), FamilyVerdict(), false);
        stopRun(interruptedFault(step));
        return std::nullopt;
    }
    const milliseconds begin = system.elapsed();
    std::string fault;
    ProcessIdentity identity;
    {
        const std::unique_ptr<StartedChild> child = start(command, fault);
        if (child) {
            changedSomething = true;
            result.outcome = ChildOutcome::stillRunning;
            guarded([&] {
                identity = child->identity();
                locks_.note(identity);
            });
            guarded([&] { write(JournalChild{step.step, identity, outputFile()}); });
            result = follow(step, *child, identity, begin);
        }
    }
    const milliseconds duration = system.elapsed() - begin;
    if (hasEnded(result)) {
        guarded([&] { locks_.note({}); });
    }
    const FamilyVerdict verdict = verdictOf(command, result);
    const bool isRetried = !verdict.instead.empty() && command == step.command;
    if (noteEnd(step, result, duration, verdict, isRetried)) {
        ++progress.next;
        return std::nullopt;
    }
    if (isRetried && mayGoOn(progress)) {
        return verdict.instead;
    }
    if (isStopped_) {
        return std::nullopt;
    }
    tellNotAccepted(progress, step, command, result, identity, fault, verdict);
    return std::nullopt;
}

/// False when the user interrupts meanwhile.
bool PlanRun::pauseBefore(const PlanStep& step) {
    for (std::int32_t second = 0; second < step.pauseBeforeSeconds; ++second) {
        if (system.interruption() != Interruption::none) {
            return false;
        }
        system.sleep(oneSecond);
    }
    return step.pauseBeforeSeconds == 0 || system.interruption() == Interruption::none;
}

std::unique_ptr<StartedChild> PlanRun::start(const std::string& command, std::string& fault) {
    try {
        return system.start(command, outputFile());
    } catch (const std::exception& thrown) {
        fault = reasonOf(thrown);
        return nullptr;
    }
}

std::string PlanRun::outputFile() const {
    return terms.journalFile + ".out";
}

/// Waits for the child's end, up to the limit. Nothing that is thrown meanwhile leaves it alone.
ChildResult PlanRun::follow(const PlanStep& step, StartedChild& child,
                            const ProcessIdentity& identity, milliseconds begin) {
    constexpr int mostFaults = 3;
    const milliseconds limit = terms.stepLimit;
    milliseconds nextLine = waitingSlice;
    int faults = 0;
    ChildResult result;
    result.outcome = ChildOutcome::stillRunning;
    for (;;) {
        const milliseconds since = system.elapsed() - begin;
        if (since >= limit || faults == mostFaults) {
            guarded([&] { result.output = child.outputSoFar(mostJournalOutput); });
            return result;
        }
        std::optional<ChildResult> ended;
        if (!guarded([&] { ended = child.wait(std::min(nextLine, limit) - since); })) {
            ++faults;
        }
        if (ended) {
            return std::move(*ended);
        }
        tellInterruption();
        const milliseconds now = system.elapsed() - begin;
        if (now >= nextLine && now < limit) {
            guarded([&] { listener.stillWaiting(step, identity, now); });
        }
        while (nextLine <= now) {
            nextLine += waitingSlice;
        }
    }
}

void PlanRun::tellInterruption() {
    if (!isInterruptionTold_ && system.interruption() != Interruption::none) {
        isInterruptionTold_ = true;
        guarded([&] {
            listener.note("interrupted: waiting for the command to end; once more leaves it alone");
        });
    }
}

/// Notes how a step has ended; whether it counts as done. The output is in the journal then, and
/// its file goes.
bool PlanRun::noteEnd(const PlanStep& step, ChildResult& result, milliseconds duration,
                      const FamilyVerdict& verdict, bool isRetried) {
    JournalStepEnded ended;
    ended.step = step.step;
    ended.outcome = result.outcome;
    ended.exitCode = result.exitCode;
    const std::vector<std::int32_t>& codes = step.acceptedExitCodes;
    ended.accepted = hasEnded(result) && verdict.isDone &&
                     std::find(codes.begin(), codes.end(),
                               static_cast<std::int32_t>(result.exitCode)) != codes.end();
    ended.durationMs = duration.count();
    ended.outputBytes = result.output.size();
    if (result.output.size() > mostJournalOutput) {
        result.output.resize(mostJournalOutput);
    }
    ended.output = result.output;
    if (!ended.accepted) {
        ended.reason = verdict.why;
        ended.instead = isRetried ? verdict.instead : std::string();
    }
    const bool isWritten = write(ended);
    if (isWritten && hasEnded(result)) {
        removeOutput();
    }
    return ended.accepted;
}

void PlanRun::removeOutput() {
    guarded([&] { machine.files().remove(outputFile()); });
    guarded([&] { system.removeFolder(outputFile()); });
}

std::optional<std::string> PlanRun::takeOutput(std::size_t most) {
    const std::unique_ptr<File> file = machine.files().open(outputFile(), "r");
    if (!file) {
        return std::nullopt;
    }
    std::string text(most, '\0');
    text.resize(file->read(text));
    return text;
}

void PlanRun::tellNotAccepted(ControllerProgress& progress, const PlanStep& step,
                              const std::string& command, const ChildResult& result,
                              const ProcessIdentity& child, const std::string& startFault,
                              const FamilyVerdict& verdict) {
    const std::string name = stepName(step, totalSteps_);
    progress.failedStep = step.step;
    RunFault fault;
    fault.exitCode = apply_code::stopped;
    fault.details =
        commandLines(command, isInWords(verdict, result) ? std::string() : result.output);
    std::string why;
    if (hasEnded(result)) {
        why = "exit code " + std::to_string(result.exitCode);
        why = verdict.why.empty() ? why : printable(verdict.why);
        std::vector<std::string> helps = verdict.help;
        if (const auto* const row = firmwareError(progress.planning->controller.utility, result)) {
            why += ": " + std::string(row->text);
            // What to type is of the other utility.
            if (!row->help.empty() && row->code != storcli::cachePinned) {
                helps.emplace_back(row->help);
            }
        }
        fault.code = run_problem::runStepRefused;
        fault.what = name + " was refused (" + why + "): " + printable(step.summary);
        for (const std::string& help : helps) {
            fault.help.push_back(help);
            const std::size_t at = fault.help.back().find(policiesPlace);
            if (at != std::string::npos) {
                fault.help.back().replace(at, policiesPlace.size(),
                                          policiesArgument(plan.policiesFile));
            }
        }
        tellNow(progress, fault);
    } else if (wasStarted(result)) {
        const std::string seconds = std::to_string(terms.stepLimit.count()) + " s";
        why = "it has not ended within " + seconds;
        fault.code = run_problem::runStepNotEnded;
        fault.what = name + " has not ended within " + seconds + ": " +
                     utilityText(progress.planning->controller.utility, child) +
                     " is still running";
        fault.details.emplace_back("it goes on by itself; what it does is not known yet");
        fault.help.push_back(resumeHelp("waits for it and goes on"));
    } else {
        why = "its command could not be started";
        fault.code = run_problem::runStepNotStarted;
        fault.what = name + " could not be started: " + printable(step.summary);
        if (!startFault.empty()) {
            fault.details.push_back(printable(startFault));
        }
        fault.details.emplace_back("this step has changed nothing");
        fault.help.emplace_back("zolexctl doctor tells what is missing");
    }
    const bool isRunning = wasStarted(result) && !hasEnded(result);
    if (!isRunning) {
        fault.help.push_back(resumeHelp("goes on when its cause is mended"));
        fault.help.push_back(planAgainHelp(plan));
    }
    failController(progress, why, std::move(fault));
    isStopped_ = isStopped_ || isRunning;
}

/// What stands when a step was refused.
void PlanRun::tellNow(const ControllerProgress& progress, RunFault& fault) {
    guarded([&] {
        const std::int32_t number = progress.planning->controller.number;
        const Snapshot snapshot = capture(CapturePurpose::step, number);
        const ControllerSnapshot* const found = capturedController(snapshot, number);
        fault.details.push_back(found == nullptr ? "now on controller " + std::to_string(number) +
                                                       ": not known, it could not be captured"
                                                 : nowLine(*progress.planning, found->facts));
    });
}

std::string PlanRun::resumeHelp(const std::string& when) const {
    return "zolexctl apply --resume " + printable(typedWord(terms.journalFile)) + " " + when;
}

// What stands.

/// Whether the controller could be captured.
bool PlanRun::isRead(ControllerProgress& progress, const Snapshot& snapshot,
                     const std::string& where) {
    const ControllerPlanning& planning = *progress.planning;
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    const std::optional<RunFault> unread = captureFault(snapshot);
    if ((found == nullptr || unread) && system.interruption() != Interruption::none) {
        // What read it was interrupted, too.
        stopRun({apply_code::stopped,
                 "interrupted while what stands " + where + " was read",
                 {},
                 {resumeHelp("looks again and goes on")},
                 std::string(run_problem::runInterrupted)});
        return false;
    }
    if (found == nullptr || unread) {
        RunFault fault = unread.value_or(RunFault());
        fault.exitCode = apply_code::different;
        fault.what = "what stands " + where + " could not be captured";
        fault.code = run_problem::endNotRead;
        fault.help = {resumeHelp("looks again and goes on"), planAgainHelp(plan)};
        progress.failedStep = planning.steps[progress.next == 0 ? 0 : progress.next - 1].step;
        failController(progress, "what stands could not be captured", std::move(fault));
        return false;
    }
    return true;
}

/// Between two steps, and behind the last one: whether it stands as foreseen.
bool PlanRun::check(ControllerProgress& progress) {
    const ControllerPlanning& planning = *progress.planning;
    const Snapshot snapshot = capture(CapturePurpose::step, planning.controller.number);
    const ControllerSnapshot* const found =
        capturedController(snapshot, planning.controller.number);
    const std::string where =
        progress.next == 0 ? "before step 1"
                           : "after " + stepName(planning.steps[progress.next - 1], totalSteps_);
    if (!isRead(progress, snapshot, where)) {
        return false;
    }
    if (standsAfterSteps(plan, planning, progress.next, found->facts)) {
        progress.isChecked = progress.isDone();
        return progress.isDone() ? !tellIdle(progress, found->facts, where)
                                 : isNumberedAsPlanned(progress, found->facts);
    }
    const Layout foreseen =
        progress.isDone() ? planning.after : layoutAfterSteps(planning, progress.next);
    const Comparison comparison = compareLayouts(found->facts, capturedLayout(found->facts),
                                                 foreseen, {planning.controller.utility});
    if (progress.isDone() && comparison.result != Sameness::different) {
        progress.isChecked = true;
        return !tellIdle(progress, found->facts, where);
    }
    tellDifferent(progress, comparison.differences, where, {planAgainHelp(plan)});
    return false;
}

/// Whether a logical drive that stands as planned serves nobody: the controller goes no further.
bool PlanRun::tellIdle(ControllerProgress& progress, const Facts& facts, const std::string& where) {
    IdleVolumes idle = idleVolumes(progress.planning->controller.utility, facts);
    if (idle.differences.empty()) {
        return false;
    }
    progress.isChecked = false;
    idle.help.push_back(journal_ ? resumeHelp("verifies it again") : planAgainHelp(plan));
    tellDifferent(progress, idle.differences, where, idle.help);
    return true;
}

void PlanRun::tellDifferent(ControllerProgress& progress,
                            const std::vector<Difference>& differences, const std::string& where,
                            const std::vector<std::string>& help) {
    const ControllerPlanning& planning = *progress.planning;
    RunFault fault;
    fault.exitCode = apply_code::different;
    fault.what = "what stands on controller " + std::to_string(planning.controller.number) + " " +
                 where + " is not what was planned";
    fault.code = run_problem::endsDifferent;
    for (const Difference& difference : differences) {
        fault.details.push_back(differenceText(difference));
    }
    if (fault.details.empty()) {
        fault.details.emplace_back("it is equivalent, but not the layout that was foreseen");
    }
    fault.help = help;
    if (progress.next > 0) {
        progress.failedStep = planning.steps[progress.next - 1].step;
    }
    failController(progress, "what stands is not what was planned", std::move(fault));
}

void PlanRun::verify() {
    const bool isAny =
        std::any_of(controllers.begin(), controllers.end(), [](const ControllerProgress& each) {
            return !each.hasFailed() && each.planning->disposition != Disposition::skipped;
        });
    if (!isAny) {
        return;
    }
    const Snapshot snapshot = capture(CapturePurpose::verify);
    JournalVerified verified;
    verified.result = JournalVerified::Result::asPlanned;
    std::optional<RunFault> fault = captureFault(snapshot);
    if (!fault) {
        fault = identityFault(snapshot, plan);
    }
    if (fault && system.interruption() != Interruption::none) {
        fault->exitCode = apply_code::stopped;
        fault->what = "interrupted while what stands was verified";
        fault->code = run_problem::runInterrupted;
        fault->help = {resumeHelp("verifies it")};
    } else if (fault) {
        fault->exitCode = apply_code::different;
        fault->what = "what stands could not be verified: " + fault->what;
        fault->code = run_problem::endNotRead;
        fault->help = {resumeHelp("verifies it again")};
    }
    if (fault) {
        verified.result = JournalVerified::Result::unknown;
        verified.lines = fault->details;
        write(verified);
        stopRun(std::move(*fault));
        return;
    }
    bool isWhole = true;
    for (ControllerProgress& progress : controllers) {
        if (progress.hasFailed()) {
            isWhole = false;
            verified.lines.push_back("controller " +
                                     std::to_string(progress.planning->controller.number) +
                                     ": not looked at, " + progress.failure);
        } else if (progress.planning->disposition != Disposition::skipped) {
            verifyController(progress, snapshot, verified);
        }
    }
    write(verified);
    isVerified_ = isWhole && (verified.result == JournalVerified::Result::asPlanned ||
                              verified.result == JournalVerified::Result::equivalent);
}

void PlanRun::verifyController(ControllerProgress& progress, const Snapshot& snapshot,
                               JournalVerified& verified) {
    using Result = JournalVerified::Result;
    const ControllerPlanning& planning = *progress.planning;
    const std::int32_t number = planning.controller.number;
    const std::string name = "controller " + std::to_string(number) + ": ";
    const ControllerSnapshot& found = *capturedController(snapshot, number);
    const Comparison comparison = compareLayouts(found.facts, capturedLayout(found.facts),
                                                 planning.after, {planning.controller.utility});
    if (comparison.result == Sameness::different) {
        verified.result = Result::different;
        for (const Difference& difference : comparison.differences) {
            verified.lines.push_back(name + differenceText(difference));
        }
        tellDifferent(progress, comparison.differences, "now", {planAgainHelp(plan)});
        return;
    }
    if (tellIdle(progress, found.facts, "now")) {
        verified.result = Result::different;
        for (const std::string& line : faults_.back().details) {
            verified.lines.push_back(name + line);
        }
        return;
    }
    progress.isChecked = true;
    for (const std::string& line : comparison.health) {
        // It is as planned, and yet not in order.
        verified.lines.push_back(name + printable(line));
        guarded([&] { listener.note("warning: " + verified.lines.back()); });
    }
    if (comparison.result == Sameness::equivalent) {
        if (verified.result == Result::asPlanned) {
            verified.result = Result::equivalent;
        }
        for (const std::string& line : comparison.equivalences) {
            verified.lines.push_back(name + printable(line));
        }
    }
}

// The end.

std::vector<ControllerResult> PlanRun::results() const {
    std::vector<ControllerResult> all;
    for (const ControllerProgress& progress : controllers) {
        const ControllerPlanning& planning = *progress.planning;
        ControllerResult& result = all.emplace_back();
        result.number = planning.controller.number;
        if (planning.disposition == Disposition::skipped) {
            result.result = ControllerResult::Result::skipped;
            result.reason = planning.because;
            continue;
        }
        if (planning.disposition == Disposition::refused) {
            result.of = totalSteps_;
            result.reason = planning.because;
            continue;
        }
        if (!progress.hasFailed() && planning.steps.empty()) {
            result.result = ControllerResult::Result::already;
            continue;
        }
        if (!progress.hasFailed() && progress.isDone() && progress.isChecked) {
            result.result = ControllerResult::Result::configured;
            continue;
        }
        result.of = totalSteps_;
        if (progress.hasFailed()) {
            result.step = progress.failedStep;
            result.reason = progress.failure;
        } else if (progress.isDone()) {
            result.step = planning.steps.back().step;
            result.reason = "not verified";
        } else {
            result.step = progress.isBegun ? planning.steps[progress.next].step : 0;
            result.reason = progress.isBegun ? "stopped at this step" : "not begun";
        }
    }
    return all;
}

void PlanRun::tellRemaining(RunFault& fault) const {
    constexpr std::size_t most = 12;
    std::vector<std::string> lines;
    for (const ControllerProgress& progress : controllers) {
        for (std::size_t i = progress.next; i < progress.planning->steps.size(); ++i) {
            const PlanStep& step = progress.planning->steps[i];
            const std::string where =
                controllers.size() > 1 ? ", controller " + std::to_string(step.controller) : "";
            lines.push_back("remains: step " + std::to_string(step.step) + where + ": " +
                            printable(step.summary));
        }
    }
    if (lines.size() > most) {
        const std::size_t others = lines.size() - most + 1;
        lines.resize(most - 1);
        lines.push_back("remains: " + std::to_string(others) + " steps more");
    }
    fault.details.insert(fault.details.end(), lines.begin(), lines.end());
}

ApplyEnd PlanRun::endOf(RunFault fault) {
    ApplyEnd end;
    end.exitCode = fault.exitCode;
    end.what = std::move(fault.what);
    end.code = std::move(fault.code);
    end.details = std::move(fault.details);
    end.help = std::move(fault.help);
    end.results = results();
    end.changedSomething = changedSomething;
    end.captured = std::move(captured_);
    end.isVerified = isVerified_;
    return end;
}

/// All faults as one: the first says what, the others stand below it.
RunFault PlanRun::wholeFault() {
    if (faults_.empty()) {
        return {};
    }
    RunFault whole = std::move(faults_.front());
    for (std::size_t i = 1; i < faults_.size(); ++i) {
        whole.exitCode = std::min(whole.exitCode, faults_[i].exitCode); // stopped before different
        whole.details.push_back(faults_[i].what);
        whole.details.insert(whole.details.end(), faults_[i].details.begin(),
                             faults_[i].details.end());
        for (const std::string& help : faults_[i].help) {
            if (std::find(whole.help.begin(), whole.help.end(), help) == whole.help.end()) {
                whole.help.push_back(help);
            }
        }
    }
    if (whole.exitCode == apply_code::different &&
        !std::all_of(controllers.begin(), controllers.end(),
                     [](const ControllerProgress& each) { return each.isDone(); })) {
        whole.exitCode = apply_code::stopped; // not every command was run
    }
    if (whole.exitCode == apply_code::stopped || whole.exitCode == apply_code::different) {
        tellRemaining(whole);
        if (whole.help.empty()) {
            whole.help.push_back(resumeHelp("goes on"));
        }
    }
    return whole;
}

ApplyEnd PlanRun::finish() {
    RunFault whole = wholeFault();
    if (whole.exitCode == apply_code::notPossible || whole.exitCode == apply_code::refused) {
        return refuse(std::move(whole));
    }
    return stop(std::move(whole));
}

ApplyEnd PlanRun::stop(RunFault fault) {
    const bool isWritten = write(JournalEnd{fault.exitCode, results(), fault.what});
    if (!isWritten && fault.exitCode == apply_code::done) {
        fault = journalFault();
        fault.exitCode = apply_code::stopped;
        fault.what = "all steps are done and verified, but the journal " +
                     printable(terms.journalFile) + " cannot be written";
        fault.help = {"make room for it; then " + resumeHelp("verifies it again")};
    }
    return endOf(std::move(fault));
}

ApplyEnd PlanRun::refuse(RunFault fault) {
    if (journal_ && !isResumed) {
        journal_.reset();
        if (terms.dropJournal) {
            terms.dropJournal();
        }
    }
    return endOf(std::move(fault));
}

ApplyEnd PlanRun::already(const Snapshot& snapshot) {
    for (ControllerProgress& progress : controllers) {
        const ControllerSnapshot* const found =
            capturedController(snapshot, progress.planning->controller.number);
        if (found != nullptr && progress.planning->disposition != Disposition::skipped) {
            (void)tellIdle(progress, found->facts, "now");
        }
    }
    isVerified_ = faults_.empty();
    return endOf(wholeFault());
}

ApplyEnd PlanRun::fail(const std::exception& thrown) {
    const std::string why = printable(reasonOf(thrown));
    if (!changedSomething) {
        return refuse({apply_code::notPossible,
                       "ended before anything was changed: " + why,
                       {},
                       {},
                       std::string(problem::commandFailed)});
    }
    return stop({apply_code::stopped,
                 "stopped in the middle: " + why,
                 {},
                 {resumeHelp("goes on")},
                 std::string(problem::commandFailed)});
}

std::optional<RunFault> PlanRun::waitForOld(const PlanStep& step, const std::string& utility,
                                            const ProcessIdentity& child) {
    if (child.pid == 0 || !system.isRunning(child)) {
        return std::nullopt;
    }
    listener.note("Waiting for " + utilityText(utility, child) + " of the interrupted run");
    const milliseconds begin = system.elapsed();
    milliseconds nextLine = waitingSlice;
    const int code = changedSomething ? apply_code::stopped : apply_code::refused;
    while (system.isRunning(child)) {
        const milliseconds since = system.elapsed() - begin;
        if (system.interruption() != Interruption::none) {
            return RunFault{code,
                            "interrupted while " + utilityText(utility, child) +
                                " of the interrupted run is still running",
                            {},
                            {resumeHelp("waits for it and goes on")},
                            std::string(run_problem::runInterrupted)};
        }
        if (since >= milliseconds(terms.stepLimit)) {
            return RunFault{code,
                            utilityText(utility, child) +
                                " of the interrupted run is still running after " +
                                std::to_string(terms.stepLimit.count()) + " s",
                            {"it goes on by itself; what it does is not known yet"},
                            {resumeHelp("waits for it and goes on")},
                            std::string(run_problem::runStepNotEnded)};
        }
        if (since >= nextLine) {
            listener.stillWaiting(step, child, since);
            nextLine += waitingSlice;
        }
        system.sleep(oneSecond);
    }
    return std::nullopt;
}

} // namespace zolex::companion
