#pragma once

#include "engine/Reason.h"
#include "foundation/CString.h"
#include "foundation/Fault.h"
#include "model/Configuration.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zolex {

enum class Outcome : std::int32_t {
    noPolicy,     ///< no policy is for the controller
    tooFewDrives, ///< the controller cannot be configured
    refused,      ///< the policy does not fit the controller, or its type is not known
    planned,
};

/// What planning says of one controller.
struct ControllerPlan {
    std::int32_t number = 0; ///< of the controller, from 1
    Outcome outcome = Outcome::noPolicy;
    CString policy;                ///< name; empty without a policy
    std::int32_t policyIndex = -1; ///< in the list of policies; -1 without a policy
    /// Of `planned` alone. It is final: where the policy gives no stripe size it has the default,
    /// which is "none" for utilities without stripe sizes only.
    std::optional<RAIDConfiguration> layout;
    std::optional<Fault> fault; ///< of `refused` alone; it has been reported
    /// In the order of the decisions; of a refused plan those before the fault.
    std::vector<Reason> reasons;

    friend bool operator==(const ControllerPlan&, const ControllerPlan&) = default;
};

/// The program's return codes for plans that are refused.
namespace planning_code {
inline constexpr std::int32_t none = 0;
inline constexpr std::int32_t tooFewForHotspares = 12;
inline constexpr std::int32_t drivesDoNotFit = 13;
} // namespace planning_code

/// The return code of a fault of planning.
[[nodiscard]] std::int32_t planningCodeOf(FaultKind kind);

} // namespace zolex
