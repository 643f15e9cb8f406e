#pragma once

#include "companion/text/Terminal.h"

namespace zolex::companion::test {

/// No colours, on a terminal of the usual width.
inline constexpr TextStyle plainStyle{false, 80};

} // namespace zolex::companion::test
