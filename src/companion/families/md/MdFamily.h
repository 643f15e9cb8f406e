#pragma once

#include "companion/families/Family.h"

namespace zolex::companion::md {

/// Arrays of Linux itself, by mdadm: one controller, whose drives are those of the machine that
/// nothing uses. It is asked for by name, always.
[[nodiscard]] const Family& family();

} // namespace zolex::companion::md
