#pragma once

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

/// The program's return codes that planning sets.
namespace planning_code {
inline constexpr std::int32_t tooFewForHotspares = 12;
inline constexpr std::int32_t drivesDoNotFit = 13;
} // namespace planning_code

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

/// The word that traces show for a result.
[[nodiscard]] constexpr const char* resultWord(bool result) {
    return result ? "true" : "false";
}

/// The letter that messages show for an array, 'A' for index 0.
[[nodiscard]] constexpr char arrayLetter(std::size_t arrayIndex) {
    return static_cast<char>('A' + static_cast<int>(arrayIndex));
}

} // namespace zolex
