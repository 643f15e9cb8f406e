#pragma once

#include "model/Machine.h"

#include <optional>

namespace zolex {

class Application;

/// The machine as a run knows it: from the inventory file when controllers come from it, else from
/// the hardware detector. Nothing when the detector failed or the file cannot be read; the latter
/// has been reported.
[[nodiscard]] std::optional<Machine> knownMachine(Application& application);

} // namespace zolex
