#pragma once

#include "foundation/CString.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex {

/// What a look-up gives for a keyword that a policy does not have.
inline constexpr const char* absentKeyword = "^~";

/// One "keyword = value" line, both trimmed of blanks, tabs and newlines. They hold every byte of
/// the file, zeros too, so that none is overlooked.
struct PolicyEntry {
    std::string keyword;
    std::string value;
    std::int32_t line = 0; ///< of the file, from 1
    // Columns of their first bytes in that line, from 1. What stands beyond 255 characters is an
    // entry of the same line.
    std::int32_t keywordColumn = 0;
    std::int32_t valueColumn = 0;

    friend bool operator==(const PolicyEntry&, const PolicyEntry&) = default;
};

/// One policy as it stands in the file.
struct PolicySection {
    static constexpr std::size_t maxEntries = 50;

    CString name;
    std::vector<PolicyEntry> entries;
    std::int32_t line = 0; ///< of its header in the file, from 1
    std::int32_t column = 0;
    /// Whether lines of the section were left out after a fault: what it lacks may stand there.
    bool isIncomplete = false;

    friend bool operator==(const PolicySection&, const PolicySection&) = default;

    /// Adds the entry that a line holds; false when it holds no "=". The line begins at column
    /// `firstColumn` of line `number` of the file.
    bool addEntry(std::string_view text, std::int32_t number = 1, std::int32_t firstColumn = 1);
    /// The first entry of this keyword, letter case ignored; null without one.
    [[nodiscard]] const PolicyEntry* find(std::string_view keyword) const;
    /// The value of the first entry of this keyword, letter case ignored; `defaultValue` without
    /// one.
    [[nodiscard]] std::string_view lookUp(std::string_view keyword,
                                          std::string_view defaultValue = absentKeyword) const;
};

} // namespace zolex
