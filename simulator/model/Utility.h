#pragma once

#include "model/RaidLevel.h"
#include "model/Server.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace zolex_sim {

/// How a utility names the place of a drive: by enclosure and slot, or by channel and device. The
/// channel then stands for the enclosure of a location, the device for its slot.
enum class Addressing : std::uint8_t { enclosures, channels };

/// What the machine has to know of a utility that drives its controllers.
struct UtilityTraits {
    std::string_view name;
    Addressing addressing;
    int firstChannel;         ///< number of the first channel
    bool numbersFailedDrives; ///< failed drives are counted among the drives of the controller
    std::span<const RaidLevel> levels; ///< that its controllers can have
    // What its controllers do by themselves, unless their definition says otherwise.
    int stripeKb;
    WritePolicy writePolicy;
    ReadPolicy readPolicy;
};

/// Null for an unknown utility; letter case is ignored.
const UtilityTraits* utilityNamed(std::string_view name);

} // namespace zolex_sim
