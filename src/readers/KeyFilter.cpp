#include "readers/KeyFilter.h"

#include <algorithm>

namespace zolex {

namespace {

/// Keys of this length and longer are looked for by blocks of four bytes, which few other lines
/// have.
constexpr std::size_t shortestForWide = 7;

} // namespace

template <typename Block>
void KeyFilter::enter(std::size_t shortest) {
    step_ = shortest - sizeof(Block) + 1;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        for (std::size_t at = 0; at < step_; ++at) {
            table_[slotOf<Block>(keys_[i].data() + at)] |= 1U << i;
        }
    }
}

KeyFilter::KeyFilter(std::span<const std::string_view> keys, LetterCase letterCase)
    : keys_(keys.first(std::min(keys.size(), mostKeys))),
      // This bit is all that the two cases of a letter differ in.
      folded_(letterCase == LetterCase::ignored ? 0x20202020 : 0) {
    std::size_t shortest = std::string_view::npos;
    for (const std::string_view key : keys_) {
        shortest = std::min(shortest, key.size());
    }
    wide_ = shortest >= shortestForWide;
    if (wide_) {
        enter<std::uint32_t>(shortest);
    } else {
        enter<std::uint16_t>(shortest);
    }
}

} // namespace zolex
