#include "companion/text/Diagnostics.h"

#include "companion/text/SourceExcerpt.h"
#include "companion/text/Table.h"

#include <algorithm>

namespace zolex::companion {

namespace {

Emphasis emphasisOf(Severity severity) {
    switch (severity) {
    case Severity::note:
        return Emphasis::heading;
    case Severity::warning:
        return Emphasis::warning;
    case Severity::error:
        break;
    }
    return Emphasis::bad;
}

/// "site.ini:12:17", "site.ini", or nothing.
std::string placeText(const Finding& finding) {
    std::string text = printable(finding.file);
    if (finding.start.line > 0) {
        text +=
            ':' + std::to_string(finding.start.line) + ':' + std::to_string(finding.start.column);
    }
    return text;
}

/// "site.ini:12:17: error: ", with its colours.
std::string headText(const Finding& finding, const TextStyle& style) {
    const std::string place = placeText(finding);
    std::string head = place.empty() ? "" : emphasized(place + ":", Emphasis::bold, style) + " ";
    head += emphasized(severityWord(finding.severity), emphasisOf(finding.severity), style);
    return head + ": ";
}

/// A paragraph behind `label`, which stands behind three blanks.
std::string paragraph(std::string_view label, Emphasis emphasis, std::string_view text,
                      const TextStyle& style) {
    constexpr std::size_t margin = 3;
    const std::size_t indent = margin + label.size() + (label.empty() ? 0 : 1);
    std::string result(margin, ' ');
    if (!label.empty()) {
        result += emphasized(label, emphasis, style) + " ";
    }
    return result + foldedWords(printable(text), indent, indent, styleWidth(style)) + "\n";
}

const SourceFile* sourceOf(const Finding& finding, std::span<const SourceFile> sources) {
    const auto found =
        std::find_if(sources.begin(), sources.end(),
                     [&finding](const SourceFile& row) { return row.name == finding.file; });
    return found == sources.end() ? nullptr : &*found;
}

std::string diagnosticText(const Finding& finding, std::span<const SourceFile> sources,
                           const TextStyle& style) {
    // Further lines stand below the first word behind the place, when that leaves them room.
    constexpr std::size_t mostIndent = 30;
    constexpr std::size_t usualIndent = 4;
    const std::string place = placeText(finding);
    const std::size_t behindPlace = place.empty() ? 0 : columnsOf(place) + 2;
    const std::size_t indent =
        behindPlace > mostIndent || behindPlace == 0 ? usualIndent : behindPlace;
    const std::string head = headText(finding, style);
    std::string text = head;
    text += foldedWords(printable(finding.summary) + " [" + finding.code + "]", columnsOf(head),
                        indent, styleWidth(style));
    text += "\n";
    if (const SourceFile* source = sourceOf(finding, sources)) {
        text += sourceExcerpt(finding, source->text, style);
    }
    // What a utility printed has several lines.
    for (std::string_view rest = finding.detail; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        text += end > 0 ? paragraph("", Emphasis::plain, rest.substr(0, end), style) : "";
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    for (const std::string& help : finding.help) {
        text += paragraph("help:", Emphasis::heading, help, style);
    }
    return text;
}

/// A value of a workflow command.
std::string githubEscaped(std::string_view text, bool isProperty) {
    std::string result;
    for (const char c : text) {
        if (c == '%') {
            result += "%25";
        } else if (c == '\r') {
            result += "%0D";
        } else if (c == '\n') {
            result += "%0A";
        } else if (isProperty && c == ':') {
            result += "%3A";
        } else if (isProperty && c == ',') {
            result += "%2C";
        } else {
            result += c;
        }
    }
    return result;
}

/// The text with line ends, which an escape keeps, but no other control character.
std::string githubLines(const Finding& finding) {
    std::string text = printable(finding.summary);
    if (!finding.detail.empty()) {
        text += "\n" + printable(finding.detail);
    }
    for (const std::string& help : finding.help) {
        text += "\nhelp: " + printable(help);
    }
    return text;
}

std::string githubCommand(const Finding& finding) {
    const std::string_view level =
        finding.severity == Severity::note ? "notice" : severityWord(finding.severity);
    std::string text = "::" + std::string(level) + " ";
    if (!finding.file.empty()) {
        text += "file=" + githubEscaped(printable(finding.file), true) + ",";
    }
    if (finding.start.line > 0) {
        text += "line=" + std::to_string(finding.start.line) +
                ",col=" + std::to_string(finding.start.column) + ",";
        if (finding.end.line == finding.start.line && finding.end.column > finding.start.column) {
            text += "endLine=" + std::to_string(finding.end.line) +
                    ",endColumn=" + std::to_string(finding.end.column) + ",";
        }
    }
    text += "title=" + githubEscaped(finding.code, true);
    return text + "::" + githubEscaped(githubLines(finding), false) + "\n";
}

std::string countText(std::size_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

} // namespace

FindingCounts countFindings(std::span<const Finding> findings) {
    FindingCounts counts;
    for (const Finding& finding : findings) {
        switch (finding.severity) {
        case Severity::note:
            ++counts.notes;
            break;
        case Severity::warning:
            ++counts.warnings;
            break;
        case Severity::error:
            ++counts.errors;
            break;
        }
    }
    return counts;
}

std::string countsText(const FindingCounts& counts) {
    std::string text;
    const auto add = [&text](std::size_t count, std::string_view what) {
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + countText(count, what);
        }
    };
    add(counts.errors, "error");
    add(counts.warnings, "warning");
    add(counts.notes, "note");
    return text.empty() ? "no findings" : text;
}

std::string diagnosticsText(std::span<const Finding> findings, std::span<const SourceFile> sources,
                            const TextStyle& style) {
    std::string text;
    for (const Finding& finding : findings) {
        text += (text.empty() ? "" : "\n") + diagnosticText(finding, sources, style);
    }
    return text;
}

std::string conciseDiagnostics(std::span<const Finding> findings, const TextStyle& style) {
    std::string text;
    for (const Finding& finding : findings) {
        text += headText(finding, style) + printable(finding.summary) + " [" + finding.code + "]\n";
    }
    return text;
}

std::string githubDiagnostics(std::span<const Finding> findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += githubCommand(finding);
    }
    return text;
}

} // namespace zolex::companion
