#pragma once

#include "foundation/CString.h"
#include "model/RAIDController.h"
#include "platform/Platform.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace zolex {

/// What a generated policy says of the controller that it was captured from, besides its
/// configuration.
struct CapturedFacts {
    CString policyName;
    LocalTime time;
    CString machineType;
    CString serialNumber;
    std::int32_t controllerNumber = 0; ///< from 1
    CString controllerType;            ///< model name
    bool explicitSizes = false;        ///< whether the controller's type takes sizes in MB
};

/// The comment block that stands before a generated policy.
[[nodiscard]] CString policyHeaderText(const CapturedFacts& facts);

/// The value of `AppliesTo.1` for a comma list of the letters m, s, c, o, t, d and ALL (letter case
/// ignored), which ends it; nothing when the list holds anything else.
[[nodiscard]] std::optional<CString> appliesToText(std::string_view parameters,
                                                   const CapturedFacts& facts,
                                                   const RAIDController& controller);

/// A policy that makes the controller's configuration, which it must have, from its section header
/// to the empty line that ends it. Values without a word are written "ERROR".
[[nodiscard]] CString policyBodyText(const CapturedFacts& facts, const CString& appliesTo,
                                     const RAIDController& controller);

} // namespace zolex
