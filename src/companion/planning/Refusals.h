#pragma once

#include "companion/planning/Plan.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// Sorts what is found into faults and warnings. An error whose id is accepted becomes a warning,
/// unless zolex or the plan itself would refuse it.
class Refusals {
  public:
    explicit Refusals(const PlanRequest& request) : request_(request) {}

    /// Whether it may be let pass by its id.
    [[nodiscard]] static bool isAcceptable(const Finding& finding);
    /// Puts the findings of a controller where they belong, each error with what can be typed.
    void sort(std::vector<Finding> found, ControllerPlanning& planning);
    /// The same of those that are among the diagnostics already.
    void sortAgain(ControllerPlanning& planning);
    /// The errors of the machine as a whole; those that are accepted become warnings.
    void accept(std::vector<Finding>& findings);
    /// Ids of errors that were let pass, in their order.
    [[nodiscard]] std::vector<std::string> accepted() const;

  private:
    [[nodiscard]] bool isAccepted(const Finding& finding) const;
    /// Makes a warning of it where it is accepted. False for an error that remains.
    bool letPass(Finding& finding);
    void addHelp(Finding& finding) const;

    const PlanRequest& request_;
    std::vector<std::string> accepted_;
};

[[nodiscard]] bool hasErrors(const std::vector<Finding>& findings);

} // namespace zolex::companion
