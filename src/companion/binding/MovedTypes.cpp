#include "companion/binding/MovedTypes.h"

#include "companion/binding/KindFile.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <map>

namespace zolex::companion {

namespace {

bool beginsWith(std::string_view text, std::string_view begin) {
    return text::equalsNoCase(text.substr(0, begin.size()), begin);
}

/// The value with other types; the same where it names none of the old one.
std::string moved(std::string_view value, std::string_view from, std::string_view to) {
    std::string result;
    while (true) {
        const std::size_t end = std::min(value.find(','), value.size());
        const std::string_view field = value.substr(0, end);
        const std::string_view bare = text::trim(field, " \t");
        const bool isType = bare.size() > 2 && text::lower(bare[0]) == 't' && bare[1] == ':' &&
                            text::equalsNoCase(text::trim(bare.substr(2), " \t"), from);
        if (isType) {
            const auto before = static_cast<std::size_t>(bare.data() - field.data());
            result.append(field.substr(0, before)).append(bare.substr(0, 2)).append(to);
            result.append(field.substr(before + bare.size()));
        } else {
            result.append(field);
        }
        if (end == value.size()) {
            return result;
        }
        result += ',';
        value.remove_prefix(end + 1);
    }
}

/// "Array.A", or another list that holds a pair of channel and id; or empty.
std::string placesOf(const KindFileSection& section) {
    for (const KindFileEntry& entry : section.entries) {
        const std::string& keyword = entry.keyword.text;
        const bool isList =
            beginsWith(keyword, keyword::array) || text::equalsNoCase(keyword, keyword::hotspares);
        if (isList && entry.value.find(':') != std::string::npos) {
            return keyword;
        }
    }
    return {};
}

} // namespace

MovedPolicies moveTypes(std::string_view text, std::string_view from, std::string_view to) {
    MovedPolicies result;
    const KindFile file = readKindFile(text);
    std::map<std::size_t, std::string> lines;
    for (const KindFileSection& section : file.sections) {
        bool isMoved = false;
        for (const KindFileEntry& entry : section.entries) {
            if (!beginsWith(entry.keyword.text, keyword::appliesTo)) {
                continue;
            }
            std::string value = moved(entry.value, from, to);
            if (value == entry.value) {
                continue;
            }
            const std::string_view line = file.lines[entry.line];
            const auto column = static_cast<std::size_t>(std::max(entry.valueColumn, 1)) - 1;
            lines[entry.line] = std::string(line.substr(0, column)) + value +
                                std::string(line.substr(column + entry.value.size()));
            isMoved = true;
            ++result.entries;
        }
        if (isMoved && result.placesIn.empty()) {
            result.placesIn = placesOf(section);
        }
    }
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        const auto found = lines.find(i);
        result.text.append(found == lines.end() ? file.lines[i] : std::string_view(found->second))
            .append(file.lineEnds[i]);
    }
    return result;
}

} // namespace zolex::companion
