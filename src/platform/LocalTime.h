#pragma once

#include "platform/Platform.h"

namespace zolex {

/// The present moment in the local time zone; the fields' defaults when it cannot be had.
[[nodiscard]] LocalTime currentLocalTime();

} // namespace zolex
