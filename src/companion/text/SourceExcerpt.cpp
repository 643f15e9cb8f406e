#include "companion/text/SourceExcerpt.h"

#include "companion/text/Utf8.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

constexpr std::string_view dots = "...";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // nobody would see it

/// A piece of one line, in bytes from the line's begin.
struct Mark {
    std::size_t first = 0;
    std::size_t end = 0;
};

/// A line of the file, one printable character a cell.
class Cells {
  public:
    explicit Cells(std::string_view line) {
        for (std::size_t at = 0; at < line.size();) {
            const std::size_t length = std::max<std::size_t>(characterLength(line.substr(at)), 1);
            bytes_.push_back(at);
            const std::string_view character = line.substr(at, length);
            cells_.push_back(character == "\t"            ? " "
                             : character == byteOrderMark ? "?"
                                                          : printable(character));
            at += length;
        }
    }

    [[nodiscard]] std::size_t size() const { return cells_.size(); }
    /// The cell that a byte belongs to; the size for one behind the line.
    [[nodiscard]] std::size_t cellOf(std::size_t byte) const {
        const auto next = std::upper_bound(bytes_.begin(), bytes_.end(), byte);
        const auto cell = static_cast<std::size_t>(next - bytes_.begin());
        return cell == bytes_.size() && !isWithin(byte) ? cell : cell - (cell == 0 ? 0 : 1);
    }
    [[nodiscard]] std::string text(std::size_t first, std::size_t end) const {
        std::string result;
        for (std::size_t i = first; i < std::min(end, cells_.size()); ++i) {
            result += cells_[i];
        }
        return result;
    }
    void setEnd(std::size_t byte) { end_ = byte; }

  private:
    [[nodiscard]] bool isWithin(std::size_t byte) const { return byte < end_; }

    std::vector<std::string> cells_;
    std::vector<std::size_t> bytes_; ///< first byte of each
    std::size_t end_ = 0;
};

/// The part of a line that fits beside its number: cells `first` to `end`, the mark among them.
struct Window {
    std::size_t first = 0;
    std::size_t end = 0;
    [[nodiscard]] bool isCutBefore() const { return first > 0; }
};

Window windowOf(std::size_t cells, std::size_t from, std::size_t to, std::size_t room) {
    if (std::max(cells, to) <= room) {
        return {0, cells};
    }
    const std::size_t inner = room - 2 * dots.size();
    const std::size_t marked = std::min(to - from, inner);
    if (from + marked <= room - dots.size()) {
        return {0, room - dots.size()};
    }
    const std::size_t before = std::max((inner - marked) / 2, inner / 4);
    // At the end of the line there is room for more before the mark.
    const std::size_t behind = std::max(cells, to);
    const std::size_t first =
        std::min(from - std::min(from, before), behind - std::min(behind, inner));
    return {first, std::min(cells, first + inner)};
}

