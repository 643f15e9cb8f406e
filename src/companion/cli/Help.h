#pragma once

#include "companion/cli/Options.h"

#include <string>

namespace zolex::companion {

/// The help of a command, or of the program; whole lines of at most 80 columns.
[[nodiscard]] std::string helpText(Command command);
/// "zolexctl 2.20\n".
[[nodiscard]] std::string versionText();

} // namespace zolex::companion
