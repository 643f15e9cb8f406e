#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zolex::companion {

/// One line of a listing, taken apart. The texts are parts of the listing.
struct ListingLine {
    std::string_view text;   ///< without blanks at either end; a zero byte ends it
    std::string_view key;    ///< what stands in front of the ":", without blanks
    std::string_view value;  ///< what stands behind it, without blanks
    std::string_view rest;   ///< what stands behind it, as it stands
    std::size_t indent = 0;  ///< blanks in front of the text; a tab counts as one
    std::size_t length = 0;  ///< bytes of the line without its line end
    std::int32_t number = 0; ///< from 1
    bool hasKey = false;
};

/// Goes through a listing line by line, however long its lines are, and takes each apart at its
/// first ":" that stands in no parentheses, or else at its first ":".
class ListingLines {
  public:
    explicit ListingLines(std::string_view listing);

    /// Goes to the next line; false behind the last one.
    bool next();
    [[nodiscard]] const ListingLine& line() const { return line_; }

  private:
    void takeApart(std::string_view whole);

    std::string_view rest_;
    bool hasZeros_;
    ListingLine line_;
};

} // namespace zolex::companion
