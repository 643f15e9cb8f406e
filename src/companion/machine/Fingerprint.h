#pragma once

#include "companion/machine/Snapshot.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// How surely a fingerprint tells one machine from another.
enum class Strength {
    positions, ///< nothing unique is told
    machine,   ///< by the serial number of the machine alone
    drives,    ///< by the serial numbers of drives
    serials,   ///< of the controllers and of all drives too
};

/// "serials", "drives", "machine", "positions".
[[nodiscard]] std::string_view strengthWord(Strength strength);

/// Which machine this is, and in what state.
struct Fingerprint {
    static constexpr std::string_view algorithm = "zolex-fp-1";

    struct Controller {
        std::int32_t number = 0;
        std::string pci;
        std::string ids;
        std::string model;
        std::string serialNumber; ///< empty: not told
        friend bool operator==(const Controller&, const Controller&) = default;
    };

    Strength strength = Strength::positions;
    std::string identity; ///< SHA-256: machine and controllers
    std::string state;    ///< SHA-256: drives, layout, foreign configurations
    std::string machineType;
    std::string serialNumber; ///< empty: not told
    std::vector<Controller> controllers;
    friend bool operator==(const Fingerprint&, const Fingerprint&) = default;
};

[[nodiscard]] Fingerprint fingerprintOf(const Snapshot& snapshot);

/// The state as plans have it whose logical drives tell neither ids nor names.
[[nodiscard]] std::string stateWithoutIds(const Snapshot& snapshot);

/// The hash of the machine and the controllers that a fingerprint tells of.
[[nodiscard]] std::string identityHash(const Fingerprint& print);

/// "good", "failed", "missing", "foreign", "rebuilding". Good drives change between free, member
/// and spare with the layout; what is wrong with one is a state of its own.
[[nodiscard]] std::string_view driveCondition(const DriveFacts& drive);

/// The hash of the normal form of a controller's layout, as hexadecimal digits.
[[nodiscard]] std::string layoutHash(const Facts& facts);

/// Whether a serial number is a text that firmware has where none was entered: "None", "To Be
/// Filled By O.E.M.", zeros and so on; an empty one too.
[[nodiscard]] bool isPlaceholder(std::string_view serialNumber);

} // namespace zolex::companion
