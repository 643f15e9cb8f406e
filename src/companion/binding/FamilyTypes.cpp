#include "companion/binding/FamilyTypes.h"

#include "companion/binding/KindFile.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"
#include "policies/PolicyValues.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace zolex::companion {

namespace {

bool isAppliesTo(const KindFileEntry& entry) {
    const std::string_view prefix = keyword::appliesTo;
    return text::equalsNoCase(std::string_view(entry.keyword.text).substr(0, prefix.size()),
                              prefix);
}

/// The value of a "t:"; nothing for another specifier.
std::optional<std::string_view> typeOf(std::string_view specifier) {
    return specifier.size() > 2 && text::lower(specifier[0]) == 't' && specifier[1] == ':'
               ? std::optional(specifier.substr(2))
               : std::nullopt;
}

/// What zolex may read in the place of the entry; nothing where it may read the entry itself.
std::optional<std::string> replaced(const KindFileEntry& entry) {
    const std::vector<std::string_view> fields = policy_value::splitAndTrim(entry.value, ',');
    std::optional<std::string_view> last;
    bool isAny = false;
    std::string rest;
    for (const std::string_view field : fields) {
        const auto type = typeOf(field);
        const bool isFamily = type && isFamilyType(*type);
        isAny = isAny || isFamily;
        last = type ? type : last;
        if (!isFamily) {
            rest += (rest.empty() ? "" : ",") + std::string(field);
        }
    }
    if (!isAny) {
        return std::nullopt;
    }
    // The last specifier of a letter counts. An entry that gives nothing matches nothing.
    return entry.keyword.text + " = " + (isFamilyType(*last) ? "m:" : rest);
}

} // namespace

bool hasFamilyTypes(std::string_view text) {
    const KindFile file = readKindFile(text);
    return std::any_of(
        file.sections.begin(), file.sections.end(), [](const KindFileSection& section) {
            return std::any_of(section.entries.begin(), section.entries.end(),
                               [](const KindFileEntry& entry) {
                                   return isAppliesTo(entry) && replaced(entry).has_value();
                               });
        });
}

std::string withoutFamilyTypes(std::string_view text) {
    const KindFile file = readKindFile(text);
    std::map<std::size_t, std::string> lines;
    for (const KindFileSection& section : file.sections) {
        for (const KindFileEntry& entry : section.entries) {
            if (auto line = isAppliesTo(entry) ? replaced(entry) : std::nullopt) {
                lines[entry.line] = std::move(*line);
            }
        }
    }
    if (lines.empty()) {
        return std::string(text);
    }
    std::string result;
    for (std::size_t i = 0; i < file.lines.size(); ++i) {
        const auto found = lines.find(i);
        result.append(found == lines.end() ? file.lines[i] : found->second)
            .append(file.lineEnds[i]);
    }
    return result;
}

} // namespace zolex::companion
