#pragma once

#include "foundation/CString.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

/// What the steps of planning share.
namespace zolex {

/// In a row of a table: holds for every type, or for every subtype.
inline constexpr std::int32_t anyCode = std::numeric_limits<std::int32_t>::min();

inline constexpr std::size_t planningPositions =
    static_cast<std::size_t>(RAIDController::channels - RAIDController::firstChannel) *
    static_cast<std::size_t>(RAIDController::ids);

/// Every position whose drive counts, in the order of every scan: channel by channel, id by id.
inline constexpr std::array<DrivePosition, planningPositions> planningOrder = [] {
    std::array<DrivePosition, planningPositions> order;
    std::size_t next = 0;
    for (std::int32_t channel = RAIDController::firstChannel; channel < RAIDController::channels;
         ++channel) {
        for (std::int32_t id = 0; id < RAIDController::ids; ++id) {
            order[next++] = {channel, id};
        }
    }
    return order;
}();

/// The letter of an array, 'A' for index 0.
[[nodiscard]] constexpr char arrayLetter(std::size_t arrayIndex) {
    return static_cast<char>('A' + static_cast<int>(arrayIndex));
}

/// Model name of the controller's type and subtype.
[[nodiscard]] CString modelNameOf(const RAIDController& controller);

} // namespace zolex
