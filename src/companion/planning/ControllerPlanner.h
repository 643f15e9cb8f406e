#pragma once

#include "companion/planning/FamilyPlanner.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/planning/Refusals.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// Plans the controllers of a machine, one after another.
class ControllerPlanner {
  public:
    /// All references must outlive the object. `policies` are null where they cannot be read.
    ControllerPlanner(const Snapshot& snapshot, const PlanRequest& request,
                      const PlanPolicies* policies, Refusals& refusals,
                      std::vector<std::string>& coreMessages)
        : snapshot_(snapshot), request_(request), policies_(policies), refusals_(refusals),
          coreMessages_(coreMessages), familyPlanner_(snapshot, request, policies, refusals) {}

    [[nodiscard]] ControllerPlanning plan(const ControllerSnapshot& detail);

  private:
    struct Attempt;

    [[nodiscard]] ControllerPlanning planOf(const ControllerSnapshot& detail);

    /// Plans the controller, seen with or without its failed drives.
    [[nodiscard]] Attempt attempt(const RAIDController& record, const ControllerSnapshot& detail,
                                  bool failedMembersStay) const;
    void planBy(const PlanPolicies& policies, std::size_t policy, const RAIDController& record,
                const ControllerSnapshot& detail, Attempt& attempt) const;
    void takeAsItStands(Attempt& attempt, ControllerPlanning& planning);
    void finish(const RAIDController& record, Attempt& attempt, ControllerPlanning& planning);

    const Snapshot& snapshot_;
    const PlanRequest& request_;
    const PlanPolicies* policies_;
    Refusals& refusals_;
    std::vector<std::string>& coreMessages_;
    FamilyPlanner familyPlanner_;
};

} // namespace zolex::companion
