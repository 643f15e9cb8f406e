#pragma once

#include "companion/execution/Certificate.h"
#include "companion/execution/ExecutionSystem.h"
#include "companion/execution/Journal.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// What the user said to the losses.
struct ConsentAnswer {
    bool isGiven = false;
    std::string how;     ///< as in JournalAgreed
    std::string refused; ///< why not, for people: "the code is for another list"
    std::vector<std::string> help;
    bool tookTime = false; ///< somebody was waited for: the machine may be another by now
};

/// Who is told, and asked, while a machine is changed.
class ApplyListener {
  public:
    virtual ~ApplyListener() = default;
    /// The machine was compared with the plan and is as planned for; `guard` is what was captured.
    virtual void isAsPlannedFor(const Snapshot& guard) = 0;
    /// Asked once when something is lost, or when nothing unique tells the machine.
    virtual ConsentAnswer askConsent(const MachinePlan& plan, const std::vector<Loss>& losses) = 0;
    /// Every event, as soon as it stands in the journal.
    virtual void happened(const JournalEvent& event) = 0;
    /// A step is still at work: told every 30 seconds.
    virtual void stillWaiting(const PlanStep& step, const ProcessIdentity& child,
                              std::chrono::milliseconds since) = 0;
    /// "warning: the lock of a run that is gone (pid 4711) is taken over".
    virtual void note(const std::string& text) = 0;
};

/// How a plan is carried out.
struct ApplyTerms {
    std::vector<std::int32_t> controllers; ///< numbers from 1; empty: all of the plan
    bool allowSkipped = false;             ///< a controller without a policy is no reason to refuse
    bool keepGoing = false;                ///< a step that fails ends its own controller alone
    bool careful = false;                  ///< captures after every step
    std::chrono::seconds stepLimit{3600};
    /// Between two captures that must be equal before a run is gone on with.
    std::chrono::milliseconds settle{2000};
    std::string planHash; ///< SHA-256 of the plan's bytes
    std::string planFile; ///< empty: planText
    std::string planText;
    std::string toolVersion;
    std::string journalFile;
    std::string lockFile; ///< beside the plan; the lock of the machine is taken too
    /// Makes or reopens the journal; null, after a message, when that fails. Called when everything
    /// was agreed to and before anything is changed.
    std::function<std::unique_ptr<JournalKeeper>()> openJournal;
    /// Removes the journal that openJournal has made, when the run is refused after all and nothing
    /// was started; its keeper is gone by then. Not called when a run is resumed. May be empty.
    std::function<void()> dropJournal;
};

/// How it ended.
struct ApplyEnd {
    int exitCode = 0; ///< done, notPossible, refused, stopped, different of exit_code
    std::vector<ControllerResult> results;
    /// One sentence, and what can be typed next; of every other code than 0.
    std::string what;
    std::string code; ///< of that, "ZA101"; empty: none is known
    std::vector<std::string> help;
    std::vector<std::string> details; ///< lines below `what`: differences, the utility's words
    bool changedSomething = false;    ///< a command that changes was started, in this run or before
    std::optional<Snapshot> captured; ///< the last one
    bool isVerified = false;          ///< as planned, or equivalent
};

/// What of the plan is carried out: its steps for the controllers asked for.
[[nodiscard]] std::vector<PlanStep> stepsAskedFor(const MachinePlan& plan, const ApplyTerms& terms);
/// The losses of those controllers.
[[nodiscard]] std::vector<Loss> lossesAskedFor(const MachinePlan& plan, const ApplyTerms& terms);

/// Carries out a plan: captures the machine and refuses another one, and one that has changed;
/// takes the locks; asks; then step by step, each noted before it is begun; then captures again and
/// compares. `machine` is the platform that answers captures in zolex's command lines; by its files
/// the output of a step is removed when the journal has it. Of what is thrown only what is derived
/// from std::exception is caught: it ends the run with a code as any other fault does.
[[nodiscard]] ApplyEnd applyPlan(Platform& machine, const CaptureRequest& capture,
                                 ExecutionSystem& system, const MachinePlan& plan,
                                 const ApplyTerms& terms, ApplyListener& listener);

/// Goes on with a run that was interrupted, or stopped: waits for its last child, captures until
/// the machine is at rest, and judges the layout against what the journal and the plan foresaw.
[[nodiscard]] ApplyEnd resumePlan(Platform& machine, const CaptureRequest& capture,
                                  ExecutionSystem& system, const MachinePlan& plan,
                                  const JournalHistory& history, const ApplyTerms& terms,
                                  ApplyListener& listener);

/// Of a run that ended as planned.
[[nodiscard]] Certificate certificateOf(const MachinePlan& plan, const ApplyEnd& end,
                                        const ApplyTerms& terms);

/// The layout that a controller has when the first `steps` of its own steps are done: what stood,
/// without what they delete, with what they create.
[[nodiscard]] Layout layoutAfterSteps(const ControllerPlanning& planning, std::size_t steps);

/// Whether a controller stands as foreseen behind the first `steps` of its own steps: by the hash
/// that the rehearsal noted, else attribute by attribute, where what the plan leaves to the
/// controller is as the controller likes.
[[nodiscard]] bool standsAfterSteps(const MachinePlan& plan, const ControllerPlanning& planning,
                                    std::size_t steps, const Facts& facts);

} // namespace zolex::companion
