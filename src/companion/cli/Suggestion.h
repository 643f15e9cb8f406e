#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace zolex::companion {

/// How many letters must be put in, left out, changed or swapped with the next one to make `a` of
/// `b`. Letter case does not count.
[[nodiscard]] std::size_t editDistance(std::string_view a, std::string_view b);

/// The word that `given` was most likely meant to be: the nearest of the words, or the only one
/// that begins with it. Empty when none is near.
[[nodiscard]] std::string_view nearestWord(std::string_view given,
                                           std::span<const std::string_view> words);

} // namespace zolex::companion
