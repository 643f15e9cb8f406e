#pragma once

#include "companion/planning/PlannedLayout.h"
#include "engine/Reason.h"

#include <string>
#include <string_view>

namespace zolex::companion {

/// "like-first", the word that plans have for it.
[[nodiscard]] std::string_view reasonCode(Reason::Kind kind);

/// The reasons of one plan, with the lines of the entries that they come from.
class PlanReasons {
  public:
    explicit PlanReasons(const PlannedCase& planned) : planned_(planned) {}

    /// Why a drive is in an array, or a hot spare; `index` of the array or of the spare.
    [[nodiscard]] PlanReason ofDrive(Reason::Subject subject, std::size_t index,
                                     DrivePosition position, const std::string& location) const;
    /// Why a logical drive, or (of `index` -1) the controller, has a value.
    [[nodiscard]] PlanReason ofValue(Reason::Subject subject, std::int32_t index) const;
    /// The core's own reason; null without one.
    [[nodiscard]] const Reason* find(Reason::Subject subject, std::int32_t index) const;

  private:
    [[nodiscard]] PlanReason from(const Reason& reason) const;
    [[nodiscard]] std::string nameInList(const Reason& reason, const std::string& location) const;
    [[nodiscard]] std::string fieldOf(const Reason& reason) const;
    [[nodiscard]] const PolicyView& view() const {
        return planned_.policies.views[planned_.policy];
    }

    const PlannedCase& planned_;
};

} // namespace zolex::companion
