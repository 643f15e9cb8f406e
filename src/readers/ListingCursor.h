#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
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
    /// What no line has been made of yet.
    [[nodiscard]] std::string_view rest() const { return rest_; }
    /// The next line, without its line end, or "EOF". A carriage return or a zero byte ends the
    /// text of its line. An unterminated last line shorter than the longest is lost. Nothing
    /// follows "EOF", be it the end of the text or a line of these letters. Valid while the text
    /// is.
    std::string_view nextLine() {
        const std::size_t most = std::min(rest_.size(), longestListingLine);
        const void* const newline = most == 0 ? nullptr : std::memchr(rest_.data(), '\n', most);
        if (newline == nullptr || hasOddLines_) {
            return nextOddLine();
        }
        const auto length =
            static_cast<std::size_t>(static_cast<const char*>(newline) - rest_.data());
        const bool carriageReturn = length > 0 && rest_[length - 1] == '\r';
        const std::string_view line = rest_.substr(0, carriageReturn ? length - 1 : length);
        rest_.remove_prefix(length + 1);
        if (line == endOfOutput) {
            rest_ = {};
        }
        return line;
    }

  private:
    /// The next line when it is not just what stands before a newline.
    std::string_view nextOddLine();

    std::string_view rest_;
    bool hasListing_ = false;
    /// There is a zero byte somewhere, or a carriage return that stands before no newline.
    bool hasOddLines_ = false;
};

/// Where a short key stands next in a listing, looked for once and not in each line again.
class KeyAhead {
  public:
    explicit KeyAhead(std::string_view key) : key_(key) {}

    /// Whether the line, the latest of `lines`, can hold the key. Lines come in their order.
    [[nodiscard]] bool canBeIn(std::string_view line, const ListingCursor& lines) {
        const char* const end = line.data() + line.size();
        if (next_ == nullptr || next_ < line.data()) {
            const std::string_view rest = lines.rest();
            next_ = find(line.data(), rest.empty() ? end : rest.data() + rest.size());
        }
        return next_ < end;
    }

  private:
    [[nodiscard]] const char* find(const char* from, const char* end) const {
        const std::string_view text(from, static_cast<std::size_t>(end - from));
        return from + std::min(text.find(key_), text.size());
    }

    std::string_view key_;
    const char* next_ = nullptr;
};

} // namespace zolex
