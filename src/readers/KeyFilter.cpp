#include "readers/KeyFilter.h"

#include <algorithm>
#include <cstring>

namespace zolex {

namespace {

/// Keys of this length and longer are looked for by blocks of four bytes, which few other lines
/// have.
constexpr std::size_t shortestForWide = 7;

} // namespace

template <typename Block>
std::size_t KeyFilter::slotOf(const char* at) noexcept {
    Block block{};
    std::memcpy(&block, at, sizeof block);
    // This bit is all that the two cases of a letter differ in.
    constexpr std::uint32_t folded = 0x20202020;
    constexpr std::uint32_t spread = 0x9E3779B1; // 2^32 by the golden ratio
    return ((block | static_cast<Block>(folded)) * spread) >> (32U - tableBits);
}

template <typename Block>
void KeyFilter::enter(std::size_t shortest) {
    step_ = shortest - sizeof(Block) + 1;
    for (std::size_t i = 0; i < keys_.size(); ++i) {
        for (std::size_t at = 0; at < step_; ++at) {
            table_[slotOf<Block>(keys_[i].data() + at)] |= 1U << i;
        }
    }
}

template <typename Block>
std::uint32_t KeyFilter::look(std::string_view line) const noexcept {
    std::uint32_t found = 0;
    for (std::size_t at = 0; at + sizeof(Block) <= line.size(); at += step_) {
        found |= table_[slotOf<Block>(line.data() + at)];
    }
    return found;
}

KeyFilter::KeyFilter(std::span<const std::string_view> keys)
    : keys_(keys.first(std::min(keys.size(), mostKeys))) {
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

template std::uint32_t KeyFilter::look<std::uint16_t>(std::string_view line) const noexcept;
template std::uint32_t KeyFilter::look<std::uint32_t>(std::string_view line) const noexcept;

} // namespace zolex
