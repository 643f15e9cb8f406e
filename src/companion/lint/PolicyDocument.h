#pragma once

#include "companion/findings/Finding.h"

#include <cstddef>
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
    Piece name;                         ///< between "[" and "]"
    std::vector<DocumentEntry> entries; ///< unknown and repeated keywords too
    TextPlace header;                   ///< of its "["
    bool isQuiet = false;               ///< nothing more is to be said of it
    /// Whether lines of it are at fault: what it seems to lack may stand there.
    bool isIncomplete = false;

    /// The first entry of this keyword, letter case ignored; null without one.
    [[nodiscard]] const DocumentEntry* find(std::string_view keyword) const;
    /// The entry that counts: as `find`, but null for the value "^~", which zolex takes as absent.
    [[nodiscard]] const DocumentEntry* effective(std::string_view keyword) const;
    friend bool operator==(const DocumentPolicy&, const DocumentPolicy&) = default;
};

/// Findings that a comment "; zolexctl: ignore ZX411,ZX5" silences.
struct IgnoredFindings {
    std::vector<std::string> rules; ///< rule ids or beginnings of them, in capitals, each once
    std::int32_t firstLine = 0;     ///< for findings that stand in these lines
    std::int32_t lastLine = 0;
    friend bool operator==(const IgnoredFindings&, const IgnoredFindings&) = default;
};

/// A policies file, read as far as it goes, whatever is wrong with it: text and places of all that
/// stands in it. It is a reading of its own, beside that of zolex.
struct PolicyDocument {
    std::string file; ///< name as it was given
    std::string text; ///< all bytes
    std::vector<DocumentPolicy> policies;
    std::vector<Finding> findings; ///< of its shape (ZX001 to ZX014), in the order of the file
    /// In the order of their first lines, which all differ. Those of more than one line are each of
    /// a policy, and do not overlap each other.
    std::vector<IgnoredFindings> ignored;
    std::vector<std::size_t> lineStarts; ///< byte of each line's begin

    /// The line, from 1, without its line end; empty when there is none of this number.
    [[nodiscard]] std::string_view line(std::int32_t number) const;
    /// The place of a byte, from 0, of the text.
    [[nodiscard]] TextPlace placeOf(std::size_t byte) const;
};

[[nodiscard]] PolicyDocument scanPolicies(std::string file, std::string text);

/// A part of a piece that holds no line end: `length` bytes from `first`, both bounded by its end.
[[nodiscard]] Piece partOf(const Piece& piece, std::size_t first, std::size_t length);

/// The fields of a value between `separator`, with blanks around them kept outside the pieces.
/// An empty value has one empty field.
[[nodiscard]] std::vector<Piece> fieldsOf(const Piece& value, char separator);

} // namespace zolex::companion
