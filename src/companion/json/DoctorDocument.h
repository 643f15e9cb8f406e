#pragma once

#include "companion/findings/Finding.h"
#include "companion/json/DocumentHead.h"
#include "companion/machine/Examination.h"
#include "companion/machine/Snapshot.h"
#include "companion/text/Terminal.h"

#include <string>
#include <vector>

namespace zolex::companion {

/// The document `zolex-doctor`: whether everything is there, and whether it is understood.
/// `console` is how the console takes text.
[[nodiscard]] std::string doctorDocument(const Examination& examination, const Snapshot& snapshot,
                                         const TextStyle& console, const DocumentHead& head);

/// A document of the same format when the machine could not be looked at: nothing but why, in
/// `diagnostics`.
[[nodiscard]] std::string failedDoctorDocument(const std::vector<Finding>& findings,
                                               const DocumentHead& head);

} // namespace zolex::companion
