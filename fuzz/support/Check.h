#pragma once

#include <string_view>

namespace zolex::fuzz {

/// Ends the process as a crash, with `what` on standard error, when the condition does not hold.
void check(bool holds, std::string_view what);

} // namespace zolex::fuzz
