#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Mistyped words.
namespace zolex::companion {

/// The word of `words` that `text` is most like: at most a third of its letters differ.
[[nodiscard]] std::optional<std::string> nearestWord(std::string_view text,
                                                     const std::vector<std::string>& words);

/// Whether at most so many letters make `word` of `text`.
[[nodiscard]] bool isNearWord(std::string_view text, std::string_view word, std::size_t letters);

} // namespace zolex::companion
