#pragma once

#include <array>
#include <cstddef>
#include <string_view>

/// Colours of arrays that people with any kind of colour vision tell apart.
namespace zolex::companion {

struct ArrayColour {
    std::string_view fill;
    std::string_view ink;   ///< of text on the fill and on the hatch: contrast of 4.5 at least
    std::string_view hatch; ///< of lines over the fill
};

// Fill, ink, hatch. In this order the first arrays differ most.
// clang-format off
inline constexpr std::array<ArrayColour, 8> arrayColours{{
    {"#56b4e9", "#000000", "#ffffff"}, // sky blue
    {"#e69f00", "#000000", "#ffffff"}, // orange
    {"#009e73", "#000000", "#ffffff"}, // bluish green
    {"#f0e442", "#000000", "#ffffff"}, // yellow
    {"#cc79a7", "#000000", "#ffffff"}, // reddish purple
    {"#0072b2", "#ffffff", "#000000"}, // blue
    {"#d55e00", "#000000", "#ffffff"}, // vermillion
    {"#000000", "#ffffff", "#555555"}, // black
}};
// clang-format on

/// The colour of the array with this index; behind the eighth they repeat, hatched.
[[nodiscard]] constexpr const ArrayColour& arrayColour(std::size_t array) {
    return arrayColours[array % arrayColours.size()];
}
[[nodiscard]] constexpr bool isHatched(std::size_t array) {
    return array / arrayColours.size() % 2 == 1;
}

} // namespace zolex::companion
