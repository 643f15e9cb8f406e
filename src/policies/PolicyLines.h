#pragma once

#include "foundation/FileSystem.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zolex {

/// The lines of a policies file, one at a time, each at most 255 characters long. What stands
/// beyond that on a longer line comes as the next line. A carriage return before a newline is
/// dropped.
class PolicyLines {
  public:
    static constexpr std::size_t maxLength = 255;

    /// `file` is read from where it stands and must outlive this object.
    explicit PolicyLines(File& file) : file_(file) {}

    /// Puts the next line, its newline included when it has one within its length, into `line`;
    /// false at the end of the file or when reading failed. The view holds until the next call.
    bool next(std::string_view& line);
    /// The same, leaving out blank lines, comments and lines of spaces only.
    bool nextMeaningful(std::string_view& line);

    /// Newlines read so far: the number of the line that was read last, counted from 1. A line
    /// that did not end in a newline has the number of the line before it.
    [[nodiscard]] std::int64_t number() const { return number_; }
    /// Where the line that was read last begins in the file: the line there, from 1, and the column
    /// of its first byte, from 1, which is more than 1 for what stands beyond 255 characters.
    [[nodiscard]] std::int64_t line() const { return number_ + (isTerminated_ ? 0 : 1); }
    [[nodiscard]] std::size_t column() const { return column_; }
    /// Whether the file could not be read, or has a line that is longer than longestLine.
    [[nodiscard]] bool failed() const { return wholeLength_ > longestLine || file_.failed(); }

  private:
    static constexpr int endOfFile = -1;

    int peek();
    int get();
    /// Moves what the buffer holds before the next CR or LF, as far as it fits, to `length` in the
    /// line; the number of bytes moved.
    std::size_t takeRun(std::size_t length);

    File& file_;
    std::array<char, 4096> buffer_{};
    std::size_t at_ = 0;
    std::size_t filled_ = 0;
    std::array<char, maxLength> line_{};
    std::int64_t number_ = 0;
    std::size_t wholeLength_ = 0; ///< of the line of the file, as far as it was read
    bool isTerminated_ = true;    ///< whether the line ended in a newline
    std::size_t column_ = 1;
    std::size_t nextColumn_ = 1; ///< of what is read next
};

/// The line from its first character that is no space (tabs are none).
[[nodiscard]] std::string_view withoutLeadingSpaces(std::string_view line) noexcept;
/// Whether the line opens a section: "[" after leading spaces.
[[nodiscard]] bool isSectionHeader(std::string_view line) noexcept;

} // namespace zolex
