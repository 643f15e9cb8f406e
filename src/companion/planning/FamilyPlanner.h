#pragma once

#include "companion/binding/KindFile.h"
#include "companion/lint/PolicyDocument.h"
#include "companion/lint/PolicyView.h"
#include "companion/planning/PlanPolicies.h"
#include "companion/planning/Refusals.h"

#include <cstddef>
#include <string>
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
    /// Why arrays that are not well do not stay as they are when the attempt is carried out; empty
    /// when they do.
    [[nodiscard]] std::string whyHurtArraysGo(ControllerPlanning planning,
                                              const Attempt& found) const;
    /// Tells of good drives that get no job, once it is known which of equal ones do the work.
    void tellIdle(ControllerPlanning& planning) const;
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
