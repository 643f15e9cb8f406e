#pragma once

#include "companion/findings/Finding.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zolex::companion {

/// A text with what can be mended safely, and how much that was.
struct FixedText {
    std::string text;
    std::size_t blanks = 0;   ///< lines that ended in blanks (ZX901)
    std::size_t keywords = 0; ///< keywords that are written as usual now (ZX902)

    [[nodiscard]] bool isChanged() const { return blanks > 0 || keywords > 0; }
};

/// Mends what ZX901 and ZX902 found in the text; what zolex reads in it stays the same.
[[nodiscard]] FixedText fixPolicies(std::string_view text, std::span<const Finding> findings);

} // namespace zolex::companion
