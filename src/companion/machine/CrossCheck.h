#pragma once

#include "companion/machine/Snapshot.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// What the PCI function tells of a controller, before any listing is read.
struct FunctionIdentity {
    std::int32_t type = -1;
    std::int32_t subtype = -1;
    std::string pci;    ///< "0000:02:0e.0"
    std::string pciIds; ///< "1000:0411:1000:1002"
};

/// The model that a product name names; empty when it is none that zolex knows. Blanks, hyphens and
/// letter case do not count.
[[nodiscard]] std::string modelInName(std::string_view productName);

/// Holds what the listing tells of the controller against its PCI function, as findings.
void checkAgainstFunction(const FunctionIdentity& function, ControllerSnapshot& snapshot);

/// The serial number that a controller tells.
struct ToldSerial {
    std::int32_t number = 0; ///< of the controller
    std::string utility;
    std::string serialNumber;
    bool mayBeAnywhere =
        false; ///< its place on the bus is not told: another utility may tell of it
};

/// Controllers that have one serial number, as findings of the machine where one of them is in it.
void checkSerialNumbers(const std::vector<ToldSerial>& told, Snapshot& snapshot);

} // namespace zolex::companion