std::string_view lineAt(std::string_view text, const TextPlace& place) {
    const auto start = static_cast<std::size_t>(place.byte - (place.column - 1));
    std::string_view line = text.substr(start);
    line = line.substr(0, line.find('\n'));
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

bool isIn(std::string_view text, const TextPlace& place) {
    return place.line > 0 && place.column > 0 && place.byte >= place.column - 1 &&
           static_cast<std::size_t>(place.byte) <= text.size();
}

std::string_view byteAt(std::string_view text, const TextPlace& place) {
    return isIn(text, place) ? text.substr(static_cast<std::size_t>(place.byte), 1)
                             : std::string_view();
}

/// Whether nothing but blanks stands before the place in its line.
bool isFirstInLine(std::string_view text, const TextPlace& place) {
    const auto before = static_cast<std::size_t>(place.column - 1);
    const std::string_view line = text.substr(static_cast<std::size_t>(place.byte) - before);
    return line.substr(0, before).find_first_not_of(" \t") == std::string_view::npos;
}

Mark markOf(const TextPlace& start, const TextPlace& end, std::string_view line) {
    const auto first = static_cast<std::size_t>(start.column) - 1;
    const bool sameLine = end.line == start.line && end.column > start.column;
    const std::size_t last = sameLine ? static_cast<std::size_t>(end.column) - 1 : first + 1;
    return {first, std::max(first + 1, std::min(last, line.size()))};
}

/// Writes the lines of one finding.
class Excerpt {
  public:
    Excerpt(std::string_view text, std::int32_t lastNumber, const TextStyle& style)
        : text_(text), style_(style), numberWidth_(std::to_string(lastNumber).size()) {}

    /// The line of a place, and the marks below it.
    void addLine(const TextPlace& start, const TextPlace& end, char mark, std::string_view label) {
        setLine(start);
        const Mark marked = markOf(start, end, line_);
        from_ = cells_->cellOf(marked.first);
        to_ = from_ + std::max<std::size_t>(1, cells_->cellOf(marked.end - 1) + 1 - from_);
        window_ = windowOf(cells_->size(), from_, to_, room());
        const bool isCutBehind = window_.end < cells_->size();
        const std::string number = std::to_string(start.line);
        gutter(std::string(numberWidth_ - number.size(), ' ') + number);
        result_ += window_.isCutBefore() ? dots : "";
        result_ += cells_->text(window_.first, window_.end);
        result_ += isCutBehind ? dots : "";
        endLine();
        addMarks(mark, label);
    }
    /// Marks of another piece of the line that was added last.
    void addMarksOf(const TextPlace& start, const TextPlace& end, char mark,
                    std::string_view label) {
        const Mark marked = markOf(start, end, line_);
        from_ = cells_->cellOf(marked.first);
        to_ = std::max(from_ + 1, cells_->cellOf(marked.end - 1) + 1);
        addMarks(mark, label);
    }
    [[nodiscard]] std::string take() { return std::move(result_); }

  private:
    void setLine(const TextPlace& place) {
        line_ = lineAt(text_, place);
        cells_.emplace(line_);
        cells_->setEnd(line_.size());
    }
    [[nodiscard]] std::size_t room() const {
        return styleWidth(style_) - std::min(styleWidth(style_) - 20, margin + numberWidth_ + 3);
    }
    void gutter(const std::string& number) { result_ += std::string(margin, ' ') + number + " | "; }
    void endLine() {
        result_.erase(result_.find_last_not_of(' ') + 1);
        result_ += '\n';
    }
    void addMarks(char mark, std::string_view label) {
        const std::size_t behind = std::max(window_.end, window_.first + 1);
        const std::size_t from = std::max(from_, window_.first);
        const std::size_t to = std::max(std::min(to_, behind), from + 1);
        if (from > behind) {
            return;
        }
        gutter(std::string(numberWidth_, ' '));
        const std::size_t before = from - window_.first + (window_.isCutBefore() ? dots.size() : 0);
        result_ += std::string(before, ' ');
        result_ += emphasized(std::string(to - from, mark),
                              mark == '^' ? Emphasis::good : Emphasis::dim, style_);
        if (!label.empty()) {
            result_ += ' ';
            result_ += label;
        }
        endLine();
    }

    static constexpr std::size_t margin = 3;

    std::string_view text_;
    const TextStyle& style_;
    std::size_t numberWidth_;
    std::string_view line_;
    std::optional<Cells> cells_;
    std::size_t from_ = 0; ///< cells of the mark
    std::size_t to_ = 0;
    Window window_;
    std::string result_;
};

} // namespace

std::size_t styleWidth(const TextStyle& style) {
    constexpr std::int32_t narrowest = 40;
    return static_cast<std::size_t>(std::max(style.width, narrowest));
}

std::string sourceExcerpt(const Finding& finding, std::string_view text, const TextStyle& style) {
    const bool isOfFile = finding.start.byte == 0 && finding.start == finding.end;
    const bool isOfPolicy = isIn(text, finding.start) && byteAt(text, finding.start) == "[" &&
                            isFirstInLine(text, finding.start) && byteAt(text, finding.end) == "]";
    if (!isIn(text, finding.start) || isOfFile || isOfPolicy) {
        return {};
    }
    const bool hasOther = isIn(text, finding.otherStart);
    const bool isSameLine = hasOther && finding.otherStart.line == finding.start.line;
    Excerpt excerpt(
        text, hasOther ? std::max(finding.start.line, finding.otherStart.line) : finding.start.line,
        style);
    const auto addOther = [&] {
        excerpt.addLine(finding.otherStart, finding.otherEnd, '-', finding.other);
    };
    if (hasOther && finding.otherStart.line < finding.start.line) {
        addOther();
    }
    excerpt.addLine(finding.start, finding.end, '^', {});
    if (isSameLine) {
        excerpt.addMarksOf(finding.otherStart, finding.otherEnd, '-', finding.other);
    } else if (hasOther && finding.otherStart.line > finding.start.line) {
        addOther();
    }
    return excerpt.take();
}

} // namespace zolex::companion
