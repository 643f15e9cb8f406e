#include "companion/text/NearestWord.h"

#include "foundation/Text.h"

#include <algorithm>
#include <array>

namespace zolex::companion {

namespace {

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

bool isNearWord(std::string_view text, std::string_view word, std::size_t letters) {
    return std::max(text.size(), word.size()) <= longestCompared && distance(text, word) <= letters;
}

} // namespace zolex::companion
