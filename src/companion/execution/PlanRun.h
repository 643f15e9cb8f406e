#pragma once

#include "companion/execution/Apply.h"
#include "companion/execution/ApplyCodes.h"
#include "companion/execution/Guard.h"
#include "companion/execution/RunLocks.h"
#include "companion/families/Family.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// How far the run has come on one controller.
struct ControllerProgress {
    const ControllerPlanning* planning = nullptr;
    std::size_t next = 0;               ///< index of the step that comes next
    bool isBegun = false;               ///< a step of it was begun, in this run or before
    bool isChecked = false;             ///< behind its last step it was found as planned
    bool isOutdated = false;            ///< a step has changed logical drives since it was captured
    bool isBehind = false;              ///< a step was run since it was captured
    bool isLeft = false;                ///< and one of another controller
    std::int32_t failedStep = 0;        ///< 0: none
    std::string failure;                ///< why it goes no further; empty: it does
    std::vector<std::int32_t> attempts; ///< of each step, before this run

    [[nodiscard]] bool isDone() const { return next >= planning->steps.size(); }
    [[nodiscard]] bool hasFailed() const { return !failure.empty(); }
};

/// The part that applying a plan and going on with it have in common: steps, captures, the journal
/// and the end.
class PlanRun {
  public:
    PlanRun(Platform& machine, const CaptureRequest& capture, ExecutionSystem& system,
            const MachinePlan& plan, const ApplyTerms& terms, ApplyListener& listener);

    /// Takes the locks.
    std::optional<RunFault> lock() { return locks_.take(system, plan, terms, listener); }
    /// False, when it cannot be made or reopened.
    bool openJournal();
    /// The journal is open from now on, and its first lines stand.
    bool write(const JournalEvent& event);

    /// Captures the plan's controllers, or one of them. It is noted when the journal is open.
    Snapshot capture(CapturePurpose purpose, std::optional<std::int32_t> controller = {});
    bool writeCapture(CapturePurpose purpose, const Snapshot& snapshot);

    /// Carries out what remains, and verifies it. The end stands in the journal.
    ApplyEnd carryOut();
    /// Ends before anything was changed, or, in a run that is resumed, before anything more was.
    ApplyEnd refuse(RunFault fault);
    /// Ends in the middle, with a journal.
    ApplyEnd stop(RunFault fault);
    /// What becomes of a run in which something was thrown.
    ApplyEnd fail(const std::exception& thrown);
    /// Ends where there is nothing to do; what stands must serve all the same.
    ApplyEnd already(const Snapshot& snapshot);

    /// What stands and keeps what remains from being done: what stays and is offline, what the
    /// system uses of that which is to be deleted, which the snapshot has then, and what the cache
    /// of a controller keeps from being made.
    [[nodiscard]] std::optional<RunFault> standingFault(Snapshot& snapshot) const;
    /// Asks where something is lost, or nothing tells the machine; notes it for the journal.
    std::optional<RunFault> agree();
    /// Whether somebody was waited for who agreed: what was captured before is old.
    [[nodiscard]] bool hasWaitedForConsent() const { return hasWaitedForConsent_; }
    bool writeAgreed();

    void failController(ControllerProgress& progress, std::string why, RunFault fault);

    /// Waits for a child of an earlier run; what keeps it from going on.
    std::optional<RunFault> waitForOld(const PlanStep& step, const std::string& utility,
                                       const ProcessIdentity& child);
    /// What a command has written, at most `most` bytes; nothing: there is no such file.
    std::optional<std::string> takeOutput(std::size_t most);
    void removeOutput();

    [[nodiscard]] std::string resumeHelp(const std::string& when) const;
    [[nodiscard]] std::int32_t totalSteps() const { return totalSteps_; }
    [[nodiscard]] bool isStopped() const { return isStopped_; }
    RunLocks& locks() { return locks_; }

    Platform& machine;
    ExecutionSystem& system;
    const MachinePlan& plan;
    const ApplyTerms& terms;
    ApplyListener& listener;
    std::vector<ControllerProgress> controllers; ///< that are asked for
    bool changedSomething = false;
    bool isResumed = false;

  private:
    template <typename Act>
    bool guarded(const Act& act);

