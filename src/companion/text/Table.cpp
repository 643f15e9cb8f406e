#include "companion/text/Table.h"

#include <algorithm>

namespace zolex::companion {

std::vector<std::size_t> Table::columnWidths() const {
    std::vector<std::size_t> widths;
    for (const std::vector<TableCell>& row : rows_) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) {
            widths[i] = std::max(widths[i], columnsOf(row[i].text));
        }
    }
    return widths;
}

std::vector<std::string> Table::lines(const TextStyle& style) const {
    const std::vector<std::size_t> widths = columnWidths();
    std::vector<std::string> lines;
    lines.reserve(rows_.size());
    for (const std::vector<TableCell>& row : rows_) {
        std::string line;
        std::size_t blanks = indent_; // that stand before the next cell with a text
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (widths[i] == 0) {
                continue;
            }
            const TableCell& cell = row[i];
            const std::size_t rest = widths[i] - columnsOf(cell.text);
            if (cell.text.empty()) {
                blanks += rest + gap_;
                continue;
            }
            line.append(blanks + (cell.right ? rest : 0), ' ');
            line += emphasized(cell.text, cell.emphasis, style);
            blanks = (cell.right ? 0 : rest) + gap_;
        }
        lines.push_back(line + "\n");
    }
    return lines;
}

std::string Table::text(const TextStyle& style) const {
    std::string text;
    for (const std::string& line : lines(style)) {
        text += line;
    }
    return text;
}

std::size_t Table::width() const {
    std::size_t width = indent_;
    std::size_t gap = 0; // before the next column
    for (const std::size_t column : columnWidths()) {
        if (column > 0) {
            width += gap + column;
            gap = gap_;
        }
    }
    return gap == 0 ? 0 : width;
}

std::string foldedText(const std::vector<std::string>& pieces, std::string_view separator,
                       std::size_t first, std::size_t indent, std::size_t width) {
    std::string text;
    std::size_t column = first;
    bool atLineStart = true;
    for (const std::string& piece : pieces) {
        const std::size_t columns = columnsOf(piece);
        if (!atLineStart && column + columnsOf(separator) + columns > width) {
            // The visible part of the separator ends the line.
            text += separator.substr(0, separator.find_last_not_of(' ') + 1);
            text += "\n" + std::string(indent, ' ');
            column = indent;
            atLineStart = true;
        }
        if (!atLineStart) {
            text += separator;
            column += columnsOf(separator);
        }
        text += piece;
        column += columns;
        atLineStart = false;
    }
    return text;
}

std::string foldedWords(std::string_view text, std::size_t first, std::size_t indent,
                        std::size_t width) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        if (end > 0) {
            words.emplace_back(text.substr(0, end));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return foldedText(words, " ", first, indent, width);
}

} // namespace zolex::companion
