#pragma once

#include "model/RAIDController.h"
#include "policies/Policy.h"
#include "properties/Forecast.h"

namespace zolex::properties {

/// Where a plan has what the machine refuses from. Planning takes lists, levels and sizes as a
/// policy has them; what it chooses on its own must be accepted.
class Origin {
  public:
    Origin(const Policy& policy, const RAIDController& planned, const Forecast& forecast)
        : policy_(policy), planned_(planned), plan_(*planned.captured()), forecast_(forecast) {}

    /// Each drive that the plan has twice stands in a list of the policy the second time.
    [[nodiscard]] bool repeatsOnlyWhatIsListed() const;
    /// Each drive of the plan that is not shown as a free one stands in a list of the policy.
    [[nodiscard]] bool takesOnlyWhatIsFreeOrListed() const;
    /// The hot spares were chosen before the lists of drives were looked at.
    [[nodiscard]] bool hasAutomaticHotspares() const {
        return !policy_.hotspares && !plan_.hotspares().empty();
    }
    /// The policy asks for what keeps the generator from making commands.
    [[nodiscard]] bool explains(Cause generatorCause) const;
    /// The policy asks for what the machine refuses in the step.
    [[nodiscard]] bool explains(Cause cause, const Forecast::Step& step) const;

  private:
    [[nodiscard]] bool isListed(std::size_t array) const;
    [[nodiscard]] bool hasAsManyAsListed(std::size_t array) const;
    [[nodiscard]] bool isLeftToTheClass(std::size_t array) const;
    [[nodiscard]] std::size_t entriesOn(std::size_t array) const;
    [[nodiscard]] const LogicalSpecification& entryOf(const LogicalDrive& drive) const;
    [[nodiscard]] bool asksForHotspares(int more) const;
    [[nodiscard]] bool hasNoFreeDrive() const;
    [[nodiscard]] bool asksForTooMuch(const Forecast::Step& step) const;
    [[nodiscard]] double usableMb(const LogicalDrive& drive) const;
    [[nodiscard]] double shareOf(const LogicalDrive& drive) const;

    const Policy& policy_;
    const RAIDController& planned_;
    const RAIDConfiguration& plan_;
    const Forecast& forecast_;
};

} // namespace zolex::properties
