#pragma once

#include <cstddef>
#include <string_view>

namespace zolex {

/// What a reader's next line is when there is none.
inline constexpr std::string_view endOfOutput = "EOF";

/// Longest line, in bytes, that a reader takes as one. A longer line goes on as the next.
inline constexpr std::size_t longestListingLine = 198;

/// Goes through a listing line by line. The text is the caller's and stays as it is.
class ListingCursor {
  public:
    /// Stands where there is no listing.
    ListingCursor() = default;
    explicit ListingCursor(std::string_view text);

    [[nodiscard]] bool hasListing() const { return hasListing_; }
    /// The next line, without its line end, or "EOF". A carriage return or a zero byte ends the
    /// text of its line. An unterminated last line shorter than the longest is lost. Nothing
    /// follows "EOF", be it the end of the text or a line of these letters. Valid while the text
    /// is.
    std::string_view nextLine();

  private:
    std::string_view rest_;
    bool hasListing_ = false;
    bool hasTextEnds_ = false; ///< there is a carriage return or a zero byte somewhere
};

} // namespace zolex
