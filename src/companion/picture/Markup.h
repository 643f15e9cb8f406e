#pragma once

#include <string>
#include <string_view>

namespace zolex::companion {

/// A text from outside as it can stand in XML and HTML, in an element or an attribute: what markup
/// is made of becomes a reference; control characters, bytes that are not UTF-8, and the characters
/// that XML forbids become "?".
[[nodiscard]] std::string escaped(std::string_view text);

} // namespace zolex::companion
