#pragma once

#include "companion/findings/Finding.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zolex::companion {

/// A piece of a policies file and where it stands.
struct Piece {
    std::string text;
    TextPlace start;
    TextPlace end; ///< behind its last byte
    friend bool operator==(const Piece&, const Piece&) = default;
};

/// One "keyword = value" line. Both are trimmed as zolex trims them.
struct DocumentEntry {
    Piece keyword;
    Piece value;
    friend bool operator==(const DocumentEntry&, const DocumentEntry&) = default;
};

/// One policy as it is written.
struct DocumentPolicy {
    Piece name; ///< between "[" and "]"
    std::vector<DocumentEntry> entries;
    std::vector<std::string> ignored; ///< rule ids or beginnings of them, silenced for all of it
    bool isQuiet = false;             ///< nothing more is to be said of it

    /// The first entry of this keyword, letter case ignored; null without one.
    [[nodiscard]] const DocumentEntry* find(std::string_view keyword) const;
    friend bool operator==(const DocumentPolicy&, const DocumentPolicy&) = default;
};

/// A policies file, read as far as it goes, whatever is wrong with it: text and places of all that
/// stands in it. It is a reading of its own, beside that of zolex.
struct PolicyDocument {
    std::string file; ///< name as it was given
    std::string text; ///< all bytes
    std::vector<DocumentPolicy> policies;
    std::vector<Finding> findings; ///< of its shape (ZX001 to ZX014), in the order of the file

    /// The line, from 1, without its line end.
    [[nodiscard]] std::string_view line(std::int32_t number) const;
};

[[nodiscard]] PolicyDocument scanPolicies(std::string file, std::string text);

/// The fields of a value between `separator`, with blanks around them kept outside the pieces.
/// An empty value has one empty field.
[[nodiscard]] std::vector<Piece> fieldsOf(const Piece& value, char separator);

} // namespace zolex::companion
