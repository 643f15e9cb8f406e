#pragma once

#include "companion/binding/KindFile.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/planning/Refusals.h"

#include <cstddef>
#include <vector>

namespace zolex::companion {

/// Plans the controllers that zolex does not know, one after another, from the policies as they are
/// written.
class FamilyPlanner {
  public:
    /// All references must outlive the object. `policies` are null where they cannot be read.
    FamilyPlanner(const Snapshot& snapshot, const PlanRequest& request,
                  const PlanPolicies* policies, Refusals& refusals);

    [[nodiscard]] ControllerPlanning plan(const ControllerSnapshot& detail);

  private:
    struct Attempt;

    [[nodiscard]] Attempt attempt(const ControllerSnapshot& detail, std::size_t policy,
                                  bool failedMembersStay) const;
    void finish(ControllerPlanning& planning, std::vector<Finding> found);

    const Snapshot& snapshot_;
    const PlanRequest& request_;
    const PlanPolicies* policies_;
    Refusals& refusals_;
    PolicyDocument document_; ///< as it is written
    std::vector<PolicyView> views_;
    KindFile kinds_;
};

} // namespace zolex::companion
