#pragma once

#include <compare>
#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zolex {

/// The set that trimming removes throughout the program: blank, tab and newline.
inline constexpr const char* whiteSpace = " \t\n";

class CString;
CString formatTextV(const char* format, std::va_list values);

/// Narrow-character string with value semantics: heap-held, zero-terminated bytes, or no buffer at
/// all. A string without a buffer and "" behave alike in every comparison and query. A NUL ends a
/// text: of a view that holds one, the bytes before it are taken.
///
/// Allocating the text is the one point of failure: it reports "Memory Allocation Error" on
/// standard error and ends the process with exit code 1. Positions are bytes from 0; a position or
/// a length outside the text is cut to it, never an error.
class CString {
  public:
    CString() noexcept = default;
    /// A null pointer makes an empty string.
    CString(const char* text);        // NOLINT(google-explicit-constructor)
    CString(std::string_view text);   // NOLINT(google-explicit-constructor)
    CString(const std::string& text); // NOLINT(google-explicit-constructor)
    /// `count` times `character`.
    CString(char character, std::size_t count);
    /// Decimal text of `number`.
    explicit CString(std::uint32_t number);
    /// The first `length` characters of a 16-bit wide text, each narrowed to its low byte.
    CString(const char16_t* wide, std::size_t length);

    CString(const CString& other);
    CString(CString&& other) noexcept;
    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    ~CString() = default;

    /// Decimal text of a signed number.
    static CString fromInt(std::int64_t number);

    void clear() noexcept;

    // Access
    [[nodiscard]] const char* c_str() const noexcept { return text_ ? text_.get() : ""; }
    [[nodiscard]] std::size_t length() const noexcept { return length_; }
    [[nodiscard]] bool isEmpty() const noexcept { return length_ == 0; }
    /// The byte at `index`; 0 past the end.
    [[nodiscard]] char at(std::size_t index) const noexcept;
    [[nodiscard]] std::string_view view() const noexcept { return {c_str(), length_}; }
    operator std::string_view() const noexcept { return view(); } // NOLINT

    // Conversion
    /// Leading decimal integer: blanks skipped, an optional sign, digits up to the first other
    /// character, clamped at the 32-bit limits; 0 when there are no digits or in the failed state.
    [[nodiscard]] std::int32_t toInt() const noexcept;
    /// The same without negative values: they give 0; clamped at 4294967295.
    [[nodiscard]] std::uint32_t toUnsigned() const noexcept;
    /// Puts the string into the failed state, in which numeric conversion gives 0, until it is
    /// assigned or cleared.
    void setError() noexcept { error_ = true; }
    [[nodiscard]] bool hasError() const noexcept { return error_; }

    // Append and join
    CString& append(std::string_view text);
    CString& append(char character);
    CString& prepend(std::string_view text);
    [[nodiscard]] static CString concatenate(std::string_view first, std::string_view second,
                                             std::string_view third = {});

    // Compare. Bytes compare as unsigned.
    /// Three-way result (negative, 0, positive) of a comparison that ignores letter case.
    [[nodiscard]] int compareNoCase(std::string_view other) const noexcept;
    [[nodiscard]] bool equalsNoCase(std::string_view other) const noexcept;

    // Search (case-sensitive)
    /// Index of the first `text` at or after `from`; -1 when absent.
    [[nodiscard]] std::int64_t indexOf(std::string_view text, std::size_t from = 0) const noexcept;
    [[nodiscard]] bool contains(std::string_view text) const noexcept;
    [[nodiscard]] bool startsWith(std::string_view text) const noexcept;
    [[nodiscard]] bool endsWith(std::string_view text) const noexcept;
    /// Number of non-overlapping occurrences of `text`; 0 for an empty `text`.
    [[nodiscard]] std::size_t count(std::string_view text) const noexcept;

    // Extract
    [[nodiscard]] CString left(std::size_t n) const;
    /// `n` bytes from `position`; n = 0 means to the end.
    [[nodiscard]] CString mid(std::size_t position, std::size_t n = 0) const;
    [[nodiscard]] CString right(std::size_t n) const;

    // Case, per byte, in place
    void makeUpper() noexcept;
    void makeLower() noexcept;
    [[nodiscard]] CString upper() const;
    [[nodiscard]] CString lower() const;

    // Trim: removes every leading (trailing) byte of `set`
    [[nodiscard]] CString trimLeft(std::string_view set = whiteSpace) const;
    [[nodiscard]] CString trimRight(std::string_view set = whiteSpace) const;
    [[nodiscard]] CString trim(std::string_view set = whiteSpace) const;

    // Tokens. The delimiter is a string, not a set; empty tokens count.
    /// Occurrences of the delimiter plus one; 0 for an empty text or an empty delimiter.
    [[nodiscard]] std::size_t tokenCount(std::string_view delimiter) const noexcept;
    /// Token `index`, from 0; empty when there is none.
    [[nodiscard]] CString token(std::string_view delimiter, std::size_t index) const;

    friend bool operator==(const CString& a, const CString& b) noexcept {
        return a.view() == b.view();
    }
    friend bool operator==(const CString& a, const char* b) noexcept {
        return a.view() == std::string_view(b == nullptr ? "" : b);
    }
    friend bool operator==(const CString& a, std::string_view b) noexcept { return a.view() == b; }
    friend std::strong_ordering operator<=>(const CString& a, const CString& b) noexcept {
        return a.view() <=> b.view();
    }

  private:
    friend CString formatTextV(const char* format, std::va_list values);

    void assign(std::string_view text);
    static std::unique_ptr<char[]> allocate(std::size_t length);

    std::unique_ptr<char[]> text_;
    std::size_t length_ = 0;
    bool error_ = false;
};

/// Joins two texts into a new string.
[[nodiscard]] CString operator+(const CString& a, const CString& b);
[[nodiscard]] CString operator+(const CString& a, const char* b);
[[nodiscard]] CString operator+(const char* a, const CString& b);

/// printf-style text. The format is checked by the compiler.
#if defined(__MINGW32__)
[[nodiscard, gnu::format(gnu_printf, 1, 2)]]
#else
[[nodiscard, gnu::format(printf, 1, 2)]]
#endif
CString
formatText(const char* format, ...);

} // namespace zolex
