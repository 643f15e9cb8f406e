#pragma once

#include "companion/execution/Certificate.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// What `show CERTIFICATE` writes on a terminal: the machine, what became of each controller, its
/// drives with their serial numbers, its layout, and the hashes.
[[nodiscard]] std::string certificateText(const Certificate& certificate, const TextStyle& style);

} // namespace zolex::companion
