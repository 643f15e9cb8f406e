#pragma once

#include "foundation/Text.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace zolex::companion {

struct ListingLine;
class Reading;

/// What a line of a listing belongs to.
enum class Block : std::uint8_t {
    none,         ///< in front of the first block, and between blocks
    controller,   ///< with its settings and abilities
    versions,     ///< of the controller
    logicalDrive, ///< with its members
    member,       ///< one drive of a logical drive
    drive,
    other, ///< what nothing is read of: batteries, enclosures, other devices
};

/// A set of blocks.
using Blocks = std::uint32_t;

constexpr Blocks in(Block block) {
    return Blocks{1} << static_cast<unsigned>(block);
}
template <typename... More>
constexpr Blocks in(Block block, More... more) {
    return in(block) | in(more...);
}
constexpr Blocks anywhere = ~Blocks{0};

/// A key that a utility prints, the blocks where it means this, and what takes its line. Nothing
/// takes a key that is known and not used.
struct KeyRow {
    std::string_view key;
    Blocks blocks;
    void (*take)(Reading& reading, const ListingLine& line) = nullptr;
};

/// The keys of one utility. Letter case does not count.
class KeyLookup {
  public:
    static constexpr std::uint8_t noRow = 0xFF;

    constexpr KeyLookup(std::span<const KeyRow> rows, std::span<const std::uint8_t> buckets)
        : rows_(rows), buckets_(buckets) {}

    [[nodiscard]] const KeyRow& row(std::uint8_t number) const noexcept { return rows_[number]; }
    [[nodiscard]] std::uint8_t numberOf(const KeyRow& row) const noexcept {
        return static_cast<std::uint8_t>(&row - rows_.data());
    }
    /// Null when no row has the key in this block.
    [[nodiscard]] const KeyRow* find(Block block, std::string_view key) const noexcept {
        if (key.empty()) {
            return nullptr;
        }
        const std::size_t mask = buckets_.size() - 1;
        for (std::size_t at = hash(key) & mask; buckets_[at] != noRow; at = (at + 1) & mask) {
            const KeyRow& row = rows_[buckets_[at]];
            if (row.key.size() == key.size() && (row.blocks & in(block)) != 0 &&
                (row.key == key || text::equalsNoCase(row.key, key))) {
                return &row;
            }
        }
        return nullptr;
    }

    /// Of a key that is not empty.
    [[nodiscard]] static constexpr std::size_t hash(std::string_view key) noexcept {
        const auto letter = [key](std::size_t at) {
            return static_cast<std::size_t>(static_cast<unsigned char>(text::lower(key[at])));
        };
        return key.size() * 67 + letter(0) * 31 + letter(key.size() / 2) * 131 +
               letter(key.size() - 1) * 7 + letter(key.size() * 3 / 4) * 17;
    }

  private:
    std::span<const KeyRow> rows_;
    std::span<const std::uint8_t> buckets_;
};

/// The buckets of a table of keys, made by the compiler.
template <std::size_t rowCount>
class KeyTable {
  public:
    static_assert(rowCount < KeyLookup::noRow);

    constexpr explicit KeyTable(const std::array<KeyRow, rowCount>& rows) : rows_(rows) {
        buckets_.fill(KeyLookup::noRow);
        for (std::size_t row = 0; row < rowCount; ++row) {
            std::size_t at = KeyLookup::hash(rows[row].key) & (bucketCount - 1);
            while (buckets_[at] != KeyLookup::noRow) {
                at = (at + 1) & (bucketCount - 1);
            }
            buckets_[at] = static_cast<std::uint8_t>(row);
        }
    }

    [[nodiscard]] constexpr KeyLookup lookup() const { return {rows_, buckets_}; }

    /// Whether no key stands twice for one block.
    [[nodiscard]] constexpr bool isDistinct() const {
        for (std::size_t i = 0; i < rowCount; ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                if (rows_[i].key == rows_[j].key && (rows_[i].blocks & rows_[j].blocks) != 0) {
                    return false;
                }
            }
        }
        return true;
    }

  private:
    static constexpr std::size_t bucketCount = std::bit_ceil(rowCount * 4);

    std::array<KeyRow, rowCount> rows_;
    std::array<std::uint8_t, bucketCount> buckets_{};
};

} // namespace zolex::companion
