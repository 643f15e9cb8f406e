#pragma once

#include "model/RaidLevel.h"
#include "model/Server.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace zolex_sim {

/// How a utility names the place of a drive: by enclosure and slot, or by channel and device. The
/// channel then stands for the enclosure of a location, the device for its slot. By channel and id
/// is the same for drives that have no bay besides.
enum class Addressing : std::uint8_t { enclosures, channels, ids };

/// Limits of a utility's controllers, unless their definition says otherwise.
struct UtilityLimits {
    int minStripeKb = 8;
    int maxStripeKb = 1024;
    int drivesPerSpan = 32;
    int logicalDrives = 64;
    int hotSpares = 1024;
};

/// What is usual of the drives of a utility's controllers.
struct UtilityDrives {
    std::string_view interface = "SAS";
    int reservedMb = 512;       ///< of each drive, that no array can use
    bool numbersBad = true;     ///< bad drives are counted among the drives of the controller
    bool takesInitiator = true; ///< a drive can have the controller's own number
    int enclosure = -1;         ///< of a drive without one; below 0: outside every enclosure
    int lastChannel = 255;      ///< of drives with channel and id
    int lastId = 255;           ///< likewise
};

/// What the machine has to know of a utility that drives its controllers.
struct UtilityTraits {
    std::string_view name;
    Addressing addressing;
    int firstChannel; ///< number of the first channel or, where the enclosures stand for the
                      ///< channels, enclosure; below 0: they count in the drives' order
    bool numbersFailedDrives; ///< failed drives are counted among the drives of the controller
    std::span<const RaidLevel> levels; ///< that its controllers can have
    // What its controllers do by themselves, unless their definition says otherwise.
    int stripeKb;
    WritePolicy writePolicy;
    ReadPolicy readPolicy;
    UtilityLimits limits = {};
    UtilityDrives drives = {};
    bool showsBlocks = false; ///< its listings tell a BlockIdentity
    int initiatorId = 0;      ///< the controller's own number among the drives
};

/// Null for an unknown utility; letter case is ignored.
const UtilityTraits* utilityNamed(std::string_view name);

} // namespace zolex_sim
