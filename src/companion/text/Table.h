#pragma once

#include "companion/text/Terminal.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zolex::companion {

/// One field of a table: what stands there, in printable characters, and what it means.
struct TableCell {
    std::string text;
    Emphasis emphasis = Emphasis::plain;
    bool right = false; ///< ends at the right edge of its column
};

/// Rows of cells in columns that are as wide as their widest cell. Rows may have different lengths.
/// A column that is empty in all rows takes no room.
class Table {
  public:
    explicit Table(std::size_t indent, std::size_t gap = 2) : indent_(indent), gap_(gap) {}

    void add(std::vector<TableCell> row) { rows_.push_back(std::move(row)); }
    [[nodiscard]] bool empty() const { return rows_.empty(); }

    /// Columns that the widest line takes, its indent included.
    [[nodiscard]] std::size_t width() const;
    /// One line a row, each with its newline and without blanks at its end.
    [[nodiscard]] std::vector<std::string> lines(const TextStyle& style) const;
    [[nodiscard]] std::string text(const TextStyle& style) const;

  private:
    [[nodiscard]] std::vector<std::size_t> columnWidths() const;

    std::size_t indent_;
    std::size_t gap_;
    std::vector<std::vector<TableCell>> rows_;
};

/// The pieces one after another, `separator` between them, in lines that take at most `width`
/// columns as far as no single piece is longer. The first line begins behind `first` columns that
/// are taken already, the others with `indent` blanks. Without a newline at the end.
[[nodiscard]] std::string foldedText(const std::vector<std::string>& pieces,
                                     std::string_view separator, std::size_t first,
                                     std::size_t indent, std::size_t width);

/// The text, folded at its blanks, as `foldedText` does.
[[nodiscard]] std::string foldedWords(std::string_view text, std::size_t first, std::size_t indent,
                                      std::size_t width);

} // namespace zolex::companion
