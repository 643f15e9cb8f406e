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

inline std::string_view withoutBlanksBehind(std::string_view text) {
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

inline std::string_view withoutBlanksInFront(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    return text;
}

/// Where the value begins: at the first ":" outside parentheses, or else at the first of all.
std::size_t separatorOf(std::string_view text) {
    const std::size_t first = find(text, ':');
    if (first == std::string_view::npos ||
        find(text.substr(0, first), '(') == std::string_view::npos) {
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
    whole_ = rest_.substr(0, end);
    rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
    if (!whole_.empty() && whole_.back() == '\r') {
        whole_.remove_suffix(1);
    }
    line_.length = whole_.size();
    line_.number += line_.number < std::numeric_limits<std::int32_t>::max() ? 1 : 0;
    if (hasZeros_) {
        whole_ = whole_.substr(0, find(whole_, '\0'));
    }
    return true;
}

const ListingLine& ListingLines::takeApart() {
    line_.text = withoutBlanksInFront(whole_);
    line_.indent = whole_.size() - line_.text.size();
    line_.key = line_.rest = line_.value = {};
    const std::size_t separator = separatorOf(line_.text);
    line_.hasKey = separator != std::string_view::npos;
    if (line_.hasKey) {
        line_.key = withoutBlanksBehind(line_.text.substr(0, separator));
        line_.rest = line_.text.substr(separator + 1);
    }
    return line_;
}

const ListingLine& ListingLines::takeApart(std::string_view beginning, std::size_t keyLength) {
    line_.text = withoutBlanksInFront(whole_);
    line_.indent = whole_.size() - line_.text.size();
    line_.hasKey = true;
    line_.key = line_.text.substr(0, keyLength);
    line_.rest = whole_.substr(beginning.size());
    line_.value = {};
    return line_;
}

const ListingLine& ListingLines::complete() {
    line_.text = withoutBlanksBehind(line_.text);
    line_.value = withoutBlanksBehind(withoutBlanksInFront(line_.rest));
    return line_;
}

} // namespace zolex::companion
