#pragma once

#include "companion/machine/Snapshot.h"
#include "companion/planning/Plan.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// Whether a machine is the one, and in the state, that a plan was made of.
namespace zolex::companion {

/// Why a run ends before it does anything, or in the middle.
struct RunFault {
    int exitCode = 0;
    std::string what;
    std::vector<std::string> details;
    std::vector<std::string> help;
    std::string code{}; ///< "ZA101"
};

/// The numbers of the plan's controllers that are asked for.
[[nodiscard]] std::vector<const ControllerPlanning*>
controllersAskedFor(const MachinePlan& plan, const std::vector<std::int32_t>& numbers);

/// Null when it was not captured.
[[nodiscard]] const ControllerSnapshot* capturedController(const Snapshot& snapshot,
                                                           std::int32_t number);

/// A capture from which nothing can be told: a utility failed, a listing was not understood.
[[nodiscard]] std::optional<RunFault> captureFault(const Snapshot& snapshot);

/// Another machine, or one whose utilities number its controllers otherwise.
[[nodiscard]] std::optional<RunFault> identityFault(const Snapshot& snapshot,
                                                    const MachinePlan& plan);

/// A state that is not the one planned for. Firmware that was replaced, and what has changed on
/// controllers that are not asked for, goes to `warnings` alone.
[[nodiscard]] std::optional<RunFault> stateFault(const Snapshot& snapshot, const MachinePlan& plan,
                                                 const std::vector<std::int32_t>& controllers,
                                                 std::vector<std::string>& warnings);

/// Logical drives that the plan deletes and the running system uses, as far as it was asked.
[[nodiscard]] std::optional<RunFault> inUseFault(const Snapshot& snapshot, const MachinePlan& plan,
                                                 const std::vector<std::int32_t>& controllers);

/// Has `ask` note what the system uses those for that the plan deletes on a controller; `step`
/// alone, unless it is null.
void askOfLost(const ControllerPlanning& planning, const PlanStep* step, Facts& facts,
               const std::function<void(Facts&)>& ask);

/// Those that a step is about to delete. `facts` are of what was captured last; `ask` notes in them
/// what the system uses now.
[[nodiscard]] std::optional<RunFault> stepInUseFault(const ControllerPlanning& planning,
                                                     const PlanStep& step, const Facts& facts,
                                                     const std::function<void(Facts&)>& ask);

/// A controller whose cache keeps data of a logical drive that is not there, where one of the steps
/// behind the first `done` makes a logical drive: its utility would refuse that one, when what
/// those steps delete is gone.
[[nodiscard]] std::optional<RunFault>
keptCacheFault(const Snapshot& snapshot, const ControllerPlanning& planning, std::size_t done);

/// A logical drive that the steps behind the first `done` let be, that went offline since the plan
/// was made: nothing is changed beside it, as long as its data can be had back.
[[nodiscard]] std::optional<RunFault>
offlineFault(const Snapshot& snapshot, const ControllerPlanning& planning, std::size_t done);

/// One controller that is not as it was when the plan was made, of which no step was begun yet: its
/// drives, what stands on it, its number in the commands of its utility.
[[nodiscard]] std::optional<RunFault> controllerFault(const Snapshot& snapshot,
                                                      const MachinePlan& plan,
                                                      const ControllerPlanning& planning);

/// Foreign drives, or layouts on them, that are not those that were agreed to be cleared: the
/// command clears whatever is foreign.
[[nodiscard]] std::optional<RunFault>
foreignFault(const MachinePlan& plan, const ControllerPlanning& planning, const Facts& facts);

/// A logical drive that a step behind the first `done` deletes and that no plan would delete as it
/// is now: its level or its state is not known.
[[nodiscard]] std::optional<RunFault>
notDeletedFault(const Snapshot& snapshot, const ControllerPlanning& planning, std::size_t done);

/// Drives that are not those that they were, in the middle of a run.
[[nodiscard]] std::optional<RunFault> drivesFault(const Snapshot& snapshot, const MachinePlan& plan,
                                                  const std::vector<std::int32_t>& controllers);

/// Which logical drives that stood before the plan, and that none of its first `done` steps
/// removes, have another number now: a command line that names one would reach another.
[[nodiscard]] std::vector<std::string> otherwiseNumbered(const ControllerPlanning& planning,
                                                         std::size_t done, const Facts& facts);

/// Which of them are not those that stood before, though they have their numbers and drives: they
/// were deleted and made anew, or have another name. Nothing where the plan does not tell ids.
[[nodiscard]] std::vector<std::string> madeAnew(const ControllerPlanning& planning,
                                                std::size_t done, const Facts& facts);

/// Which arrays that a command behind the first `done` steps names by their numbers have another
/// one now: a spare of one would be made a spare of another.
[[nodiscard]] std::vector<std::string>
arraysOtherwiseNumbered(const ControllerPlanning& planning, std::size_t done, const Facts& facts);

struct NumbersFault {
    std::string why; ///< in short: "its logical drives have other numbers"
    RunFault fault;
};
/// What keeps the commands behind the first `done` steps from reaching what they were written for:
/// logical drives or arrays that have other numbers, or logical drives that were made anew by
/// somebody else. Nothing of utilities of zolex, whose numbers may be positions.
[[nodiscard]] std::optional<NumbersFault> numbersFault(const MachinePlan& plan,
                                                       const ControllerPlanning& planning,
                                                       std::size_t done, const Facts& facts);

/// "zolexctl plan site.ini plans from what is there".
[[nodiscard]] std::string planAgainHelp(const MachinePlan& plan);

} // namespace zolex::companion
