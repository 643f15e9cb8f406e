#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zolex::companion {

/// One line of a listing, taken apart. The texts are parts of the listing.
struct ListingLine {
    /// From the first byte that is no blank; a zero byte ends it. Without blanks behind once the
    /// line is complete.
    std::string_view text;
    std::string_view key;    ///< what stands in front of the ":", without blanks
    std::string_view rest;   ///< what stands behind it, as it stands
    std::string_view value;  ///< the same without blanks, once the line is complete
    std::size_t indent = 0;  ///< blanks in front of the text; a tab counts as one
    std::size_t length = 0;  ///< bytes of the line without its line end
    std::int32_t number = 0; ///< from 1
    bool hasKey = false;
};

/// Goes through a listing line by line, however long its lines are. A line is taken apart at its
/// first ":" that stands in no parentheses, or else at its first ":".
class ListingLines {
  public:
    explicit ListingLines(std::string_view listing);

    /// Goes to the next line, of which nothing but its number is known then; false behind the last.
    bool next();
    /// Whether the line begins with these bytes.
    [[nodiscard]] bool beginsWith(std::string_view bytes) const {
        return whole_.starts_with(bytes);
    }
    /// What the line begins with, up to its ":" and that too. For a line with a key.
    [[nodiscard]] std::string_view beginning() const {
        return whole_.substr(0, whole_.size() - line_.rest.size());
    }

    /// Finds the line's key. Of most lines no more is wanted.
    const ListingLine& takeApart();
    /// The same for a line that begins like one that was taken apart, at its ":" and this key.
    const ListingLine& takeApart(std::string_view beginning, std::size_t keyLength);
    /// Finds the value of a line that was taken apart.
    const ListingLine& complete();
    [[nodiscard]] const ListingLine& line() const { return line_; }

  private:
    std::string_view rest_;
    std::string_view whole_;
    bool hasZeros_;
    ListingLine line_;
};

} // namespace zolex::companion
