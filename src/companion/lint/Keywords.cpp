#include "companion/lint/Keywords.h"

#include "companion/binding/FamilyTypes.h"
#include "companion/binding/KindEntries.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <cstddef>

namespace zolex::companion {

namespace {

/// Every keyword that zolex looks up.
std::vector<std::string> makeUsualKeywords() {
    std::vector<std::string> all = {
        keyword::rebuildRate,     keyword::readAhead,
        keyword::stripeSize,      keyword::init,
        keyword::arrayMode,       keyword::arrayDefaults,
        keyword::hotspares,       keyword::logicalMode,
        keyword::logicalDefaults, keyword::maxLogicalDriveSize,
    };
    for (std::int32_t n = 1; n <= keyword::lastAppliesTo; ++n) {
        all.push_back(keyword::appliesTo + std::to_string(n));
    }
    for (char letter = 'A'; letter <= 'H'; ++letter) {
        all.push_back(std::string(keyword::array) + letter);
    }
    for (std::int32_t n = 1; n <= keyword::lastLogical; ++n) {
        all.push_back(keyword::logical + std::to_string(n));
    }
    return all;
}

const std::vector<std::string>& usualKeywords() {
    static const std::vector<std::string> all = makeUsualKeywords();
    return all;
}

bool beginsWith(std::string_view text, std::string_view begin) {
    return text::equalsNoCase(text.substr(0, begin.size()), begin);
}

} // namespace

bool isKnownKeyword(std::string_view keyword) {
    return keyword::isValid(keyword);
}

bool isLaterKeyword(std::string_view keyword) {
    return isKindKeyword(keyword);
}

bool isLaterModel(std::string_view model) {
    return isFamilyType(model);
}

std::optional<std::string> usualSpelling(std::string_view keyword) {
    const std::vector<std::string>& all = usualKeywords();
    const auto found = std::find_if(all.begin(), all.end(), [keyword](const std::string& row) {
        return text::equalsNoCase(row, keyword);
    });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::optional<std::string> nearestKeyword(std::string_view text) {
    const bool hasOtherNumber = beginsWith(text, keyword::appliesTo) ||
                                beginsWith(text, keyword::array) ||
                                beginsWith(text, keyword::logical);
    return hasOtherNumber ? std::nullopt : nearestWord(text, usualKeywords());
}

std::string keywordHelp(std::string_view keyword) {
    if (beginsWith(keyword, keyword::array)) {
        return "arrays are Array.A to Array.H";
    }
    if (beginsWith(keyword, keyword::appliesTo)) {
        return "entries are AppliesTo.1 to AppliesTo.15";
    }
    if (beginsWith(keyword, keyword::logical)) {
        return "logical drives are Logical.1 to Logical.9";
    }
    return "zolexctl explain ZX007 lists the keywords";
}

} // namespace zolex::companion
