#pragma once

#include "companion/facts/Facts.h"

#include <string>

namespace zolex::companion {

/// The layout of one controller in a form that is the same for layouts that mean the same: one line
/// for each group of drives with its logical drives, one for each hot spare and each foreign
/// configuration, in the order of their drives, each with "\n". Numbers of arrays and names are
/// left out; sizes are rounded to the listing's own digits, and one that fills its group says
/// "fill".
[[nodiscard]] std::string normalForm(const Facts& facts);

} // namespace zolex::companion
