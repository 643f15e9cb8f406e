#pragma once

#include "companion/findings/Finding.h"
#include "companion/text/Terminal.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace zolex::companion {

/// The lines of `text` that a finding points at, each with its number and a mark below. Empty when
/// there is nothing to show: no place, a place that is not in the text, what is missing in the file
/// or in a whole policy.
[[nodiscard]] std::string sourceExcerpt(const Finding& finding, std::string_view text,
                                        const TextStyle& style);

/// The columns of a line, at least 40.
[[nodiscard]] std::size_t styleWidth(const TextStyle& style);

} // namespace zolex::companion
