#include "companion/cli/Suggestion.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace zolex::companion {

namespace {

/// Of a longer word nobody asks what was meant.
constexpr std::size_t longestWord = 40;

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool beginsWith(std::string_view word, std::string_view start) {
    return word.size() >= start.size() &&
           std::equal(start.begin(), start.end(), word.begin(),
                      [](char a, char b) { return lower(a) == lower(b); });
}

std::string_view onlyOneThatBegins(std::string_view given,
                                   std::span<const std::string_view> words) {
    constexpr std::size_t enough = 2;
    std::string_view found;
    for (const std::string_view word : words) {
        if (given.size() >= enough && beginsWith(word, given)) {
            if (!found.empty()) {
                return {};
            }
            found = word;
        }
    }
    return found;
}

} // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
    const std::size_t width = b.size() + 1;
    std::vector<std::size_t> cells((a.size() + 1) * width);
    const auto cell = [&](std::size_t i, std::size_t j) -> std::size_t& {
        return cells[i * width + j];
    };
    for (std::size_t i = 0; i <= a.size(); ++i) {
        cell(i, 0) = i;
    }
    for (std::size_t j = 0; j <= b.size(); ++j) {
        cell(0, j) = j;
    }
    for (std::size_t i = 1; i <= a.size(); ++i) {
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = lower(a[i - 1]) == lower(b[j - 1]);
            std::size_t& here = cell(i, j);
            here = std::min(
                {cell(i - 1, j) + 1, cell(i, j - 1) + 1, cell(i - 1, j - 1) + (same ? 0U : 1U)});
            if (i > 1 && j > 1 && lower(a[i - 1]) == lower(b[j - 2]) &&
                lower(a[i - 2]) == lower(b[j - 1])) {
                here = std::min(here, cell(i - 2, j - 2) + 1);
            }
        }
    }
    return cell(a.size(), b.size());
}

std::string_view nearestWord(std::string_view given, std::span<const std::string_view> words) {
    if (given.empty() || given.size() > longestWord) {
        return {};
    }
    std::string_view nearest;
    std::size_t least = std::numeric_limits<std::size_t>::max();
    for (const std::string_view word : words) {
        const std::size_t distance = editDistance(given, word);
        if (distance < least) {
            nearest = word;
            least = distance;
        }
    }
    // A third of the letters may be wrong.
    if (least <= std::max<std::size_t>(1, std::max(given.size(), nearest.size()) / 3)) {
        return nearest;
    }
    return onlyOneThatBegins(given, words);
}

} // namespace zolex::companion
