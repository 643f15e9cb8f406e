#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zolex::companion {

/// What a user said beforehand of losses.
struct DestroyWish {
    enum class Kind {
        ask,   ///< nothing: a terminal is asked, and elsewhere nothing may be lost
        never, ///< nothing may be lost, and nobody is asked
        own,   ///< what certificates of earlier runs tell of
        any,   ///< everything
        code,  ///< exactly what the code stands for
    };
    Kind kind = Kind::ask;
    std::string code; ///< as consent codes are written, "7Q4K-2M9D"; or the id of a plan
    friend bool operator==(const DestroyWish&, const DestroyWish&) = default;
};

/// "never", "own", "any", or a code in any letter case, with or without blanks and the hyphen. The
/// letters I, L and O, which no code has, are the digits that they look like. The id of a plan
/// ("p-" and twelve hexadecimal digits) is a code too. Nothing for any other text.
[[nodiscard]] std::optional<DestroyWish> destroyWishOf(std::string_view text);

} // namespace zolex::companion
