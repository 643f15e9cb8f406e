#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The grammar of the entries that only zolexctl knows; zolex-policies(5) describes it.
namespace zolex::companion {

inline constexpr std::int32_t mostKindDrives = 32; ///< of an array
inline constexpr std::int32_t mostKindSpares = 8;
inline constexpr std::int32_t mostKindSpans = 8;

/// Whether it is a keyword of zolexctl alone (`Drives.A`, `Spares`, `Level.B`, `Spans`), letter
/// case ignored.
[[nodiscard]] bool isKindKeyword(std::string_view keyword);
/// Whether it is `Spans`, which tells of arrays and not of drives.
[[nodiscard]] bool isSpansKeyword(std::string_view keyword);

/// A word of a value, and where it stands in its line: columns count from 1, in bytes.
struct KindWord {
    std::string text;
    std::int32_t column = 0;
    std::int32_t endColumn = 0; ///< behind its last byte
    friend bool operator==(const KindWord&, const KindWord&) = default;
};

/// What sizes are asked for. Sizes are those that show prints.
struct SizeCondition {
    enum class Kind { below, above, about, between };
    Kind kind = Kind::about;
    std::uint64_t low = 0;
    std::uint64_t high = 0; ///< of `between`
    std::string words;      ///< "below 500 GB"
    friend bool operator==(const SizeCondition&, const SizeCondition&) = default;

    /// Whether a drive that show prints with this size fits.
    [[nodiscard]] bool holds(std::uint64_t bytes) const;
};

/// The size that show prints of a drive, in bytes: two drives that look alike there have the same.
[[nodiscard]] std::uint64_t shownSize(std::uint64_t bytes);

/// How drives are told: by where they are, by their serial numbers, or by what they are.
enum class KindForm { slots, serials, kind };

/// The value of `Drives.<x>`.
struct DrivesWish {
    enum class Order { asListed, smallest, largest };
    enum class Amount { count, rest, all };
    KindForm form = KindForm::kind;
    std::vector<KindWord> names; ///< slots or serial numbers
    Order order = Order::asListed;
    Amount amount = Amount::count;
    std::int32_t count = 0;
    std::string media;    ///< "SSD", "HDD" or empty
    std::string protocol; ///< "SAS", ... or empty
    std::optional<SizeCondition> size;
    bool anySize = false;
    friend bool operator==(const DrivesWish&, const DrivesWish&) = default;

    /// What is asked for, without the number: "SSD below 500 GB"; "drives".
    [[nodiscard]] std::string kindWords() const;
};

/// Some hot spares, and the arrays that each of them must be able to stand in for.
struct SpareGroup {
    std::int32_t count = 0;
    std::vector<KindWord> covers; ///< letters, in capitals; empty: all arrays
    friend bool operator==(const SpareGroup&, const SpareGroup&) = default;
};

/// The value of `Spares`.
struct SparesWish {
    KindForm form = KindForm::kind;
    std::vector<KindWord> names;
    /// Of named ones only where some cover certain arrays: how many of the names are of each.
    std::vector<SpareGroup> groups;
    friend bool operator==(const SparesWish&, const SparesWish&) = default;
};

/// The value of `Level.<x>`: levels by preference.
struct LevelWish {
    struct Choice {
        KindWord word; ///< in capitals
        std::int32_t level = 0;
        friend bool operator==(const Choice&, const Choice&) = default;
    };
    std::vector<Choice> choices;
    friend bool operator==(const LevelWish&, const LevelWish&) = default;
};

/// Why a value cannot be read: the word at fault, and what to write.
struct KindFault {
    KindWord word;
    std::string what;
    std::string help;
    friend bool operator==(const KindFault&, const KindFault&) = default;
};

template <typename Wish>
struct KindReading {
    std::optional<Wish> wish; ///< nothing with a fault
    std::optional<KindFault> fault;
};

/// Reads a value that begins at this column of its line. Letter case is ignored.
[[nodiscard]] KindReading<DrivesWish> readDrivesWish(std::string_view value, std::int32_t column);
[[nodiscard]] KindReading<SparesWish> readSparesWish(std::string_view value, std::int32_t column);
[[nodiscard]] KindReading<LevelWish> readLevelWish(std::string_view value, std::int32_t column);

} // namespace zolex::companion
