#pragma once

#include "companion/commands/GuardedRun.h"
#include "companion/layout/Layout.h"
#include "companion/planning/Plan.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zolex::companion {

/// What a run of zolex is judged by, beside its command line.
struct GuardTerms {
    std::string policiesText;
    std::vector<std::string> accept;     ///< ids of errors to let pass
    std::vector<std::string> zolexWords; ///< behind "zolex"
};

/// What a run of zolex would do with a captured machine.
struct GuardPlan {
    MachinePlan erased;            ///< its restore, with all that is lost; no controllers: none
    std::vector<Finding> findings; ///< errors: zolex would not do it whole
    std::map<std::int32_t, Layout> ends; ///< what must stand afterwards, by controller
    std::vector<std::string> lines;      ///< what becomes of each controller, for people

    [[nodiscard]] bool isRefused() const;
};

/// Plans what zolex would do: its restore takes all of a controller, without it nothing is removed,
/// and it runs no more than its own command lines and their number. Reads only.
[[nodiscard]] GuardPlan planGuardedRun(const Snapshot& snapshot, const GuardedRun& run,
                                       const GuardTerms& terms);

/// Lets errors pass that are accepted; each of the others is told how it would be.
void letPass(std::vector<Finding>& findings, const GuardTerms& terms);

} // namespace zolex::companion
