#include "companion/binding/WrittenPlaces.h"

#include "companion/binding/KindFile.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstddef>

namespace zolex::companion {

namespace {

/// A place of a line: bytes from 0, the end behind the last.
struct Span {
    std::size_t start = 0;
    std::size_t end = 0;
};

Span trimmed(std::string_view line, std::size_t start, std::size_t end) {
    const std::string_view part = text::trim(line.substr(start, end - start), " \t\r");
    if (part.empty()) {
        return {start, start};
    }
    const auto first = static_cast<std::size_t>(part.data() - line.data());
    return {first, first + part.size()};
}

/// Of an entry the keyword, or the value.
Span partOf(std::string_view line, bool isKeyword) {
    const std::size_t equals = std::min(line.find('='), line.size());
    return isKeyword ? trimmed(line, 0, equals)
                     : trimmed(line, std::min(equals + 1, line.size()), line.size());
}

bool isNamePart(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}

} // namespace

WrittenPlaces::WrittenPlaces(std::string_view written, const BoundPolicies& bound)
    : lineOf_(bound.lineOf) {
    const KindFile file = readKindFile(written);
    std::int64_t byte = 0;
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        written_.emplace_back(file.lines[i]);
        starts_.push_back(byte);
        byte += static_cast<std::int64_t>(file.lines[i].size() + file.lineEnds[i].size());
    }
    for (const std::string_view line : readKindFile(bound.text).lines) {
        bound_.emplace_back(line);
    }
    for (const Binding& binding : bound.bindings) {
        names_.emplace_back(binding.becomes.substr(0, binding.becomes.find(' ')), binding.keyword);
    }
}

void WrittenPlaces::move(Finding& finding) const {
    finding.end = placeOf(finding.end, false);
    finding.start = placeOf(finding.start, true);
    if (finding.otherStart.line > 0) {
        finding.otherEnd = placeOf(finding.otherEnd, false);
        finding.otherStart = placeOf(finding.otherStart, true);
    }
    finding.summary = named(std::move(finding.summary));
    finding.detail = named(std::move(finding.detail));
    finding.other = named(std::move(finding.other));
    for (std::string& help : finding.help) {
        help = named(std::move(help));
    }
}

/// A place in a line that was bound is the whole keyword, or the whole value.
TextPlace WrittenPlaces::placeOf(const TextPlace& place, bool isStart) const {
    const auto index = static_cast<std::size_t>(std::max(place.line, 1)) - 1;
    const std::size_t line =
        index < lineOf_.size() ? static_cast<std::size_t>(std::max(lineOf_[index], 1)) - 1 : 0;
    if (index >= bound_.size() || index >= lineOf_.size() || line >= written_.size()) {
        return {1, 1, 0};
    }
    std::int32_t column = place.column;
    if (bound_[index] != written_[line]) {
        const std::size_t equals = std::min(bound_[index].find('='), bound_[index].size());
        const bool isKeyword = static_cast<std::size_t>(std::max(column, 1)) <= equals + 1;
        const Span span = partOf(written_[line], isKeyword);
        column = static_cast<std::int32_t>(isStart ? span.start : span.end) + 1;
    }
    return {lineOf_[index], column, starts_[line] + column - 1};
}

std::string WrittenPlaces::named(std::string text) const {
    for (const auto& [bound, written] : names_) {
        for (std::size_t at = text.find(bound); at != std::string::npos;
             at = text.find(bound, at)) {
            const std::size_t end = at + bound.size();
            const bool isWhole = (at == 0 || !isNamePart(text[at - 1])) &&
                                 (end == text.size() || !isNamePart(text[end]));
            if (isWhole) {
                text.replace(at, bound.size(), written);
            }
            at += isWhole ? written.size() : bound.size();
        }
    }
    return text;
}

} // namespace zolex::companion
