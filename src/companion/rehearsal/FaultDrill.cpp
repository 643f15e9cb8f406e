#include "companion/rehearsal/FaultDrill.h"

#include "companion/machine/Fingerprint.h"

#include <algorithm>

namespace zolex::companion {

namespace {

/// The ways in which a step can fail.
enum class StepFault { idle, done, repeated };

class Drill {
  public:
    Drill(VirtualCopy& copy, const std::vector<PlanStep>& steps,
          const std::vector<RehearsalStage>& stages)
        : copy_(copy), steps_(steps), stages_(stages) {}

    DrillResult run() {
        DrillResult result;
        for (std::size_t i = 0; i < steps_.size(); ++i) {
            ++result.faultsTried;
            const bool isResumable = tryFault(i, StepFault::idle) && tryFault(i, StepFault::done) &&
                                     (!steps_[i].isRepeatable || tryFault(i, StepFault::repeated));
            if (isResumable) {
                ++result.resumesAsPlanned;
            } else {
                result.notResumable.push_back(steps_[i].step);
            }
        }
        copy_.restore(stages_.back().state);
        return result;
    }

  private:
    /// Whether the plan comes to its end when the step at `index` fails so.
    bool tryFault(std::size_t index, StepFault fault) {
        const PlanStep& step = steps_[index];
        copy_.restore(stages_[index].state);
        if (fault != StepFault::idle) {
            // Whatever it says, it is told to have failed.
            copy_.play(step.argv);
        }
        const ResumeAt where = resumeAt(layout(index), stages_[index].layout,
                                        stages_[index + 1].layout, step.isRepeatable);
        switch (where) {
        case ResumeAt::again:
            return endsFrom(index, false);
        case ResumeAt::behind:
            return fault == StepFault::repeated ? endsFrom(index, false)
                                                : endsFrom(index + 1, true);
        case ResumeAt::nowhere:
            break;
        }
        return false;
    }

    /// The hash of what stands around a step. In a state that the rehearsal has been in it is
    /// known.
    std::string layout(std::size_t index) {
        const CopyState state = copy_.state();
        for (const std::size_t stage : {index, index + 1}) {
            if (state == stages_[stage].state) {
                return stages_[stage].layout;
            }
        }
        return layoutHash(copy_.capture());
    }

    /// Runs the steps from `index` on. Where the copy is in the state of the rehearsal in front of
    /// a step, the others have been played from there.
    bool endsFrom(std::size_t index, bool mayJoin) {
        for (std::size_t i = index; i < steps_.size(); ++i) {
            if ((mayJoin || i > index) && copy_.state() == stages_[i].state) {
                return true;
            }
            if (!isAccepted(steps_[i], copy_.play(steps_[i].argv))) {
                return false;
            }
        }
        return copy_.state() == stages_.back().state ||
               layoutHash(copy_.capture()) == stages_.back().layout;
    }

    VirtualCopy& copy_;
    const std::vector<PlanStep>& steps_;
    const std::vector<RehearsalStage>& stages_;
};

} // namespace

ResumeAt resumeAt(std::string_view found, std::string_view before, std::string_view after,
                  bool isRepeatable) {
    if (found == before && (before != after || isRepeatable)) {
        return ResumeAt::again;
    }
    return found == after && before != after ? ResumeAt::behind : ResumeAt::nowhere;
}

bool isAccepted(const PlanStep& step, const PlayedLine& played) {
    return !played.isRefused &&
           std::find(step.acceptedExitCodes.begin(), step.acceptedExitCodes.end(),
                     played.exitCode) != step.acceptedExitCodes.end();
}

DrillResult drillFaults(VirtualCopy& copy, const std::vector<PlanStep>& steps,
                        const std::vector<RehearsalStage>& stages) {
    return Drill(copy, steps, stages).run();
}

} // namespace zolex::companion
