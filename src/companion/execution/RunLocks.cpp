#include "companion/execution/RunLocks.h"

#include "companion/execution/ApplyCodes.h"
#include "companion/execution/RunCodes.h"
#include "companion/machine/System.h"
#include "companion/text/Terminal.h"

#include <utility>

namespace zolex::companion {

namespace {

/// Of the machine alone: plans of other controllers of it must not be carried out beside each
/// other.
std::string machineLockName(ExecutionSystem& system, const MachinePlan& plan) {
    constexpr std::size_t digits = 16;
    Fingerprint machine;
    machine.machineType = plan.fingerprint.machineType;
    machine.serialNumber = plan.fingerprint.serialNumber;
    return system.commonFolder() + (system::isWindows ? "\\" : "/") + "zolexctl-" +
           identityHash(machine).substr(0, digits) + ".lock";
}

} // namespace

std::optional<RunFault> RunLocks::take(ExecutionSystem& system, const MachinePlan& plan,
                                       const ApplyTerms& terms, ApplyListener& listener) {
    if (!terms.lockFile.empty()) {
        if (std::optional<RunFault> fault = takeOne(system, terms.lockFile, listener)) {
            return fault;
        }
    }
    return takeOne(system, machineLockName(system, plan), listener);
}

std::optional<RunFault> RunLocks::takeOne(ExecutionSystem& system, const std::string& name,
                                          ApplyListener& listener) {
    LockAnswer answer = system.lock(name);
    const std::string holder = "pid " + std::to_string(answer.holder.pid);
    if (!answer.lock && answer.holder.pid == 0) {
        return RunFault{
            apply_code::notPossible,
            printable(name) + " cannot be locked: " + printable(answer.fault),
            {},
            {"every run makes this file: make room or rights for it, or remove what is in its "
             "place; nothing was changed"},
            std::string(run_problem::journalNotWritten)};
    }
    if (!answer.lock) {
        return RunFault{apply_code::refused,
                        "another run is under way on this machine (" + holder + ")",
                        {"it holds " + printable(name)},
                        {"wait until it has ended; nothing was changed"},
                        std::string(run_problem::anotherRun)};
    }
    locks_.push_back(std::move(answer.lock));
    if (answer.child.pid != 0 && system.isRunning(answer.child)) {
        oldChild_ = answer.child;
        locks_.back()->note(oldChild_); // whoever comes next is to know it too
    }
    if (answer.holder.pid != 0 && answer.holder != told_) {
        told_ = answer.holder;
        listener.note("warning: the lock of a run that is gone (" + holder + ") is taken over");
    }
    return std::nullopt;
}

void RunLocks::note(const ProcessIdentity& child) {
    for (const std::unique_ptr<RunLock>& lock : locks_) {
        lock->note(child);
    }
}

} // namespace zolex::companion
