#include "companion/lint/Keywords.h"

#include "companion/binding/FamilyTypes.h"
#include "companion/binding/KindEntries.h"
#include "foundation/Text.h"
#include "policies/PolicyKeywords.h"

#include <algorithm>
#include <array>
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

constexpr std::size_t longestCompared = 40; ///< bytes of a text that is worth comparing

/// How many letters must be added, taken out, changed or exchanged with their neighbour to make one
/// text of the other; letter case counts nothing. Neither is longer than longestCompared.
std::size_t distance(std::string_view a, std::string_view b) {
    using Row = std::array<std::size_t, longestCompared + 1>;
    std::array<Row, 3> rows{}; // of the last letters of `a`, by their count modulo 3
    for (std::size_t i = 0; i <= a.size(); ++i) {
        Row& row = rows[i % 3];
        const Row& before = rows[(i + 2) % 3];
        const Row& twoBefore = rows[(i + 1) % 3];
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            if (i == 0) {
                row[j] = j;
                continue;
            }
            const auto same = [&](std::size_t x, std::size_t y) {
                return text::lower(a[x]) == text::lower(b[y]);
            };
            row[j] = std::min(
                {before[j] + 1, row[j - 1] + 1, before[j - 1] + (same(i - 1, j - 1) ? 0U : 1U)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1)) {
                row[j] = std::min(row[j], twoBefore[j - 2] + 1);
            }
        }
    }
    return rows[a.size() % 3][b.size()];
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

std::optional<std::string> nearestWord(std::string_view text,
                                       const std::vector<std::string>& words) {
    if (text.empty() || text.size() > longestCompared) {
        return std::nullopt;
    }
    std::optional<std::string> nearest;
    std::size_t best = std::max<std::size_t>(1, text.size() / 3) + 1;
    for (const std::string& word : words) {
        const std::size_t longer = std::max(word.size(), text.size());
        // As many letters as one is longer are always to be added.
        if (longer > longestCompared || longer - std::min(word.size(), text.size()) >= best) {
            continue;
        }
        if (const std::size_t letters = distance(text, word); letters < best) {
            best = letters;
            nearest = word;
        }
    }
    return nearest;
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