    void runController(ControllerProgress& progress, bool isLast);
    /// Asks what the system uses those for that are to be deleted, more than a capture does.
    void askOfLost(Snapshot& snapshot) const;
    [[nodiscard]] std::optional<RunFault> offlineFault(const Snapshot& snapshot) const;
    [[nodiscard]] std::optional<RunFault> cacheFault(const Snapshot& snapshot) const;
    bool mayGoOn(ControllerProgress& progress);
    [[nodiscard]] bool isAskedOf(const ControllerPlanning& planning) const;
    [[nodiscard]] const std::function<void(Facts&)>& asker() const;
    bool lookAgain(ControllerProgress& progress);
    bool standsAsForeseen(ControllerProgress& progress, const Snapshot& snapshot);
    bool isNumberedAsPlanned(ControllerProgress& progress, const Facts& facts);
    void notBegun(ControllerProgress& progress, std::string why, RunFault fault,
                  const std::string& when);
    bool isRead(ControllerProgress& progress, const Snapshot& snapshot, const std::string& where);
    bool deletesNothingInUse(ControllerProgress& progress);
    bool runStep(ControllerProgress& progress);
    bool pauseBefore(const PlanStep& step);
    std::unique_ptr<StartedChild> start(const std::string& command, std::string& fault);
    ChildResult follow(const PlanStep& step, StartedChild& child, const ProcessIdentity& identity,
                       std::chrono::milliseconds begin);
    void tellInterruption();
    /// Runs the step by this command line; nothing: it is done, or the run has gone no further.
    /// Else the line that is to be run in its place.
    std::optional<std::string> runLine(ControllerProgress& progress, const std::string& command);
    bool noteEnd(const PlanStep& step, ChildResult& result, std::chrono::milliseconds duration,
                 const FamilyVerdict& verdict, bool isRetried);
    void tellNotAccepted(ControllerProgress& progress, const PlanStep& step,
                         const std::string& command, const ChildResult& result,
                         const ProcessIdentity& child, const std::string& startFault,
                         const FamilyVerdict& verdict);
    void tellNow(const ControllerProgress& progress, RunFault& fault);
    [[nodiscard]] RunFault journalFault() const;
    [[nodiscard]] RunFault interruptedFault(const PlanStep& step) const;
    void stopRun(RunFault fault);

    bool check(ControllerProgress& progress);
    void tellDifferent(ControllerProgress& progress, const std::vector<Difference>& differences,
                       const std::string& where, const std::vector<std::string>& help);
    bool tellIdle(ControllerProgress& progress, const Facts& facts, const std::string& where);
    void verify();
    void verifyController(ControllerProgress& progress, const Snapshot& snapshot,
                          JournalVerified& verified);

    [[nodiscard]] std::vector<ControllerResult> results() const;
    void tellRemaining(RunFault& fault) const;
    RunFault wholeFault();
    ApplyEnd finish();
    ApplyEnd endOf(RunFault fault);
    [[nodiscard]] std::string outputFile() const;

    const CaptureRequest& capture_;
    RunLocks locks_;
    std::unique_ptr<JournalKeeper> journal_;
    bool isJournalBroken_ = false;
    bool isStopped_ = false; ///< no step is begun any more
    bool isInterruptionTold_ = false;
    std::int32_t totalSteps_ = 0;
    std::optional<JournalAgreed> agreed_;
    bool hasWaitedForConsent_ = false;
    std::optional<Snapshot> captured_;
    std::map<std::int32_t, Facts> facts_; ///< of each controller, as captured last
    bool isVerified_ = false;
    std::vector<RunFault> faults_; ///< in their order
    std::string thrown_;           ///< what a part of a step has thrown
};

/// The end of a run in which not even memory for words is left.
[[nodiscard]] inline ApplyEnd noMemoryEnd(bool changedSomething) {
    ApplyEnd end;
    end.exitCode = changedSomething ? apply_code::stopped : apply_code::notPossible;
    end.changedSomething = changedSomething;
    end.what = "no memory left"; // short enough to need none
    return end;
}

/// Makes a run and has `act` carry it out; whatever is thrown is an end like others.
template <typename Act>
ApplyEnd carriedOut(Platform& machine, const CaptureRequest& capture, ExecutionSystem& system,
                    const MachinePlan& plan, const ApplyTerms& terms, ApplyListener& listener,
                    const Act& act) {
    bool changedSomething = false;
    try {
        PlanRun run(machine, capture, system, plan, terms, listener);
        try {
            return act(run);
        } catch (const std::exception& thrown) {
            changedSomething = run.changedSomething;
            return run.fail(thrown);
        }
    } catch (const std::exception&) {
        return noMemoryEnd(changedSomething);
    }
}

/// The lines below a refused command: it, and the utility's own words.
[[nodiscard]] std::vector<std::string> commandLines(const std::string& command,
                                                    const std::string& output);
/// "now on controller 1: A stands, B does not; LD 0 is gone".
[[nodiscard]] std::string nowLine(const ControllerPlanning& planning, const Facts& facts);
/// "write_cache_policy of LD 0: planned is write-back; found is write-through".
[[nodiscard]] std::string differenceText(const Difference& difference);

} // namespace zolex::companion
