#pragma once

#include <string>

namespace zolex::companion {

/// A word of a command line as it is typed: in double quotes where a shell would take it apart, in
/// single ones where it would put something else there.
[[nodiscard]] std::string typedWord(const std::string& word);

} // namespace zolex::companion
