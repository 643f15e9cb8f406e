#pragma once

#include "platform/Platform.h"

#include <string>

namespace zolex::companion {

/// A moment as RFC 3339 writes it: "2026-11-21T21:05:00+01:00".
[[nodiscard]] std::string timestampOf(const LocalTime& time);

} // namespace zolex::companion
