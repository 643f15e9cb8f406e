#pragma once

#include <string>

namespace zolex::companion {

/// The word as it is typed: in quotation marks where it has blanks, or what a shell takes for its
/// own.
[[nodiscard]] std::string typedWord(const std::string& word);

} // namespace zolex::companion
