#pragma once

#include "companion/execution/Apply.h"
#include "companion/execution/Guard.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zolex::companion {

/// The lock beside a plan, and the one of the machine.
class RunLocks {
  public:
    /// Takes both; why not, otherwise.
    std::optional<RunFault> take(ExecutionSystem& system, const MachinePlan& plan,
                                 const ApplyTerms& terms, ApplyListener& listener);
    /// A child of a run that is gone, which still runs; {} when there is none.
    [[nodiscard]] const ProcessIdentity& oldChild() const { return oldChild_; }
    void note(const ProcessIdentity& child);

  private:
    std::optional<RunFault> takeOne(ExecutionSystem& system, const std::string& name,
                                    ApplyListener& listener);

    std::vector<std::unique_ptr<RunLock>> locks_;
    ProcessIdentity oldChild_;
    ProcessIdentity told_; ///< the holder that is gone
};

} // namespace zolex::companion
