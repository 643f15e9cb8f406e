#pragma once

#include "companion/machine/Examination.h"
#include "companion/machine/Snapshot.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// What `doctor` writes on a terminal. `verbose` lists the keys that are not known.
[[nodiscard]] std::string doctorText(const Examination& examination, const Snapshot& snapshot,
                                     const TextStyle& style, bool verbose);

} // namespace zolex::companion
