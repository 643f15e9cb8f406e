#pragma once

#include "foundation/CString.h"

#include <cstddef>
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
};

/// One policy as it stands in the file.
struct PolicySection {
    static constexpr std::size_t maxEntries = 50;

    CString name;
    std::vector<PolicyEntry> entries;

    /// Adds the entry that `line` holds; false when it holds no "=".
    bool addEntry(std::string_view line);
    /// The value of the first entry of this keyword, letter case ignored; `defaultValue` without
    /// one.
    [[nodiscard]] std::string_view lookUp(std::string_view keyword,
                                          std::string_view defaultValue = absentKeyword) const;
};

} // namespace zolex
