#include "companion/commands/ChangeRun.h"
#include "companion/commands/Commands.h"
#include "companion/commands/MachineAccess.h"
#include "companion/commands/PlanBrief.h"
#include "companion/commands/PlanMaking.h"
#include "companion/json/PlanDocument.h"
#include "companion/machine/Capture.h"
#include "companion/machine/Sha256.h"
#include "companion/picture/PlanText.h"
#include "companion/planning/ResetPlan.h"
#include "companion/rehearsal/Rehearse.h"
#include "companion/text/Diagnostics.h"
#include "companion/text/Timestamp.h"

#include <optional>
#include <utility>

namespace zolex::companion {

namespace {

constexpr const char* usualJournal = "reset.journal.jsonl";

/// Returns controllers to their factory defaults.
class ResetCommand {
  public:
    ResetCommand(Context& context, const ApplyOptions& options, const std::string& journal)
        : context_(context), command_("zolexctl reset" + machineArguments(context.machine)),
          run_(context, options, journal, command_ + outputArguments(options)) {}

    int run() {
        if (!run_.begin()) {
            return run_.refuse(exit_code::notPossible, {}, {});
        }
        std::optional<Snapshot> snapshot;
        try {
            snapshot = captureMachine(run_.machine(), captureRequest(context_, &run_.utilities()));
        } catch (const NoSuchController& missing) {
            return run_.refuse(exit_code::notPossible, missing.what(),
                               {"zolexctl show lists those that there are"});
        }
        if (snapshot->details.empty()) {
            return run_.refuse(exit_code::notPossible, "no supported RAID controller was found",
                               {"zolexctl doctor tells what is there"});
        }
        const std::string madeAt = timestampOf(context_.platform.localTime());
        MachinePlan plan = planReset(*snapshot, context_.machine.controllers, command_);
        if (plan.isApplicable()) {
            rehearse(*snapshot, plan);
        }
        plan.id = planIdOf(plan, madeAt);
        return plan.isApplicable() ? carryOut(std::move(plan), madeAt) : refuse(plan);
    }

  private:
    int carryOut(MachinePlan plan, const std::string& madeAt) {
        if (context_.format == Format::text && !context_.quiet) {
            context_.platform.console().writeOutput(planBrief(plan, context_.style));
        }
        ChosenPlan chosen;
        chosen.text = planDocument(plan, {context_.argv, madeAt});
        chosen.hash = sha256(chosen.text);
        chosen.plan = std::move(plan);
        chosen.lockFile = "reset.lock";
        chosen.isShown = context_.format == Format::text && !context_.quiet;
        chosen.nothingToDo = "Nothing to reset.";
        return run_.carryOut(chosen);
    }

    /// Tells what is wrong with the controllers that cannot be reset.
    int refuse(const MachinePlan& plan) {
        std::vector<Finding> faults = plan.diagnostics;
        for (const ControllerPlanning& controller : plan.controllers) {
            faults.insert(faults.end(), controller.diagnostics.begin(),
                          controller.diagnostics.end());
        }
        context_.platform.console().writeError(diagnosticsText(faults, {}, context_.errorStyle));
        return run_.refuse(exit_code::notPossible, "nothing can be reset as it stands",
                           {"zolexctl doctor"});
    }

    Context& context_;
    std::string command_;
    ChangeRun run_;
};

} // namespace

int reset(Context& context, const ApplyOptions& options) {
    const std::string again = "zolexctl reset" + machineArguments(context.machine);
    JournalName journal = freeJournal(context, options.journal, usualJournal, again);
    if (journal.obstacle) {
        ChangeRun run(context, options, usualJournal, again);
        return run.refuse(journal.obstacle->exitCode, journal.obstacle->what,
                          journal.obstacle->help);
    }
    return ResetCommand(context, options, journal.name).run();
}

} // namespace zolex::companion
