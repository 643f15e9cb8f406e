#include "companion/facts/ListingLines.h"

#include <cstring>
#include <limits>

namespace zolex::companion {

namespace {

constexpr bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

std::size_t find(std::string_view text, char wanted) {
    const void* const found =
        text.empty() ? nullptr : std::memchr(text.data(), wanted, text.size());
    return found == nullptr
               ? std::string_view::npos
               : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

std::string_view withoutBlanksBehind(std::string_view text) {
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string_view withoutBlanksInFront(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

/// Where the value begins: at the first ":" outside parentheses. `first` is the first of all.
std::size_t separatorOf(std::string_view text, std::size_t first) {
    if (find(text.substr(0, first), '(') == std::string_view::npos) {
        return first;
    }
    std::size_t open = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '(') {
            ++open;
        } else if (text[at] == ')' && open > 0) {
            --open;
        } else if (text[at] == ':' && open == 0) {
            return at;
        }
    }
    return first;
}

} // namespace

ListingLines::ListingLines(std::string_view listing)
    : rest_(listing), hasZeros_(find(listing, '\0') != std::string_view::npos) {}

bool ListingLines::next() {
    if (rest_.empty()) {
        return false;
    }
    const std::size_t end = find(rest_, '\n');
    takeApart(rest_.substr(0, end));
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    return true;
}

void ListingLines::takeApart(std::string_view whole) {
    if (!whole.empty() && whole.back() == '\r') {
        whole.remove_suffix(1);
    }
    line_.length = whole.size();
    line_.number += line_.number < std::numeric_limits<std::int32_t>::max() ? 1 : 0;
    if (hasZeros_) {
        whole = whole.substr(0, find(whole, '\0'));
    }
    const std::string_view text = withoutBlanksInFront(whole);
    line_.indent = whole.size() - text.size();
    line_.text = withoutBlanksBehind(text);
    const std::size_t first = find(text, ':');
    line_.hasKey = first != std::string_view::npos;
    if (!line_.hasKey) {
        line_.key = line_.value = line_.rest = {};
        return;
    }
    const std::size_t separator = separatorOf(text, first);
    line_.key = withoutBlanksBehind(text.substr(0, separator));
    line_.rest = text.substr(separator + 1);
    line_.value = withoutBlanksBehind(withoutBlanksInFront(line_.rest));
}

} // namespace zolex::companion
