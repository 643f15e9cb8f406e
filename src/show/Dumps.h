#pragma once

#include "foundation/CString.h"
#include "model/Configuration.h"
#include "model/RAIDController.h"

/// Records of the model as the texts that runs in detail print.
namespace zolex::show {

[[nodiscard]] CString dumpText(const Hotspare& hotspare);
[[nodiscard]] CString dumpText(const RAIDConfiguration& configuration);
[[nodiscard]] CString dumpText(const RaidDisk& disk);
/// The layout that was captured is shown when asked for.
[[nodiscard]] CString dumpText(const RAIDController& controller, bool withConfiguration);

} // namespace zolex::show
