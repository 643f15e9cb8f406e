#pragma once

#include "companion/machine/Snapshot.h"
#include "model/StorcliController.h"

#include <string>
#include <string_view>

/// Copies of controllers that STORCLI drives.
namespace zolex::companion::storcli_copy {

/// The controller of the virtual server that stands for a captured one. Throws NoCopy.
[[nodiscard]] zolex_sim::storcli::Controller make(const ControllerSnapshot& original);

/// The place of a drive on the virtual server.
[[nodiscard]] zolex_sim::DriveLocation placeOf(const DriveFacts& drive);

/// Whether the virtual server has the drive's word for its state. One that has another is never
/// planned with: in a copy it stands as it may, and is told as it was captured.
[[nodiscard]] bool isToldAlike(const DriveFacts& drive);

/// How the copy, read back, differs from its original; empty when it does not.
[[nodiscard]] std::string differenceOf(const Facts& original, const Facts& copy);

} // namespace zolex::companion::storcli_copy
