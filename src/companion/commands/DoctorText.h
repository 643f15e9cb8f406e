#pragma once

#include "companion/machine/Examination.h"
#include "companion/machine/Snapshot.h"
#include "companion/text/Terminal.h"

#include <string>

namespace zolex::companion {

/// How much `doctor` tells.
enum class DoctorDetail {
    findings, ///< nothing but what is wrong
    usual,
    keys, ///< the keys that are not known, too
};

/// What `doctor` writes on a terminal.
[[nodiscard]] std::string doctorText(const Examination& examination, const Snapshot& snapshot,
                                     const TextStyle& style, DoctorDetail detail);

} // namespace zolex::companion
