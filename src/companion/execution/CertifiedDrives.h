#pragma once

#include "companion/execution/Certificate.h"
#include "companion/facts/Facts.h"

#include <string>

namespace zolex::companion {

/// The first drive of a controller that is not as a certificate tells of it, and what to do:
/// "drive 252:4 (serial number X) is gone since p-5f1c09ab77e2: put it back, or ..."; empty: every
/// certified drive, known by its serial number, is in its place with its state and role, as well as
/// it was, and no drive is new. What was being rebuilt may be a good member by now. Drives that
/// tell no serial number of their own are never known.
[[nodiscard]] std::string whyDrivesDiffer(const Certificate::Controller& certified,
                                          const Facts& facts, const std::string& planId);

} // namespace zolex::companion
