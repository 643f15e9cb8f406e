#include "companion/picture/TextLines.h"

#include <algorithm>
#include <map>

namespace zolex::companion {

namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t leastLast = 24; ///< columns that the last field has at least

/// Widths of all fields but the last, for lines of one indent.
using Widths = std::vector<std::size_t>;

std::size_t leadOf(const FieldLine& line, const Widths& widths) {
    std::size_t lead = line.indent;
    for (std::size_t i = 0; i + 1 < line.fields.size(); ++i) {
        lead += i < widths.size() && widths[i] > 0 ? widths[i] + gap : 0;
    }
    return lead;
}

Widths ownWidths(const FieldLine& line) {
    Widths widths;
    for (std::size_t i = 0; i + 1 < line.fields.size(); ++i) {
        widths.push_back(columnsOf(line.fields[i].text));
    }
    return widths;
}

bool fits(const FieldLine& line, const Widths& widths, std::size_t width) {
    const std::size_t last = line.fields.empty() ? 0 : columnsOf(line.fields.back().text);
    return leadOf(line, widths) + std::min(last, leastLast) <= width;
}

std::string inColumns(const FieldLine& line, const Widths& widths, const TextStyle& style) {
    std::string text;
    std::size_t blanks = line.indent;
    for (std::size_t i = 0; i + 1 < line.fields.size(); ++i) {
        if (widths[i] == 0) {
            continue;
        }
        const TableCell& field = line.fields[i];
        const std::size_t rest = widths[i] - columnsOf(field.text);
        if (field.text.empty()) {
            blanks += rest + gap;
            continue;
        }
        text.append(blanks + (field.right ? rest : 0), ' ');
        text += emphasized(field.text, field.emphasis, style);
        blanks = (field.right ? 0 : rest) + gap;
    }
    if (!line.fields.empty() && !line.fields.back().text.empty()) {
        const std::size_t lead = leadOf(line, widths);
        text.append(blanks, ' ');
        text += emphasized(
            foldedWords(line.fields.back().text, lead, lead, static_cast<std::size_t>(style.width)),
            line.fields.back().emphasis, style);
    }
    return text + "\n";
}

/// Field after field, folded at their words, two blanks between fields.
std::string folded(const FieldLine& line, const TextStyle& style) {
    const auto width = static_cast<std::size_t>(style.width);
    const std::size_t indent = std::min(line.indent + 4, width / 2);
    std::string text(line.indent, ' ');
    std::size_t column = line.indent;
    std::size_t blanks = 0; // before the next word
    for (const TableCell& field : line.fields) {
        std::string_view rest = field.text;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            const std::string_view word = rest.substr(0, end);
            if (!word.empty()) {
                if (blanks > 0 && column + blanks + columnsOf(word) > width) {
                    text += "\n" + std::string(indent, ' ');
                    column = indent;
                    blanks = 0;
                }
                text.append(blanks, ' ');
                text += emphasized(word, field.emphasis, style);
                column += blanks + columnsOf(word);
                blanks = 1;
            }
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
        blanks = column > line.indent ? gap : 0;
    }
    return text + "\n";
}

} // namespace

std::vector<std::string> fieldLines(const std::vector<FieldLine>& lines, const TextStyle& style) {
    const auto width = static_cast<std::size_t>(style.width);
    std::map<std::size_t, Widths> widths;
    for (const FieldLine& line : lines) {
        const Widths own = ownWidths(line);
        if (!fits(line, own, width)) {
            continue;
        }
        Widths& all = widths[line.indent];
        all.resize(std::max(all.size(), own.size()));
        for (std::size_t i = 0; i < own.size(); ++i) {
            all[i] = std::max(all[i], own[i]);
        }
    }
    std::vector<std::string> texts;
    texts.reserve(lines.size());
    for (const FieldLine& line : lines) {
        const Widths& all = widths[line.indent];
        const bool stands = fits(line, ownWidths(line), width) && fits(line, all, width);
        texts.push_back(stands ? inColumns(line, all, style) : folded(line, style));
    }
    return texts;
}

std::string signedLine(std::string_view sign, std::string_view text, Emphasis emphasis,
                       const TextStyle& style) {
    const std::size_t indent = columnsOf(sign);
    return emphasized(std::string(sign) +
                          foldedWords(text, indent, indent, static_cast<std::size_t>(style.width)),
                      emphasis, style) +
           "\n";
}

std::string foldedCommand(std::string_view command, std::size_t indent, std::size_t width) {
    std::string text;
    std::size_t column = 0;
    bool isWordStart = true;
    bool isFolded = false; // the word, behind its commas
    while (!command.empty()) {
        const std::size_t end = std::min(command.find(' '), command.size());
        const std::size_t comma = command.find(',');
        if (isWordStart) {
            isFolded = columnsOf(command.substr(0, end)) + indent > width;
        }
        const bool isLong = isFolded && comma < end;
        const std::string_view piece = command.substr(0, isLong ? comma + 1 : end);
        const bool hasBlank = isWordStart && !text.empty();
        if (!text.empty() && column + (hasBlank ? 1 : 0) + columnsOf(piece) > width) {
            text += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (hasBlank) {
            text += ' ';
            ++column;
        }
        text += piece;
        column += columnsOf(piece);
        command.remove_prefix(piece.size());
        isWordStart = !command.empty() && command.front() == ' ';
        command.remove_prefix(isWordStart ? 1 : 0);
    }
    return text;
}

std::string findingLine(const Finding& finding, std::size_t indent, const TextStyle& style) {
    const bool isNote = finding.severity == Severity::note;
    std::string text = printable(finding.summary);
    text += finding.detail.empty() ? "" : ": " + printable(finding.detail);
    text += finding.code.empty() ? "" : " [" + printable(finding.code) + "]";
    const std::string blanks(indent, ' ');
    std::string lines = signedLine(blanks + (isNote ? "note: " : "! "), text,
                                   finding.severity == Severity::error ? Emphasis::bad
                                   : isNote                            ? Emphasis::dim
                                                                       : Emphasis::warning,
                                   style);
    for (const std::string& help : finding.help) {
        lines += signedLine(blanks + "  help: ", printable(help), Emphasis::dim, style);
    }
    return lines;
}

std::string controllerHead(std::int32_t number, const std::vector<std::string>& what,
                           const TextStyle& style) {
    const std::string name = "Controller " + std::to_string(number);
    const std::size_t indent = name.size() + 2;
    std::string text = emphasized(name, Emphasis::heading, style);
    if (!what.empty()) {
        text += "  " + emphasized(foldedText(what, "  ", indent, indent,
                                             static_cast<std::size_t>(style.width)),
                                  Emphasis::bold, style);
    }
    return text + "\n";
}

} // namespace zolex::companion
