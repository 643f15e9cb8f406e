#pragma once

#include "foundation/Text.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>

namespace zolex {

/// Tells by a few looks into one table which of some keys a line can hold, so that most lines of a
/// listing need no search at all, and the others one. It only ever errs on the side of a search.
///
/// A line is looked at in steps so wide that no key fits between two looks. Each look takes a block
/// of bytes; the table says which keys begin with text that holds the block.
class KeyFilter {
  public:
    static constexpr std::size_t mostKeys = 32;

    enum class LetterCase { exact, ignored };

    /// Keys of 3 bytes at least, which stay where they are.
    explicit KeyFilter(std::span<const std::string_view> keys,
                       LetterCase letterCase = LetterCase::exact);

    [[nodiscard]] std::string_view key(std::size_t index) const { return keys_[index]; }
    /// One bit for each key, the lowest for the first: 0 when the line does not hold it.
    [[nodiscard]] std::uint32_t candidates(std::string_view line) const noexcept {
        return wide_ ? look<std::uint32_t>(line) : look<std::uint16_t>(line);
    }

  private:
    static constexpr unsigned tableBits = 12;

    template <typename Block>
    [[nodiscard]] std::size_t slotOf(const char* at) const noexcept;
    template <typename Block>
    [[nodiscard]] std::uint32_t look(std::string_view line) const noexcept;
    template <typename Block>
    void enter(std::size_t shortest);

    std::span<const std::string_view> keys_;
    std::size_t step_ = 1;
    std::uint32_t folded_ = 0; ///< the bits that letter case is in
    bool wide_ = false;
    std::array<std::uint32_t, std::size_t{1} << tableBits> table_{};
};

template <typename Block>
std::size_t KeyFilter::slotOf(const char* at) const noexcept {
    Block block{};
    std::memcpy(&block, at, sizeof block);
    constexpr std::uint32_t spread = 0x9E3779B1; // 2^32 by the golden ratio
    return ((block | static_cast<Block>(folded_)) * spread) >> (32U - tableBits);
}

template <typename Block>
std::uint32_t KeyFilter::look(std::string_view line) const noexcept {
    std::uint32_t found = 0;
    for (std::size_t at = 0; at + sizeof(Block) <= line.size(); at += step_) {
        found |= table_[slotOf<Block>(line.data() + at)];
    }
    return found;
}

/// A line, and which keys of a filter it can hold.
class KeyedLine {
  public:
    KeyedLine(std::string_view line, const KeyFilter& filter)
        : line_(line), filter_(filter), candidates_(filter.candidates(line)) {}

    [[nodiscard]] std::string_view text() const { return line_; }
    /// Whether it certainly holds none of the keys.
    [[nodiscard]] bool holdsNone() const { return candidates_ == 0; }
    /// Whether it may hold the key of this index.
    [[nodiscard]] bool canHold(std::size_t key) const { return ((candidates_ >> key) & 1U) != 0; }
    /// Whether it holds the key of this index, exact case.
    [[nodiscard]] bool holds(std::size_t key) const {
        return canHold(key) && text::contains(line_, filter_.key(key));
    }

  private:
    std::string_view line_;
    const KeyFilter& filter_;
    std::uint32_t candidates_;
};

} // namespace zolex
