#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zolex::companion {

/// The bytes in base64, with "=" up to a multiple of four characters.
[[nodiscard]] std::string toBase64(std::string_view bytes);
/// The bytes of such a text; nothing when it is none.
[[nodiscard]] std::optional<std::string> fromBase64(std::string_view text);

} // namespace zolex::companion
