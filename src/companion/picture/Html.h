#pragma once

#include "companion/machine/Snapshot.h"

#include <string>
#include <string_view>

namespace zolex::companion {

/// A page about the machine, in one file: pictures, tables, what was found and how it was read. No
/// scripts. `madeAt` is when it was read, for people.
[[nodiscard]] std::string machineHtml(const Snapshot& snapshot, std::string_view madeAt);

} // namespace zolex::companion
