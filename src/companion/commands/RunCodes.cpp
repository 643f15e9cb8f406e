#include "companion/commands/RunCodes.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

using enum Severity;

// Columns: id, severity, title, why, help. Order: by id.
// clang-format off
constexpr auto runRows = std::to_array<ProblemCode>({
    {run_problem::anotherMachine, error, "this is another machine than the one planned for",
     "A plan is for one machine: its type and serial number, and its controllers with their "
     "places and serial numbers. Or it is not sure which controller a command would reach. "
     "Nothing was changed.",
     "plan on this machine: zolexctl plan POLICIES"},
    {run_problem::machineChanged, error, "the machine has changed since it was planned for",
     "A drive, a logical drive or a spare is not as it was: what would be lost, or which "
     "drives would be taken, is not what was agreed to. Nothing was changed.",
     "plan again from what is there: zolexctl plan POLICIES"},
    {run_problem::lossNotAgreed, error, "what would be lost was not agreed to",
     "Nobody has typed the serial number, or the code is for another machine or another list. "
     "Nothing was changed.",
     "look at the list of losses, and give its code: --destroy CODE"},
    {run_problem::controllersSkipped, error, "not every controller would be configured",
     "No policy fits a controller, or it has no drives. Nothing was changed.",
     "leave it out with --controller N, or let it pass with --allow-skipped"},
    {run_problem::anotherRun, error, "another run is under way on this machine",
     "Two runs at once would take each other's drives. A lock whose run is gone is taken over. "
     "Nothing was changed.",
     "wait until it has ended"},
    {run_problem::appliedBefore, error, "the plan was applied before",
     "A plan is for one run. Its journal tells what became of it. Nothing was changed.",
     "go on with a run that stopped: zolexctl apply --resume JOURNAL; or plan again"},
    {run_problem::runInterrupted, error, "the run was interrupted",
     "Somebody has asked for its end, with Ctrl-C or a signal. The command that was at work "
     "has ended, or goes on by itself where that is said.",
     "zolexctl apply --resume JOURNAL goes on"},
    {run_problem::journalNotWritten, error, "the journal or a lock cannot be written",
     "Nothing is started that cannot be noted.",
     "make room for it, or name another place: --journal FILE"},
    {run_problem::planNotApplicable, error, "the plan cannot be carried out",
     "It has faults, or it is not for the controller that is asked for. Nothing was changed.",
     "see what is wrong with it: zolexctl show PLAN.json"},
    {run_problem::machineNotRead, error, "the machine could not be captured",
     "What stands there cannot be compared with the plan. Nothing more was changed.",
     "zolexctl doctor tells whether the utilities are there and are read"},
    {run_problem::runStepRefused, error, "a utility refused a step",
     "The steps before it were done. What stands now is told below the utility's own words.",
     "mend the cause, and go on: zolexctl apply --resume JOURNAL"},
    {run_problem::runStepNotEnded, error, "a utility has not ended within its limit",
     "It still runs, and what it does is not known yet.",
     "zolexctl apply --resume JOURNAL waits for it and goes on"},
    {run_problem::runStepNotStarted, error, "the command of a step could not be started",
     "The steps before it were done, this one has changed nothing.",
     "zolexctl doctor tells what is missing"},
    {run_problem::endsDifferent, error, "what stands is not what was planned",
     "The utility said that it did its work, and what was read back differs.",
     "look at what stands: zolexctl diff PLAN.json"},
    {run_problem::endNotRead, error, "what stands could not be read back",
     "Whether it is as planned is not known.",
     "zolexctl apply --resume JOURNAL looks again"},
    {run_problem::anotherPlan, error, "the plan is another one than that of the journal",
     "Its bytes are others than those that were begun. Nothing more was changed.",
     "put the plan back in its place, or plan again: zolexctl plan POLICIES"},
    {run_problem::notAtRest, error, "a controller is still at work",
     "What stands changes from one look to the next. Nothing more was changed.",
     "zolexctl apply --resume JOURNAL looks again"},
    {run_problem::standsElsewhere, error, "what stands is nothing that the plan foresaw",
     "Something else has changed the controller, or a command did part of its work. Nothing "
     "more was changed.",
     "plan from what is there: zolexctl plan POLICIES"},
    {run_problem::proofNotWritten, error, "the certificate could not be written",
     "What stands is as planned, and the proof of it is missing.",
     "zolexctl diff PLAN.json tells that it is so"},
    {run_problem::lostInUse, error, "the running system uses what would be deleted",
     "Since it was planned for, a logical drive that the plan deletes has been mounted, swapped to, "
     "or taken by LVM, an array, a pool or encryption. Nothing was changed, or nothing more.",
     "end what uses it (lsblk), and apply again; --resume JOURNAL where it has begun"},
    {run_problem::keptOffline, error, "a logical drive that stays is offline",
     "More of its drives have left than its level bears. They may only need their cable back, and "
     "what is changed beside them may use them up. Nothing was changed, or nothing more.",
     "bring back its drives, and apply again; --resume JOURNAL where it has begun"},
});
// clang-format on

} // namespace

std::span<const ProblemCode> runCodes() {
    return runRows;
}

const ProblemCode* findRunCode(std::string_view id) {
    const auto* const row =
        std::find_if(runRows.begin(), runRows.end(),
                     [id](const ProblemCode& each) { return text::equalsNoCase(each.id, id); });
    return row == runRows.end() ? nullptr : row;
}

} // namespace zolex::companion
