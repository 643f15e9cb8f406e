#include "companion/text/TypedWord.h"

#include <cstddef>

namespace zolex::companion {

namespace {

/// Whether a shell makes something else of it between double quotes, too.
bool isExpanded(const std::string& word) {
    constexpr const char* special = "`\"$";
    for (std::size_t at = word.find_first_of(special); at != std::string::npos;
         at = word.find_first_of(special, at + 1)) {
        // "\\server\c$\plan.json" stays: a share of Windows.
        const bool isShare = word[at] == '$' &&
                             (at + 1 == word.size() || word[at + 1] == '\\' || word[at + 1] == '/');
        if (!isShare) {
            return true;
        }
    }
    return false;
}

std::string inSingleQuotes(const std::string& word) {
    std::string quoted = "'";
    for (const char c : word) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    quoted += "'";
    return quoted;
}

} // namespace

std::string typedWord(const std::string& word) {
    if (isExpanded(word)) {
        return inSingleQuotes(word);
    }
    const bool isPlain = !word.empty() && word.find_first_of(" \t&|;<>()*?'#") == std::string::npos;
    return isPlain ? word : "\"" + word + "\"";
}

} // namespace zolex::companion
