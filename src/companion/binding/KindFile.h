#pragma once

#include "companion/binding/KindEntries.h"
#include "foundation/Text.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A policies file as lines and sections, as far as the entries that only zolexctl knows need it.
namespace zolex::companion {

/// One "keyword = value" line, as zolex takes its first 255 bytes.
struct KindFileEntry {
    std::size_t line = 0; ///< index
    KindWord keyword;
    std::string value;            ///< trimmed
    std::int32_t valueColumn = 0; ///< from 1
    bool isTooLong = false;       ///< the line goes on behind its 255 bytes
    /// What its keyword has behind its dot: one letter, in capitals.
    [[nodiscard]] char letter() const { return text::upper(keyword.text.back()); }
    [[nodiscard]] std::int32_t endColumn() const {
        return valueColumn + static_cast<std::int32_t>(value.size());
    }
};

struct KindFileSection {
    std::string name;
    std::size_t headerLine = 0; ///< index
    std::vector<KindFileEntry> entries;

    /// The first entry of this keyword, letter case ignored; null without one.
    [[nodiscard]] const KindFileEntry* find(std::string_view keyword) const;
    /// The same for a keyword with this letter behind its dot.
    [[nodiscard]] const KindFileEntry* find(std::string_view keyword, char letter) const;
    /// Whether some entry's keyword begins so.
    [[nodiscard]] bool hasAny(std::string_view prefix) const;
    [[nodiscard]] bool hasKindEntries() const;
};

struct KindFile {
    /// Without and with their line ends.
    std::vector<std::string_view> lines;
    std::vector<std::string_view> lineEnds;
    std::vector<KindFileSection> sections; ///< with names that begin with "Policy."
};

/// `text` must outlive what is returned.
[[nodiscard]] KindFile readKindFile(std::string_view text);

/// The entries of a section that only zolexctl knows, read.
struct KindSection {
    struct Drives {
        char letter = 'A';
        const KindFileEntry* entry = nullptr;
        DrivesWish wish;
    };
    struct Level {
        char letter = 'A';
        const KindFileEntry* entry = nullptr;
        LevelWish wish;
    };
    std::vector<Drives> drives; ///< by letter
    const KindFileEntry* sparesEntry = nullptr;
    std::optional<SparesWish> spares;
    std::vector<Level> levels; ///< by letter
    const KindFileEntry* spansEntry = nullptr;
    std::int32_t spans = 0; ///< 0: not given
};

struct BindingFault;

/// Reads them; what is wrong with their form goes to `faults`.
[[nodiscard]] KindSection readKindSection(const KindFileSection& section,
                                          std::vector<BindingFault>& faults);

} // namespace zolex::companion
